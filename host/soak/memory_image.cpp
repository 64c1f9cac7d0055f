// Reads and writes memory images.
#include "host/soak/memory_image.h"

#include "host/failure.h"

#include <QtCore/QFile>
#include <QtCore/QTextStream>

namespace host {

namespace {

const QLatin1String Header("device,word,value");

Failure failed(const QFile &file)
{
    return Failure(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
}

}  // namespace

MemoryImage loadImage(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw failed(file);
    MemoryImage image;
    for (int number = 1; !file.atEnd(); ++number) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.isEmpty() || line == Header)
            continue;
        const QString value = line.section(QLatin1Char(','), 2);
        const int base = value.startsWith(QLatin1String("0x")) ? 16 : 10;
        bool isWord = false;
        bool isValue = false;
        const int word = line.section(QLatin1Char(','), 1, 1).toInt(&isWord);
        image[{line.section(QLatin1Char(','), 0, 0), word}] = value.toUShort(&isValue, base);
        if (!isWord || !isValue)
            throw Failure(QStringLiteral("%1, line %2: \"%3\", expected device,word,value")
                              .arg(path, QString::number(number), line));
    }
    return image;
}

void saveImage(const QString &path, const MemoryImage &image)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw failed(file);
    QTextStream out(&file);
    out << Header << '\n';
    for (auto word = image.cbegin(); word != image.cend(); ++word)
        out << word.key().first << ',' << word.key().second << ',' << word.value() << '\n';
    out.flush();
    if (file.error() != QFile::NoError)
        throw failed(file);
}

}  // namespace host
