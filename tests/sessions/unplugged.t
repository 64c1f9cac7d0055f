An adapter is unplugged and plugged in again, a device server restarts.

  $ . "$TESTDIR/functions.sh"
  $ printf 'D,100,1\n' > memory.csv
  $ for line in port tcp; do
  >     [ $line = tcp ] && its="--tcp 0" || its="--link adapter"
  >     : > log; : > said
  >     controller --image memory.csv $its; plc=$!
  >     [ $line = tcp ] && its="--tcp ${place##*:}" || place=adapter
  >     tolvane-host watch D_W:100 --$line $place --timeout 1000 --json > log 2> said & host=$!
  >     for loss in 1 2; do
  >         await log good; kill $plc; await log '"line lost"'; : > log
  >         controller --image memory.csv $its; plc=$!
  >     done; await log good
  >     kill -INT $host; wait $host; echo "[$?]"
  >     head -4 said | sed 's/1:[0-9][0-9]*/1:N/'
  > done
  [0]
  tolvane-host: lost adapter (the device has gone); trying again
  tolvane-host: adapter is back
  tolvane-host: lost adapter (the device has gone); trying again
  tolvane-host: adapter is back
  [0]
  tolvane-host: lost 127.0.0.1:N (The remote host closed the connection); trying again
  tolvane-host: 127.0.0.1:N is back
  tolvane-host: lost 127.0.0.1:N (The remote host closed the connection); trying again
  tolvane-host: 127.0.0.1:N is back
