// Where the driver library and the simulated controller lie: beside this program, as built or as
// installed.
#pragma once

#include <QtCore/QString>

namespace host {

/** Both throw Failure (bad input) that names the places searched when there is no such file. */
QString findDriver();
QString findController();

}  // namespace host
