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
    <message id="settings.join_shortcut.keys">
        <source>settings.join_shortcut.keys</source>
        <translation>Join the next meeting</translation>
    </message>
    <message id="settings.meet_controls.focus">
        <source>settings.meet_controls.focus</source>
        <translation>Bring Meet to the front</translation>
    </message>
    <message id="settings.meet_controls.hand">
        <source>settings.meet_controls.hand</source>
        <translation>Raise or lower your hand</translation>
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
