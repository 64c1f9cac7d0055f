// The device file behind a serial port's name, and why it cannot be opened.
#ifndef TOLVANE_HOST_PORT_DEVICE_H
#define TOLVANE_HOST_PORT_DEVICE_H

#include <QtCore/QString>

namespace host {

/** Where a port lies: "ttyS1" in /dev, any other file where it is, as an absolute path. */
QString portDevice(const QString &name);

/**
 * Why the device could not be opened, or was lost: it is not there, another program holds it (which
 * lock says so), or its group's members alone may open it. Otherwise the text that was said of it.
 */
QString portTrouble(const QString &device, const QString &said);

}  // namespace host

#endif
