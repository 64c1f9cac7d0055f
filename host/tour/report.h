// What the demo prints: steps, frames with their meaning, values, callbacks and verdicts.
#pragma once

#include "host/exchange/loop.h"

#include <QtCore/QStringList>
#include <QtCore/QTextStream>
#include <QtCore/QVector>

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

    /** Rows of cells, the first row a heading, the first cell of each row its name. */
    void table(const QVector<QStringList> &rows);

    /** The verdict on one result; a wrong one is printed with what was expected. */
    template <typename Result>
    void check(const QString &what, const Result &got, const Result &expected)
    {
        verdict(what, got == expected, valueText(expected), valueText(got));
    }

    int checks() const { return m_checks; }
    int wrong() const { return m_wrong; }

    static QString valueText(const QString &value) { return value; }
    static QString valueText(int value) { return QString::number(value); }
    static QString valueText(bool value) { return QLatin1String(value ? "yes" : "no"); }
    static QString valueText(const QVector<int> &values);  ///< a long list is shortened

private:
    void verdict(const QString &what, bool right, const QString &expected, const QString &got);
    void frame(const char *arrow, const QByteArray &bytes, const QString &meaning);

    QTextStream &m_out;
    int m_steps = 0;
    int m_checks = 0;
    int m_wrong = 0;
};

}  // namespace host
