What files, names and readers bring along hurts nobody.

  $ . "$TESTDIR/functions.sh"
  $ printf 'D,100,7\n' > memory.csv
  $ controller --still --link plc --image memory.csv
  $ printf 'name,address\na,D_W:100\n' > tags.csv; cp tags.csv same.csv
  $ printf '# mixer\nD_W:100,1\nD_W:101;2\n# end\n' > recipe.csv
  $ printf 'D_W:100,1\nD_W:101,2\0\nD_W:102,3\n' > zero.csv
  $ mkfifo fifo
  $ refusals tolvane-host <<'END' > out
  > recipe pull zero.csv --port plc
  > recipe pull tags.csv D_W:5 --port plc
  > read tags.csv --port plc --trace tags.csv
  > plan tags.csv --svg tags.csv
  > watch tags.csv --port plc --csv tags.csv
  > watch tags.csv --port plc --csv /nowhere/values.csv
  > explain zero.csv
  > read --port plc a=D_W:1 a=D_W:2
  > END
  tolvane-host: zero.csv:2: "D_W:101,2\x00": expected text in UTF-8 without control characters
  tolvane-host: tags.csv:1: address "name": expected TYPE:ADDRESS or TYPE:ADDRESSxCOUNT
  tolvane-host: "tags.csv" is no trace: it begins with "name,address"; it was not touched
  tolvane-host: "tags.csv" is no picture of a plan: it begins with "name,address"; it was not touched
  tolvane-host: "tags.csv" is no log of values: it begins with "name,address"; it was not touched
  tolvane-host: cannot write "/nowhere/values.csv": No such file or directory
  [1]
  tolvane-host: zero.csv:2: "D_W:101,2\x00": expected text in UTF-8 without control characters
  tolvane-host: argument 2: tag "a": another one has that name, argument 1
  $ diff tags.csv same.csv
  $ for try in 1 2; do
  >     tolvane-host plan tags.csv --svg picture > out
  >     tolvane-host read tags.csv --port plc --trace trace > out
  >     tolvane-host recipe pull recipe.csv D_W:101 D_W:5 --port plc
  > done
  $ cat recipe.csv
  # mixer
  D_W:100,1
  D_W:101;0
  # end
  D_W:5;0
  $ wc -l < trace
  4
  $ tolvane-host read "$(printf '\033[31mred=D_W:1')" --port plc
  tolvane-host: argument 1: tag "\x1b[31mred": expected a name without control characters
  [2]
  $ tolvane-host check "$(printf '\033[31m')$(seq -s, 99)"
  argument 1: address "\x1b[31m1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21, ... 4,95,96,97,98,99": expected TYPE:ADDRESS or TYPE:ADDRESSxCOUNT
  [1]
  $ if grep -q __asan_init "$(command -v tolvane-host)"; then  # which needs more than any limit
  >     echo 'tolvane-host: there is not enough memory for that'; false
  > else
  >     (ulimit -v 400000; tolvane-host read --tags /dev/zero --port plc)
  > fi
  tolvane-host: there is not enough memory for that
  [1]

A reader that stalls, and a lock that never ends, do not keep it from ending.

  $ exec 3<> fifo; head -c 65536 /dev/zero >&3
  $ tolvane-host watch --port plc D_W:100 --json --trace heard > fifo 2> said & host=$!
  $ await heard '2 words'; kill -INT $host; wait $host || echo ended
  ended
  $ device=$(readlink -f plc); lock=$(echo $device | sed 's#/dev/##;s#/#_#g;s#^#/var/lock/LCK..#')
  $ rm -f $lock; mkfifo $lock && tolvane-host read D_W:100 --port plc 2>&1 | sed 's# /[^ ,:]*# ...#g'; rm $lock
  tolvane-host: D_W:100: cannot open plc: the lock ... is no file

A log that is moved away, or emptied, begins anew.

  $ tolvane-host watch --port plc a=D_W:100 --csv log --every 20 2> said & host=$!
  $ await log 7,good; mv log old; await log 7,good; : > log; await log 7,good; head -1 log
  time,a,a quality
  $ mv log old; kill -HUP $host; await log good; head -1 log; kill $pids; await log ',,bad'; kill -INT $host; wait $host
  time,a,a quality
  [1]
