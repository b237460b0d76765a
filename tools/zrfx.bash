# Completion of zrfx for bash: commands, their options, and files.
_zrfx() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    local commands="info list check extract cat stats diff copy merge import properties help version" command="" word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ " $commands " == *" $word "* ]]; then command=$word; break; fi
    done
    case $previous in
        --level | --limit | --relative | --absolute | --floor | --ignore | --database | --block | --name | --timeout | --digits | \
            --result | --results | --state | --states | --parts | --component | --part | --set | --node | --element)
            return ;;
        -o | --output)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return ;;
        --deck | --password-file | --new-password-file | --other-password-file)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return ;;
    esac
    if [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands --help --version" -- "$current")
        return
    fi
    if [[ $current == -* ]]; then
        local options="--help --verbose --password-file"
        case $command in
            info) options+=" --json --quick" ;;
            list) options+=" --json" ;;
            check) options+=" --json --limit" ;;
            extract) options+=" --output" ;;
            cat) options+=" --database --block --result --state --component --part --set --node --element --coordinates --history --csv" ;;
            stats) options+=" --result --state --part --set --json --csv" ;;
            diff) options+=" --relative --absolute --floor --ignore --results-only --exact --json --other-password-file" ;;
            merge) options+=" --output" ;;
            copy) options+=" --results --states --parts --level --digits --text --binary --password --new-password-file --no-password" ;;
            properties) options+=" --markdown" ;;
            import) options+=" --deck --name --level --digits --text --password --follow --timeout" ;;
        esac
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        return
    fi
    local pattern='!*.zrfx'
    [[ $command == import ]] && pattern=
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -d -- "$current"; compgen -f -X "$pattern" -- "$current")
}
complete -F _zrfx zrfx
