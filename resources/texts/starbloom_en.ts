<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- English. The id of a text is its key in the program. -->
<TS version="2.1" language="en" sourcelanguage="en">
<context>
<name></name>
<message id="stageName"><translation>Fireworks stage</translation></message>
</context>
</TS>
