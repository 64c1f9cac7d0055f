A terminal gets a table, drawn over the one before; the cursor is back at the end.

  $ . "$TESTDIR/functions.sh"
  $ printf 'D,110,0\nD,111,16320\n' > memory.csv
  $ controller --still --image memory.csv
  $ watch="tolvane-host watch level=D_W:110:float D_W:100x5 --for 3 --timeout 5000 --port $place"
  $ script -qec "stty rows 7 cols 90; $watch" terminal > /dev/null < /dev/null
  $ sed 's/\x1b/^/g;s/\r//g;s/__*  */_ /' terminal | uncounted | grep -v ^Script | sort -u
  
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
  $ tr '\r' '\n' < terminal | grep "of 40000" | uniq
  20000 of 40000 requests\x1b[K (esc)
  40000 of 40000 requests\x1b[K (esc)
