What the driver says of itself and of addresses.

  $ cat > tags.csv <<'END'
  > address,name
  > D_W:100:float,level
  > M_bit:20.5,lamp
  > END
  $ printf 'name,address\nlevel,D_W:100\n\nflood,D_W:32767:float\n' > wrong.csv

  $ tolvane-host info | sed 's#/.*/##' > info; sed -n '1,7p;22p' info; grep -c 'read and write' info
  driver    tolvane_link 2.0.0.0
  library   libtolvane_link.so
  serial    115200,8,NONE,1 by default
  network   192.168.1.100,8000 by default
  
  type      pattern    first        last  width  access
  P_W       DDDD           0        2047  word   read and write
  F_bit     DDDD.DD      0.0     2047.15  bit    read and write
  18
  $ tolvane-host check D_W:0x10 tags.csv
  D_W:0x10: valid, 10 words from address number 0
  level: valid, 2 words from address number 100
  lamp: valid, 1 bit from address number 325
  $ tolvane-host check D_W:32767x2 M_bit:1.16 X:1 D_W:1:real D_W:0x0 D_W:0x1048576 D_W:0x1048577 D_W:0x3:string:3 M_bit:1.0:float hello D_W:1:string:0 wrong.csv
  argument 1: address "D_W:32767x2": outside D_W, which reaches from 0 to 32767
  argument 2: address "M_bit:1.16": "1.16" is no address of the form DDDD.DD, with a bit from 0 to 15
  argument 3: address "X:1": no register type "X"; there are
    P_W, M_W, L_W, K_W, F_W, D_W, S_W, T_W, C_W, N_W, Z_W, P_bit, M_bit, L_bit, K_bit, F_bit, TX, CX
  argument 4: no format "real"; there are
    int16, uint16, int32, uint32, float, hex, bin, bcd, string:N; and with the high half
    first int32-be, uint32-be, float-be, string-be:N
  argument 5: address "D_W:0x0": expected a count from 1 to 1048576
  argument 6: address "D_W:0x1048576": outside D_W, which reaches from 0 to 32767
  argument 7: address "D_W:0x1048577": expected a count from 1 to 1048576
  D_W:0x3:string:3: valid, 6 words from address number 0
  argument 9: a bit of M_bit has no format "float"
  argument 10: address "hello": expected TYPE:ADDRESS or TYPE:ADDRESSxCOUNT
  argument 11: format "string:0": expected a length from 1 to 254
  level: valid, 1 word from address number 100
  wrong.csv:4: tag "flood": address "D_W:32767": outside D_W, which reaches from 0 to 32767
    (a value takes 2 words)
  [1]
  $ tolvane-host check --json lamp=M_bit:20.5 D_W:32768 > json
  [1]
  $ sed 's/^ *//' json | tr '\n' ' ' | fold -s -w 96; echo
  [ { "address": "M_bit:20.5", "count": 1, "number": 325, "source": "argument 1", "station": 1, 
  "tag": "lamp" }, { "address": "D_W:32768", "reason": "argument 2: address \"D_W:32768\": 
  outside D_W, which reaches from 0 to 32767", "source": "argument 2", "tag": "D_W:32768" } ] 

Options may stand before the command; a wrong command line is refused with what was expected.

  $ tolvane-host --json check TX:5 | grep -c TX
  2
  $ tolvane-host -v
  tolvane-host 2.0.0.0
  $ . "$TESTDIR/functions.sh"
  $ refusals tolvane-host <<'END'
  > 
  > dance
  > --json
  > info --bogus
  > info more
  > demo --driver /nowhere/driver.so
  > info --driver libc.so.6
  > check
  > END
  tolvane-host: no command given; tolvane-host --help lists them
  tolvane-host: there is no command "dance"; tolvane-host --help lists them
  tolvane-host: no command given behind "--json"; tolvane-host --help lists them
  tolvane-host: Unknown option 'bogus'; see tolvane-host info --help
  tolvane-host: unexpected argument "more"; see tolvane-host info --help
  tolvane-host: cannot load the driver: there is no file /nowhere/driver.so
  tolvane-host: libc.so.6 is no driver library: it does not export intf_getProtocolType
  tolvane-host: nothing to check; expected ADDRESS...
  $ for command in "info --json more" "check --json" "watch --json"; do
  >     tolvane-host $command 2> /dev/null | tr -d '\n'; echo
  > done
  {    "quality": "bad",    "reason": "unexpected argument \"more\"; see tolvane-host info --help"}
  [    {        "quality": "bad",        "reason": "nothing to check; expected ADDRESS..."    }]
  {"quality":"bad","reason":"nothing to watch; expected ADDRESS... or --tags FILE"}
  $ tolvane-host info --json > /dev/full
  tolvane-host: cannot write to standard output: No space left on device
  [1]
