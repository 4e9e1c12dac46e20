<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS []>
<TS version="2.1" language="ru_RU" sourcelanguage="en">
<context>
  <name>Win</name>
  <message><location filename="src/win.cpp" line="+12"/><location line="+3"/>
    <source>Open</source><comment>verb</comment>
    <extracomment>a button</extracomment><translatorcomment>коротко</translatorcomment>
    <translation>Открыть</translation></message>
  <message><location filename="src/a b.cpp" line="7"/><location filename="src/win.cpp" line="-5"/>
    <source>Open</source><comment>state</comment><translation>Открыто</translation></message>
  <message><source>Only</source><comment>the comment</comment>
    <translation variants="yes"><lengthvariant>Только</lengthvariant><lengthvariant>Тол</lengthvariant></translation></message>
  <message numerus="yes"><source>%n cup(s)</source>
    <translation><numerusform>%n чашка</numerusform><numerusform>%n чашки</numerusform>
      <numerusform>%n чашек<byte value="x1b"/></numerusform></translation></message>
  <message numerus="yes"><source>%n dog(s)</source>
    <translation><numerusform>%n пёс</numerusform><numerusform></numerusform></translation></message>
  <message><source>Guess</source><oldsource>Gues</oldsource>
    <translation type="unfinished">Догадка</translation></message>
  <message><source>Gone</source><translation type="vanished">Нет</translation></message>
  <message><source></source><comment>Language name</comment><translation>Русский</translation></message>
</context>
<context><name></name>
  <message id="id-quit"><source>Quit</source><translation>Выйти</translation></message>
</context>
</TS>
