// The host's side of the driver: what the driver borrows from its host, and typed access to it.
#pragma once

#include "host/driver/address.h"

#include <QtCore/QMutex>

#include <functional>
#include <vector>

namespace host {

/** The driver's settings, as its property text carries them. */
struct SessionSettings
{
    int reportNumber = 1;  ///< comes back with every report of a changed point
    int retryLimit = 3;    ///< times that a request is sent before it is given up
    int blockLimit = 64;   ///< words up to which tags are joined in one request
};

/**
 * Owns the shared block, recipe buffer and mutex of an initialised driver. The driver has one
 * state for the whole process, so there is one session at a time. All calls and the loop's belong
 * to one thread; the functions below are called from inside write() and the loop's exchanges.
 */
class Session
{
public:
    /** Initialises the driver, which stays the caller's and outlives the session. */
    Session(const Driver &driver, const SessionSettings &settings);
    ~Session();  ///< leaves the driver without pointers into the session
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /** A monitored point changed; values() still gives what it was before. */
    std::function<void(int stationNo, const QString &regName, int address)> pointChanged;
    /** The latest condition read has ended, well or given up. */
    std::function<void(bool done)> conditionReadEnded;
    /** A recipe read has filled this unit of the recipe buffer. */
    std::function<void(int unit)> recipeUnitRead;

    /** Starts over: queues, cache and monitored points are emptied, the recipe is kept. */
    void restart() { restart(m_settings); }
    void restart(const SessionSettings &settings);

    /** Replaces the monitored points; returns the requests of one poll cycle. */
    int monitor(const QVector<Point> &points);

    /** Queues one read of the point; conditionReadEnded announces its end. */
    void readOnce(const Point &point);

    static constexpr int WriteKind = 2;  ///< the kind of writes that nobody needs to tell apart

    /**
     * Queues a write: one value (0 to 65535, or 0 and 1) for each word or bit of the point. The
     * kind travels with its frames, for whoever wants to know which write a frame serves.
     */
    void write(const Point &point, const QVector<int> &values, int kind = WriteKind);

    /** What the driver holds for the point: words as 0 to 65535, bits as 0 and 1. */
    QVector<int> values(const Point &point) const;

    /**
     * Replaces the recipe and gives every point its place in the recipe buffer, a unit a word or
     * bit, in the order of addresses: a block that is written takes its values from consecutive
     * units. Returns the first unit of each point, in the order given. Throws Failure (bad input)
     * when points overlap or the buffer cannot hold them.
     */
    QVector<int> setRecipe(const QVector<Point> &points);

    /**
     * True for the read step of a write of several bits: the driver merges the reply into what it
     * then writes.
     */
    static bool isReadStep(const FRAME_PRO &frame);

    static constexpr int ConditionReadKind = 3;  ///< travels with the frames of readOnce()
    static constexpr int CyclicReadKind = 4;     ///< and with those of monitored points

    void requestRecipeWrite() { request(RecipeWriteRequest); }
    void requestRecipeRead() { request(RecipeReadRequest); }
    bool recipeBusy() const;  ///< a transfer is requested or under way

    void setRecipeUnit(int unit, int value);
    int recipeUnit(int unit) const;

private:
    void request(int position);
    bool isRequested(int position) const;
    static void signal(int first, int stationNo, const QString &text, int address);

    const Driver &m_driver;
    SessionSettings m_settings;
    std::vector<unsigned char> m_shared;
    std::vector<unsigned char> m_recipe;
    mutable QMutex m_mutex;  // guards the request bytes of m_shared

    static Session *s_session;  // the driver's callback carries no context
};

}  // namespace host
