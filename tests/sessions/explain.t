Frames in plain words: as hex pairs with or without blanks.

  $ request="02 72 61 43 38 30 30 30 30 30 34 37 32 03"
  $ reply="06 72 33 34 31 32 43 44 41 42 34 36 04"
  $ tolvane-host explain "$request" $(echo $reply | tr -d ' ') 066F364604
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
     read 2 words of D from word 100
     checksum 72: right
  
  <- 06 72 33 34 31 32 43 44 41 42 34 36 04
     2 words: 4660, 43981
     checksum 46: right
  
  <- 06 6F 36 46 04
     acknowledged
     checksum 6F: right
  
  3 frames, none wrong
  $ explain() {  # in brief
  >     tolvane-host explain "$@" > out; status=$?
  >     grep -v -e ' read 2 words' -e ': 4660, ' -e right -e '^$' out
  >     return $status
  > }
  $ explain $(echo $request $reply $request 06 6F 36 03 34 04 | tr -d ' ') 02 72 61 43 38 30 30 30 30 31 36 37 35 33
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
  <- 06 72 33 34 31 32 43 44 41 42 34 36 04
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
  <- 06 6F 36 03 34 04
           ^^
     wrong: 1 byte of data: not the answer to this request
     checksum bytes 03 34: wrong, the bytes before add up to A5 (41 35)
  -> 02 72 61 43 38 30 30 30 30 31 36 37 35 33
                                            ^^
     wrong: expected ETX (03), found 33
     read 11 words of D from word 100
  5 frames, 2 wrong
  [1]
  $ tolvane-host explain --json "$reply" | sed 's/^ *//' | tr '\n' ' ' | fold -s -w 96; echo
  [ { "bytes": "06 72 33 34 31 32 43 44 41 42 34 36 04", "checksum": "checksum 46: right", 
  "direction": "reply", "fault": null, "faultAt": null, "text": "2 words: 4660, 43981", "time": 
  null } ] 
  $ explain 027761393030313030$(printf 32%.0s $(seq 9)) $(printf '0277613930303130303138%s463703' $(printf 32%.0s $(seq 48)))
  -> 02 77 61 39 30 30 31 30 30 32 32 32 32 32 32 32 32 32
                                                           ^^
     wrong: the frame ends too early
     checksum bytes 32 32: wrong, the bytes before add up to 2E (32 45)
  -> 02 77 61 39 30 30 31 30 30 31 38 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32
     32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 32 46 37 03
                                                                                      ^^
     wrong: checksum F7, but the bytes add up to CB
     write 12 words of D from word 200: 8738, 8738, 8738, 8738, 8738, 8738, 8738, 8738, 8738, 8738,
       8738, 8738
     checksum bytes 46 37: wrong, the bytes before add up to CB (43 42)
  2 frames, 2 wrong
  [1]
  $ explain 0672 3930 $(printf 30%.0s $(seq 39)) 04
  <- 06 72 39 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30 30
           ^^
     30 30 30 30 30 30 30 30 30 30 30 04
     wrong: 39 bytes of data are no words
     checksum bytes 30 30: wrong, the bytes before add up to CB (43 42)
  1 frame, 1 wrong
  [1]
  $ (printf '06 72 '; printf '30 %.0s' $(seq 30000); echo 04) | explain - | tail -3
     wrong: 29998 bytes of data are no words
     checksum bytes 30 30: wrong, the bytes before add up to 12 (31 32)
  1 frame, 1 wrong
  $ tolvane-host explain 02 hello
  tolvane-host: "hello" is no frame; expected bytes as hex pairs, such as "02 72 61", or a trace file
  [2]

Each kind of request, and what is none.

  $ explain 02776932413030303030344135363535393541334303 026E6931343030303046374646303503 \
  >     026F6C30343030303030383030433703 02786130303030 02727A30303030 \
  >     02726163383030 02726143393030 \
  >     0272614338303030303033373103 0272614338303030303034373303 \
  >     027261433830303030303437320302 > told; grep -v -e '^->' -e '  checksum ' -e 'no checksum' told
     write 2 words of M from word 21: 0x65A5, 0x5A59
     clear bit 3 of M word 10
     set bit 3 of TX word 2
        ^^
     wrong: unknown command 78
           ^^
     wrong: unknown device letter 7A
              ^^
     wrong: expected a digit 0-9 or A-F, found 63
              ^^
     wrong: byte address 201 is odd
                                ^^
     wrong: byte count 3 is odd
                                      ^^
     wrong: checksum 73, but the bytes add up to 72
        ^^
     wrong: the frame ends too early
  11 frames, 7 wrong

A trace as the host writes one, whole, with replies that it refused, and cut at its end.

  $ asked="10:00:00.123Z  ->  $request  read 2"
  $ printf "$asked\n10:00:00.126Z  <-  $reply  2 words\n" > trace
  $ tolvane-host explain trace
  10:00:00.123Z
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
     read 2 words of D from word 100
     checksum 72: right
  
  10:00:00.126Z
  <- 06 72 33 34 31 32 43 44 41 42 34 36 04
     2 words: 4660, 43981
     checksum 46: right
  
  2 frames, none wrong
  $ printf "$asked\n10:00:00.126Z  <-  $reply  refused: too early: after 0.1 ms\n" >> trace
  $ printf "$asked\n10:00:00.126Z  <-  -\n" | cat trace - | explain --wrong
  10:00:00.123Z
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
  10:00:00.126Z
  <- 06 72 33 34 31 32 43 44 41 42 34 36 04
     wrong: refused by the host: too early: after 0.1 ms
  10:00:00.123Z
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
  10:00:00.126Z
  <- no reply
  5 frames, 1 wrong; 1 request without a reply
  [1]
  $ printf "$asked\n10:00:00.126Z  <-  06 72 33 3" | explain --wrong -
  10:00:00.123Z
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
  10:00:00.126Z
  <- 06 72 33
              ^^
     wrong: the frame ends too early (the last line is cut)
     no checksum: the frame is too short
  2 frames, 1 wrong
  [1]
  $ printf "$asked\r\n10:00:00.126Z  <-  $reply\r\n10:00:0" | explain --wrong -
  2 frames, none wrong

What socat heard: a request in two pieces, and one that came twice.

  $ asked() {
  >     echo "> 2026/11/23 04:36:51.000386886  length=3 from=0 to=2"
  >     echo " 02 72 61"
  >     echo "> 2026/11/23 04:36:51.000386999  length=11 from=3 to=13"
  >     echo " 43 38 30 30 30 30 30 34 37 32 03                 C800000472."
  >     echo --
  > }
  $ answered="< 2026/11/23 04:36:51.000387072  length=13 from=0 to=12\n $reply\n--\n"
  $ (asked; printf "$answered") | explain
  2026/11/23 04:36:51.000386886
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
  2026/11/23 04:36:51.000387072
  <- 06 72 33 34 31 32 43 44 41 42 34 36 04
  2 frames, none wrong
  $ (asked; asked; printf "$answered") | explain --wrong
  2026/11/23 04:36:51.000386886
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
  <- no reply
  3 frames, none wrong; 1 request without a reply
  [1]
  $ (asked; printf "< 2026/11/23 04:36:51.000387072  length=13 from=0 to=12\n 06 72 33 3") | explain --wrong
  2026/11/23 04:36:51.000386886
  -> 02 72 61 43 38 30 30 30 30 30 34 37 32 03
  <- 06 72 33
              ^^
     wrong: the frame ends too early (the last line is cut)
     no checksum: the frame is too short
  2 frames, 1 wrong
  [1]
  $ (asked | head -2; printf "$answered") | explain
  2026/11/23 04:36:51.000386886
  -> 02 72 61
              ^^
     wrong: the frame ends too early
     no checksum: the frame is too short
  2026/11/23 04:36:51.000387072
  <- 06 72 33 34 31 32 43 44 41 42 34 36 04
  2 frames, 1 wrong
  [1]
  $ printf "something else\n$request\n" | explain -
  tolvane-host: standard input:1: "something else": expected what --trace or socat -x writes, or bytes as hex pairs
  [2]
  $ explain < /dev/null
  tolvane-host: there is no frame in standard input
  [2]
