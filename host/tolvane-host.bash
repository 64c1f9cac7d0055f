# Bash completion for tolvane-host: what a command takes is read from its own --help.
_tolvane_host()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands command at help value candidates
    commands=$("$1" --help | sed -n 's/^  \([a-z]*\)  .*/\1/p')
    # Options may stand before the command.
    for ((at = 1; at < COMP_CWORD; ++at)); do
        if [[ " ${commands//$'\n'/ } " == *" ${COMP_WORDS[at]} "* ]]; then
            command=${COMP_WORDS[at]}
            break
        fi
    done
    help=$("$1" "${command:-watch}" --help)
    value=$(sed -n "s/^  ${previous} <\([^>]*\)>.*/\1/p" <<< "$help")
    case $previous:$value in
    --serial:*)
        candidates="9600,8,NONE,1 19200,8,NONE,1 38400,8,NONE,1 57600,8,NONE,1 115200,8,NONE,1"
        ;;
    --faults:*)
        compopt -o nospace
        candidates="loss= cut= flip= late= double= noise= mute="
        ;;
    *:path | *:file | *:device)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    *:*\|*) candidates=${value//|/ } ;;
    *:?*) return ;;
    *)
        candidates=$(sed -n 's/^  \(-., \)\?\(--[a-z-]*\).*/\2/p' <<< "$help")
        if [[ -z $command ]]; then
            candidates+=" $commands --version"
        elif [[ $command == recipe && $previous == recipe ]]; then
            candidates+=" pull push"
        fi
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$word")
    # Tag files, recipes and traces.
    if [[ -z $value && $word != -* && $command =~ ^(check|explain|plan|read|recipe|watch)$ ]]; then
        compopt -o filenames
        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "$word")
    fi
}
complete -F _tolvane_host tolvane-host
