The tour runs in simulated time: it is the same every time, as docs/tour.txt shows it.

  $ tolvane-host demo | sed 's#/.*/##' | diff - "$TESTDIR/../../docs/tour.txt"

Another controller's driver is found out.

  $ other="$(dirname "$(command -v tolvane-host)")/../examples/second_controller/libsecond_controller.so"
  $ tolvane-host demo --driver "$other" 2>&1 | sed -n '/^1/,/^2/p;$p'
  1. Who is there
     The driver names itself, its default line and its register types.
     driver   modbus_rtu 1.0.0.0
     line     19200,8,EVEN,1
     network  192.168.1.100,502
     words    up to HR_W:65535
     bits     up to HR_bit:65535.15, CO:65535
     WRONG  it is the driver that this host is made for: expected tolvane_link, got modbus_rtu
     ok     3 register types, with their last addresses
  
  2. Checking addresses
    HR_W, HR_bit, CO

So does a soak, for the same seed.

  $ tolvane-host soak --exchanges 2000 | sed 's#/.*/##'
  A soak of the driver: a panel at random on a line with faults, and what is left of it.
     library          libtolvane_link.so
     line             a simulated controller, in simulated time, 115200 baud
     faults           loss=2%,cut=1%,flip=2%,late=1%:510ms..1500ms,double=2%,noise=1.8%,mute=0.2%:3s, seed 1
     monitored        10 sets of addresses
     writes           600 made, 504 acknowledged, 5 given up, 91 replaced by newer
     condition reads  118 made, 0 failed
     recipes          18 written, 25 read, 2 of these failed
     requests         2106 sent, 1887 answered well, 210 to be repeated, 9 given up, 42 replies set aside
     compared         17847 words of replies, 3165 values that the driver showed, and the whole memory
     took             295 s of the line's time
     served           total=2263 read=1635 write=465 set=87 clear=76
     refused          total=0
     faults           total=238 loss=42 cut=30 flip=46 late=17 double=48 noise=35 mute=20
     stray bytes      0
     unheard          total=23
  
     ok     every write that was acknowledged is in the controller
     ok     no bit or word that nobody wrote has changed
     ok     what the host reads is what the controller holds
     ok     no request was lost without a failure report
  $ tolvane-host soak --exchanges 2000 --json | tr -d ' \n' | grep -o '"recipes":{[^}]*}\|"right":true\|"writes":{[^}]*}'
  "recipes":{"failed":2,"read":25,"written":18}
  "right":true
  "writes":{"acknowledged":504,"givenUp":5,"made":600,"replaced":91}

  $ while read -r options; do tolvane-host soak $options > out && tail -1 out || echo "[$?]"; done <<'END'
  > --exchanges 99 --seed 2147483647
  > --exchanges many
  > --exchanges 0
  > --faults lost=2%
  > --port /dev/null
  > --seed -1
  > END
     ok     no request was lost without a failure report
  tolvane-host: --exchanges "many": expected a number from 1 to 1000000000
  [2]
  tolvane-host: --exchanges "0": expected a number from 1 to 1000000000
  [2]
  tolvane-host: --faults: unknown fault "lost", expected one of loss cut flip late double noise mute
  [2]
  tolvane-host: Unknown option 'port'; see tolvane-host soak --help
  [2]
  tolvane-host: --seed "-1": expected a number from 0 to 2147483647
  [2]
