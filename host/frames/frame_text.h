// Frames in plain words for people: the host's own reading of the wire, independent of the driver.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace host {

/** What a frame says, and the first thing that is wrong with it. */
struct FrameReading
{
    QString text;        ///< such as "read 2 words of D from word 100"; empty if unreadable
    QVector<int> words;  ///< the words written, or answered to a read
    QString fault;       ///< empty when the frame is well formed
    int faultAt = -1;    ///< byte that the fault is seen at; the frame's size where one is missing
};

/** Reads a request. At most maxValues of its values are named in the text. */
FrameReading readRequest(const QByteArray &frame, int maxValues = 8);

/**
 * Reads a reply. With the request that it answers, its length is judged too and its values are
 * written as that device's usually are; without one, pass an empty array.
 */
FrameReading readReply(const QByteArray &frame, const QByteArray &request, int maxValues = 8);

/** The checksum as a receiver judges it, by its place before the closing byte: "checksum 72:
 * right". */
QString checksumText(const QByteArray &frame);

/** A well-formed reply to a well-formed request; the words that it asks for are all 0. */
QByteArray blankReply(const QByteArray &request);

/** The bytes as hex pairs, at most maxBytes of them: the middle of a longer frame is left out. */
QString hexText(const QByteArray &bytes, int maxBytes);

}  // namespace host
