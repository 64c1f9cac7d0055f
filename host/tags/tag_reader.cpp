// Polls the tags for one cycle.
#include "host/tags/tag_reader.h"

#include "host/output/failure.h"
#include "host/output/time_text.h"
#include "host/tags/tag_text.h"

#include <algorithm>
#include <numeric>

namespace host {

namespace {

constexpr std::chrono::seconds LostLinePatience(10);
constexpr int MostReadings = 3;  // of a line that is found out of step

/** Reads those of the tags, whose readings are filled in. */
void readOnce(Connection &connection, const QVector<Tag> &tags, const QVector<int> &which,
              QVector<TagReading> &readings)
{
    QVector<Point> points;
    QVector<int> unread(tags.size());  // words or bits of each tag
    for (const int i : which) {
        points.append(tags[i].point);
        unread[i] = tags[i].point.count;
    }
    Session &session = connection.session();
    connection.beginStep();
    int left = session.monitor(points);
    connection.observer = [&](const Exchange &exchange) {
        if (exchange.outcome != Outcome::Good && exchange.outcome != Outcome::GivenUp)
            return;
        --left;
        const Point block = blockOf(exchange.frame.var);
        for (const int i : which) {
            const int count = partInside(tags[i].point, block).count;
            unread[i] -= count;
            if (count > 0 && exchange.outcome == Outcome::GivenUp)
                readings[i].error = faultsText(exchange.tries);
        }
    };
    const Line &line = connection.line();
    LineTime deadline = line.now() + LostLinePatience;
    while (left > 0 && line.now() < deadline)
        if (connection.step() != Outcome::LineLost)
            deadline = line.now() + LostLinePatience;
    connection.observer = nullptr;
    for (const int i : which) {
        readings[i].units = session.values(tags[i].point);
        if (unread[i] > 0 && readings[i].error.isEmpty())
            readings[i].error = "line lost: %1"_s.arg(line.errorText());
    }
    session.monitor({});
}

// Proves the readings; false where one may be another's.
bool prove(Connection &connection, const Point &near)
{
    try {
        return connection.prove(near);
    } catch (const Failure &) {
        return false;  // the line is lost
    }
}

}  // namespace

QVector<TagReading> readTags(Connection &connection, const QVector<Tag> &tags)
{
    const QString closed = connection.tryToOpen(Purpose::Reading);
    if (!closed.isEmpty())
        return QVector<TagReading>(tags.size(), {{}, closed});
    QVector<TagReading> readings(tags.size());
    QVector<int> which(tags.size());
    std::iota(which.begin(), which.end(), 0);
    for (int i = 0; i < MostReadings; ++i) {
        readOnce(connection, tags, which, readings);
        // A request without a reply leaves those before it unproven: they are read again alone.
        which.erase(std::remove_if(which.begin(), which.end(),
                                   [&](int tag) { return !readings[tag].error.isEmpty(); }),
                    which.end());
        if (which.isEmpty() || prove(connection, tags[which.first()].point))
            return readings;
    }
    for (TagReading &reading : readings)
        if (reading.error.isEmpty())
            reading.error = "out of step: it may be another request's reply"_s;
    return readings;
}

QString differenceText(const Tag &tag, const QVector<int> &written, const TagReading &held)
{
    if (!held.error.isEmpty())
        return "%1: not read back: %2"_s.arg(tag.name, held.error);
    const auto text = [&](const QVector<int> &units) {
        return formatValues(tag, units).join(QLatin1Char(','));
    };
    return held.units == written ? QString()
                                 : "%1: wrote %2, the controller holds %3"_s.arg(
                                       tag.name, text(written), text(held.units));
}

QJsonObject readingObject(const Connection &connection, const Tag &tag, const TagReading &reading)
{
    const bool good = reading.error.isEmpty();
    QJsonObject object = tagObject(connection.driver(), tag);
    object.insert("time"_s, timeText(QDateTime::currentDateTimeUtc(), connection.zone()));
    object.insert("values"_s, valueArray(good ? formatValues(tag, reading.units) : QStringList()));
    object.insert("quality"_s, QLatin1String(good ? "good" : "bad"));
    if (!good)
        object.insert("reason"_s, reading.error);
    return object;
}

}  // namespace host
