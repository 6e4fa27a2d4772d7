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
    <message id="about.copyright">
        <source>about.copyright</source>
        <translation>© 2026 Los desarrolladores de Kestrel</translation>
    </message>
    <message id="about.version %@">
        <source>about.version %@</source>
        <translation>Versión %1</translation>
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
    <message id="color.blue">
        <source>color.blue</source>
        <translation>Azul</translation>
    </message>
    <message id="color.brown">
        <source>color.brown</source>
        <translation>Marrón</translation>
    </message>
    <message id="color.green">
        <source>color.green</source>
        <translation>Verde</translation>
    </message>
    <message id="color.grey">
        <source>color.grey</source>
        <translation>Gris</translation>
    </message>
    <message id="color.orange">
        <source>color.orange</source>
        <translation>Naranja</translation>
    </message>
    <message id="color.pink">
        <source>color.pink</source>
        <translation>Rosa</translation>
    </message>
    <message id="color.red">
        <source>color.red</source>
        <translation>Rojo</translation>
    </message>
    <message id="color.turquoise">
        <source>color.turquoise</source>
        <translation>Turquesa</translation>
    </message>
    <message id="color.violet">
        <source>color.violet</source>
        <translation>Violeta</translation>
    </message>
    <message id="color.yellow">
        <source>color.yellow</source>
        <translation>Amarillo</translation>
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
    <message id="doctor.test_alert">
        <source>doctor.test_alert</source>
        <translation>Aviso de prueba de Kestrel</translation>
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
    <message id="keyring.missing">
        <source>keyring.missing</source>
        <translation>Kestrel no puede leer tu inicio de sesión</translation>
    </message>
    <message id="language.english">
        <source>language.english</source>
        <translation>English</translation>
    </message>
    <message id="language.spanish">
        <source>language.spanish</source>
        <translation>Español</translation>
    </message>
    <message id="language.system">
        <source>language.system</source>
        <translation>El del escritorio</translation>
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
    <message id="meeting.invited %n" numerus="yes">
        <source>meeting.invited %n</source>
        <translation>
            <numerusform>%n persona invitada</numerusform>
            <numerusform>%n personas invitadas</numerusform>
        </translation>
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
    <message id="position.bottom_center">
        <source>position.bottom_center</source>
        <translation>Abajo en el centro</translation>
    </message>
    <message id="position.bottom_left">
        <source>position.bottom_left</source>
        <translation>Abajo a la izquierda</translation>
    </message>
    <message id="position.bottom_right">
        <source>position.bottom_right</source>
        <translation>Abajo a la derecha</translation>
    </message>
    <message id="position.top_center">
        <source>position.top_center</source>
        <translation>Arriba en el centro</translation>
    </message>
    <message id="position.top_left">
        <source>position.top_left</source>
        <translation>Arriba a la izquierda</translation>
    </message>
    <message id="position.top_right">
        <source>position.top_right</source>
        <translation>Arriba a la derecha</translation>
    </message>
    <message id="preferences.unsaved.message %@">
        <source>preferences.unsaved.message %@</source>
        <translation>No se ha podido escribir en %1: el disco está lleno, o el archivo o su carpeta están protegidos contra escritura. Los cambios no se conservan. Libera espacio o permite escribir ahí y vuelve a hacerlos.</translation>
    </message>
    <message id="preferences.unsaved.title">
        <source>preferences.unsaved.title</source>
        <translation>Kestrel no puede guardar sus ajustes</translation>
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
    <message id="selfInstaller.failed">
        <source>selfInstaller.failed</source>
        <translation>No se ha podido instalar Kestrel</translation>
    </message>
    <message id="selfInstaller.install">
        <source>selfInstaller.install</source>
        <translation>Instalar</translation>
    </message>
    <message id="selfInstaller.message">
        <source>selfInstaller.message</source>
        <translation>Kestrel funciona mejor desde tu carpeta personal: sigue ahí cuando esta unidad o imagen desaparece y puede iniciarse solo al abrir la sesión. Se copia en ~/.local, sin necesidad de contraseña.</translation>
    </message>
    <message id="selfInstaller.notNow">
        <source>selfInstaller.notNow</source>
        <translation>Ahora no</translation>
    </message>
    <message id="selfInstaller.ok">
        <source>selfInstaller.ok</source>
        <translation>Aceptar</translation>
    </message>
    <message id="selfInstaller.timedOut">
        <source>selfInstaller.timedOut</source>
        <translation>La instalación ha tardado demasiado y se ha cancelado.</translation>
    </message>
    <message id="selfInstaller.title">
        <source>selfInstaller.title</source>
        <translation>¿Instalar Kestrel en este equipo?</translation>
    </message>
    <message id="selfInstaller.unavailable">
        <source>selfInstaller.unavailable</source>
        <translation>El asistente de instalación no está disponible.</translation>
    </message>
    <message id="settings.accounts.add_google">
        <source>settings.accounts.add_google</source>
        <translation>Añadir una cuenta de Google</translation>
    </message>
    <message id="settings.accounts.calendars">
        <source>settings.accounts.calendars</source>
        <translation>Calendarios</translation>
    </message>
    <message id="settings.accounts.calendars.help">
        <source>settings.accounts.calendars.help</source>
        <translation>Si no activas ninguno, Kestrel lee el calendario principal.</translation>
    </message>
    <message id="settings.accounts.launch_mode">
        <source>settings.accounts.launch_mode</source>
        <translation>Abrir las reuniones en</translation>
    </message>
    <message id="settings.accounts.launch_mode.help">
        <source>settings.accounts.launch_mode.help</source>
        <translation>La ventana propia es para Google Meet y necesita un navegador de la familia de Chromium.</translation>
    </message>
    <message id="settings.accounts.launch_mode.popup">
        <source>settings.accounts.launch_mode.popup</source>
        <translation>Ventana propia</translation>
    </message>
    <message id="settings.accounts.launch_mode.tab">
        <source>settings.accounts.launch_mode.tab</source>
        <translation>Una pestaña</translation>
    </message>
    <message id="settings.accounts.loading">
        <source>settings.accounts.loading</source>
        <translation>Leyendo los calendarios</translation>
    </message>
    <message id="settings.accounts.microsoft_coming_soon">
        <source>settings.accounts.microsoft_coming_soon</source>
        <translation>Las cuentas de Microsoft llegarán pronto</translation>
    </message>
    <message id="settings.accounts.none_connected">
        <source>settings.accounts.none_connected</source>
        <translation>Todavía no hay ninguna cuenta conectada.</translation>
    </message>
    <message id="settings.accounts.primary">
        <source>settings.accounts.primary</source>
        <translation>Principal</translation>
    </message>
    <message id="settings.accounts.sign_in_again">
        <source>settings.accounts.sign_in_again</source>
        <translation>Volver a iniciar sesión</translation>
    </message>
    <message id="settings.accounts.sign_out">
        <source>settings.accounts.sign_out</source>
        <translation>Cerrar sesión</translation>
    </message>
    <message id="settings.accounts.signed_out">
        <source>settings.accounts.signed_out</source>
        <translation>La sesión ha terminado</translation>
    </message>
    <message id="settings.accounts.signed_out.help">
        <source>settings.accounts.signed_out.help</source>
        <translation>Google ya no la acepta. Hasta que vuelvas a iniciar sesión no se leen las reuniones de esta cuenta; tus elecciones se conservan.</translation>
    </message>
    <message id="settings.accounts.signing_in">
        <source>settings.accounts.signing_in</source>
        <translation>Termina de iniciar sesión en el navegador…</translation>
    </message>
    <message id="settings.auto_dismiss">
        <source>settings.auto_dismiss</source>
        <translation>Cerrar los avisos solos al cabo de</translation>
    </message>
    <message id="settings.auto_dismiss.manual">
        <source>settings.auto_dismiss.manual</source>
        <translation>Hasta descartarlos</translation>
    </message>
    <message id="settings.browser.connected %@">
        <source>settings.browser.connected %@</source>
        <translation>Conectado con %1.</translation>
    </message>
    <message id="settings.browser.install">
        <source>settings.browser.install</source>
        <translation>Conectar un navegador</translation>
    </message>
    <message id="settings.browser.install_again">
        <source>settings.browser.install_again</source>
        <translation>Ver los pasos</translation>
    </message>
    <message id="settings.browser.none">
        <source>settings.browser.none</source>
        <translation>No se ha encontrado ningún navegador de la familia de Chromium. Las llamadas se controlan en uno de ellos.</translation>
    </message>
    <message id="settings.browser.not_installed %@">
        <source>settings.browser.not_installed %@</source>
        <translation>Ningún navegador está conectado. Kestrel puede manejar las llamadas en %1.</translation>
    </message>
    <message id="settings.browser.scripts_off %@">
        <source>settings.browser.scripts_off %@</source>
        <translation>Conectado con %1, pero «Permitir secuencias de comandos de usuario» está desactivado. Actívalo en los detalles de la extensión.</translation>
    </message>
    <message id="settings.browser.steps %@">
        <source>settings.browser.steps %@</source>
        <translation>Quedan dos pasos, en cada perfil con el que entras en las llamadas:
1. Abre chrome://extensions, activa «Modo de desarrollador», pulsa «Cargar descomprimida» y elige %1
2. Pulsa «Detalles» en Kestrel y activa «Permitir secuencias de comandos de usuario».</translation>
    </message>
    <message id="settings.browser.waiting %@">
        <source>settings.browser.waiting %@</source>
        <translation>Esperando a %1: ábrelo y termina los pasos de la extensión.</translation>
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
    <message id="settings.click_outside_dismiss">
        <source>settings.click_outside_dismiss</source>
        <translation>Un clic fuera cierra los avisos</translation>
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
    <message id="settings.hotkey.reset">
        <source>settings.hotkey.reset</source>
        <translation>Volver al atajo predeterminado</translation>
    </message>
    <message id="settings.hotkey.same_keys %@">
        <source>settings.hotkey.same_keys %@</source>
        <translation>«%1» tiene las mismas teclas, así que solo funciona uno de los dos. Elige otras.</translation>
    </message>
    <message id="settings.integer.range %lld %lld">
        <source>settings.integer.range %lld %lld</source>
        <translation>Escribe un número entero del %1 al %2. Sigue valiendo el anterior.</translation>
    </message>
    <message id="settings.join_shortcut.help">
        <source>settings.join_shortcut.help</source>
        <translation>Funciona en todo el escritorio, sea cual sea la ventana activa.</translation>
    </message>
    <message id="settings.join_shortcut.keys">
        <source>settings.join_shortcut.keys</source>
        <translation>Entrar en la próxima reunión</translation>
    </message>
    <message id="settings.join_shortcut.label">
        <source>settings.join_shortcut.label</source>
        <translation>Entrar con un atajo</translation>
    </message>
    <message id="settings.language">
        <source>settings.language</source>
        <translation>Idioma de Kestrel</translation>
    </message>
    <message id="settings.language.help">
        <source>settings.language.help</source>
        <translation>Los textos, las fechas y las horas cambian al momento.</translation>
    </message>
    <message id="settings.launch_at_login">
        <source>settings.launch_at_login</source>
        <translation>Iniciar Kestrel al entrar en la sesión</translation>
    </message>
    <message id="settings.lead.10m">
        <source>settings.lead.10m</source>
        <translation>10 min</translation>
    </message>
    <message id="settings.lead.15m">
        <source>settings.lead.15m</source>
        <translation>15 min</translation>
    </message>
    <message id="settings.lead.1m">
        <source>settings.lead.1m</source>
        <translation>1 min</translation>
    </message>
    <message id="settings.lead.5m">
        <source>settings.lead.5m</source>
        <translation>5 min</translation>
    </message>
    <message id="settings.lead_time">
        <source>settings.lead_time</source>
        <translation>Avisarme antes de una reunión</translation>
    </message>
    <message id="settings.meet_controls.focus">
        <source>settings.meet_controls.focus</source>
        <translation>Traer Meet al frente</translation>
    </message>
    <message id="settings.meet_controls.hand">
        <source>settings.meet_controls.hand</source>
        <translation>Levantar o bajar la mano</translation>
    </message>
    <message id="settings.meet_controls.help">
        <source>settings.meet_controls.help</source>
        <translation>Micrófono, cámara, mano y reacciones de una llamada de Google Meet, con los atajos de abajo.</translation>
    </message>
    <message id="settings.meet_controls.label">
        <source>settings.meet_controls.label</source>
        <translation>Controlar las llamadas desde cualquier parte</translation>
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
    <message id="settings.meet_mic_indicator.help">
        <source>settings.meet_mic_indicator.help</source>
        <translation>Durante una llamada, el icono de Kestrel muestra si se te oye.</translation>
    </message>
    <message id="settings.meet_mic_indicator.label">
        <source>settings.meet_mic_indicator.label</source>
        <translation>Micrófono en el panel</translation>
    </message>
    <message id="settings.play_sound">
        <source>settings.play_sound</source>
        <translation>Reproducir un sonido con cada aviso</translation>
    </message>
    <message id="settings.popup.height">
        <source>settings.popup.height</source>
        <translation>Altura</translation>
    </message>
    <message id="settings.popup.help">
        <source>settings.popup.help</source>
        <translation>En píxeles, para las reuniones que se abren en su propia ventana.</translation>
    </message>
    <message id="settings.popup.reset">
        <source>settings.popup.reset</source>
        <translation>Restablecer el tamaño</translation>
    </message>
    <message id="settings.popup.width">
        <source>settings.popup.width</source>
        <translation>Anchura</translation>
    </message>
    <message id="settings.position">
        <source>settings.position</source>
        <translation>Los avisos aparecen</translation>
    </message>
    <message id="settings.preview.location">
        <source>settings.preview.location</source>
        <translation>Oficina del puerto, 2.ª planta</translation>
    </message>
    <message id="settings.preview.meeting">
        <source>settings.preview.meeting</source>
        <translation>Planificación semanal</translation>
    </message>
    <message id="settings.preview.title">
        <source>settings.preview.title</source>
        <translation>Así se ve un aviso</translation>
    </message>
    <message id="settings.reduce_transparency">
        <source>settings.reduce_transparency</source>
        <translation>Reducir la transparencia</translation>
    </message>
    <message id="settings.secondary_alert">
        <source>settings.secondary_alert</source>
        <translation>Avisarme otra vez un minuto antes</translation>
    </message>
    <message id="settings.section.appearance">
        <source>settings.section.appearance</source>
        <translation>Apariencia</translation>
    </message>
    <message id="settings.section.behaviour">
        <source>settings.section.behaviour</source>
        <translation>Comportamiento</translation>
    </message>
    <message id="settings.section.language">
        <source>settings.section.language</source>
        <translation>Idioma</translation>
    </message>
    <message id="settings.section.meetings.meet_controls">
        <source>settings.section.meetings.meet_controls</source>
        <translation>Controles de Google Meet</translation>
    </message>
    <message id="settings.section.meetings.popup">
        <source>settings.section.meetings.popup</source>
        <translation>Ventana de la reunión</translation>
    </message>
    <message id="settings.section.meetings.shortcut">
        <source>settings.section.meetings.shortcut</source>
        <translation>Atajo para entrar</translation>
    </message>
    <message id="settings.section.notifications">
        <source>settings.section.notifications</source>
        <translation>Avisos</translation>
    </message>
    <message id="settings.section.position">
        <source>settings.section.position</source>
        <translation>Posición</translation>
    </message>
    <message id="settings.section.preview">
        <source>settings.section.preview</source>
        <translation>Vista previa</translation>
    </message>
    <message id="settings.section.sound">
        <source>settings.section.sound</source>
        <translation>Sonido</translation>
    </message>
    <message id="settings.section.timing">
        <source>settings.section.timing</source>
        <translation>Tiempos</translation>
    </message>
    <message id="settings.sound.preview">
        <source>settings.sound.preview</source>
        <translation>Escuchar</translation>
    </message>
    <message id="settings.stack_alerts">
        <source>settings.stack_alerts</source>
        <translation>Apilar los avisos que llegan a la vez</translation>
    </message>
    <message id="settings.streamdeck_bridge.help">
        <source>settings.streamdeck_bridge.help</source>
        <translation>Permite que un Stream Deck de este equipo muestre y controle la llamada (puerto 18424).</translation>
    </message>
    <message id="settings.streamdeck_bridge.label">
        <source>settings.streamdeck_bridge.label</source>
        <translation>Stream Deck</translation>
    </message>
    <message id="settings.tab.about">
        <source>settings.tab.about</source>
        <translation>Acerca de</translation>
    </message>
    <message id="settings.tab.accounts">
        <source>settings.tab.accounts</source>
        <translation>Cuentas</translation>
    </message>
    <message id="settings.tab.appearance">
        <source>settings.tab.appearance</source>
        <translation>Apariencia</translation>
    </message>
    <message id="settings.tab.general">
        <source>settings.tab.general</source>
        <translation>General</translation>
    </message>
    <message id="settings.tab.meetings">
        <source>settings.tab.meetings</source>
        <translation>Reuniones</translation>
    </message>
    <message id="settings.tab.notifications">
        <source>settings.tab.notifications</source>
        <translation>Avisos</translation>
    </message>
    <message id="settings.window.title">
        <source>settings.window.title</source>
        <translation>Ajustes de Kestrel</translation>
    </message>
    <message id="signed_out.action">
        <source>signed_out.action</source>
        <translation>Volver a iniciar sesión</translation>
    </message>
    <message id="signed_out.message %@">
        <source>signed_out.message %@</source>
        <translation>%1 no tiene la sesión iniciada</translation>
    </message>
    <message id="signed_out.notice">
        <source>signed_out.notice</source>
        <translation>Sus reuniones faltarán hasta que vuelvas a iniciar sesión.</translation>
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
