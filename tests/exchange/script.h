// Exchanges written down as scripts: steps in lines or divided by ";", each of the form
//
//     VERB ARGUMENTS : OUTCOME => CALLBACK, CALLBACK
//
// Without an outcome the usual one is meant, without callbacks none; "*" is any. Blanks do not
// count in a comparison. A range is written [STATION#]TYPE ADDRESS [xCOUNT]; values are hex of the
// bytes that the host passes; a write without any is of zeros.
//
//     init PROPERTIES                    monitor RANGE, ... : REQUESTS
//     write RANGE [kind K] [= VALUES]    condition RANGE [kind K] [mark M], ...
//     get RANGE : VALUES                 recipe RANGE @UNIT [owner O], ... : KEPT
//     buffer UNIT [xCOUNT] : VALUES      plc DEVICE WORD [xCOUNT] : VALUES
//     buffer UNIT = VALUES               plc DEVICE WORD = VALUES
//     request WRITE READ                 sets both request bytes of the shared block
//     requested : WRITE READ             what they are now
//     flood write|condition COUNT        D_W 0, 1, 2 ..., one word each; the values 1, 2, 3 ...
//     send : BODY                        the frame without opening byte, checksum, closing byte
//     item : KIND STATION RANGE          what the frame says it serves; behind words "more", if it
//                                        carries values beyond them
//     reply none|ok|plc|data DATA|hex HEX|raw HEX : RESULT
//                                        ok acknowledges, plc: the controller's own, data and hex
//                                        in a good frame, raw as it is
//     data DATA : RESULT                 the next frame, answered with these data characters
//     fail                               the next frame, lost as often as there are tries
//     error : TEXT                       error text of the last reply
//     serve COUNT : REQUEST REQUEST      that many exchanges with the controller; "-" is none
//     drain                              exchanges until there is nothing to send
//     on CALLBACK do STEP & STEP         once, inside the next such callback
#ifndef TOLVANE_TESTS_EXCHANGE_SCRIPT_H
#define TOLVANE_TESTS_EXCHANGE_SCRIPT_H

#include "bench.h"

/** "2#D_W 100 x2 @5 owner 3 kind 6"; "buffer 3 x2" and "serve 4" have the form of one as well. */
Range rangeOf(const QString &text);

/** Plays a script; returns an empty text or the first step that went otherwise, and how. */
QString play(Bench &bench, const QString &script);

#endif
