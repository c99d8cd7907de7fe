# Completion for kvx2800t-store and kvx2800t-virtual in bash: what their own help names.

_kvx2800t_store_commands()
{
    "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,$s/^  \([a-z]*\) .*/\1/p'
}

_kvx2800t_store()
{
    local cur prev words cword
    _init_completion || return

    local program=$1 commands command="" word
    commands=$(_kvx2800t_store_commands "$program")
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

_kvx2800t_virtual()
{
    local cur prev words cword
    _init_completion || return
    COMPREPLY=($(compgen -W '$(_parse_help "$1")' -- "$cur"))
} && complete -F _kvx2800t_virtual kvx2800t-virtual
