// The simulated controller's counts and single requests as text.
#pragma once

#include "plc/answering.h"
#include "plc/faults.h"

#include <QtCore/QString>

namespace plc {

/**
 * Everything counted so far in four lines of name=number pairs, the names in fixed order:
 *
 *     served: total=7 read=4 write=2 set=1 clear=0
 *     refused: total=1 unfinished=0 too-long=0 ...
 *     faults: total=0 loss=0 cut=0 ...
 *     stray bytes: 0
 */
QString countsText(const Controller::Counts &counts, const Faults &faults);

/** One request in words, such as "read D 100 x 10", or why it was refused and its bytes. */
QString requestText(const Request &request, Verdict verdict);

}  // namespace plc
