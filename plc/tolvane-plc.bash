# Bash completion for tolvane-plc.
_tolvane_plc()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    case $previous in
    --link | --image)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        ;;
    --baud)
        mapfile -t COMPREPLY < <(compgen -W "9600 19200 38400 57600 115200" -- "$word")
        ;;
    --faults)
        compopt -o nospace
        # Indented below the text on LIST, the only such lines of the help.
        mapfile -t COMPREPLY < <(compgen -W "$("$1" --help 2>/dev/null |
            sed -n '/^LIST /,/^Shares /s/^  \([a-z]*\) .*/\1=/p')" -- "$word")
        ;;
    --tcp | --turnaround | --seed) ;;
    *)
        mapfile -t COMPREPLY < <(compgen -W "--pty --link --tcp --any-address --image --save
            --still --baud --turnaround --faults --seed --verbose --help --version" -- "$word")
        ;;
    esac
}
complete -F _tolvane_plc tolvane-plc
