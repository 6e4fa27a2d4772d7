<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <message id="attendee.unknown">
        <source>attendee.unknown</source>
        <translation>Unknown</translation>
    </message>
    <message id="meeting.untitled">
        <source>meeting.untitled</source>
        <translation>Untitled meeting</translation>
    </message>
    <message id="platform.in_person">
        <source>platform.in_person</source>
        <translation>In person</translation>
    </message>
    <message id="platform.unknown">
        <source>platform.unknown</source>
        <translation>Unknown</translation>
    </message>
</context>
</TS>
