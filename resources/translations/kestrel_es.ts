<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name></name>
    <message id="attendee.unknown">
        <source>attendee.unknown</source>
        <translation>Desconocido</translation>
    </message>
    <message id="meeting.untitled">
        <source>meeting.untitled</source>
        <translation>Reunión sin título</translation>
    </message>
    <message id="platform.in_person">
        <source>platform.in_person</source>
        <translation>En persona</translation>
    </message>
    <message id="platform.unknown">
        <source>platform.unknown</source>
        <translation>Desconocida</translation>
    </message>
</context>
</TS>
