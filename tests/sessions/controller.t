The simulated controller by itself: it keeps what was written, also where its reply is lost, and
counts what came; SIGUSR2 ends the faults.

  $ . "$TESTDIR/functions.sh"
  $ controller --link plc --still --save --image image.csv --verbose --faults loss=100%
  $ tolvane-host write --port plc D_W:5=7 --timeout 60 --retries 1
  D_W:5 = 7  FAILED: no reply within 60 ms; not acknowledged; the controller may hold it
  [1]
  $ await counts disturbed; kill -USR2 $!
  $ tolvane-host write --port plc M_bit:1.2=1 D_W:100x2=16,65535
  M_bit:1.2 = 1  acknowledged
  D_W:100x2 = 16, 65535  acknowledged
  $ printf '\002ra\003z' > plc; tolvane-host read --port plc D_W:4x2
  D_W:4x2  0, 7
  $ tolvane-host write --port plc TX:35=0 --json > /dev/null; end TERM
  $ cat counts image.csv
  write D 5 = 7
      its reply is disturbed: loss
  set M 1 mask 0004
  read M 1 x 1
  write D 100 = 16 65535
  read D 100 x 1
  refused (layout): 02 72 61 03
  read D 4 x 2
  read D 4 x 1
  clear TX 2 mask FFF7
  read TX 2 x 16
  served: total=9 read=5 write=2 set=1 clear=1
  refused: total=1 unfinished=0 too-long=0 layout=1 checksum=0 command=0 device=0 digits=0 byte-count=0 odd-address=0 beyond-device=0 mask=0
  faults: total=1 loss=1 cut=0 flip=0 late=0 double=0 noise=0 mute=0
  stray bytes: 1
  device,word,value
  M,1,4
  D,5,7
  D,100,16
  D,101,65535
  $ ls plc
  ls: cannot access 'plc': No such file or directory
  [2]
  $ controller --tcp 0; echo ${place%:*}
  127.0.0.1
  $ tolvane-plc --tcp ${place#*:} 2>&1 | sed 's/[0-9][0-9]*/N/'
  tolvane-plc: cannot listen on port N: The bound address is already in use
  $ end INT
  $ tolvane-plc --version
  tolvane-plc 2.0.0.0

One host after the other, a shell first: what one left half sent is nothing to the next. SIGUSR1 asks
for the counts.

  $ controller --link moving; for line in port tcp; do
  >     controller --still $(over $line)
  >     [ $line = tcp ] && end=/dev/tcp/$(echo $place | tr : /) || end=$place
  >     timeout 9 bash -c "exec 3<> $end; printf '\002ra0000000255\003' >&3; head -c 9 <&3 | cut -c 2-8"
  >     for host in 1 2 3; do
  >         tolvane-host read --$line $place D_W:0
  >         bash -c "printf '\002raC8' > $end"
  >     done
  >     kill -USR1 $!; await counts stray; end INT; echo "[$?]"; grep served counts
  > done > told; sort told | uniq -c
        6 D_W:0  0
        2 [0]
        2 r000032
        4 served: total=7 read=7 write=0 set=0 clear=0
  $ tolvane-host read --port moving D_W:100 | awk '{ print ($2 < 600) }'
  1

Over TCP the latest host is served, and the one before it is not kept.

  $ controller --tcp 0; tolvane-host watch --tcp $place D_W:0 > log 2> said & first=$!
  $ await log D_W; tolvane-host read --tcp $place D_W:0; await said lost; kill $first
  D_W:0  0

A link is given up as it was taken: one that leads nowhere is replaced, one that was replaced stays.

  $ ln -s nowhere link; controller --link link
  $ tolvane-host read --port link D_W:0
  D_W:0  0
  $ rm link; ln -s . link; end TERM; readlink link
  .

A host that is killed takes its own controller with it.

  $ tolvane-host watch D_W:1 --simulate --serial 9600,8N1 --json > log 2> said & host=$!
  $ await log good; its=$(grep -ls "^PPid:.$host\$" /proc/[0-9]*/status | cut -d/ -f3)
  $ xargs -0 < /proc/$its/cmdline | sed 's#.*/##'
  tolvane-plc --baud 9600
  $ kill -KILL $host
  $ for try in $(seq 500); do grep -qs plc /proc/$its/cmdline || { echo gone; break; }; sleep 0.02; done
  gone

Bad input is named, with what was expected.

  $ echo hello > hello.csv
  $ refusals tolvane-plc <<'END'
  > extra
  > --tcp 65536
  > --tcp 0 --link x
  > --baud fast
  > --turnaround 60001
  > --seed -1
  > --any-address
  > --faults los=1%
  > --faults loss=99%,cut=2%
  > --faults loss
  > --save
  > --save --image nowhere/x
  > --image /no/such.csv
  > --image hello.csv
  > --link hello.csv
  > --bogus
  > END
  tolvane-plc: "extra": expected options only
  tolvane-plc: --tcp "65536": expected a whole number from 0 to 65535
  tolvane-plc: --tcp: expected neither --pty nor --link beside it
  tolvane-plc: --baud "fast": expected a whole number from 0 to 4000000
  tolvane-plc: --turnaround "60001": expected a whole number from 0 to 60000
  tolvane-plc: --seed "-1": expected a whole number from 0 to 4294967295
  tolvane-plc: --any-address: expected --tcp PORT beside it
  tolvane-plc: --faults: unknown fault "los", expected one of loss cut flip late double noise mute
  tolvane-plc: --faults: the shares of "loss=99%,cut=2%" add up to more than 100%
  tolvane-plc: --faults: "loss" is no fault with its share, expected one like loss=2% or late=1%:300ms
  tolvane-plc: --save: expected --image FILE beside it
  tolvane-plc: --image "nowhere/x": expected a file in a folder that can be written to
  tolvane-plc: /no/such.csv: No such file or directory
  tolvane-plc: hello.csv, line 1: expected device,word,value
  tolvane-plc: --link "hello.csv": expected a path where nothing is yet, or a link that leads nowhere
  tolvane-plc: Unknown option 'bogus'. See tolvane-plc --help.
