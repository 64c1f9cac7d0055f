Lines that misbehave, and the host at them.

  $ . "$TESTDIR/functions.sh"
  $ printf 'D,100,1\nD,110,0\nD,111,16320\nD,300,30\nD,500,50\n' > memory.csv

Replies that come late or twice. Three words are polled in turn: a reply that was taken for another's
would show as another value. The line is slow, so that a busy machine, too, sees that a copy is early.

  $ for line in port tcp; do
  >     [ $line = tcp ] && its="--tcp 0" || its=
  >     controller --still --image memory.csv --baud 2400 --faults late=5%:600ms,double=40% $its
  >     tolvane-host watch D_W:100 D_W:300 D_W:500 --block-limit 1 --csv - --for 2.5 --quiet 1000 \
  >         --timeout 500 --serial 2400,8N1 --$line $place 2> said | cut -d, -f3-4
  > done > values
  $ grep -v ',$' values | sort -u
  D_W:100,1
  D_W:300,30
  D_W:500,50
  address,value

An adapter is unplugged and plugged in again, a device server restarts.

  $ for line in port tcp; do
  >     [ $line = tcp ] && its="--tcp 0" || its="--link adapter"
  >     : > log; : > said
  >     controller --image memory.csv $its; first=$!
  >     [ $line = tcp ] && its="--tcp ${place##*:}" || place=adapter
  >     tolvane-host watch D_W:100 --$line $place --timeout 5000 --json > log 2> said & host=$!
  >     await log good; kill $first; await log '"line lost"'
  >     controller --image memory.csv $its; await said 'is back'; : > log; await log good
  >     kill -INT $host; wait $host; echo "[$?]"
  >     sed 's#/.*: #/...: #;s/[0-9][0-9.]*/N/g' said
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

A terminal gets a table, drawn over the one before; the cursor is back at the end.

  $ controller --still --image memory.csv
  $ watch="tolvane-host watch level=D_W:110:float D_W:100x5 --for 1.5 --timeout 5000 --port $place"
  $ script -qec "stty rows 7 cols 90; $watch" terminal > /dev/null < /dev/null
  $ sed 's/\x1b/^/g;s/\r//g;s/__*  */_ /;s/[0-9][0-9.]*/N/g' terminal | grep -v ^Script | sort -u
  
         D_W:N         N  _ N    N s    N s^[K
  ... and N more^[K
  N % of the line's capacity used
  N exchanges/s   N retries   N errors   N % of the line's capacity used^[K
  ^[?Nlname   address     value  trend             changes  changed     read^[K
  ^[J^[?NhN exchanges in N s (N/s), N words, N retries, N errors
  ^[J^[?Nh^[?Nl^[NAname   address     value  trend             changes  changed     read^[K
  ^[Nm       D_W:N         -  not read yet                     -        -^[Nm^[K
  ^[Nm... and N more, N of them not good^[Nm^[K
  ^[Nmlevel  D_W:N         -  not read yet                     -        -^[Nm^[K
  level  D_W:N       N  _ N    N s    N s^[K
  $ script -qec "tolvane-host recipe pull recipe.csv D_W:0x300 --port $place" terminal > /dev/null < /dev/null
  $ tr '\r' '\n' < terminal | grep -v ^Script
  
  pull [################                        ] 127 of 300 in 1 block
  pull [#################################       ] 254 of 300 in 2 blocks
  pull [########################################] 300 of 300 in 3 blocks
  
  
  $ script -qec "tolvane-host soak --exchanges 40000" terminal > /dev/null < /dev/null
  $ tr '\r' '\n' < terminal | grep "of 40000"
  20003 of 40000 requests\x1b[K (esc)
  40000 of 40000 requests\x1b[K (esc)
