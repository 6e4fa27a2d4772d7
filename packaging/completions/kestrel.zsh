#compdef kestrel

_kestrel_accounts() {
    local -a addresses
    addresses=(${(f)"$(_call_program accounts $words[1] accounts list 2>/dev/null | grep -o '[^ ]*@[^ ]*')"})
    _describe account addresses
}

_kestrel() {
    local curcontext=$curcontext state line
    local -a state_descr verbs common actions
    typeset -A opt_args
    verbs=(
        'agenda:what is on now, next and later'
        'status:the next meeting, the accounts, the last refresh'
        'refresh:read the calendars now'
        'join:join the meeting that is on or about to start'
        'dismiss:close all alert cards'
        'show:open the agenda'
        'settings:open the settings'
        'action:do what a global shortcut does'
        'accounts:sign in, list, sign out'
        'browser:the extension in your browsers'
        'doctor:will the next alert fire, and be seen?'
        'meetings:what Kestrel makes of a saved calendar answer'
    )
    actions=(
        join meetMute meetVideo meetHand meetFocus meetShareScreen meetLeave meetReactThumbs meetReactHeart
        meetReactParty meetReactClap meetReactLaugh meetReactSurprise meetReactSad meetReactThinking
        meetReactThumbsDown meetReactLove
    )
    common=(
        '--data[keep everything of this Kestrel apart]:folder:_files -/'
        '--google-base[talk to a test server instead of Google]:address:'
        '--secret-store[where tokens are kept]:store:(service file)'
        '(-h --help)'{-h,--help}'[show help]'
        '(-v --version)'{-v,--version}'[show the version]'
    )
    _arguments -C $common '1:verb:->verb' '*::argument:->argument' && return 0
    case $state in
    verb) _describe verb verbs ;;
    argument)
        case $line[1] in
        agenda) _arguments $common '--json[print JSON]' ;;
        status) _arguments $common '(--waybar)--json[print JSON]' '(--json)--waybar[print what waybar reads]' \
            '--follow[a line at every change]' ;;
        doctor) _arguments $common '--json[print JSON]' '--test-alert[show an alert for a few seconds]' ;;
        action) _arguments $common "1:action:($actions)" ;;
        accounts)
            if (( CURRENT > 2 )) && [[ $words[2] == (remove|sign-in) ]]; then
                _arguments $common '1:command:(add list sign-in remove)' '2:account:_kestrel_accounts'
            else
                _arguments $common '--json[print JSON]' '1:command:(add list sign-in remove)'
            fi
            ;;
        browser) _arguments $common '--json[print JSON]' '1:command:(install status)' ;;
        meetings) _arguments $common '--json[print JSON]' '--now[as of this time]:instant:' '--account[of this account]:identifier:' \
            '--calendar[of this calendar]:identifier:' '1:file:_files -g "*.json"' ;;
        *) _arguments $common ;;
        esac
        ;;
    esac
}

_kestrel "$@"
