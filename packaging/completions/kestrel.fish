# fish completion for kestrel

set -l verbs agenda status refresh join dismiss show settings action accounts browser doctor meetings
set -l actions join meetMute meetVideo meetHand meetFocus meetShareScreen meetLeave meetReactThumbs meetReactHeart \
    meetReactParty meetReactClap meetReactLaugh meetReactSurprise meetReactSad meetReactThinking meetReactThumbsDown \
    meetReactLove
set -l no_verb "not __fish_seen_subcommand_from $verbs"

complete -c kestrel -f
complete -c kestrel -l data -x -a '(__fish_complete_directories)' -d 'Keep everything of this Kestrel apart'
complete -c kestrel -l google-base -x -d 'Talk to a test server instead of Google'
complete -c kestrel -l secret-store -x -a 'service file' -d 'Where tokens are kept'
complete -c kestrel -s h -l help -d 'Show help'
complete -c kestrel -s v -l version -d 'Show the version'

complete -c kestrel -n "$no_verb" -a agenda -d 'What is on now, next and later'
complete -c kestrel -n "$no_verb" -a status -d 'The next meeting, the accounts, the last refresh'
complete -c kestrel -n "$no_verb" -a refresh -d 'Read the calendars now'
complete -c kestrel -n "$no_verb" -a join -d 'Join the meeting that is on or about to start'
complete -c kestrel -n "$no_verb" -a dismiss -d 'Close all alert cards'
complete -c kestrel -n "$no_verb" -a show -d 'Open the agenda'
complete -c kestrel -n "$no_verb" -a settings -d 'Open the settings'
complete -c kestrel -n "$no_verb" -a action -d 'Do what a global shortcut does'
complete -c kestrel -n "$no_verb" -a accounts -d 'Sign in, list, sign out'
complete -c kestrel -n "$no_verb" -a browser -d 'The extension in your browsers'
complete -c kestrel -n "$no_verb" -a doctor -d 'Will the next alert fire, and be seen?'
complete -c kestrel -n "$no_verb" -a meetings -d 'What Kestrel makes of a saved calendar answer'

complete -c kestrel -n '__fish_seen_subcommand_from agenda status accounts browser doctor meetings' -l json -d 'Print JSON'
complete -c kestrel -n '__fish_seen_subcommand_from status' -l waybar -d 'Print what waybar reads'
complete -c kestrel -n '__fish_seen_subcommand_from status' -l follow -d 'A line at every change'
complete -c kestrel -n '__fish_seen_subcommand_from doctor' -l test-alert -d 'Show an alert for a few seconds'
complete -c kestrel -n "__fish_seen_subcommand_from action; and not __fish_seen_subcommand_from $actions" -a "$actions"
complete -c kestrel -n '__fish_seen_subcommand_from accounts; and not __fish_seen_subcommand_from add list sign-in remove' \
    -a 'add list sign-in remove'
complete -c kestrel -n '__fish_seen_subcommand_from accounts; and __fish_seen_subcommand_from sign-in remove' \
    -a '(kestrel accounts list 2>/dev/null | string match -ra "\S+@\S+")'
complete -c kestrel -n '__fish_seen_subcommand_from browser; and not __fish_seen_subcommand_from install status' \
    -a 'install status'
complete -c kestrel -n '__fish_seen_subcommand_from meetings' -F
complete -c kestrel -n '__fish_seen_subcommand_from meetings' -l now -x -d 'As of this time'
complete -c kestrel -n '__fish_seen_subcommand_from meetings' -l account -x -d 'Of this account'
complete -c kestrel -n '__fish_seen_subcommand_from meetings' -l calendar -x -d 'Of this calendar'
