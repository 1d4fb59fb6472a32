# bash completion for qerefine

# Fills COMPREPLY with the option's values; fails for options whose values are names.
_qerefine_values()
{
    local values=
    case $1 in
    --format) values=$(_qerefine_formats "$2") ;;
    --roles)
        [[ $2 != import ]] || return 1
        values='plain shortcuts'
        ;;
    --from)
        [[ $2 == import ]] || return 1
        values='sqlite postgresql mysql sqlserver oracle'
        ;;
    --selector) values='keys first main-object ask' ;;
    --cross-product) values='allow warn deny' ;;
    --grouping) values='target container' ;;
    --command-type) values='none query validate describe' ;;
    *) return 1 ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$3")
}

# The formats that the help of the command tells.
_qerefine_formats()
{
    "${COMP_WORDS[0]}" "$1" --help 2>/dev/null | sed -n 's/^ *--format \([a-z|]*\).*/\1/p' | tr '|' ' '
}

_qerefine()
{
    local current=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]}
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W \
            "--help --version $("${COMP_WORDS[0]}" --help 2>/dev/null |
                sed -n '/^Subcommands:/,$s/^  \([a-z]\{1,\}\) .*/\1/p')" -- "$current")
        return
    fi
    if [[ $command == import ]] && ((COMP_CWORD == 2)); then
        mapfile -t COMPREPLY < <(compgen -W 'sqlite sql --help' -f -- "$current")
        return
    fi
    _qerefine_values "${COMP_WORDS[COMP_CWORD - 1]}" "$command" "$current" && return
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W \
            "$("${COMP_WORDS[0]}" "$command" --help 2>/dev/null | grep -o -E -- '^ +(-h,)?--[a-z-]+' |
                sed 's/.*--/--/')" -- "$current")
        return
    fi
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

complete -o filenames -F _qerefine qerefine
