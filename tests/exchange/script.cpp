// Reading and playing scripts.
#include "script.h"

#include <regex>

Range rangeOf(const QString &text)
{
    const QStringList words = text.simplified().split(' ');
    Range range(words.at(0).section('#', -1), words.value(1).toInt());
    if (words.at(0).indexOf('#') > 0)
        range.station = words.at(0).section('#', 0, 0).toInt();
    for (int i = 2; i < words.size(); ++i) {
        const QString word = words.at(i);
        if (word.startsWith('x'))
            range.count = word.mid(1).toInt();
        else if (word.startsWith('@'))
            range.unit = word.mid(1).toInt();
        else if (word == "owner")
            range.owner = words.value(i + 1).toInt();
        else if (word == "kind")
            range.kind = words.value(i + 1).toInt();
        else if (word == "mark")
            range.mark = words.value(i + 1).toInt();
    }
    return range;
}

namespace {

Ranges rangesOf(const QString &text)
{
    Ranges ranges;
    const QStringList parts = text.split(',');
    for (int i = 0; i < parts.size() && !text.isEmpty(); ++i)
        ranges.push_back(rangeOf(parts.at(i)));
    return ranges;
}

/** Whether an argument is written as script.h says; what a reply brings can be anything. */
bool isUnderstood(const QString &verb, const QString &argument)
{
    static const std::regex range(
        " *\\S+ -?\\d+( +(x|@|owner +|kind +|mark +)-?\\d+)* *(,(?=.)|$)");
    const std::string text = argument.toStdString();
    return verb == "init" || verb == "reply" || verb == "data" ||
           std::regex_replace(text, range, "").empty();
}

QString hex(const QByteArray &bytes)
{
    return bytes.toHex().toUpper();
}

QByteArray lowFirst(int word)
{
    return QByteArray(1, char(word & 0xFF)) + char(word >> 8);
}

quint16 wordAt(const QByteArray &bytes, int at)
{
    return quint16((bytes.at(at) & 0xFF) | (bytes.at(at + 1) & 0xFF) << 8);
}

/** Result codes show only when they are not the usual one. */
QString unlessOne(int result)
{
    return result == 1 ? QString() : QString::number(result);
}

QByteArray replyFor(Bench &bench, const QString &what, const QByteArray &data)
{
    if (what == "plc")
        return bench.answer();
    if (what == "data")
        return wrapped(ACK, 'r' + data, EOT);
    if (what == "hex")
        return wrapped(ACK, 'r' + QByteArray::fromHex(data), EOT);
    if (what == "raw")
        return QByteArray::fromHex(data);
    return what == "ok" ? wrapped(ACK, "w", EOT) : QByteArray();
}

/** Does "VERB ARGUMENTS" and returns its outcome. */
QString outcomeOf(Bench &bench, const QString &action)
{
    const QString verb = action.section(' ', 0, 0);
    const QString text = action.section(' ', 1).trimmed();
    const bool hasValues = action.indexOf('=') >= 0;
    const QByteArray values = QByteArray::fromHex(action.section('=', 1).toLatin1());
    // Verbs whose argument is a bare number: the verb stands in the place of the type.
    const bool bare = verb == "buffer" || verb == "serve";
    const QString argument = (bare ? action : text).section('=', 0, 0);
    if (!isUnderstood(verb, argument))
        bench.flaws << "not understood: " + action;
    Range range = rangeOf(argument);
    const VARIABLE &item = bench.frame.var;
    QStringList results;
    if (verb == "init")
        return unlessOne(bench.init(text.toLatin1()));
    if (verb == "monitor")
        return QString::number(bench.monitor(rangesOf(text)));
    if (verb == "recipe")
        return QString::number(bench.recipe(rangesOf(text)));
    if (verb == "get")
        return hex(bench.get(range));
    if (verb == "error")
        return bench.errorText;
    if (verb == "send")
        return bench.send() ? bench.request().mid(1, bench.frame.sendLen - 4) : QByteArray("-");
    if (verb == "item") {
        const QByteArray all(reinterpret_cast<const char *>(item.valueBuf), ValueBytes);
        const QByteArray rest = all.mid(2 * item.count);
        const bool isMore = !isBitType(item.regName) && rest.count('\0') != rest.size();
        return QString("%1 %2 %3 %4 x%5 ")
                   .arg(item.kind)
                   .arg(item.stationNo)
                   .arg(item.regName)
                   .arg(item.startAddr)
                   .arg(item.count) +
               (isMore ? "more" : "");
    }
    if (verb == "reply")
        return unlessOne(bench.reply(
            replyFor(bench, text.section(' ', 0, 0), text.section(' ', 1).remove(' ').toLatin1())));
    if (verb == "serve") {
        for (int i = 0; i < range.start; ++i)
            results << bench.exchange();
        return results.join(" ");
    }
    if (verb == "data")
        return bench.send() ? outcomeOf(bench, "reply " + action) : QString("-");
    if (verb == "fail") {
        for (int i = 0; i < 3 && bench.send(); ++i)  // the usual property text allows three tries
            results << QString::number(bench.reply(QByteArray()));
        return results.join(" ") == "8 8 2" ? QString() : results.join(" ");
    }
    unsigned char &writeRequest = bench.shared[RecipeWriteRequest];
    unsigned char &readRequest = bench.shared[RecipeReadRequest];
    if (verb == "requested")
        return QString("%1 %2").arg(writeRequest).arg(readRequest);
    if (verb == "buffer") {
        char *const at = reinterpret_cast<char *>(bench.buffer.data()) + 2 * range.start;
        memcpy(at, values.constData(), size_t(values.size()));
        return hasValues ? QString() : hex(QByteArray(at, 2 * range.count));
    }
    if (verb == "plc") {
        const char device = plc::Memory::letter(range.name.toLatin1());
        QByteArray held;
        for (int i = 0; i < range.count && !hasValues; ++i)
            held += lowFirst(bench.memory.word(device, range.start + i));
        for (int i = 0; i < values.size() / 2; ++i)
            bench.memory.setWord(device, range.start + i, wordAt(values, 2 * i));
        return hex(held);
    }
    if (verb == "write") {
        if (hasValues)
            range.count = int(values.size()) / widthOf(range);
        bench.write(range, hasValues ? values : QByteArray(range.count * widthOf(range), '\0'));
    } else if (verb == "condition") {
        for (const Range &each : rangesOf(text))
            bench.condition(each);
    } else if (verb == "drain") {
        bench.drain();
    } else if (verb == "flood") {
        for (int i = 0; i < range.start; ++i)
            outcomeOf(bench, range.name + QString(" D_W %1 = ").arg(i) + hex(lowFirst(i + 1)));
    } else if (verb == "request") {
        writeRequest = static_cast<unsigned char>(text.section(' ', 0, 0).toInt());
        readRequest = static_cast<unsigned char>(text.section(' ', 1, 1).toInt());
    } else {
        bench.flaws << "no such step: " + action;
    }
    return QString();
}

/** Empty when alike, else what came and what was expected. */
QString difference(const QString &what, QString expected, QString got)
{
    expected.remove(' ');
    if (expected == "*" || expected == QString(got).remove(' '))
        return QString();
    return QString("%1 \"%2\" instead of \"%3\"").arg(what, got, expected);
}

/** Does "VERB ARGUMENTS : OUTCOME" and looks at the outcome. */
QString step(Bench &bench, const QString &text)
{
    const QString padded = text + ' ';  // the outcome may be empty
    return difference("outcome", padded.section(" : ", 1),
                      outcomeOf(bench, padded.section(" : ", 0, 0).trimmed()));
}

/** Keeps steps for the callback that they wait for; false when the text is no such thing. */
bool postponed(Bench &bench, const QString &text)
{
    if (!text.startsWith("on "))
        return false;
    const QString awaited = text.section(" do ", 0, 0).mid(3);
    const QStringList steps = text.section(" do ", 1).split('&');
    bench.reaction = [&bench, awaited, steps](const QString &call) {
        if (!difference(QString(), awaited, call).isEmpty())
            return;
        const std::function<void(const QString &)> self = std::move(bench.reaction);
        bench.reaction = nullptr;  // `self` keeps what runs here until the end
        for (int i = 0; i < steps.size(); ++i) {
            const QString wrong = step(bench, steps.at(i).trimmed());
            if (!wrong.isEmpty())
                bench.flaws << "inside " + awaited + ", " + steps.at(i) + ": " + wrong;
        }
    };
    return true;
}

}  // namespace

QString play(Bench &bench, const QString &script)
{
    const QStringList steps = QString(script).replace('\n', ';').split(';');
    for (int i = 0; i < steps.size(); ++i) {
        const QString action = steps.at(i).section("=>", 0, 0).trimmed();
        if (action.isEmpty() || postponed(bench, action))
            continue;
        bench.calls.clear();
        QString wrong = step(bench, action);
        if (wrong.isEmpty())
            wrong = difference("callbacks", steps.at(i).section("=>", 1), bench.calls.join(","));
        if (wrong.isEmpty())
            wrong = bench.flaws.join("; ");
        if (!wrong.isEmpty())
            return steps.at(i).trimmed() + " -> " + wrong;
    }
    return bench.reaction ? QString("the callback did not come") : QString();
}
