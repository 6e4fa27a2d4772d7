<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name></name>
    <message id="+%lld">
        <source>+%lld</source>
        <translation>+%1</translation>
    </message>
    <message id="MIN LEFT">
        <source>MIN LEFT</source>
        <translation>MIN REST.</translation>
    </message>
    <message id="agenda.date_format">
        <source>agenda.date_format</source>
        <translation>dddd, d MMM</translation>
    </message>
    <message id="alert.dismiss">
        <source>alert.dismiss</source>
        <translation>Descartar</translation>
    </message>
    <message id="alert.join_button.title %@">
        <source>alert.join_button.title %@</source>
        <translation>Entrar en %1</translation>
    </message>
    <message id="attendee.unknown">
        <source>attendee.unknown</source>
        <translation>Desconocido</translation>
    </message>
    <message id="brand.tagline">
        <source>brand.tagline</source>
        <translation>Puntual en cada reunión</translation>
    </message>
    <message id="countdown.ago_x">
        <source>countdown.ago_x</source>
        <translation>Hace %1</translation>
    </message>
    <message id="countdown.in_x">
        <source>countdown.in_x</source>
        <translation>En %1</translation>
    </message>
    <message id="countdown.now">
        <source>countdown.now</source>
        <translation>Ahora</translation>
    </message>
    <message id="duration.h %lld">
        <source>duration.h %lld</source>
        <translation>%1 h</translation>
    </message>
    <message id="duration.h_m %lld %lld">
        <source>duration.h_m %lld %lld</source>
        <translation>%1 h %2 min</translation>
    </message>
    <message id="duration.m %lld">
        <source>duration.m %lld</source>
        <translation>%1 min</translation>
    </message>
    <message id="meet_controls.chrome_flag.message">
        <source>meet_controls.chrome_flag.message</source>
        <translation>Tu navegador aún no permite que Kestrel ejecute scripts en las páginas. Abre la página Extensiones del navegador, pulsa Detalles en la tarjeta de Kestrel y activa «Permitir secuencias de comandos de usuario» (en inglés, «Allow User Scripts»).

Después, «kestrel browser status» en un terminal te dirá si todo está listo.</translation>
    </message>
    <message id="meet_controls.chrome_flag.ok">
        <source>meet_controls.chrome_flag.ok</source>
        <translation>Entendido</translation>
    </message>
    <message id="meet_controls.chrome_flag.title">
        <source>meet_controls.chrome_flag.title</source>
        <translation>Deja que Kestrel actúe en Meet</translation>
    </message>
    <message id="meet_hud.camera_off">
        <source>meet_hud.camera_off</source>
        <translation>Cámara desactivada</translation>
    </message>
    <message id="meet_hud.camera_on">
        <source>meet_hud.camera_on</source>
        <translation>Cámara activada</translation>
    </message>
    <message id="meet_hud.focused">
        <source>meet_hud.focused</source>
        <translation>Meet en primer plano</translation>
    </message>
    <message id="meet_hud.hand_lowered">
        <source>meet_hud.hand_lowered</source>
        <translation>Mano bajada</translation>
    </message>
    <message id="meet_hud.hand_raised">
        <source>meet_hud.hand_raised</source>
        <translation>Mano levantada</translation>
    </message>
    <message id="meet_hud.left">
        <source>meet_hud.left</source>
        <translation>Has salido de la llamada</translation>
    </message>
    <message id="meet_hud.mic_off">
        <source>meet_hud.mic_off</source>
        <translation>Micrófono desactivado</translation>
    </message>
    <message id="meet_hud.mic_on">
        <source>meet_hud.mic_on</source>
        <translation>Micrófono activado</translation>
    </message>
    <message id="meet_hud.not_sharing">
        <source>meet_hud.not_sharing</source>
        <translation>Sin compartir la pantalla</translation>
    </message>
    <message id="meet_hud.sharing">
        <source>meet_hud.sharing</source>
        <translation>Compartiendo la pantalla</translation>
    </message>
    <message id="meeting.open_in_calendar">
        <source>meeting.open_in_calendar</source>
        <translation>Abrir en el calendario</translation>
    </message>
    <message id="meeting.open_in_maps">
        <source>meeting.open_in_maps</source>
        <translation>Ver en el mapa</translation>
    </message>
    <message id="meeting.untitled">
        <source>meeting.untitled</source>
        <translation>Reunión sin título</translation>
    </message>
    <message id="menu.join_next">
        <source>menu.join_next</source>
        <translation>Entrar en la próxima reunión</translation>
    </message>
    <message id="menu.open_agenda">
        <source>menu.open_agenda</source>
        <translation>Abrir la agenda</translation>
    </message>
    <message id="menubar.in_h_m %lld %lld">
        <source>menubar.in_h_m %lld %lld</source>
        <translation>en %1 h %2 min</translation>
    </message>
    <message id="menubar.in_m %lld">
        <source>menubar.in_m %lld</source>
        <translation>en %1 min</translation>
    </message>
    <message id="menubar.now">
        <source>menubar.now</source>
        <translation>ahora</translation>
    </message>
    <message id="onboarding.connect_google">
        <source>onboarding.connect_google</source>
        <translation>Conectar una cuenta de Google</translation>
    </message>
    <message id="onboarding.intro">
        <source>onboarding.intro</source>
        <translation>Kestrel muestra tu próxima reunión, te avisa a tiempo y te une con un clic.</translation>
    </message>
    <message id="onboarding.privacy_blurb">
        <source>onboarding.privacy_blurb</source>
        <translation>Kestrel solo lee tus calendarios. Lo que lee se queda en este ordenador.</translation>
    </message>
    <message id="platform.in_person">
        <source>platform.in_person</source>
        <translation>En persona</translation>
    </message>
    <message id="platform.unknown">
        <source>platform.unknown</source>
        <translation>Desconocida</translation>
    </message>
    <message id="popover.empty">
        <source>popover.empty</source>
        <translation>No hay próximas reuniones</translation>
    </message>
    <message id="popover.footer.last_refresh">
        <source>popover.footer.last_refresh</source>
        <translation>Última actualización</translation>
    </message>
    <message id="popover.footer.quit">
        <source>popover.footer.quit</source>
        <translation>Salir</translation>
    </message>
    <message id="popover.footer.refresh">
        <source>popover.footer.refresh</source>
        <translation>Actualizar</translation>
    </message>
    <message id="popover.footer.settings">
        <source>popover.footer.settings</source>
        <translation>Ajustes</translation>
    </message>
    <message id="popover.later_today">
        <source>popover.later_today</source>
        <translation>Hoy, más tarde</translation>
    </message>
    <message id="popover.minutes_left %n" numerus="yes">
        <source>popover.minutes_left %n</source>
        <translation>
            <numerusform>Queda %n minuto</numerusform>
            <numerusform>Quedan %n minutos</numerusform>
        </translation>
    </message>
    <message id="popover.next_up.header">
        <source>popover.next_up.header</source>
        <translation>A continuación</translation>
    </message>
    <message id="popover.ongoing.header">
        <source>popover.ongoing.header</source>
        <translation>En curso</translation>
    </message>
    <message id="relative.days_ago %n" numerus="yes">
        <source>relative.days_ago %n</source>
        <translation>
            <numerusform>ayer</numerusform>
            <numerusform>hace %n días</numerusform>
        </translation>
    </message>
    <message id="relative.hours_ago %n" numerus="yes">
        <source>relative.hours_ago %n</source>
        <translation>
            <numerusform>hace %n hora</numerusform>
            <numerusform>hace %n horas</numerusform>
        </translation>
    </message>
    <message id="relative.minutes_ago %n" numerus="yes">
        <source>relative.minutes_ago %n</source>
        <translation>
            <numerusform>hace %n minuto</numerusform>
            <numerusform>hace %n minutos</numerusform>
        </translation>
    </message>
    <message id="relative.now">
        <source>relative.now</source>
        <translation>ahora</translation>
    </message>
    <message id="relative.seconds_ago %n" numerus="yes">
        <source>relative.seconds_ago %n</source>
        <translation>
            <numerusform>hace %n segundo</numerusform>
            <numerusform>hace %n segundos</numerusform>
        </translation>
    </message>
    <message id="settings.calendar_color.help.custom">
        <source>settings.calendar_color.help.custom</source>
        <translation>Tu propio color. Haz clic para cambiarlo.</translation>
    </message>
    <message id="settings.calendar_color.help.default">
        <source>settings.calendar_color.help.default</source>
        <translation>El color de Google. Haz clic para elegir el tuyo.</translation>
    </message>
    <message id="settings.calendar_color.reset">
        <source>settings.calendar_color.reset</source>
        <translation>Usar el color de Google</translation>
    </message>
    <message id="settings.hotkey.modifier.command">
        <source>settings.hotkey.modifier.command</source>
        <translation>Súper</translation>
    </message>
    <message id="settings.hotkey.modifier.control">
        <source>settings.hotkey.modifier.control</source>
        <translation>Ctrl</translation>
    </message>
    <message id="settings.hotkey.modifier.option">
        <source>settings.hotkey.modifier.option</source>
        <translation>Alt</translation>
    </message>
    <message id="settings.hotkey.modifier.shift">
        <source>settings.hotkey.modifier.shift</source>
        <translation>Mayús</translation>
    </message>
    <message id="settings.hotkey.none">
        <source>settings.hotkey.none</source>
        <translation>Sin atajo</translation>
    </message>
    <message id="settings.hotkey.recording">
        <source>settings.hotkey.recording</source>
        <translation>Pulsa las teclas…</translation>
    </message>
    <message id="settings.join_shortcut.keys">
        <source>settings.join_shortcut.keys</source>
        <translation>Entrar en la próxima reunión</translation>
    </message>
    <message id="settings.meet_controls.focus">
        <source>settings.meet_controls.focus</source>
        <translation>Traer Meet al frente</translation>
    </message>
    <message id="settings.meet_controls.hand">
        <source>settings.meet_controls.hand</source>
        <translation>Levantar o bajar la mano</translation>
    </message>
    <message id="settings.meet_controls.leave">
        <source>settings.meet_controls.leave</source>
        <translation>Salir de la llamada</translation>
    </message>
    <message id="settings.meet_controls.mute">
        <source>settings.meet_controls.mute</source>
        <translation>Activar o desactivar el micrófono</translation>
    </message>
    <message id="settings.meet_controls.react_clap">
        <source>settings.meet_controls.react_clap</source>
        <translation>Reacción: aplausos</translation>
    </message>
    <message id="settings.meet_controls.react_heart">
        <source>settings.meet_controls.react_heart</source>
        <translation>Reacción: corazón</translation>
    </message>
    <message id="settings.meet_controls.react_laugh">
        <source>settings.meet_controls.react_laugh</source>
        <translation>Reacción: risa</translation>
    </message>
    <message id="settings.meet_controls.react_love">
        <source>settings.meet_controls.react_love</source>
        <translation>Reacción: ojos de corazón</translation>
    </message>
    <message id="settings.meet_controls.react_party">
        <source>settings.meet_controls.react_party</source>
        <translation>Reacción: fiesta</translation>
    </message>
    <message id="settings.meet_controls.react_sad">
        <source>settings.meet_controls.react_sad</source>
        <translation>Reacción: tristeza</translation>
    </message>
    <message id="settings.meet_controls.react_surprise">
        <source>settings.meet_controls.react_surprise</source>
        <translation>Reacción: sorpresa</translation>
    </message>
    <message id="settings.meet_controls.react_thinking">
        <source>settings.meet_controls.react_thinking</source>
        <translation>Reacción: cara pensativa</translation>
    </message>
    <message id="settings.meet_controls.react_thumbs">
        <source>settings.meet_controls.react_thumbs</source>
        <translation>Reacción: pulgar hacia arriba</translation>
    </message>
    <message id="settings.meet_controls.react_thumbsdown">
        <source>settings.meet_controls.react_thumbsdown</source>
        <translation>Reacción: pulgar hacia abajo</translation>
    </message>
    <message id="settings.meet_controls.share">
        <source>settings.meet_controls.share</source>
        <translation>Compartir la pantalla</translation>
    </message>
    <message id="settings.meet_controls.video">
        <source>settings.meet_controls.video</source>
        <translation>Activar o desactivar la cámara</translation>
    </message>
    <message id="tray.unavailable.gnome">
        <source>tray.unavailable.gnome</source>
        <translation>GNOME no muestra iconos de estado por sí solo. Instala el paquete gnome-shell-extension-appindicator, activa la extensión y vuelve a iniciar sesión. Mientras tanto, «kestrel show» abre la agenda.</translation>
    </message>
    <message id="tray.unavailable.other">
        <source>tray.unavailable.other</source>
        <translation>No hay bandeja para el icono de Kestrel. Inicia un panel que la tenga, como waybar con su módulo tray, o abre la agenda con «kestrel show».</translation>
    </message>
</context>
</TS>
