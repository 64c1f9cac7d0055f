What one poll cycle will be: request and reply of 14 and 9 bytes, of 11 bits each on this line.

  $ tolvane-host plan D_W:5 --serial 9600,8,EVEN,1 --turnaround 10
  tags joined up to 64 words; 9600,8,EVEN,1, 11 bits a byte; turnaround 10 ms
  
    #  block               words  bridged  request    reply     wire  tags
    1  D_W:5                   1        -       14        9 26.35 ms  D_W:5
  
  one poll cycle      1 request, 23 bytes, 36.35 ms: 27.5 cycles a second
  a request per tag   1 request, 23 bytes, 36.35 ms: 1.0 times as long

A gap that is bridged; a block limit looked for; stations kept apart; names that need a second line.

  $ tolvane-host plan D_W:0 D_W:9 --block-limit 10 | sed -n 4p
    1  D_W:0x10               10        8       14       45  5.12 ms  D_W:0, D_W:9
  $ tolvane-host plan D_W:0 --suggest | tail -2
  shortest cycle      with a block limit of 64: 1 request, 23 bytes, 2.00 ms
                      no other makes it shorter
  $ tolvane-host plan D_W:0x40 D_W:45x30 --suggest | tail -2
  shortest cycle      with a block limit of 64: 2 requests, 318 bytes, 27.60 ms
                      no other makes it shorter
  $ tolvane-host plan 2/D_W:1 D_W:5 1/D_W:2 2/M_bit:16.0 M_W:17 | sed -n 3,7p
    #  block               words  bridged  request    reply     wire  tags
    1  1/M_W:17                1        -       14        9  2.00 ms  M_W:17
    2  1/D_W:2x4               4        2       14       21  3.04 ms  D_W:5, 1/D_W:2
    3  2/M_W:16                1        -       14        9  2.00 ms  2/M_bit:16.0
    4  2/D_W:1                 1        -       14        9  2.00 ms  2/D_W:1
  $ tolvane-host plan D_W:10x200 D_W:212x50 M_bit:40.8x20 | sed -n 4,6p
    1  M_W:40x2                2        -       14       13  2.34 ms  M_bit:40.8x20
    2  D_W:10x127            127        -       14      513 45.75 ms  D_W:10x200
    3  D_W:137x73             73        -       14      297 27.00 ms  D_W:10x200
  $ tolvane-host plan temperatures=D_W:0x64 cooling=D_W:20x3 fill_level=D_W:30 speed=D_W:40 | sed -n 3,5p
    #  block               words  bridged  request    reply     wire  tags
    1  D_W:0x64               64        -       14      261 23.87 ms  temperatures, cooling,
                                                                      fill_level, speed
  $ . "$TESTDIR/functions.sh"
  $ tolvane-host plan --json lamp=M_bit:20.5 D_W:100:float D_W:106x2:uint32 --suggest | folded
  {"blockLimit":64,"blocks":[{"address":"M_W:20","bridged":0,"count":1,"number":20,"replyBytes":9,
  "requestBytes":14,"station":1,"tags":["lamp"],"wireMs":1.996},{"address":"D_W:100","bridged":4,"
  count":10,"number":100,"replyBytes":45,"requestBytes":14,"station":1,"tags":["D_W:100:float","D_
  W:106x2:uint32"],"wireMs":5.121}],"cycle":{"bytes":82,"ms":7.118,"requests":2,"wireMs":7.118},"r
  equestPerTag":{"bytes":85,"ms":7.378,"requests":3,"wireMs":7.378},"serial":"115200,8,NONE,1","su
  ggestion":{"blockLimit":64,"bytes":82,"ms":7.118,"requests":2,"wireMs":7.118},"turnaroundMs":0}

The picture. docs/example shows one; here more labels than there is room for, tags over others, gaps
everywhere, a piece that is cut out, a lane that goes on below. When the sum has changed, look at it.

  $ docs=$TESTDIR/../../docs
  $ tolvane-host plan "$docs/example/line.csv" --svg - | diff - "$docs/example/plan.svg"
  $ gaps=$(seq 0 8 120 | sed 's/^/K_W:/')
  $ labels=$(seq 80 0.5 118 | sed 's/\.[05]//;s/^/N_W:/')
  $ tolvane-host plan D_W:0x20 a=D_W:5x3 b=D_W:6 D_W:400x64 D_W:450x64 D_W:470x2 D_W:1000x130 \
  >     2/D_W:5 TX:3 TX:9x4 C_W:3 C_W:12x9 M_bit:20.3x5 $gaps $labels --block-limit 127 \
  >     --svg picture.svg > /dev/null
  $ grep -o '>[^<]*</text>' picture.svg | sed 's/>\(.*\)<.text>/\1/' | tr '\n' ' ' | fold -s -w 96; echo
  One poll cycle: 106 tags, 11 requests, 174.04 ms tags joined up to 127 words; 115200,8,NONE,1, 
  10 bits a byte; turnaround 0 ms M_W station 1 M_bit:20.3x5 1 20 K_W station 1 K_W:0 K_W:8 
  K_W:16 K_W:24 K_W:32 K_W:40 K_W:48 K_W:56 K_W:64 K_W:72 K_W:80 K_W:88 K_W:96 K_W:104 K_W:112 
  K_W:120 2: 43.66 ms 0 10 20 30 40 50 60 70 80 90 100 110 120 D_W station 1 D_W:0x20 a b 3: 8.59 
  ms 0 10 D_W continued D_W:400x64 D_W:450x64 D_W:470x2 4: 41.23 ms 400 410 420 430 440 450 460 
  470 480 490 500 510 D_W continued D_W:1000x130 5: 45.75 ms 1000 1010 1020 1030 1040 1050 1060 
  1070 1080 1090 1100 1110 1120 D_W continued D_W:1000x130 6 1127 C_W station 1 C_W:3 C_W:12x9 7: 
  7.90 ms 3 6 8 10 12 14 16 18 20 N_W station 1 N_W:80 N_W:80 N_W:81 N_W:81 N_W:82 N_W:82 N_W:83 
  N_W:83 N_W:84 N_W:84 N_W:85 N_W:85 N_W:86 N_W:86 N_W:87 N_W:87 N_W:88 N_W:88 N_W:89 N_W:89 
  N_W:90 N_W:90 N_W:91 N_W:91 N_W:92 N_W:92 N_W:93 N_W:93 N_W:94 N_W:94 N_W:95 N_W:95 N_W:96 
  N_W:96 N_W:97 N_W:97 N_W:98 N_W:98 N_W:99 N_W:99 N_W:100 N_W:100 N_W:101 N_W:101 N_W:102 
  N_W:102 N_W:103 N_W:103 N_W:104 N_W:104 N_W:105 N_W:105 N_W:106 N_W:106 N_W:107 N_W:107 N_W:108 
  N_W:108 N_W:109 N_W:109 N_W:110 N_W:110 N_W:111 N_W:111 N_W:112 N_W:112 N_W:113 N_W:113 N_W:114 
  N_W:114 and 7 more 8: 15.19 ms 80 82 84 86 88 90 92 94 96 98 100 102 104 106 108 110 112 114 
  116 118 TX station 1 TX:3 TX:9x4 9 10: 3.04 ms 3 6 8 10 12 D_W station 2 2/D_W:5 11 5 on the 
  wire: from 2.00 ms from 10.75 ms from 19.50 ms from 28.25 ms from 37.00 ms bridged: read, no 
  tag Each block is one request, by its number in the order of sending. Addresses are words 
  (contacts for TX and CX); // cuts out addresses that are not read. 
  $ cksum < picture.svg
  1197732767 59327

The README's examples, and what is refused.

  $ for command in plan explain; do
  >     block="/^\$ tolvane-host $command/,/^\`\`\`/p"
  >     sed -n "$block" "$docs/../README.md" | grep -v '^```' > shown
  >     (head -1 shown; cd "$docs/.."; $(sed -n '1s/^. //p' $OLDPWD/shown)) | diff - shown
  > done
  $ while read -r options; do tolvane-host plan $options || echo "[$?]"; done <<'END'
  > 
  > D_W:5 --block-limit 128
  > D_W:5 --station 256
  > D_W:5 --turnaround x
  > D_W:5 --svg /nowhere/plan.svg
  > END
  tolvane-host: nothing to plan; expected a tag file or addresses
  [2]
  tolvane-host: --block-limit "128": expected a number from 1 to 127
  [2]
  tolvane-host: --station "256": expected a number from 0 to 255
  [2]
  tolvane-host: --turnaround "x": expected a number from 0 to 10000
  [2]
  tolvane-host: cannot write /nowhere/plan.svg: No such file or directory
  [1]
