// Reads text files whole.
#include "host/output/text_file.h"

#include "host/output/failure.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>

namespace host {

namespace {

bool isNoText(QChar sign)
{
    return sign == QChar::ReplacementCharacter ||
           (sign.category() == QChar::Other_Control && sign != QLatin1Char('\t'));
}

}  // namespace

QStringList readLines(const QString &path, const QString &kind)
{
    QFile file(path);
    const bool isInput = path == "-"_s;
    if (!(isInput ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly)))
        throw Failure("cannot read the %1 %2: %3"_s.arg(kind, path, file.errorString()));
    QByteArray text = file.readAll();
    if (text.startsWith("\xEF\xBB\xBF"))
        text.remove(0, 3);
    QStringList lines;
    for (const QByteArray &line : text.split('\n')) {
        // With its size, for the text goes on behind a zero byte.
        lines += QString::fromUtf8(line.constData(), int(line.size()));
        if (lines.last().endsWith(QLatin1Char('\r')))
            lines.last().chop(1);
        if (std::any_of(lines.last().cbegin(), lines.last().cend(), isNoText))
            throw Failure("%1:%2: %3: expected text in UTF-8 without control characters"_s.arg(
                              isInput ? "standard input"_s : QFileInfo(path).fileName(),
                              QString::number(lines.size()), quoted(lines.last())),
                          BadInput);
        lines.last() = lines.last().trimmed();
    }
    return lines;
}

}  // namespace host
