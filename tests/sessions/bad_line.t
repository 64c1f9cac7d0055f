Replies that come twice or late. Three words are polled in turn: a reply that was taken for another's
would show as another value. One line is so slow that a busy machine, too, sees that a copy is early.

  $ . "$TESTDIR/functions.sh"
  $ printf 'D,100,1\nD,300,30\nD,500,50\n' > memory.csv
  $ watch="tolvane-host watch D_W:100 D_W:300 D_W:500 --for 18 --quiet 2000"
  $ for line in port tcp; do
  >     controller --still --image memory.csv --baud 300 --faults double=40% $(over $line)
  >     $watch --csv twice.$line --timeout 2000 --serial 300,8N1 --$line $place 2> /dev/null & hosts="$hosts $!"
  >     controller --still --image memory.csv --faults late=40%:900ms $(over $line)
  >     $watch --csv late.$line --timeout 600 --$line $place 2> /dev/null & hosts="$hosts $!"
  > done; wait $hosts
  $ cut -d, -f3-4 twice.* late.* | grep -v ',$' | sort -u
  D_W:100,1
  D_W:300,30
  D_W:500,50
  address,value
