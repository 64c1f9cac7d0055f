// The bench: loading the driver, handing it what it is given, watching what comes back.
#include "bench.h"

namespace {

Bench *current = nullptr;

int hexAt(const QByteArray &bytes, int at)
{
    return bytes.mid(at, 2).toInt(nullptr, 16);
}

}  // namespace

Driver::~Driver()
{
    if (!library_.unload())
        qFatal("the driver stays loaded: %s", qPrintable(library_.errorString()));
}

bool isBitType(const QString &name)
{
    return !name.endsWith("_W");
}

int widthOf(const Range &range)
{
    return isBitType(range.name) ? 1 : 2;
}

QByteArray wrapped(char open, const QByteArray &body, char close)
{
    unsigned sum = 0;
    for (int i = 0; i < body.size(); ++i)
        sum += static_cast<unsigned char>(body.at(i));
    const QByteArray checksum = QByteArray(1, char(sum & 0xFF)).toHex().toUpper();
    return open + body + checksum + close;
}

KEY_ADDRESS keyOf(const Range &range)
{
    KEY_ADDRESS key;
    key.stationNo = range.station;
    key.regName = range.name;
    key.startAddr = range.start;
    key.bitMark = range.mark;
    key.count = range.count;
    return key;
}

_RCP_VAR_PRO entryOf(const Range &range)
{
    _RCP_VAR_PRO entry;
    entry.ownerKey = range.owner;
    entry.stationNo = range.station;
    entry.regName = range.name;
    entry.startAddr = range.start;
    entry.count = range.count;
    entry.bufIndex = range.unit;
    return entry;
}

Bench::Bench() : controller(memory), shared(SharedBlockBytes), buffer(2 * RecipeUnits)
{
    current = this;
    driver.setAddrValueChangeCallBack(callBack);
}

Bench::~Bench()
{
    current = nullptr;
}

void Bench::callBack(int first, int stationNo, const QString &text, int address)
{
    Bench &bench = *current;
    if (bench.mutex.tryLock())
        bench.mutex.unlock();
    else
        bench.flaws << "callback while the panel's mutex is held";

    QString call = text + ' ' + QString::number(address);
    if (first == -1 && stationNo == -1 && text == "-1")
        call = "done " + QString::number(address);
    else if (!(first == 7 && stationNo == 1) && !(first == 0 && stationNo == -1))
        call.prepend(QString("%1 %2 ").arg(first).arg(stationNo));
    bench.calls << call;
    if (bench.reaction)
        bench.reaction(call);
}

bool Bench::init(const QByteArray &propertyText)
{
    int result = -1;
    const int returned = driver.initProperty(shared.data(), this, buffer.data(), &result,
                                             propertyText.constData(), &mutex);
    return returned == 1 && result == 0;
}

int Bench::monitor(const Ranges &keys)
{
    QList<KEY_ADDRESS> list;
    for (const Range &range : keys)
        list << keyOf(range);
    return driver.addrMerge(list);
}

void Bench::condition(const Range &range)
{
    if (driver.addConditionRead(keyOf(range), range.kind) != 1)
        flaws << "condition read not taken";
}

int Bench::recipe(const Ranges &entries)
{
    QVector<_RCP_VAR_PRO> list;
    for (const Range &range : entries)
        list << entryOf(range);
    return driver.setRcpAddress(list);
}

void Bench::write(const Range &range, const QByteArray &values)
{
    // A copy of exactly that size, so that a read beyond it can be noticed.
    const std::vector<unsigned char> exact(values.begin(), values.end());
    if (driver.setData(range.station, range.name, range.start, range.count, exact.data(),
                       range.kind) != 1)
        flaws << "write not taken";
}

QByteArray Bench::get(const Range &range)
{
    const int bytes = qMax(0, range.count) * widthOf(range);
    QByteArray out(bytes + 1, '\xEE');
    if (driver.getData(range.station, range.name, range.start, range.count,
                       reinterpret_cast<unsigned char *>(out.data())) != 1 ||
        !out.endsWith('\xEE'))
        flaws << "read-out beyond the buffer, or not 1";
    return out.left(bytes);
}

bool Bench::send()
{
    FRAME_PRO offered;
    offered.sendLen = -1;
    const int result = driver.getSendFrame(&offered);
    if (result == 1) {
        frame = offered;
        checkFrame();
    } else if (result != 0 || offered.sendLen != -1) {
        flaws << "nothing to send, but the record was touched";
    }
    return result == 1;
}

void Bench::checkFrame()
{
    const QByteArray bytes = request();
    const char command = bytes.size() < 14 ? '?' : bytes.at(1);
    const bool reads = command == 'r';
    const int words = reads || command == 'w' ? hexAt(bytes, 9) / 2 : 0;
    const int sendLen = reads ? 14 : command == 'w' ? 14 + 4 * words : 16;
    if (bytes != wrapped(STX, bytes.mid(1, bytes.size() - 4), ETX) || frame.sendLen != sendLen ||
        words > 127 || (words < 1 && sendLen != 16) ||
        frame.replyLen != (reads ? 4 * words + 5 : 5) || frame.dataStart != (reads ? 2 : 0) ||
        frame.readCount != (reads ? words : 0))
        flaws << "frame not in order: " + QString::fromLatin1(bytes.toHex());
    const QByteArray values(reinterpret_cast<const char *>(frame.var.valueBuf), ValueBytes);
    if (reads && !isBitType(frame.var.regName) && values != QByteArray(ValueBytes, '\0'))
        flaws << "a read with values";
}

QByteArray Bench::request() const
{
    return QByteArray(reinterpret_cast<const char *>(frame.frame), qBound(0, frame.sendLen, 1024));
}

QString Bench::requestText() const
{
    const QByteArray bytes = request();
    const int word = (hexAt(bytes, 3) | hexAt(bytes, 5) << 8) / 2;
    const int words = bytes.at(1) == 'r' || bytes.at(1) == 'w' ? hexAt(bytes, 9) / 2 : 1;
    QString text = frame.var.stationNo == 1 ? QString() : QString("%1#").arg(frame.var.stationNo);
    text += QString::fromLatin1(bytes.mid(1, 1) + plc::Memory::name(bytes.at(2)));
    text += QString::number(word);
    return words == 1 ? text : text + QString("x%1").arg(words);
}

QByteArray Bench::answer()
{
    const QByteArray reply = controller.receive(request());
    if (reply.isEmpty())
        flaws << requestText() + " refused";
    return reply;
}

int Bench::reply(const QByteArray &bytes)
{
    return driver.dealRcvFrame(bytes, &errorText);
}

QString Bench::exchange()
{
    if (!send())
        return "-";
    const QString asked = requestText();  // a callback may ask for the next
    if (reply(answer()) != 1)
        flaws << asked + ": reply not accepted";
    return asked;
}

void Bench::drain()
{
    const QString nothing = "-";
    QString before;
    for (int i = 0; i < 3000; ++i) {
        const QString now = exchange();
        if (now == nothing && before == nothing)
            return;
        before = now;
    }
    flaws << "the queues do not run empty";
}
