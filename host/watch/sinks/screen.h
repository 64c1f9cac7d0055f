// The live table on a terminal.
#pragma once

#include "host/watch/line_use.h"
#include "host/watch/watched_values.h"

namespace host {

/** True when standard output is a terminal. */
bool isTerminal();

struct TableLine
{
    QString text;
    bool isGrey = false;
};

/**
 * The table's lines, for a terminal of that size: heading, values, and how many more there are.
 * Addresses and values are whole as long as there is room for them; names are cut first. Values
 * that are not good are grey, with the reason beside them.
 */
QVector<TableLine> composeTable(const QVector<WatchedValue> &values, LineTime now, int rows,
                                int columns, bool unicode);

/** Draws in place, over its own earlier drawing. */
class Screen
{
public:
    Screen();

    /** lately: the use of the line since the drawing before, or over the last second. */
    void draw(const QVector<WatchedValue> &values, const LoopCounters &counters,
              const LineUse &lately, LineTime now);

    /** Makes room for a message on standard error, where that is the same terminal. */
    void makeRoom();

private:
    QByteArray toTop();

    bool m_unicode;
    int m_linesAbove = 0;
};

}  // namespace host
