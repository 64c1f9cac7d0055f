A terminal gets a table, drawn over the one before; the cursor is back at the end.

  $ . "$TESTDIR/functions.sh"
  $ printf 'D,110,0\nD,111,16320\n' > memory.csv
  $ controller --still --image memory.csv
  $ watch="tolvane-host watch level=D_W:110:float D_W:100x5 --for 3 --port $place"
  $ script -qec "stty rows 7 cols 90; $watch" terminal > /dev/null < /dev/null
  $ sed 's/\x1b/^/g;s/\r//g;s/__*  */_ /' terminal | sed 's/[0-9][0-9.]*/N/g;s/N retry/N retries/;s/N \(exchange\|word\|error\)\b/N \1s/g' | grep -v ^Script | sort -u
  
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
