// The device file behind a serial port's name, and why it cannot be opened.
#pragma once

#include <QtCore/QString>

namespace host {

/**
 * The path of a port's device: "ttyS1" in /dev, any other file where it is. Links are followed, for
 * locks go by the path and must be the same under every name; of a link that leads nowhere, its
 * own.
 */
QString portDevice(const QString &name);

/**
 * Why the device of that path could not be opened, or was lost: it is not there, another program
 * holds it (which lock says so), or its group's members alone may open it. Otherwise the text that
 * was said of it.
 */
QString portTrouble(const QString &file, const QString &said);

}  // namespace host
