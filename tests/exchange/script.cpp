// Reading and playing scripts.
#include "script.h"

#include <QHash>
#include <QRegularExpression>

namespace {

QVector<Range> ranges(const QString &text)
{
    static const QRegularExpression pattern(
        "(?:(\\d+)#)?(\\w+) (-?\\d+)(?: x(-?\\d+))?(?: @(\\d+))?(?: owner (\\d+))?(?: kind "
        "(\\d+))?");
    QVector<Range> result;
    QRegularExpressionMatchIterator found = pattern.globalMatch(text);
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        const auto number = [&match](int group, int otherwise) {
            return match.captured(group).isEmpty() ? otherwise : match.captured(group).toInt();
        };
        Range range;
        range.station = number(1, range.station);
        range.name = match.captured(2);
        range.start = number(3, 0);
        range.count = number(4, range.count);
        range.unit = number(5, range.unit);
        range.owner = number(6, range.owner);
        range.kind = number(7, range.kind);
        result << range;
    }
    return result;
}

/** The values behind "="; empty when there are none. */
QByteArray valuesBehind(const QString &text)
{
    return QByteArray::fromHex(text.section('=', 1).toLatin1());
}

QString hex(const QByteArray &bytes)
{
    return bytes.toHex().toUpper();
}

/** Result codes show only when they are not the usual one. */
QString unless(int usual, int result)
{
    return result == usual ? QString() : QString::number(result);
}

QString write(Bench &bench, const QString &text)
{
    const QByteArray values = valuesBehind(text);
    Range range = ranges(text.section('=', 0, 0)).first();
    if (!text.contains(" x"))
        range.count = int(values.size()) / widthOf(range);
    bench.write(range, values);
    return QString();
}

QString flood(Bench &bench, const QString &text)
{
    const int count = text.section(' ', 1).toInt();
    for (int i = 0; i < count; ++i) {
        const Range range{"D_W", i};
        if (text.startsWith("write"))
            bench.write(range, QByteArray(1, char((i + 1) & 0xFF)) + char((i + 1) >> 8));
        else
            bench.condition(range);
    }
    return QString();
}

QString buffer(Bench &bench, const QString &text)
{
    const Range range = ranges("unit " + text).first();
    char *const at = reinterpret_cast<char *>(bench.buffer.get()) + 2 * range.start;
    const QByteArray values = valuesBehind(text);
    memcpy(at, values.constData(), size_t(values.size()));
    return values.isEmpty() ? hex(QByteArray(at, 2 * range.count)) : QString();
}

QString plcWords(Bench &bench, const QString &text)
{
    Range range = ranges(text).first();
    range.name += "_W";
    const QByteArray values = valuesBehind(text);
    if (values.isEmpty())
        return hex(bench.held(range));
    range.count = int(values.size()) / 2;
    putValues(&bench.memory, range, values);
    return QString();
}

QString send(Bench &bench, const QString &)
{
    const bool offered = bench.send();
    const QByteArray request = bench.request();
    return offered ? QString(request.mid(1, request.size() - 4)) : QString("-");
}

QString item(Bench &bench, const QString &)
{
    const VARIABLE &item = bench.frame.var;
    return QString("%1 %2 %3 %4 x%5")
        .arg(QString::number(item.kind), QString::number(item.stationNo), item.regName,
             QString::number(item.startAddr), QString::number(item.count));
}

QString reply(Bench &bench, const QString &text)
{
    const QString what = text.section(' ', 0, 0);
    const QByteArray data = text.section(' ', 1).remove(' ').toLatin1();
    if (what == "plc")
        return unless(1, bench.reply(bench.answer()));
    if (what == "data")
        return unless(1, bench.reply(wrapped(ACK, 'r' + data, EOT)));
    if (what == "raw")
        return unless(1, bench.reply(QByteArray::fromHex(data)));
    return unless(1, bench.reply(what == "ok" ? wrapped(ACK, "w", EOT) : QByteArray()));
}

/** The scripts' property text allows three tries. */
QString fail(Bench &bench, const QString &)
{
    QString results;
    for (int i = 0; i < 3; ++i)
        results += QString::number(bench.reply(QByteArray()));
    return results == "882" ? QString() : results;
}

QString serve(Bench &bench, const QString &count)
{
    QStringList requests;
    for (int i = 0; i < count.toInt(); ++i)
        requests << bench.exchange();
    return requests.join(' ');
}

const char *const requestNames[] = {"none", "write", "read", "both"};

QString request(Bench &bench, const QString &text)
{
    for (int i = 0; i < 4; ++i) {
        if (text == requestNames[i]) {
            bench.shared[RecipeWriteRequest] = i == 1 || i == 3;
            bench.shared[RecipeReadRequest] = i >= 2;
        }
    }
    return QString();
}

QString requested(Bench &bench, const QString &)
{
    return requestNames[bench.shared[RecipeWriteRequest] | bench.shared[RecipeReadRequest] << 1];
}

using Verb = QString (*)(Bench &, const QString &);

const QHash<QString, Verb> &verbs()
{
    static const QHash<QString, Verb> table = {
        {"init", [](Bench &b, const QString &t) { return unless(1, b.init(t.toLatin1())); }},
        {"monitor",
         [](Bench &b, const QString &t) { return QString::number(b.monitor(ranges(t))); }},
        {"condition",
         [](Bench &b, const QString &t) { return b.condition(ranges(t)[0]), QString(); }},
        {"recipe", [](Bench &b, const QString &t) { return QString::number(b.recipe(ranges(t))); }},
        {"get", [](Bench &b, const QString &t) { return hex(b.get(ranges(t)[0])); }},
        {"error", [](Bench &b, const QString &) { return b.errorText; }},
        {"write", write},
        {"flood", flood},
        {"buffer", buffer},
        {"plc", plcWords},
        {"send", send},
        {"item", item},
        {"reply", reply},
        {"fail", fail},
        {"serve", serve},
        {"request", request},
        {"requested", requested},
    };
    return table;
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
    const QString action = padded.section(" : ", 0, 0).trimmed();
    const Verb verb = verbs().value(action.section(' ', 0, 0));
    if (!verb)
        return "no such step";
    return difference("outcome", padded.section(" : ", 1),
                      verb(bench, action.section(' ', 1).trimmed()));
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
