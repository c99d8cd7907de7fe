# Completion for kvx2800t, kvx2800t-store and kvx2800t-virtual in bash: what their own help names.

# The commands of a program, or of a group of its commands.
_kvx2800t_commands()
{
    "$@" --help 2>/dev/null | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p'
}

_kvx2800t_store()
{
    local cur prev words cword
    _init_completion || return

    local program=$1 commands command="" word
    commands=$(_kvx2800t_commands "$program")
    for word in "${words[@]:1:cword-1}"; do
        if [[ " ${commands//$'\n'/ } " == *" $word "* ]]; then
            command=$word
            break
        fi
    done

    case $prev in
        --store)
            _filedir
            ;;
        --cache | --interchange-check | --query-instr-status | --range-check | --record-coercions | --simulate)
            COMPREPLY=($(compgen -W "0 1" -- "$cur"))
            ;;
        *)
            if [[ $cur == -* ]]; then
                COMPREPLY=($(compgen -W '$(_parse_help "$program" "$command --help")' -- "$cur"))
            elif [[ -z $command ]]; then
                COMPREPLY=($(compgen -W "$commands" -- "$cur"))
            fi
            ;;
    esac
} && complete -F _kvx2800t_store kvx2800t-store

_kvx2800t()
{
    local cur prev words cword
    _init_completion || return

    local program=$1 commands word path=()
    commands=$(_kvx2800t_commands "$program")
    for word in "${words[@]:1:cword-1}"; do
        if [[ " ${commands//$'\n'/ } " == *" $word "* ]]; then
            path+=("$word")
            commands=$(_kvx2800t_commands "$program" "${path[@]}")
        fi
    done

    if [[ ${path[0]} == log && $prev =~ ^--(csv|json)$ ]]; then
        _filedir
    elif [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W '$(_parse_help "$program" "${path[*]} --help")' -- "$cur"))
    elif [[ -n $commands ]]; then
        COMPREPLY=($(compgen -W "$commands" -- "$cur"))
    elif [[ ${path[1]} == load && $cword -gt 3 ]]; then
        _filedir
    elif [[ ${path[0]} == set && $cword -gt 2 ]]; then
        COMPREPLY=($(compgen -W "on off" -- "$cur"))
    elif [[ ! ${path[0]} =~ ^(find|identify|doctor|scpi|panel)$ ]]; then
        COMPREPLY=($(compgen -W "CH1 CH2 CH3 CH4 CH5 CH6" -- "$cur"))
    fi
} && complete -F _kvx2800t kvx2800t

_kvx2800t_virtual()
{
    local cur prev words cword
    _init_completion || return
    COMPREPLY=($(compgen -W '$(_parse_help "$1")' -- "$cur"))
} && complete -F _kvx2800t_virtual kvx2800t-virtual
