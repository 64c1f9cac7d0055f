# Bash completion for tolvane-host.
_tolvane_host()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} candidates at
    # Options may stand before the command.
    for ((at = 1; at < COMP_CWORD; ++at)); do
        if [[ ${COMP_WORDS[at]} =~ ^(check|demo|explain|info|plan|read|recipe|soak|watch|write)$ ]]; then
            command=${COMP_WORDS[at]}
            break
        fi
    done
    local line="--port --tcp --simulate --serial --pace --station --retries
        --block-limit --timeout --grace --listen --trace --local"
    if [[ $COMP_CWORD == 1 ]]; then
        candidates="check demo explain info plan read recipe soak watch write
            --help --version -v"
        mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$word")
        return
    fi
    case $previous in
    --driver | --port | --trace | --svg | --csv | --tags)
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    --serial)
        candidates="9600,8,NONE,1 19200,8,NONE,1 38400,8,NONE,1 57600,8,NONE,1 115200,8,NONE,1"
        mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$word")
        return
        ;;
    --pace)
        mapfile -t COMPREPLY < <(compgen -W "line none" -- "$word")
        return
        ;;
    --faults)
        compopt -o nospace
        candidates="loss= cut= flip= late= double= noise= mute="
        mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$word")
        return
        ;;
    --tcp | --station | --retries | --block-limit | --timeout | --grace | --listen | \
        --turnaround | --for | --every | --poll | --exchanges | --seed)
        return
        ;;
    esac
    case $command in
    info | check) candidates="--json" ;;
    explain) candidates="--wrong --json" ;;
    plan)
        candidates="--serial --turnaround --block-limit --station --suggest --svg --json"
        ;;
    read) candidates="$line --tags --json" ;;
    write) candidates="$line --verify --json" ;;
    watch)
        candidates="$line --tags --csv --json --every --poll --for --stats --never-set-aside"
        ;;
    recipe)
        candidates="$line --tags --json"
        if [[ $COMP_CWORD == 2 ]]; then
            candidates="pull push $candidates"
        fi
        ;;
    soak)
        candidates="--exchanges --faults --seed --overwrite --port --tcp --serial --pace --timeout
            --grace --listen --json"
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$candidates --driver --help" -- "$word")
    # Tag files, recipes and traces.
    if [[ $word != -* && $command =~ ^(check|explain|plan|read|recipe|watch)$ ]]; then
        compopt -o filenames
        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "$word")
    fi
}
complete -F _tolvane_host tolvane-host
