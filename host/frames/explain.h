// Frames to be explained: from bytes that were typed or pasted, or from what listened on the line.
#pragma once

#include "host/frames/frame_text.h"

#include <QtCore/QStringList>

namespace host {

/** A frame with what it says. */
struct ExplainedFrame
{
    QString time;  ///< as the trace has it; empty otherwise
    bool isRequest = false;
    QByteArray bytes;  ///< empty: a reply that never came
    FrameReading reading;
    int request = -1;  ///< of a reply: the place of the frame that it answers; -1: none is known
};

/**
 * Reads bytes as hex pairs, with blanks or without. Arguments of one byte each are taken together,
 * any other is a frame or several; a frame that begins with ACK is a reply to the one before.
 * Throws Failure (bad input) that names what is no byte.
 */
QVector<ExplainedFrame> framesFromText(const QStringList &arguments);

/**
 * Reads a file that --trace or "socat -x" wrote, or lines of hex pairs; "-" is standard input. What
 * a last line that is cut short still holds is read, too. Throws Failure (bad input) that names the
 * line that is none of these.
 */
QVector<ExplainedFrame> framesFromFile(const QString &path);

}  // namespace host
