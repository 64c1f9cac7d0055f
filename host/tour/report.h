// What the demo prints: steps, frames with their meaning, values, callbacks and verdicts.
#pragma once

#include "host/exchange/loop.h"

#include <QtCore/QTextStream>

namespace host {

class Report
{
public:
    explicit Report(QTextStream &out) : m_out(out) {}

    /** Opens the next step: its title and, below it, what it shows. */
    void step(const QString &title, const QString &intent);

    /** A plain line of the step. */
    void line(const QString &text = QString());

    /** A named line of the step, such as "shown    D_W:200 = 17"; a long one is wrapped. */
    void item(const QString &name, const QString &text);

    /** A request and its reply, hex on the left and plain words on the right. */
    void exchange(const Exchange &exchange);

    /** The verdict on one result; a wrong one is printed with what was expected. */
    template <typename Got, typename Expected>
    void check(const QString &what, const Got &got, const Expected &expected)
    {
        verdict(what, text(got), text(expected));
    }

    static QString text(const QString &text) { return text; }
    static QString text(qint64 number) { return QString::number(number); }
    static QString text(const QVector<int> &values);

    int checks() const { return m_checks; }
    int wrong() const { return m_wrong; }

private:
    void verdict(const QString &what, const QString &got, const QString &expected);
    void frame(const char *arrow, const QByteArray &bytes, const QString &meaning);

    QTextStream &m_out;
    int m_steps = 0;
    int m_checks = 0;
    int m_wrong = 0;
};

}  // namespace host
