# bash completion for kestrel                                                               -*- shell-script -*-

_kestrel() {
    local cur prev words cword
    _init_completion || return

    local verbs='agenda status refresh join dismiss show settings action accounts browser doctor meetings'
    local actions='join meetMute meetVideo meetHand meetFocus meetShareScreen meetLeave meetReactThumbs
        meetReactHeart meetReactParty meetReactClap meetReactLaugh meetReactSurprise meetReactSad meetReactThinking
        meetReactThumbsDown meetReactLove'
    # the verb is the first word that is neither an option nor an option's value
    local verb='' argument='' count=0 i
    for ((i = 1; i < cword; i++)); do
        case ${words[i]} in
        --data | --google-base | --secret-store | --now | --account | --calendar) ((i++)) ;;
        -*) ;;
        *)
            if [[ -z $verb ]]; then
                verb=${words[i]}
            else
                argument=${argument:-${words[i]}}
                ((count++))
            fi
            ;;
        esac
    done

    case $prev in
    --data) _filedir -d; return ;;
    --secret-store) COMPREPLY=($(compgen -W 'service file' -- "$cur")); return ;;
    --google-base | --now | --account | --calendar) return ;;
    esac

    if [[ $cur == -* ]]; then
        local options='--data --google-base --secret-store --help --version'
        case $verb in
        agenda | accounts | browser) options+=' --json' ;;
        status) options+=' --json --waybar --follow' ;;
        doctor) options+=' --json --test-alert' ;;
        meetings) options+=' --json --now --account --calendar' ;;
        esac
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
        return
    fi

    case $verb/$count in
    /0) COMPREPLY=($(compgen -W "$verbs" -- "$cur")) ;;
    action/0) COMPREPLY=($(compgen -W "$actions" -- "$cur")) ;;
    accounts/0) COMPREPLY=($(compgen -W 'add list sign-in remove' -- "$cur")) ;;
    accounts/1)
        # "identifier  address …": addresses are what a person types
        [[ $argument != remove && $argument != sign-in ]] || COMPREPLY=($(compgen -W \
            "$("${words[0]}" accounts list 2>/dev/null | grep -o '[^ ]*@[^ ]*')" -- "$cur"))
        ;;
    browser/0) COMPREPLY=($(compgen -W 'install status' -- "$cur")) ;;
    meetings/0) _filedir json ;;
    esac
} && complete -F _kestrel kestrel
