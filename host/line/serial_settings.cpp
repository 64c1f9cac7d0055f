// The text form of the settings, and what a byte takes on the wire.
#include "host/line/serial_settings.h"

#include "host/output/failure.h"

#include <QtCore/QStringList>

namespace host {

namespace {

constexpr qint64 MicrosecondsPerSecond = 1000 * 1000;

Failure refuse(const QString &text, const char *part, const QString &found, const QString &expected)
{
    return Failure("serial settings \"%1\": %2 \"%3\", expected %4"_s.arg(text, QLatin1String(part),
                                                                          found, expected),
                   BadInput);
}

bool isParity(const QString &text, const char *name)
{
    return text == QLatin1String(name) || text == QLatin1Char(*name);
}

}  // namespace

SerialSettings SerialSettings::parse(const QString &text)
{
    QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() == 2 && parts[1].size() == 3)  // 9600,8N1
        parts = QStringList{parts[0], parts[1].mid(0, 1), parts[1].mid(1, 1), parts[1].mid(2)};
    if (parts.size() != 4)
        throw refuse(text, "the text", text, "baud,data bits,parity,stop bits, such as 9600,8,N,1");

    SerialSettings settings;
    settings.baudRate = parts[0].toInt();
    if (settings.baudRate < 1 || settings.baudRate > HighestBaud)
        throw refuse(text, "baud rate", parts[0], "a number from 1 to %1"_s.arg(HighestBaud));

    const int dataBits = parts[1].toInt();
    if (dataBits < 5 || dataBits > 8)
        throw refuse(text, "data bits", parts[1], "5 to 8");
    settings.dataBits = static_cast<QSerialPort::DataBits>(dataBits);

    if (isParity(parts[2], "EVEN"))
        settings.parity = QSerialPort::EvenParity;
    else if (isParity(parts[2], "ODD"))
        settings.parity = QSerialPort::OddParity;
    else if (!isParity(parts[2], "NONE"))
        throw refuse(text, "parity", parts[2], "NONE, EVEN or ODD, or N, E or O");

    if (parts[3] == "2"_s)
        settings.stopBits = QSerialPort::TwoStop;
    else if (parts[3] != "1"_s)
        throw refuse(text, "stop bits", parts[3], "1 or 2");
    return settings;
}

int SerialSettings::bitsPerByte() const
{
    const int startBits = 1;
    const int parityBits = parity == QSerialPort::NoParity ? 0 : 1;
    return startBits + dataBits + parityBits + stopBits;
}

std::chrono::microseconds SerialSettings::wireTime(int bytes) const
{
    return std::chrono::microseconds(qint64(bytes) * bitsPerByte() * MicrosecondsPerSecond /
                                     baudRate);
}

}  // namespace host
