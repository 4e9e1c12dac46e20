<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS []>
<TS version="2.1" language="ru_RU">
<context><name>Win</name>
<message><location filename="win.cpp" line="+12"/><location line="+3"/><source>Open</source><comment>verb</comment><extracomment>a button</extracomment><translatorcomment>short</translatorcomment><translation variants="yes"><lengthvariant>aa</lengthvariant><lengthvariant>a</lengthvariant></translation></message>
<message><source>Open</source><oldsource>Op</oldsource><comment>state</comment><translation type="unfinished">b</translation></message>
<message numerus="yes"><source>%n</source><translation><numerusform>1</numerusform><numerusform>2<byte value="x1b"/></numerusform><numerusform>3</numerusform></translation></message>
<message><source>Gone</source><translation type="vanished">c</translation></message>
</context><message id="i"><source>Quit</source><translation>d</translation></message>
</TS>
