An adapter is unplugged and plugged in again, a device server restarts.

  $ . "$TESTDIR/functions.sh"
  $ printf 'D,100,1\n' > memory.csv
  $ for line in port tcp; do
  >     [ $line = tcp ] && its="--tcp 0" || its="--link adapter"
  >     : > log; : > said
  >     controller --image memory.csv $its; first=$!
  >     [ $line = tcp ] && its="--tcp ${place##*:}" || place=adapter
  >     tolvane-host watch D_W:100 --$line $place --timeout 5000 --json > log 2> said & host=$!
  >     await log good; kill $first; await log '"line lost"'
  >     controller --image memory.csv $its; await said 'is back'; : > log; await log good
  >     kill -INT $host; wait $host; echo "[$?]"
  >     sed 's#/.*: #/...: #' said | uncounted
  > done
  [0]
  tolvane-host: lost adapter (the device has gone); trying again
  tolvane-host: adapter is back
  N exchanges in N s (N/s), N words, N retries, N errors
  N % of the line's capacity used
  [0]
  tolvane-host: lost N:N (The remote host closed the connection); trying again
  tolvane-host: N:N is back
  N exchanges in N s (N/s), N words, N retries, N errors
  N % of the line's capacity used
