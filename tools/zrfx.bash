# Completion of zrfx for bash: commands, their options, and files.
_zrfx() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    local commands="info list check extract cat diff copy import properties" command="" word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ " $commands " == *" $word "* ]]; then command=$word; break; fi
    done
    case $previous in
        --level | --limit | --relative | --absolute | --database | --block | --name | --timeout)
            return ;;
        -o | --output)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return ;;
        --password-file | --new-password-file)
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
            cat) options+=" --database --block --csv" ;;
            diff) options+=" --relative --absolute" ;;
            copy) options+=" --level --text --binary --password --new-password-file --no-password" ;;
            properties) options+=" --markdown" ;;
            import) options+=" --name --level --text --follow --timeout" ;;
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
