<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="hu" sourcelanguage="en">
    <extra-language-name>hungarian</extra-language-name>
<context>
    <name>cup</name>
    <message numerus="yes">
        <source>%d cup</source>
        <translation>
            <numerusform>%d csesze</numerusform>
        </translation>
        <extra-po-msgid_plural>%d cups</extra-po-msgid_plural>
    </message>
    <message>
        <source>A</source>
        <translation>a</translation>
    </message>
</context>
</TS>
