Lines that lose replies: some, or all.

  $ . "$TESTDIR/functions.sh"
  $ controller --still --link lossy --faults loss=50% --seed 3
  $ controller --still --link lossier --faults loss=50% --seed 15
  $ controller --still --baud 4000000 --link mute --faults loss=100% --verbose
  $ controller --still --link gap --faults loss=50% --seed 7
  $ quick="--timeout 60 --retries 2"
  $ printf 'address,values\nD_W:1000:float,2.25\nM_bit:40.6x4,1,0,1,1\nD_W:1300x3:int16,-1,2,3\n' > recipe.csv
  $ tolvane-host read $quick --port mute D_W:100 D_W:900
  tolvane-host: D_W:100: no reply to 2 requests of 60 ms each
  tolvane-host: D_W:900: no reply to 2 requests of 60 ms each
  [1]
  $ tolvane-host read --timeout 1000 --retries 1 --port gap D_W:1 D_W:100
  D_W:1    0
  tolvane-host: D_W:100: no reply within 1000 ms
  [1]
  $ tolvane-host write --timeout 1000 --retries 2 --port lossy D_W:700x6=1,2,3,4,5,6 --block-limit 4
  D_W:700x6 = 1, 2, 3, 4, 5, 6  FAILED: D_W:700x4 acknowledged; D_W:704x2: no reply to 2 requests of 1000 ms each; not acknowledged; the controller may hold it
  [1]
  $ tolvane-host write $quick --port mute D_W:700=1 --json | folded
  tolvane-host: D_W:700: no reply to 2 requests of 60 ms each; not acknowledged; the controller may hold it
  [{"acknowledged":false,"address":"D_W:700","blocks":[{"acknowledged":false,"address":"D_W:700","
  count":1,"number":700,"reason":"noreplyto2requestsof60mseach;notacknowledged;thecontrollermayhol
  dit","station":1}],"number":700,"reason":"noreplyto2requestsof60mseach;notacknowledged;thecontro
  llermayholdit","station":1,"tag":"D_W:700","values":[1]}]
  $ tolvane-host watch $quick --port mute a=D_W:100 b=D_W:100 --for 2 --json --stats > log 2> err
  [1]
  $ sed 's/[-0-9T:.]*Z/TIME/;s/errors":[0-9]*/errors":N/;s/:[0-9]*},"good.*//' log; tail -1 err
  {"address":"D_W:100","number":100,"quality":"bad","reason":"no reply to 2 requests of 60 ms each","station":1,"tag":"a","time":"TIME","value":null}
  {"address":"D_W:100","number":100,"quality":"bad","reason":"no reply to 2 requests of 60 ms each","station":1,"tag":"b","time":"TIME","value":null}
  {"statistics":{"blocks":[{"address":"D_W:100","count":1,"errors":N,"failures":{"no-reply"
  tolvane-host: no good value at the end; no reply to 2 requests of 60 ms each: a, b
  $ tolvane-host watch $quick --port mute a=D_W:100 --for 2 > log 2> err
  [1]
  $ sed 's/^[^ ]*Z/TIME/' log
  TIME  a  D_W:100  -  bad: no reply to 2 requests of 60 ms each
  $ tolvane-host recipe push recipe.csv $quick --port mute
  tolvane-host: 0 of 9 words and bits were written, then the driver gave up D_W:1000x2: no reply to 2 requests of 60 ms each
  [1]
  $ tolvane-host recipe push recipe.csv $quick --port mute --json 2> err | folded | tail -2
  werewritten,thenthedrivergaveupD_W:1000x2:noreplyto2requestsof60mseach","station":1,"tag":"D_W:1
  300x3:int16","time":"TIME","values":[],"wanted":[-1,2,3]}
  $ tolvane-host read D_W:1 D_W:100 --port lossier --timeout 1000 --retries 1
  tolvane-host: D_W:1: no reply within 1000 ms
  D_W:100  0
  [1]
  $ tolvane-host recipe pull - D_W:1 D_W:100 $quick --port mute
  tolvane-host: D_W:1: no reply to 2 requests of 60 ms each; nothing was written
  [1]

Ctrl-C does not wait for a reply that never comes.

  $ tolvane-host watch --timeout 60000 --port mute D_W:7 > log 2> err & host=$!
  $ await counts 'read D 7'; kill -INT $host; wait $host
  [1]
