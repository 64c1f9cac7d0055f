// The live table on a terminal.
#ifndef TOLVANE_HOST_WATCH_SCREEN_H
#define TOLVANE_HOST_WATCH_SCREEN_H

#include "host/watch/line_use.h"
#include "host/watch/watched_values.h"

namespace host {

/** True when standard output is a terminal. */
bool isTerminal();

/** Draws in place, over its own earlier drawing; what does not fit is counted, not shown. */
class Screen
{
public:
    Screen();
    ~Screen();  ///< gives the cursor back, below the table
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    /** lately: the use of the line since the drawing before, or over the last second. */
    void draw(const QVector<WatchedValue> &values, const LoopCounters &counters,
              const LineUse &lately);

private:
    void line(QByteArray &drawing, const QString &text, int columns);

    bool m_unicode;
    int m_linesAbove = 0;
};

}  // namespace host

#endif
