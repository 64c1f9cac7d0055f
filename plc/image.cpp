// Reading and writing memory images.
#include "plc/image.h"
#include "plc/literals.h"

#include <QtCore/QStringList>

namespace plc {

namespace {

const char header[] = "device,word,value";

/** Stores the word of one line; returns what is wrong with it, or an empty text. */
QString loadLine(const QByteArray &line, Memory *memory)
{
    const QList<QByteArray> fields = line.split(',');
    if (fields.size() != 3)
        return "expected device,word,value"_s;

    const char device = Memory::letter(fields[0].trimmed());
    if (device == 0) {
        QStringList names;
        for (char letter : Memory::devices())
            names.append(QString::fromLatin1(Memory::name(letter)));
        return "unknown device \"%1\", expected one of %2"_s.arg(QString::fromUtf8(fields[0]),
                                                                 names.join(" "_s));
    }

    bool ok = false;
    const int word = fields[1].trimmed().toInt(&ok);
    if (!ok || word < 0 || word >= Memory::wordCount(device)) {
        return "no word \"%1\", expected 0 to %2"_s.arg(
            QString::fromUtf8(fields[1]), QString::number(Memory::wordCount(device) - 1));
    }

    const QByteArray text = fields[2].trimmed();
    const quint16 value = text.toUShort(&ok, text.startsWith("0x") ? 16 : 10);
    if (!ok) {
        return "bad value \"%1\", expected 0 to 65535 or 0x0000 to 0xFFFF"_s.arg(
            QString::fromUtf8(fields[2]));
    }
    memory->setWord(device, word, value);
    return QString();
}

}  // namespace

QString loadImage(const QByteArray &text, Memory *memory)
{
    const QByteArray mark = "\xEF\xBB\xBF";  // some editors begin UTF-8 with it
    int number = 0;
    for (const QByteArray &rawLine :
         text.mid(text.startsWith(mark) ? mark.size() : 0).split('\n')) {
        ++number;
        const QByteArray line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith('#') || line == header)
            continue;
        const QString fault = loadLine(line, memory);
        if (!fault.isEmpty())
            return "line %1: %2"_s.arg(QString::number(number), fault);
    }
    return QString();
}

QByteArray saveImage(const Memory &memory)
{
    QByteArray text = header;
    text += '\n';
    for (char device : Memory::devices()) {
        for (int word = 0; word < Memory::wordCount(device); ++word) {
            const quint16 value = memory.word(device, word);
            if (value == 0)
                continue;
            text += Memory::name(device) + ',' + QByteArray::number(word) + ',' +
                    QByteArray::number(value) + '\n';
        }
    }
    return text;
}

}  // namespace plc
