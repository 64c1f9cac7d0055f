// Escapes, cuts and prints messages.
#include "host/output/failure.h"

#include <QtCore/QTextStream>

namespace host {

namespace {

constexpr int LongestQuote = 80;
constexpr int QuotedEnd = 16;

}  // namespace

QString printable(const QString &text)
{
    QString safe;
    for (const QChar &sign : text)
        safe += sign.category() == QChar::Other_Control && sign != QLatin1Char('\n')
                    ? "\\x%1"_s.arg(sign.unicode(), 2, 16, QLatin1Char('0'))
                    : QString(sign);
    return safe;
}

QString quoted(const QString &text)
{
    const bool isLong = text.size() > LongestQuote;
    const QString shown =
        isLong ? text.left(LongestQuote - QuotedEnd - 5) + " ... "_s + text.right(QuotedEnd) : text;
    return QLatin1Char('"') + printable(shown) + QLatin1Char('"');
}

void tell(const QString &message)
{
    QTextStream(stderr) << "tolvane-host: " << printable(message) << '\n';
}

}  // namespace host
