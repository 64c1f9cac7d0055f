What one poll cycle will be: request and reply of 14 and 9 bytes, of 11 bits each on this line.

  $ tolvane-host plan D_W:5 --serial 9600,8,EVEN,1 --turnaround 10
  64 words a block at most; 9600,8,EVEN,1, 11 bits a byte; turnaround 10 ms
  
    #  block               words  bridged  request    reply     wire  tags
    1  D_W:5                   1        -       14        9 26.35 ms  D_W:5
  
  one poll cycle      1 request, 23 bytes, 36.35 ms: 27.5 cycles a second
  a request per tag   1 request, 23 bytes, 36.35 ms: 1.0 times as long

A gap that is bridged; a block limit looked for; stations kept apart; names that need a second line.

  $ tolvane-host plan D_W:0 D_W:9 --block-limit 10 | sed -n 4p
    1  D_W:0x10               10        8       14       45  5.12 ms  D_W:0, D_W:9
  $ tolvane-host plan D_W:0 --suggest | tail -2
  shortest cycle      with a block limit of 1: 1 request, 23 bytes, 2.00 ms
                      as long as with 64
  $ tolvane-host plan D_W:0x40 D_W:45x30 --suggest | tail -2
  shortest cycle      with a block limit of 1: 2 requests, 318 bytes, 27.60 ms
                      as long as with 64
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
  $ folded() { tr -d ' \n' | fold -w 96; echo; }
  $ tolvane-host plan --json lamp=M_bit:20.5 D_W:100:float D_W:106x2:uint32 --suggest | folded
  {"blockLimit":64,"blocks":[{"address":"M_W:20","bridged":0,"count":1,"number":20,"replyBytes":9,
  "requestBytes":14,"station":1,"tags":["lamp"],"wireMs":1.996},{"address":"D_W:100","bridged":4,"
  count":10,"number":100,"replyBytes":45,"requestBytes":14,"station":1,"tags":["D_W:100:float","D_
  W:106x2:uint32"],"wireMs":5.121}],"cycle":{"bytes":82,"ms":7.118,"requests":2,"wireMs":7.118},"r
  equestPerTag":{"bytes":85,"ms":7.378,"requests":3,"wireMs":7.378},"serial":"115200,8,NONE,1","su
  ggestion":{"blockLimit":10,"bytes":82,"ms":7.118,"requests":2,"wireMs":7.118},"turnaroundMs":0}

The picture: docs/example shows one whole; more labels than there is room for, a lane that goes on
below, and gaps everywhere.

  $ docs=$TESTDIR/../../docs
  $ tolvane-host plan "$docs/example/line.csv" --svg - | diff - "$docs/example/plan.svg"
  $ texts() { grep -o '>[^<]*</text>' | sed 's/>\(.*\)<.text>/\1/' | tr '\n' ' ' | fold -s -w 96; }
  $ tags="$(seq 80 0.5 140 | sed 's/\.[05]//;s/^/N_W:/') N_W:0x9"
  $ tolvane-host plan $tags --svg - | texts
  One poll cycle: 122 tags, 2 requests, 27.60 ms 64 words a block at most; 115200,8,NONE,1, 10 
  bits a byte; turnaround 0 ms N_W station 1 N_W:0x9 1: 4.77 ms 0 5 N_W continued N_W:80 N_W:80 
  N_W:81 N_W:81 N_W:82 N_W:82 N_W:83 N_W:83 N_W:84 N_W:84 N_W:85 N_W:85 N_W:86 N_W:86 N_W:87 
  N_W:87 N_W:88 N_W:88 N_W:89 N_W:89 N_W:90 N_W:90 N_W:91 N_W:91 N_W:92 N_W:92 N_W:93 N_W:93 
  N_W:94 N_W:94 N_W:95 N_W:95 N_W:96 N_W:96 N_W:97 N_W:97 N_W:98 N_W:98 N_W:99 N_W:99 N_W:100 
  N_W:100 N_W:101 N_W:101 N_W:102 N_W:102 N_W:103 N_W:103 N_W:104 N_W:104 N_W:105 N_W:105 N_W:106 
  N_W:106 N_W:107 N_W:107 N_W:108 N_W:108 N_W:109 N_W:109 N_W:110 N_W:110 N_W:111 N_W:111 N_W:112 
  N_W:112 N_W:113 N_W:113 N_W:114 N_W:114 and 51 more 2: 22.83 ms 80 85 90 95 100 105 110 115 120 
  125 130 135 140 on the wire: from 4.77 ms from 8.38 ms from 12.00 ms from 15.61 ms from 19.22 
  ms bridged: read, no tag Each block is one request, by its number in the order of sending. 
  Addresses are words (contacts for TX and CX); // cuts out addresses that are not read.  (no-eol)
  $ tolvane-host plan $(seq 0 8 120 | sed 's/^/D_W:/') --svg - --block-limit 127 | tee picture | texts | head -3
  One poll cycle: 16 tags, 1 request, 43.66 ms 127 words a block at most; 115200,8,NONE,1, 10 
  bits a byte; turnaround 0 ms D_W station 1 D_W:0 D_W:8 D_W:16 D_W:24 D_W:32 D_W:40 D_W:48 
  D_W:56 D_W:64 D_W:72 D_W:80 D_W:88 D_W:96 D_W:104 D_W:112 D_W:120 1: 43.66 ms 0 10 20 30 40 50 
  $ sed -n 's/.*<rect .* width="\([^"]*\)".*fill="\([^"]*\)".*/\2 \1/p' picture | sort | uniq -c
       16 #444 7.0
        1 #deebf7 22.0
        1 #deebf7 919.0
        1 #fff 1100.0
        1 #fff 5.0
        1 #fff 74.0
        1 url(#hatch) 22.0
       15 url(#hatch) 53.2

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
  [2]
