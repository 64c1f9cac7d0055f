# What the sessions share.
pids=
export SHELL=/bin/sh  # for script
trap 'kill $pids 2> /dev/null; wait' EXIT

# await FILE TEXT: waits, 10 s at most, until the file holds the text.
await() {
    for try in $(seq 500); do
        grep -qs -- "$2" "$1" && return
        sleep 0.02
    done
    echo "no \"$2\" in $1"
}

# controller OPTION...: starts a simulated controller, which says where it listens: at $place.
controller() {
    : > listening
    tolvane-plc "$@" > listening 2> counts &
    pids="$pids $!"
    await listening 'listening on'
    place=$(sed 's/.* //' listening)
}

# over LINE: the option that has a controller listen to such a line: port or tcp.
over() {
    [ "$1" = port ] || echo --tcp 0
}

# end SIGNAL: ends the controller that was started last.
end() {
    kill "-$1" $!
    wait $!
}

# folded: JSON in lines, without blanks and times.
folded() {
    sed 's/[-0-9T:.]*Z"/TIME"/' | tr -d ' \n' | fold -w 96
    echo
}

# refusals PROGRAM [COMMAND]: tries each line of the input as its options; a status of 2 goes unsaid.
refusals() {
    while read -r options; do
        "$@" $options
        status=$?
        [ $status = 2 ] || echo "[$status]" >&2
    done
}
