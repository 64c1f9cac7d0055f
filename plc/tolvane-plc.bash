# Bash completion for tolvane-plc.
_tolvane_plc()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local faults="loss= cut= flip= late= double= noise= mute="
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
        mapfile -t COMPREPLY < <(compgen -W "$faults" -- "$word")
        ;;
    --tcp | --turnaround | --seed) ;;
    *)
        mapfile -t COMPREPLY < <(compgen -W "--pty --link --tcp --any-address --image --save
            --still --baud --turnaround --faults --seed --verbose --help --version" -- "$word")
        ;;
    esac
}
complete -F _tolvane_plc tolvane-plc
