// A memory image: the controller's memory as a CSV text, device,word,value.
#pragma once

#include "plc/memory.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace plc {

/**
 * Stores the words that `text` lists. A line is a device name, a word number and a value, such as
 * "D,100,4660" or "M,5,0x00FF"; empty lines, lines starting with "#" and the header line
 * "device,word,value" are passed over, and so is a byte order mark. Returns an empty text, or what
 * is wrong in which line; the lines before that one are then stored.
 */
QString loadImage(const QByteArray &text, Memory *memory);

/** The image of a memory: the header line and a line for every word that is not 0. */
QByteArray saveImage(const Memory &memory);

}  // namespace plc
