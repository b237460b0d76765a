# Completion of zrfx for bash: commands, their options, files, and the names in the file of the command line.

# What a file has of a kind, those that begin as the word does. No password is asked for meanwhile.
_zrfx_names() {
    local file=$1 kind=$2 current=$3 name
    [[ -f $file ]] || return
    current=${current#[\"\']}
    current=${current//\\/}
    while IFS= read -r name; do
        [[ $name == "$current"* ]] && COMPREPLY+=("$(printf %q "$name")")
    done < <(ZRFX_PASSWORD=${ZRFX_PASSWORD:-none} "${COMP_WORDS[0]}" names "$file" "$kind" 2>/dev/null)
}

_zrfx() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    # A colon divides words, but not the name of a block.
    if [[ ${COMP_WORDS[COMP_CWORD]} == : ]]; then
        current="" previous=${COMP_WORDS[COMP_CWORD-2]}
        [[ $previous == --block ]] && previous=--block:${COMP_WORDS[COMP_CWORD-1]}
    elif [[ $previous == : && ${COMP_WORDS[COMP_CWORD-3]} == --block ]]; then
        previous=--block:${COMP_WORDS[COMP_CWORD-2]}
    fi
    local commands="info list check extract cat stats view diff copy merge import names properties help version"
    local command="" file="" word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ -z $command && " $commands " == *" $word "* ]]; then
            command=$word
        elif [[ -n $command && -z $file && $word != -* && -f $word ]]; then
            file=$word
        fi
    done
    COMPREPLY=()
    case $previous in
        --result | --results) _zrfx_names "$file" results "$current"; return ;;
        --state | --states)
            _zrfx_names "$file" states "$current"
            [[ -n $file && last == "$current"* ]] && COMPREPLY+=(last)
            return ;;
        --part | --parts) _zrfx_names "$file" parts "$current"; return ;;
        --set) _zrfx_names "$file" sets "$current"; return ;;
        --block) _zrfx_names "$file" blocks "$current"; return ;;
        --block:*)
            _zrfx_names "$file" blocks "${previous#--block:}:$current"
            COMPREPLY=("${COMPREPLY[@]#*:}")
            return ;;
        --component)
            mapfile -t COMPREPLY < <(compgen -W "x y z magnitude xx yy zz xy yz zx von_mises principal_values
                principal_1 principal_2 principal_3 maximum_shear" -- "$current")
            return ;;
        --level | --limit | --relative | --absolute | --floor | --ignore | --database | --name | --timeout | \
            --digits | --node | --element)
            return ;;
        -o | --output)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current"
                [[ $command == extract ]] || compgen -f -- "$current")
            return ;;
        --case | --size)
            return ;;
        --deck | --png | --password-file | --new-password-file | --other-password-file)
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
            view) options+=" --output --png --snapshot --size --case --database --result --state --limit --straight --open" ;;
            diff) options+=" --relative --absolute --floor --ignore --results-only --exact --json --other-password-file" ;;
            merge) options+=" --output" ;;
            copy) options+=" --results --states --parts --level --digits --text --binary --password --new-password-file --no-password" ;;
            properties) options+=" --markdown" ;;
            import) options+=" --deck --name --level --digits --text --password --follow --timeout" ;;
        esac
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        return
    fi
    if [[ $command == names && -n $file ]]; then
        mapfile -t COMPREPLY < <(compgen -W "results states parts sets blocks" -- "$current")
        return
    fi
    local pattern='!*.zrfx'
    [[ $command == import ]] && pattern=
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -d -- "$current"; compgen -f -X "$pattern" -- "$current")
}
complete -F _zrfx zrfx
