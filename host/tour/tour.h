// The demo's tour: a driver, a session, a loop and a controller, taken through all that a panel
// does, with every result checked.
#pragma once

#include "host/driver/session.h"
#include "host/line/virtual_line.h"
#include "host/tour/report.h"

namespace host {

/** Takes the driver through all steps; returns whether every result was right. */
bool takeTour(const QString &driverPath, QTextStream &out);

using Values = QVector<int>;

/** What the steps can do and look at. Addresses are texts such as "D_W:100x2". */
class Tour
{
public:
    Tour(const QString &driverPath, QTextStream &out);

    /** Opens a step. The first so many exchanges of it are printed. */
    void begin(const char *title, const char *intent, int exchangesShown);

    void introduceDriver();
    void checkTypes();
    void checkAddress(const QString &address, const QString &expectedVerdict);

    /** Registers the addresses, and nothing else; returns the requests of a cycle. */
    int monitor(const QStringList &addresses);
    void write(const QString &address, const Values &values);
    /** Prints what the driver holds. */
    void show(const QString &name, const QString &address);

    // The loop goes on: until so many of the step's exchanges went well, until something is so,
    // until there is nothing left to do. These throw Failure when it does not get there.
    void run(int exchanges);
    void runUntil(const std::function<bool()> &done);
    void finish();
    /** Goes on for so long, and prints what that brought. */
    void measure(std::chrono::seconds duration);

    Values values(const QString &address) const { return session.values(point(address)); }
    /** The word in the latest good reply that has it, read by the host itself. */
    Values wire(const QString &address) const;
    /** The controller's own words. */
    Values held(const QString &address);
    void hold(const QString &address, const Values &values);

    Point point(const QString &address) const { return parsePoint(driver, address); }
    int seen(Outcome outcome) const;
    /** Reports that the address has changed. */
    int reports(const QString &address) const { return reportsOf(point(address)); }
    /** Reports of whatever has not changed. */
    int settled() const;
    const Exchange &last() const;

    Report report;
    const Driver driver;
    VirtualLine line;
    Session session;
    Loop loop;
    Values conditionReads;  ///< their ends, 1 for one that brought its values
    int recipeUnits = 0;    ///< announced

private:
    struct Change
    {
        Point point;
        int before;
        int after;
    };

    QString verdictOn(const QString &address) const;
    int reportsOf(const Point &point) const;
    void watch(const Exchange &exchange);
    void completeChanges();

    QVector<Exchange> m_exchanges;
    QVector<Change> m_changes;
    int m_exchangesToShow = 0;
    int m_changesComplete = 0;
};

}  // namespace host
