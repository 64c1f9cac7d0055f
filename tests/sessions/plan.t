What one poll cycle will be: request and reply of 14 and 9 bytes, of 11 bits each on this line.

  $ tolvane-host plan D_W:5 --serial 9600,8,EVEN,1 --turnaround 10
  tags joined up to 64 words; 9600,8,EVEN,1, 11 bits a byte; turnaround 10 ms
  
    #  block               words   unused  request    reply     wire  tags
    1  D_W:5                   1        -       14        9 26.35 ms  D_W:5
  
  one poll cycle      1 request, 23 bytes, 36.35 ms: 27.5 cycles a second
  a request per tag   1 request, 23 bytes, 36.35 ms: as long

Words read along for nothing; a block limit looked for; stations kept apart; names that need a second
line.

  $ tolvane-host plan D_W:0 D_W:9 --block-limit 10 --suggest | sed -n '4p;6,$p'
    1  D_W:0x10               10        8       14       45  5.12 ms  D_W:0, D_W:9
  one poll cycle      1 request, 59 bytes, 5.12 ms: 195.3 cycles a second
  unused words        8 of 10: no tag wants them, they are read along with their neighbours
  a request per tag   2 requests, 46 bytes, 3.99 ms: 22.0 % shorter
  shortest cycle      with a block limit of 1: 2 requests, 46 bytes, 3.99 ms: 22.0 % shorter
  $ tolvane-host plan D_W:0x60 D_W:60x67 --block-limit 10 --suggest | tail -1
  shortest cycle      with a block limit of 127: 1 request, 527 bytes, 45.75 ms: 3.5 % shorter
  $ tolvane-host plan D_W:0x40 D_W:45x30 --suggest | tail -3
  one poll cycle      2 requests, 318 bytes, 27.60 ms: 36.2 cycles a second
  a request per tag   2 requests, 318 bytes, 27.60 ms: as long
  shortest cycle      this one: no other block limit makes it shorter
  $ tolvane-host plan 2/D_W:1 D_W:5 1/D_W:2 2/M_bit:16.0 M_W:17 | sed -n 3,7p
    #  block               words   unused  request    reply     wire  tags
    1  1/M_W:17                1        -       14        9  2.00 ms  M_W:17
    2  1/D_W:2x4               4        2       14       21  3.04 ms  D_W:5, 1/D_W:2
    3  2/M_W:16                1        -       14        9  2.00 ms  2/M_bit:16.0
    4  2/D_W:1                 1        -       14        9  2.00 ms  2/D_W:1
  $ tolvane-host plan D_W:10x200 D_W:212x50 M_bit:40.8x20 | sed -n 4,6p
    1  M_W:40x2                2        -       14       13  2.34 ms  M_bit:40.8x20
    2  D_W:10x127            127        -       14      513 45.75 ms  D_W:10x200
    3  D_W:137x73             73        -       14      297 27.00 ms  D_W:10x200
  $ tolvane-host plan temperatures=D_W:0x64 cooling=D_W:20x3 the_level=D_W:30 speed=D_W:40 | sed -n 3,5p
    #  block               words   unused  request    reply     wire  tags
    1  D_W:0x64               64        -       14      261 23.87 ms  temperatures, cooling,
                                                                      the_level, speed
  $ . "$TESTDIR/functions.sh"
  $ tolvane-host plan --json lamp=M_bit:20.5 D_W:100:float D_W:106x2:uint32 --suggest | folded
  {"blockLimit":64,"blocks":[{"address":"M_W:20","count":1,"number":20,"replyBytes":9,"requestByte
  s":14,"station":1,"tags":["lamp"],"unused":0,"wireMs":1.996},{"address":"D_W:100","count":10,"nu
  mber":100,"replyBytes":45,"requestBytes":14,"station":1,"tags":["D_W:100:float","D_W:106x2:uint3
  2"],"unused":4,"wireMs":5.121}],"cycle":{"bytes":82,"ms":7.118,"requests":2,"wireMs":7.118},"req
  uestPerTag":{"bytes":85,"ms":7.378,"requests":3,"wireMs":7.378},"serial":"115200,8,NONE,1","sugg
  estion":{"blockLimit":64,"bytes":82,"ms":7.118,"requests":2,"wireMs":7.118},"turnaroundMs":0}

The picture: as docs/example shows it. When it has changed, look at it.

  $ docs=$TESTDIR/../../docs
  $ tolvane-host plan "$docs/example/line.csv" --svg - | diff - "$docs/example/plan.svg"

The README's examples, and what is refused.

  $ for command in plan explain; do
  >     block="/^\$ tolvane-host $command/,/^\`\`\`/p"
  >     sed -n "$block" "$docs/../README.md" | grep -v '^```' > shown
  >     (head -1 shown; cd "$docs/.."; $(sed -n '1s/^. //p' $OLDPWD/shown)) | diff - shown
  > done
  $ refusals tolvane-host plan <<'END'
  > 
  > D_W:5 --block-limit 128
  > D_W:5 --station 256
  > D_W:5 --turnaround x
  > D_W:5 --svg /nowhere/plan.svg
  > END
  tolvane-host: nothing to plan; expected a tag file or addresses
  tolvane-host: --block-limit "128": expected a number from 1 to 127
  tolvane-host: --station "256": expected a number from 0 to 255
  tolvane-host: --turnaround "x": expected a number from 0 to 10000
  tolvane-host: cannot write /nowhere/plan.svg: No such file or directory
  [1]
