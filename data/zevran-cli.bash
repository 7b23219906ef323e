# bash completion for zevran-cli: its commands, each command's options, and file names.
# Commands and options are read from `zevran-cli --help`, so they follow the program.

_zevran_cli()
{
    local cur=${COMP_WORDS[COMP_CWORD]}
    local prev=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()

    case $prev in
        --home)
            mapfile -t COMPREPLY < <(compgen -d -- "$cur")
            return 0 ;;
        --codes)
            mapfile -t COMPREPLY < <(compgen -W "single handset both" -- "$cur")
            return 0 ;;
        --fill|--start|--end|--rows|--frame|--at|--depth|--width|--height|--min|--max|--gap|--min-bytes)
            return 0 ;;
    esac

    local help
    help=$("${COMP_WORDS[0]}" --help 2>/dev/null) || help=$(zevran-cli --help 2>/dev/null) || return 0

    # The command is the first word that is neither an option nor the folder of --home.
    local i=1 command=
    while ((i < COMP_CWORD)); do
        case ${COMP_WORDS[i]} in
            --home) ((i += 2)) ;;
            -*) ((i += 1)) ;;
            *) command=${COMP_WORDS[i]}; break ;;
        esac
    done

    if [[ -z $command ]]; then
        if [[ $cur == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "--home --help --version" -- "$cur")
        else
            local commands
            commands=$(sed -n 's/^  \([a-z0-9][-a-z0-9]*\)\( .*\)\{0,1\}$/\1/p' <<<"$help")
            mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$cur")
        fi
        return 0
    fi

    if [[ $cur == -* ]]; then
        local usage options
        usage=$(sed -n "s/^  $command \\(.*\\)\$/\\1/p" <<<"$help")
        # Every command also answers --help with its own usage and options.
        options=$( (tr ' []()|' '\n' <<<"$usage"; echo --help) | grep -- '^-' | sort -u)
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
        return 0
    fi
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    return 0
}
complete -o filenames -o bashdefault -F _zevran_cli zevran-cli
