// The demo's tour: a driver, a session, a loop and a controller, taken through all that a panel
// does, with every result checked.
#pragma once

#include "host/driver/session.h"
#include "host/line/virtual_line.h"
#include "host/tour/report.h"

namespace host {

/** A report of the driver that a point changed. */
struct Change
{
    Point point;
    int before = 0;
    int after = 0;
};

/** What the steps share, and what they have seen since their beginning. */
class Tour
{
public:
    Tour(const Driver &loadedDriver, const Identity &driverIdentity, VirtualLine &openLine,
         Report &tourReport);

    /** Opens a step: forgets what was seen. The first so many exchanges of it are printed. */
    void begin(const QString &title, const QString &intent, int exchangesShown);

    Point point(const char *text) const;
    QString text(const Point &point) const { return pointText(driver, point); }

    /** Prints the values that the driver holds for the point. */
    void show(const char *name, const Point &point);

    /** Writes and prints the changes that the driver reports at once. */
    void write(const Point &point, const QVector<int> &values);

    /** Runs the loop until so many more exchanges went well. Throws Failure when they do not. */
    void run(int exchangeCount);

    /** Lets the driver do all that it has to do, and no more. */
    void finish();

    /**
     * Asks the controller what the point holds. The driver's cache is emptied before, so the
     * values can only come from the controller; it is left without monitored points. Not printed
     * and not part of what the step has seen.
     */
    QVector<int> readBack(const Point &point);

    /** Writes without printing; the driver's cache and monitored points are empty afterwards. */
    void prepare(const Point &point, const QVector<int> &values);

    /** The word as the latest good reply carried it, read by the host itself; -1 if none did. */
    int wordOnTheWire(const QString &regName, int word) const;

    int seen(Outcome outcome) const;

    const Driver &driver;
    const Identity &identity;
    VirtualLine &line;
    Report &report;
    Session session;
    Loop loop;

    QList<Exchange> exchanges;
    QVector<Change> changes;
    QVector<bool> conditionReadEnds;
    QVector<int> recipeUnits;

private:
    void watch(const Exchange &exchange);
    void completeChanges();
    QString changeText(const Change &change) const;

    int m_exchangesToShow = 0;
    int m_changesComplete = 0;
    bool m_watching = false;
};

/** The steps, in the order of the tour. */
void identifyDriver(Tour &tour);
void checkAddresses(Tour &tour);
void monitorPoints(Tour &tour);
void pollForChanges(Tour &tour);
void writeWords(Tour &tour);
void writeOneBit(Tour &tour);
void writeSeveralBits(Tour &tour);
void readOnCondition(Tour &tour);
void writeRecipe(Tour &tour);
void readRecipe(Tour &tour);
void loseReplies(Tour &tour);
void runAtFullSpeed(Tour &tour);

}  // namespace host
