// Polls the tags for one cycle.
#include "host/tags/tag_reader.h"

#include "host/output/failure.h"
#include "host/output/time_text.h"
#include "host/tags/tag_text.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::chrono::seconds LostLinePatience(10);
constexpr int MostReadings = 3;  // of a line that is found out of step

QVector<TagReading> readOnce(Connection &connection, const QVector<Tag> &tags)
{
    QVector<Point> points;
    QVector<int> unread;  // words or bits of each tag
    for (const Tag &tag : tags) {
        points.append(tag.point);
        unread.append(tag.point.count);
    }
    Session &session = connection.session();
    QVector<TagReading> readings(tags.size());
    int left = session.monitor(points);
    connection.observer = [&](const Exchange &exchange) {
        if (exchange.outcome != Outcome::Good && exchange.outcome != Outcome::GivenUp)
            return;
        --left;
        const Point block = blockOf(exchange.frame.var);
        for (int i = 0; i < int(tags.size()); ++i) {
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
    for (int i = 0; i < int(tags.size()); ++i) {
        readings[i].units = session.values(tags[i].point);
        if (unread[i] > 0 && readings[i].error.isEmpty())
            readings[i].error = "line lost: %1"_s.arg(line.errorText());
    }
    session.monitor({});
    return readings;
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
    QVector<TagReading> readings;
    for (int i = 0; i < MostReadings; ++i) {
        readings = readOnce(connection, tags);
        const auto good = std::find_if(readings.cbegin(), readings.cend(),
                                       [](const auto &reading) { return reading.error.isEmpty(); });
        if (good == readings.cend() || prove(connection, tags[int(good - readings.cbegin())].point))
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
