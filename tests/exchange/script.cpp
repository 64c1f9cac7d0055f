// Reading and playing scripts.
#include "script.h"

#include <QRegularExpression>

namespace {

/** All ranges in a step; "buffer 3 x2" and "serve 4" have the form of one as well. */
QVector<Range> rangesIn(const QString &text)
{
    static const QRegularExpression pattern(
        "(?:(\\d+)#)?(\\w+) (-?\\d+)(?![\\d#])(?: x(\\d+))?(?: @(\\d+))?(?: owner (\\d+))?"
        "(?: kind (\\d+))?");
    QVector<Range> result;
    for (auto found = pattern.globalMatch(text); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        const auto number = [&match](int group, int otherwise) {
            return match.captured(group).isEmpty() ? otherwise : match.captured(group).toInt();
        };
        const Range usual;
        result << Range{match.captured(2),        number(3, 0),          number(4, usual.count),
                        number(1, usual.station), number(7, usual.kind), number(5, usual.unit),
                        number(6, usual.owner)};
    }
    return result;
}

QString hex(const QByteArray &bytes)
{
    return bytes.toHex().toUpper();
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
    if (what == "raw")
        return QByteArray::fromHex(data);
    return what == "ok" ? wrapped(ACK, "w", EOT) : QByteArray();
}

void flood(Bench &bench, bool writes, int count)
{
    for (int i = 0; i < count; ++i) {
        const Range range{"D_W", i};
        if (writes)
            bench.write(range, QByteArray(1, char((i + 1) & 0xFF)) + char((i + 1) >> 8));
        else
            bench.condition(range);
    }
}

/** Does "VERB ARGUMENTS" and returns its outcome. */
QString outcomeOf(Bench &bench, const QString &action)
{
    const QString verb = action.section(' ', 0, 0);
    const QString text = action.section(' ', 1).trimmed();
    const QVector<Range> ranges = rangesIn(action.section('=', 0, 0));
    const QByteArray values = QByteArray::fromHex(action.section('=', 1).toLatin1());
    Range range = ranges.value(0);
    QStringList results;
    if (verb == "init")
        return unlessOne(bench.init(text.toLatin1()));
    if (verb == "monitor")
        return QString::number(bench.monitor(ranges));
    if (verb == "recipe")
        return QString::number(bench.recipe(ranges));
    if (verb == "get")
        return hex(bench.get(range));
    if (verb == "error")
        return bench.errorText;
    if (verb == "send")
        return bench.send() ? bench.request().mid(1).chopped(3) : "-";
    if (verb == "item") {
        const VARIABLE &item = bench.frame.var;
        return QString("%1 %2 %3 %4 x%5")
            .arg(QString::number(item.kind), QString::number(item.stationNo), item.regName,
                 QString::number(item.startAddr), QString::number(item.count));
    }
    if (verb == "reply")
        return unlessOne(bench.reply(
            replyFor(bench, text.section(' ', 0, 0), text.section(' ', 1).remove(' ').toLatin1())));
    if (verb == "serve") {
        for (int i = 0; i < range.start; ++i)
            results << bench.exchange();
        return results.join(' ');
    }
    if (verb == "fail") {
        for (int i = 0; i < 3; ++i)  // the scripts' property text allows three tries
            results << QString::number(bench.reply(QByteArray()));
        return results.join(' ') == "8 8 2" ? QString() : results.join(' ');
    }
    if (verb == "requested")
        return bench.shared[RecipeWriteRequest]  ? "write"
               : bench.shared[RecipeReadRequest] ? "read"
                                                 : "none";
    if (verb == "buffer") {
        char *const at = reinterpret_cast<char *>(bench.buffer.get()) + 2 * range.start;
        memcpy(at, values.constData(), size_t(values.size()));
        return values.isEmpty() ? hex(QByteArray(at, 2 * range.count)) : QString();
    }
    if (verb == "plc") {
        range.name += "_W";
        if (values.isEmpty())
            return hex(bench.held(range));
        range.count = int(values.size()) / 2;
        putValues(&bench.memory, range, values);
    } else if (verb == "write") {
        range.count = int(values.size()) / widthOf(range);
        bench.write(range, values);
    } else if (verb == "condition") {
        bench.condition(range);
    } else if (verb == "flood") {
        flood(bench, range.name == "write", range.start);
    } else if (verb == "request") {
        bench.shared[RecipeWriteRequest] = text.contains("write");
        bench.shared[RecipeReadRequest] = text.contains("read");
    } else {
        return "no such step";
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

/** Keeps a step for the callback that it waits for; false when the text is no such thing. */
bool postponed(Bench &bench, const QString &text)
{
    static const QRegularExpression pattern("^on (.+) do (.+)$");
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return false;
    bench.reaction = [&bench, match](const QString &call) {
        if (!difference(QString(), match.captured(1), call).isEmpty())
            return;
        const auto self = std::move(bench.reaction);  // it runs on: kept until the end
        bench.reaction = nullptr;
        const QString wrong = step(bench, match.captured(2));
        if (!wrong.isEmpty())
            bench.flaws << match.captured(0) + ": " + wrong;
    };
    return true;
}

}  // namespace

QString play(Bench &bench, const QString &script)
{
    static const QRegularExpression divider("[;\n]");
    const QStringList steps = script.split(divider);
    for (const QString &text : steps) {
        const QString action = text.section("=>", 0, 0).trimmed();
        if (action.isEmpty() || postponed(bench, action))
            continue;
        bench.calls.clear();
        QString wrong = step(bench, action);
        if (wrong.isEmpty())
            wrong = difference("callbacks", text.section("=>", 1), bench.calls.join(','));
        if (wrong.isEmpty())
            wrong = bench.flaws.join("; ");
        if (!wrong.isEmpty())
            return text.trimmed() + " -> " + wrong;
    }
    return QString();
}
