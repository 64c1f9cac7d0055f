Reading and writing on a pseudo-terminal, as at a controller.

  $ printf 'D,100,1\nD,101,2\nD,102,65535\nD,110,0\nD,111,16320\nD,300,30\nM,20,160\n' > memory.csv
  $ printf 'name,address,format,unit,decimals\nlevel,D_W:110,float,bar,2\nlamp,M_bit:20.5\n' > tags.csv
  $ . "$TESTDIR/functions.sh"
  $ controller --still --link plc --image memory.csv
  $ controller --link moving
  $ tolvane-host read --port plc D_W:100x3
  D_W:100x3  1, 2, 65535
  $ tolvane-host read --port plc --tags tags.csv D_W:102:int16
  level          D_W:110     1.50 bar
  lamp           M_bit:20.5  1
  D_W:102:int16              -1
  $ tolvane-host read --port plc level=2/D_W:110:float --json | folded
  [{"address":"2/D_W:110","number":110,"quality":"good","station":2,"tag":"level","time":"TIME","v
  alues":[1.5]}]
  $ for command in "read D_W:100 D_W:300" "write D_W:900=1" "recipe pull - D_W:900"; do
  >     tolvane-host $command --port plc --trace /dev/full 2> said; echo "[$?]"
  > done; cat said
  D_W:100  1
  D_W:300  30
  [1]
  D_W:900 = 1  acknowledged
  [1]
  address,values
  D_W:900,1
  [1]
  tolvane-host: cannot write "/dev/full": No space left on device; the trace ends here
  $ tolvane-host read --port plc D_W:100 --trace trace && sed 's/^[^ ]*Z/TIME/' trace
  D_W:100  1
  TIME  ->  02 72 61 43 38 30 30 30 30 30 32 37 30 03  read 1 word of D from word 100
  TIME  <-  06 72 30 31 30 30 33 33 04  1 word: 1
  TIME  ->  02 72 61 43 36 30 30 30 30 30 34 37 30 03  read 2 words of D from word 99
  TIME  <-  06 72 30 30 30 30 30 31 30 30 46 33 04  2 words: 0, 1
  $ tolvane-host read --port plc P_W:1 M_W:1 L_W:1 K_W:1 F_W:1 D_W:1 S_W:1 T_W:1 C_W:1 N_W:1 Z_W:1 \
  >     TX:1 CX:1 --trace all > /dev/null
  $ sed -n 's/.*->  02 72 \(..\) \(.....\).* of/\1 \2/p;s/.*1 word: \(.*\)/\1,/p' all | xargs | fold -s -w 96
  68 30 32 P from word 1 0x0000, 69 30 32 M from word 1 0x0000, 6A 30 32 L from word 1 0x0000, 6B 
  30 32 K from word 1 0x0000, 6E 30 32 F from word 1 0x0000, 61 30 32 D from word 1 0, 6F 30 32 S 
  from word 1 0, 62 30 32 T from word 1 0, 63 30 32 C from word 1 0, 70 30 32 N from word 1 0, 73 
  30 32 Z from word 1 0, 6C 30 30 TX from word 0 0x0000, 6D 30 30 CX from word 0 0x0000, 68 30 30 
  P from word 0
  $ tolvane-host read M_bit:20.5 --simulate --serial 9600,8N1 2>/dev/null
  M_bit:20.5  0
  $ tolvane-host read M_bit:20.5 --simulate --pace none 2>/dev/null
  M_bit:20.5  0
  $ programs=$(dirname "$(command -v tolvane-host)")
  $ cp "$programs/tolvane-host" "$programs/../lib/libtolvane_link.so" .
  $ ./tolvane-host read D_W:1 --simulate 2>&1 | sed 's#/[^ )]*/#.../#g'
  tolvane-host: cannot find the simulated controller in .../line.t (looked for tolvane-plc, ...../tolvane-plc)

What is written, and nothing beside it.

  $ tolvane-host write --port plc D_W:700x3=7,8,9 heat=D_W:710:float=-2.5 M_bit:30.3x2=1,1 TX:5=1
  D_W:700x3             = 7, 8, 9  acknowledged
  heat          D_W:710 = -2.5  acknowledged
  M_bit:30.3x2          = 1, 1  acknowledged
  TX:5                  = 1  acknowledged
  $ tolvane-host write --port plc D_W:700=7 TX:5=1 --verify
  D_W:700 = 7  acknowledged
  TX:5    = 1  acknowledged
  all read back alike
  $ tolvane-host write --port plc D_W:700=6 D_W:700=7 --verify
  D_W:700 = 6  acknowledged
  D_W:700 = 7  acknowledged
  tolvane-host: D_W:700: wrote 6, the controller holds 7
  [1]
  $ tolvane-host read --port plc D_W:699x5 D_W:710:float M_W:30:hex TX:4x3
  D_W:699x5      0, 7, 8, 9, 0
  D_W:710:float  -2.5
  M_W:30:hex     0x0018
  TX:4x3         0, 1, 0
  $ tolvane-host write --port plc D_W:720x2:hex=0x1F,0 --json | folded
  [{"acknowledged":true,"address":"D_W:720","blocks":[{"acknowledged":true,"address":"D_W:720","co
  unt":2,"number":720,"station":1}],"number":720,"station":1,"tag":"D_W:720x2:hex","values":["0x00
  1F","0x0000"]}]

Watching, on a line that a pipe or a log follows.

  $ tolvane-host watch --port plc D_W:300 level=D_W:110:float --for 2 --stats 2>counts | sed 's/^[^ ]*Z/TIME/'
  TIME  level  D_W:110  1.5
  TIME  D_W:300  30
  $ grep -o '^D_W:[^ ]*' counts
  D_W:110x2
  D_W:300
  $ tolvane-host watch --port plc D_W:100x203 --for 2 --csv - 2>/dev/null | grep -o 'D_W:300,30,.*'
  D_W:300,30,good,
  $ tolvane-host watch --port plc two=D_W:100x2 --for 2 --csv - 2>/dev/null | sed 's/^[^,]*Z/TIME/'
  time,name,address,value,quality,reason
  TIME,two[0],D_W:100,1,good,
  TIME,two[1],D_W:101,2,good,
  $ TZ=IST-5:30 tolvane-host watch --port plc a=D_W:100 --csv - --every 200 --local 2>/dev/null \
  >     | grep -m 4 -e quality -e good | sed 's/^....-..-..T..:..:..\..../TIME/'
  time,a,a quality
  TIME+05:30,1,good
  TIME+05:30,1,good
  TIME+05:30,1,good
  $ tolvane-host watch --port plc D_W:100 --csv /dev/full --for 9
  tolvane-host: cannot write "/dev/full": No space left on device
  [1]

Recipes.

  $ printf 'address,values\nD_W:1000:float,2.25\nM_bit:40.6x4,1,0,1,1\nD_W:1300x3:int16,-1,2,3\n' > recipe.csv
  $ tolvane-host recipe push recipe.csv --port plc
  3 of 3 addresses written and read back alike
  $ tolvane-host recipe push recipe.csv --port plc --json | grep -c '"alike":true.*"wanted":'
  3
  $ printf 'address,values\nD_W:1000:float\nM_bit:40.6x4\nD_W:1300x3:int16\n' > again.csv
  $ tolvane-host recipe pull again.csv --port plc && diff recipe.csv again.csv
  $ tolvane-host recipe pull - D_W:1200x103 --port plc | tail -1 | cut -c1-10,198-
  D_W:1200x10,0,0,0,0,0,0,0,65535,2,3
  $ printf "D_W:101,2000\nD_W:1000x300$(printf ',7%.0s' $(seq 300))\n" > moving.csv
  $ tolvane-host recipe push moving.csv --port moving > differs
  [1]
  $ sed 's/holds.*/holds another/' differs
  D_W:101: wrote 2000, the controller holds another
  1 of 2 addresses written and read back alike

Refused before any line is opened, each with status 2 (or 1 for what is not there) and what was expected.

  $ printf 'D_W:600,1\nD_W:99999,1\n' > wrong.csv
  $ printf 'D_W:101,2000\n' > short.csv
  $ echo > empty.csv
  $ refusals tolvane-host <<'END'
  > read
  > read D_W:99999
  > read D_W:1
  > read D_W:1 --port=
  > read D_W:1 --simulate --tcp a:1
  > read D_W:1 --tcp box
  > read D_W:1 --simulate --station 256
  > read D_W:1 --simulate --pace fast
  > read D_W:1 --simulate --trace /nowhere/t
  > write
  > write D_W:1
  > write D_W:1=1
  > watch D_W:1 --for ever
  > watch D_W:1 --json --csv -
  > watch D_W:1 --simulate --csv wrong.csv
  > watch D_W:1 --poll 0
  > recipe file
  > recipe push
  > recipe push short.csv D_W:1
  > recipe push empty.csv
  > recipe push /nowhere/r
  > recipe pull - D_W:1x3 D_W:3
  > recipe pull - D_W:0x32768 N_W:0x21504 L_W:0x11264 P_W:0
  > recipe pull - D_W:0x32768 N_W:0x21504 L_W:0x11264 --port /nowhere/tty
  > read D_W:1 --port /nowhere/tty
  > write D_W:1=2 --port /nowhere/tty
  > recipe push short.csv --port /nowhere/tty
  > END
  tolvane-host: nothing to read; expected ADDRESS... or --tags FILE
  tolvane-host: argument 1: address "D_W:99999": outside D_W, which reaches from 0 to 32767
  tolvane-host: no line named; expected --port DEVICE, --tcp HOST:PORT or --simulate
  tolvane-host: --port is empty; expected a value; see tolvane-host read --help
  tolvane-host: more than one line; expected --port, --tcp or --simulate
  tolvane-host: --tcp "box": expected HOST:PORT, such as 192.168.1.100:8000
  tolvane-host: --station "256": expected a number from 0 to 255
  tolvane-host: --pace "fast": expected line or none
  tolvane-host: cannot write "/nowhere/t": No such file or directory
  [1]
  tolvane-host: nothing to write; expected ADDRESS=VALUE...
  tolvane-host: argument 1: "D_W:1": expected ADDRESS=VALUE, such as D_W:100=5
  tolvane-host: no line named; expected --port DEVICE, --tcp HOST:PORT or --simulate
  tolvane-host: --for "ever": expected seconds, above 0 and up to 1000000000
  {"quality":"bad","reason":"--json and --csv - both want standard output"}
  tolvane-host: --json and --csv - both want standard output
  tolvane-host: "wrong.csv" is no log of values: it begins with "D_W:600,1"; it was not touched
  tolvane-host: --poll "0": expected a number from 1 to 86400000
  tolvane-host: recipe "file": expected pull or push
  tolvane-host: no recipe file given; expected push FILE
  tolvane-host: unexpected "D_W:1": push takes its addresses from the file
  tolvane-host: there is no address in empty.csv
  tolvane-host: cannot read the recipe /nowhere/r: No such file or directory
  [1]
  tolvane-host: recipe: D_W:1x3 and D_W:3 overlap
  tolvane-host: recipe: more than 65536 values
  tolvane-host: D_W:0x32768: cannot open /nowhere/tty: there is no device /nowhere/tty; nothing was written
  [1]
  tolvane-host: D_W:1: cannot open /nowhere/tty: there is no device /nowhere/tty
  [1]
  tolvane-host: cannot open /nowhere/tty: there is no device /nowhere/tty
  [1]
  tolvane-host: cannot open /nowhere/tty: there is no device /nowhere/tty
  [1]
