<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <message id="+%lld">
        <source>+%lld</source>
        <translation>+%1</translation>
    </message>
    <message id="MIN LEFT">
        <source>MIN LEFT</source>
        <translation>MIN LEFT</translation>
    </message>
    <message id="about.copyright">
        <source>about.copyright</source>
        <translation>© 2026 The Kestrel developers</translation>
    </message>
    <message id="about.version %@">
        <source>about.version %@</source>
        <translation>Version %1</translation>
    </message>
    <message id="agenda.date_format">
        <source>agenda.date_format</source>
        <translation>dddd, MMM d</translation>
    </message>
    <message id="alert.dismiss">
        <source>alert.dismiss</source>
        <translation>Dismiss</translation>
    </message>
    <message id="alert.join_button.title %@">
        <source>alert.join_button.title %@</source>
        <translation>Join %1</translation>
    </message>
    <message id="attendee.unknown">
        <source>attendee.unknown</source>
        <translation>Unknown</translation>
    </message>
    <message id="brand.tagline">
        <source>brand.tagline</source>
        <translation>Never late for a meeting</translation>
    </message>
    <message id="color.blue">
        <source>color.blue</source>
        <translation>Blue</translation>
    </message>
    <message id="color.brown">
        <source>color.brown</source>
        <translation>Brown</translation>
    </message>
    <message id="color.green">
        <source>color.green</source>
        <translation>Green</translation>
    </message>
    <message id="color.grey">
        <source>color.grey</source>
        <translation>Grey</translation>
    </message>
    <message id="color.orange">
        <source>color.orange</source>
        <translation>Orange</translation>
    </message>
    <message id="color.pink">
        <source>color.pink</source>
        <translation>Pink</translation>
    </message>
    <message id="color.red">
        <source>color.red</source>
        <translation>Red</translation>
    </message>
    <message id="color.turquoise">
        <source>color.turquoise</source>
        <translation>Turquoise</translation>
    </message>
    <message id="color.violet">
        <source>color.violet</source>
        <translation>Violet</translation>
    </message>
    <message id="color.yellow">
        <source>color.yellow</source>
        <translation>Yellow</translation>
    </message>
    <message id="countdown.ago_x">
        <source>countdown.ago_x</source>
        <translation>%1 ago</translation>
    </message>
    <message id="countdown.in_x">
        <source>countdown.in_x</source>
        <translation>In %1</translation>
    </message>
    <message id="countdown.now">
        <source>countdown.now</source>
        <translation>Now</translation>
    </message>
    <message id="doctor.test_alert">
        <source>doctor.test_alert</source>
        <translation>Kestrel test alert</translation>
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
        <translation>Kestrel cannot read your sign-in</translation>
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
        <translation>As the desktop</translation>
    </message>
    <message id="meet_controls.chrome_flag.message">
        <source>meet_controls.chrome_flag.message</source>
        <translation>Your browser does not let Kestrel run scripts in pages yet. Open the browser’s Extensions page, choose Details on the Kestrel card, and turn on “Allow User Scripts”.

Afterwards, “kestrel browser status” in a terminal says whether everything is in place.</translation>
    </message>
    <message id="meet_controls.chrome_flag.ok">
        <source>meet_controls.chrome_flag.ok</source>
        <translation>OK</translation>
    </message>
    <message id="meet_controls.chrome_flag.title">
        <source>meet_controls.chrome_flag.title</source>
        <translation>Let Kestrel work in Meet</translation>
    </message>
    <message id="meet_hud.camera_off">
        <source>meet_hud.camera_off</source>
        <translation>Camera off</translation>
    </message>
    <message id="meet_hud.camera_on">
        <source>meet_hud.camera_on</source>
        <translation>Camera on</translation>
    </message>
    <message id="meet_hud.focused">
        <source>meet_hud.focused</source>
        <translation>Meet in front</translation>
    </message>
    <message id="meet_hud.hand_lowered">
        <source>meet_hud.hand_lowered</source>
        <translation>Hand lowered</translation>
    </message>
    <message id="meet_hud.hand_raised">
        <source>meet_hud.hand_raised</source>
        <translation>Hand raised</translation>
    </message>
    <message id="meet_hud.left">
        <source>meet_hud.left</source>
        <translation>Left the call</translation>
    </message>
    <message id="meet_hud.mic_off">
        <source>meet_hud.mic_off</source>
        <translation>Microphone off</translation>
    </message>
    <message id="meet_hud.mic_on">
        <source>meet_hud.mic_on</source>
        <translation>Microphone on</translation>
    </message>
    <message id="meet_hud.not_sharing">
        <source>meet_hud.not_sharing</source>
        <translation>Not sharing the screen</translation>
    </message>
    <message id="meet_hud.sharing">
        <source>meet_hud.sharing</source>
        <translation>Sharing the screen</translation>
    </message>
    <message id="meeting.invited %n" numerus="yes">
        <source>meeting.invited %n</source>
        <translation>
            <numerusform>%n person invited</numerusform>
            <numerusform>%n people invited</numerusform>
        </translation>
    </message>
    <message id="meeting.open_in_calendar">
        <source>meeting.open_in_calendar</source>
        <translation>Open in calendar</translation>
    </message>
    <message id="meeting.open_in_maps">
        <source>meeting.open_in_maps</source>
        <translation>Show on a map</translation>
    </message>
    <message id="meeting.untitled">
        <source>meeting.untitled</source>
        <translation>Untitled meeting</translation>
    </message>
    <message id="menu.join_next">
        <source>menu.join_next</source>
        <translation>Join next meeting</translation>
    </message>
    <message id="menu.open_agenda">
        <source>menu.open_agenda</source>
        <translation>Open agenda</translation>
    </message>
    <message id="menubar.in_h_m %lld %lld">
        <source>menubar.in_h_m %lld %lld</source>
        <translation>in %1 h %2 min</translation>
    </message>
    <message id="menubar.in_m %lld">
        <source>menubar.in_m %lld</source>
        <translation>in %1 min</translation>
    </message>
    <message id="menubar.now">
        <source>menubar.now</source>
        <translation>now</translation>
    </message>
    <message id="onboarding.connect_google">
        <source>onboarding.connect_google</source>
        <translation>Connect a Google account</translation>
    </message>
    <message id="onboarding.intro">
        <source>onboarding.intro</source>
        <translation>Kestrel shows your next meeting, reminds you in time and joins with one click.</translation>
    </message>
    <message id="onboarding.privacy_blurb">
        <source>onboarding.privacy_blurb</source>
        <translation>Kestrel only reads your calendars. What it reads stays on this computer.</translation>
    </message>
    <message id="platform.in_person">
        <source>platform.in_person</source>
        <translation>In person</translation>
    </message>
    <message id="platform.unknown">
        <source>platform.unknown</source>
        <translation>Unknown</translation>
    </message>
    <message id="popover.empty">
        <source>popover.empty</source>
        <translation>No upcoming meetings</translation>
    </message>
    <message id="popover.footer.last_refresh">
        <source>popover.footer.last_refresh</source>
        <translation>Last refreshed</translation>
    </message>
    <message id="popover.footer.quit">
        <source>popover.footer.quit</source>
        <translation>Quit</translation>
    </message>
    <message id="popover.footer.refresh">
        <source>popover.footer.refresh</source>
        <translation>Refresh</translation>
    </message>
    <message id="popover.footer.settings">
        <source>popover.footer.settings</source>
        <translation>Settings</translation>
    </message>
    <message id="popover.later_today">
        <source>popover.later_today</source>
        <translation>Later today</translation>
    </message>
    <message id="popover.minutes_left %n" numerus="yes">
        <source>popover.minutes_left %n</source>
        <translation>
            <numerusform>%n minute left</numerusform>
            <numerusform>%n minutes left</numerusform>
        </translation>
    </message>
    <message id="popover.next_up.header">
        <source>popover.next_up.header</source>
        <translation>Next up</translation>
    </message>
    <message id="popover.ongoing.header">
        <source>popover.ongoing.header</source>
        <translation>In progress</translation>
    </message>
    <message id="position.bottom_center">
        <source>position.bottom_center</source>
        <translation>Bottom centre</translation>
    </message>
    <message id="position.bottom_left">
        <source>position.bottom_left</source>
        <translation>Bottom left</translation>
    </message>
    <message id="position.bottom_right">
        <source>position.bottom_right</source>
        <translation>Bottom right</translation>
    </message>
    <message id="position.top_center">
        <source>position.top_center</source>
        <translation>Top centre</translation>
    </message>
    <message id="position.top_left">
        <source>position.top_left</source>
        <translation>Top left</translation>
    </message>
    <message id="position.top_right">
        <source>position.top_right</source>
        <translation>Top right</translation>
    </message>
    <message id="preferences.unsaved.message %@">
        <source>preferences.unsaved.message %@</source>
        <translation>%1 could not be written: the disk is full, or the file or its folder is write-protected. Changes are not kept. Make room or allow writing there, then make them again.</translation>
    </message>
    <message id="preferences.unsaved.title">
        <source>preferences.unsaved.title</source>
        <translation>Kestrel cannot save its settings</translation>
    </message>
    <message id="relative.days_ago %n" numerus="yes">
        <source>relative.days_ago %n</source>
        <translation>
            <numerusform>yesterday</numerusform>
            <numerusform>%n days ago</numerusform>
        </translation>
    </message>
    <message id="relative.hours_ago %n" numerus="yes">
        <source>relative.hours_ago %n</source>
        <translation>
            <numerusform>%n hour ago</numerusform>
            <numerusform>%n hours ago</numerusform>
        </translation>
    </message>
    <message id="relative.minutes_ago %n" numerus="yes">
        <source>relative.minutes_ago %n</source>
        <translation>
            <numerusform>%n minute ago</numerusform>
            <numerusform>%n minutes ago</numerusform>
        </translation>
    </message>
    <message id="relative.now">
        <source>relative.now</source>
        <translation>now</translation>
    </message>
    <message id="relative.seconds_ago %n" numerus="yes">
        <source>relative.seconds_ago %n</source>
        <translation>
            <numerusform>%n second ago</numerusform>
            <numerusform>%n seconds ago</numerusform>
        </translation>
    </message>
    <message id="selfInstaller.failed">
        <source>selfInstaller.failed</source>
        <translation>Couldn’t install Kestrel</translation>
    </message>
    <message id="selfInstaller.install">
        <source>selfInstaller.install</source>
        <translation>Install</translation>
    </message>
    <message id="selfInstaller.message">
        <source>selfInstaller.message</source>
        <translation>Kestrel runs better from your home folder — it stays put when this drive or image goes away, and it can start by itself when you log in. It is copied to ~/.local; no password is needed.</translation>
    </message>
    <message id="selfInstaller.notNow">
        <source>selfInstaller.notNow</source>
        <translation>Not Now</translation>
    </message>
    <message id="selfInstaller.ok">
        <source>selfInstaller.ok</source>
        <translation>OK</translation>
    </message>
    <message id="selfInstaller.timedOut">
        <source>selfInstaller.timedOut</source>
        <translation>The install took too long and was cancelled.</translation>
    </message>
    <message id="selfInstaller.title">
        <source>selfInstaller.title</source>
        <translation>Install Kestrel on this computer?</translation>
    </message>
    <message id="selfInstaller.unavailable">
        <source>selfInstaller.unavailable</source>
        <translation>The install helper isn't available.</translation>
    </message>
    <message id="settings.accounts.add_google">
        <source>settings.accounts.add_google</source>
        <translation>Add a Google account</translation>
    </message>
    <message id="settings.accounts.calendars">
        <source>settings.accounts.calendars</source>
        <translation>Calendars</translation>
    </message>
    <message id="settings.accounts.calendars.help">
        <source>settings.accounts.calendars.help</source>
        <translation>With none switched on, Kestrel reads the primary calendar.</translation>
    </message>
    <message id="settings.accounts.launch_mode">
        <source>settings.accounts.launch_mode</source>
        <translation>Open meetings in</translation>
    </message>
    <message id="settings.accounts.launch_mode.help">
        <source>settings.accounts.launch_mode.help</source>
        <translation>A window of its own is for Google Meet, and needs a Chromium-family browser.</translation>
    </message>
    <message id="settings.accounts.launch_mode.popup">
        <source>settings.accounts.launch_mode.popup</source>
        <translation>Window of its own</translation>
    </message>
    <message id="settings.accounts.launch_mode.tab">
        <source>settings.accounts.launch_mode.tab</source>
        <translation>Browser tab</translation>
    </message>
    <message id="settings.accounts.loading">
        <source>settings.accounts.loading</source>
        <translation>Reading the calendars</translation>
    </message>
    <message id="settings.accounts.microsoft_coming_soon">
        <source>settings.accounts.microsoft_coming_soon</source>
        <translation>Microsoft accounts are coming soon</translation>
    </message>
    <message id="settings.accounts.none_connected">
        <source>settings.accounts.none_connected</source>
        <translation>No account is connected yet.</translation>
    </message>
    <message id="settings.accounts.primary">
        <source>settings.accounts.primary</source>
        <translation>Primary</translation>
    </message>
    <message id="settings.accounts.sign_in_again">
        <source>settings.accounts.sign_in_again</source>
        <translation>Sign in again</translation>
    </message>
    <message id="settings.accounts.sign_out">
        <source>settings.accounts.sign_out</source>
        <translation>Sign out</translation>
    </message>
    <message id="settings.accounts.signed_out">
        <source>settings.accounts.signed_out</source>
        <translation>The sign-in has ended</translation>
    </message>
    <message id="settings.accounts.signed_out.help">
        <source>settings.accounts.signed_out.help</source>
        <translation>Google no longer accepts it. Until you sign in again, no meetings of this account are read; your choices are kept.</translation>
    </message>
    <message id="settings.accounts.signing_in">
        <source>settings.accounts.signing_in</source>
        <translation>Finish signing in in the browser…</translation>
    </message>
    <message id="settings.auto_dismiss">
        <source>settings.auto_dismiss</source>
        <translation>Close alerts by themselves after</translation>
    </message>
    <message id="settings.auto_dismiss.manual">
        <source>settings.auto_dismiss.manual</source>
        <translation>Until dismissed</translation>
    </message>
    <message id="settings.browser.connected %@">
        <source>settings.browser.connected %@</source>
        <translation>Connected with %1.</translation>
    </message>
    <message id="settings.browser.install">
        <source>settings.browser.install</source>
        <translation>Connect a browser</translation>
    </message>
    <message id="settings.browser.install_again">
        <source>settings.browser.install_again</source>
        <translation>Show the steps</translation>
    </message>
    <message id="settings.browser.none">
        <source>settings.browser.none</source>
        <translation>No browser of the Chromium family was found. Calls are driven in one of them.</translation>
    </message>
    <message id="settings.browser.not_installed %@">
        <source>settings.browser.not_installed %@</source>
        <translation>No browser is connected. Kestrel can drive calls in %1.</translation>
    </message>
    <message id="settings.browser.scripts_off %@">
        <source>settings.browser.scripts_off %@</source>
        <translation>Connected with %1, but “Allow User Scripts” is off. Switch it on in the extension's details.</translation>
    </message>
    <message id="settings.browser.steps %@">
        <source>settings.browser.steps %@</source>
        <translation>Two steps are left, in each profile that you join calls with:
1. Open chrome://extensions, turn on “Developer mode”, press “Load unpacked” and choose %1
2. Press “Details” under Kestrel, and turn on “Allow User Scripts”.</translation>
    </message>
    <message id="settings.browser.waiting %@">
        <source>settings.browser.waiting %@</source>
        <translation>Waiting for %1: open it, and finish the steps for the extension.</translation>
    </message>
    <message id="settings.calendar_color.help.custom">
        <source>settings.calendar_color.help.custom</source>
        <translation>Your own colour. Click to change it.</translation>
    </message>
    <message id="settings.calendar_color.help.default">
        <source>settings.calendar_color.help.default</source>
        <translation>The colour from Google. Click to choose your own.</translation>
    </message>
    <message id="settings.calendar_color.reset">
        <source>settings.calendar_color.reset</source>
        <translation>Use Google's colour</translation>
    </message>
    <message id="settings.click_outside_dismiss">
        <source>settings.click_outside_dismiss</source>
        <translation>A click elsewhere closes alerts</translation>
    </message>
    <message id="settings.hotkey.modifier.command">
        <source>settings.hotkey.modifier.command</source>
        <translation>Super</translation>
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
        <translation>Shift</translation>
    </message>
    <message id="settings.hotkey.none">
        <source>settings.hotkey.none</source>
        <translation>No shortcut</translation>
    </message>
    <message id="settings.hotkey.recording">
        <source>settings.hotkey.recording</source>
        <translation>Press the keys…</translation>
    </message>
    <message id="settings.hotkey.reset">
        <source>settings.hotkey.reset</source>
        <translation>Back to the default shortcut</translation>
    </message>
    <message id="settings.hotkey.same_keys %@">
        <source>settings.hotkey.same_keys %@</source>
        <translation>“%1” has the same keys, so only one of the two works. Please choose others.</translation>
    </message>
    <message id="settings.integer.range %lld %lld">
        <source>settings.integer.range %lld %lld</source>
        <translation>A whole number from %1 to %2, please. The old one is still in use.</translation>
    </message>
    <message id="settings.join_shortcut.help">
        <source>settings.join_shortcut.help</source>
        <translation>Works everywhere on the desktop, whichever window is in front.</translation>
    </message>
    <message id="settings.join_shortcut.keys">
        <source>settings.join_shortcut.keys</source>
        <translation>Join the next meeting</translation>
    </message>
    <message id="settings.join_shortcut.label">
        <source>settings.join_shortcut.label</source>
        <translation>Join with a shortcut</translation>
    </message>
    <message id="settings.language">
        <source>settings.language</source>
        <translation>Language of Kestrel</translation>
    </message>
    <message id="settings.language.help">
        <source>settings.language.help</source>
        <translation>Texts, dates and times change at once.</translation>
    </message>
    <message id="settings.launch_at_login">
        <source>settings.launch_at_login</source>
        <translation>Start Kestrel when I log in</translation>
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
        <translation>Alert me before a meeting</translation>
    </message>
    <message id="settings.meet_controls.focus">
        <source>settings.meet_controls.focus</source>
        <translation>Bring Meet to the front</translation>
    </message>
    <message id="settings.meet_controls.hand">
        <source>settings.meet_controls.hand</source>
        <translation>Raise or lower your hand</translation>
    </message>
    <message id="settings.meet_controls.help">
        <source>settings.meet_controls.help</source>
        <translation>Microphone, camera, hand and reactions of a Google Meet call, by the shortcuts below.</translation>
    </message>
    <message id="settings.meet_controls.label">
        <source>settings.meet_controls.label</source>
        <translation>Control calls from anywhere</translation>
    </message>
    <message id="settings.meet_controls.leave">
        <source>settings.meet_controls.leave</source>
        <translation>Leave the call</translation>
    </message>
    <message id="settings.meet_controls.mute">
        <source>settings.meet_controls.mute</source>
        <translation>Microphone on or off</translation>
    </message>
    <message id="settings.meet_controls.react_clap">
        <source>settings.meet_controls.react_clap</source>
        <translation>Reaction: applause</translation>
    </message>
    <message id="settings.meet_controls.react_heart">
        <source>settings.meet_controls.react_heart</source>
        <translation>Reaction: heart</translation>
    </message>
    <message id="settings.meet_controls.react_laugh">
        <source>settings.meet_controls.react_laugh</source>
        <translation>Reaction: laughter</translation>
    </message>
    <message id="settings.meet_controls.react_love">
        <source>settings.meet_controls.react_love</source>
        <translation>Reaction: heart eyes</translation>
    </message>
    <message id="settings.meet_controls.react_party">
        <source>settings.meet_controls.react_party</source>
        <translation>Reaction: party popper</translation>
    </message>
    <message id="settings.meet_controls.react_sad">
        <source>settings.meet_controls.react_sad</source>
        <translation>Reaction: sadness</translation>
    </message>
    <message id="settings.meet_controls.react_surprise">
        <source>settings.meet_controls.react_surprise</source>
        <translation>Reaction: surprise</translation>
    </message>
    <message id="settings.meet_controls.react_thinking">
        <source>settings.meet_controls.react_thinking</source>
        <translation>Reaction: thinking</translation>
    </message>
    <message id="settings.meet_controls.react_thumbs">
        <source>settings.meet_controls.react_thumbs</source>
        <translation>Reaction: thumbs up</translation>
    </message>
    <message id="settings.meet_controls.react_thumbsdown">
        <source>settings.meet_controls.react_thumbsdown</source>
        <translation>Reaction: thumbs down</translation>
    </message>
    <message id="settings.meet_controls.share">
        <source>settings.meet_controls.share</source>
        <translation>Share the screen</translation>
    </message>
    <message id="settings.meet_controls.video">
        <source>settings.meet_controls.video</source>
        <translation>Camera on or off</translation>
    </message>
    <message id="settings.meet_mic_indicator.help">
        <source>settings.meet_mic_indicator.help</source>
        <translation>During a call Kestrel's icon shows whether you can be heard.</translation>
    </message>
    <message id="settings.meet_mic_indicator.label">
        <source>settings.meet_mic_indicator.label</source>
        <translation>Microphone in the panel</translation>
    </message>
    <message id="settings.play_sound">
        <source>settings.play_sound</source>
        <translation>Play a sound with an alert</translation>
    </message>
    <message id="settings.popup.height">
        <source>settings.popup.height</source>
        <translation>Height</translation>
    </message>
    <message id="settings.popup.help">
        <source>settings.popup.help</source>
        <translation>In pixels, for meetings that open in a window of their own.</translation>
    </message>
    <message id="settings.popup.reset">
        <source>settings.popup.reset</source>
        <translation>Reset size</translation>
    </message>
    <message id="settings.popup.width">
        <source>settings.popup.width</source>
        <translation>Width</translation>
    </message>
    <message id="settings.position">
        <source>settings.position</source>
        <translation>Alerts appear at the</translation>
    </message>
    <message id="settings.preview.location">
        <source>settings.preview.location</source>
        <translation>Harbour office, 2nd floor</translation>
    </message>
    <message id="settings.preview.meeting">
        <source>settings.preview.meeting</source>
        <translation>Weekly planning</translation>
    </message>
    <message id="settings.preview.title">
        <source>settings.preview.title</source>
        <translation>This is how an alert looks</translation>
    </message>
    <message id="settings.reduce_transparency">
        <source>settings.reduce_transparency</source>
        <translation>Reduce transparency</translation>
    </message>
    <message id="settings.secondary_alert">
        <source>settings.secondary_alert</source>
        <translation>Alert me again one minute before</translation>
    </message>
    <message id="settings.section.appearance">
        <source>settings.section.appearance</source>
        <translation>Appearance</translation>
    </message>
    <message id="settings.section.behaviour">
        <source>settings.section.behaviour</source>
        <translation>Behaviour</translation>
    </message>
    <message id="settings.section.language">
        <source>settings.section.language</source>
        <translation>Language</translation>
    </message>
    <message id="settings.section.meetings.meet_controls">
        <source>settings.section.meetings.meet_controls</source>
        <translation>Google Meet controls</translation>
    </message>
    <message id="settings.section.meetings.popup">
        <source>settings.section.meetings.popup</source>
        <translation>Meeting window</translation>
    </message>
    <message id="settings.section.meetings.shortcut">
        <source>settings.section.meetings.shortcut</source>
        <translation>Join shortcut</translation>
    </message>
    <message id="settings.section.notifications">
        <source>settings.section.notifications</source>
        <translation>Alerts</translation>
    </message>
    <message id="settings.section.position">
        <source>settings.section.position</source>
        <translation>Position</translation>
    </message>
    <message id="settings.section.preview">
        <source>settings.section.preview</source>
        <translation>Preview</translation>
    </message>
    <message id="settings.section.sound">
        <source>settings.section.sound</source>
        <translation>Sound</translation>
    </message>
    <message id="settings.section.timing">
        <source>settings.section.timing</source>
        <translation>Timing</translation>
    </message>
    <message id="settings.sound.preview">
        <source>settings.sound.preview</source>
        <translation>Listen</translation>
    </message>
    <message id="settings.stack_alerts">
        <source>settings.stack_alerts</source>
        <translation>Stack alerts that come together</translation>
    </message>
    <message id="settings.streamdeck_bridge.help">
        <source>settings.streamdeck_bridge.help</source>
        <translation>Lets a Stream Deck on this computer show and control the call (port 18424).</translation>
    </message>
    <message id="settings.streamdeck_bridge.label">
        <source>settings.streamdeck_bridge.label</source>
        <translation>Stream Deck</translation>
    </message>
    <message id="settings.tab.about">
        <source>settings.tab.about</source>
        <translation>About</translation>
    </message>
    <message id="settings.tab.accounts">
        <source>settings.tab.accounts</source>
        <translation>Accounts</translation>
    </message>
    <message id="settings.tab.appearance">
        <source>settings.tab.appearance</source>
        <translation>Appearance</translation>
    </message>
    <message id="settings.tab.general">
        <source>settings.tab.general</source>
        <translation>General</translation>
    </message>
    <message id="settings.tab.meetings">
        <source>settings.tab.meetings</source>
        <translation>Meetings</translation>
    </message>
    <message id="settings.tab.notifications">
        <source>settings.tab.notifications</source>
        <translation>Notifications</translation>
    </message>
    <message id="settings.window.title">
        <source>settings.window.title</source>
        <translation>Kestrel Settings</translation>
    </message>
    <message id="signed_out.action">
        <source>signed_out.action</source>
        <translation>Sign in again</translation>
    </message>
    <message id="signed_out.message %@">
        <source>signed_out.message %@</source>
        <translation>%1 is not signed in</translation>
    </message>
    <message id="signed_out.notice">
        <source>signed_out.notice</source>
        <translation>Its meetings are missing until you sign in again.</translation>
    </message>
    <message id="tray.unavailable.gnome">
        <source>tray.unavailable.gnome</source>
        <translation>GNOME shows no status icons by itself. Install the package gnome-shell-extension-appindicator, turn the extension on and sign in again. Until then “kestrel show” opens the agenda.</translation>
    </message>
    <message id="tray.unavailable.other">
        <source>tray.unavailable.other</source>
        <translation>There is no tray for the Kestrel icon. Start a panel that has one, such as waybar with its tray module, or open the agenda with “kestrel show”.</translation>
    </message>
</context>
</TS>
