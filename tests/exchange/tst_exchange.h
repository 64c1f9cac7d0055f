// Whole exchanges through the exports, most of them as scripts; a file per subject.
#ifndef TOLVANE_TESTS_EXCHANGE_TST_EXCHANGE_H
#define TOLVANE_TESTS_EXCHANGE_TST_EXCHANGE_H

#include <QtTest/QtTest>

#include "script.h"

class Exchange : public QObject
{
    Q_OBJECT

private slots:
    void frames_data();  // frames.cpp
    void frames() { playRow(); }
    void judging_data();
    void judging() { playRow(); }

    void planning_data();  // planning.cpp
    void planning() { playRow(); }
    void stableOrder();

    void service_data();  // service.cpp
    void service() { playRow(); }

    void writes_data();  // writes.cpp
    void writes() { playRow(); }

    void values_data();  // values.cpp
    void values() { playRow(); }
    void scatteredAddresses();

    void recipes_data();  // recipes.cpp
    void recipes() { playRow(); }
    void recipeChangedUnderWay_data();
    void recipeChangedUnderWay() { playRow(); }

    void callbacks_data();  // callbacks.cpp
    void callbacks() { playRow(); }
    void anyExportInAnyCallback_data();
    void anyExportInAnyCallback();

    void limits_data();  // limits.cpp
    void limits() { playRow(); }
    void longRanges_data();
    void longRanges();
    void garbageCounts_data();
    void garbageCounts();
    void leavesNothingBehind();
    void otherMemory();
    void vanishingTexts();
    void nullPointers();

private:
    /** Plays the row's "script" with property values 7 (reports), 0, 0, 3 (tries), 64 (words). */
    void playRow();
};

/** Begins a table whose only column is a script. */
inline void scripts()
{
    QTest::addColumn<QString>("script");
}

/** A row of a table whose only column is a script. */
inline void row(const char *name, const QString &script)
{
    QTest::newRow(name) << script;
}

#endif
