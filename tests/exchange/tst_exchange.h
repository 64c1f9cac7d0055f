// Whole exchanges through the exports, most of them as scripts; a file per subject.
#ifndef TOLVANE_TESTS_EXCHANGE_TST_EXCHANGE_H
#define TOLVANE_TESTS_EXCHANGE_TST_EXCHANGE_H

#include <QtTest/QtTest>

#include "script.h"

class Exchange : public QObject
{
    Q_OBJECT

private slots:
    void script_data();
    void script();

    void garbageCounts();  // limits.cpp
    void otherMemory();
    void vanishingTexts();
    void nullPointers();
};

/** The scripts of a subject, each in the file of its name. */
void frameRows();
void planningRows();
void serviceRows();
void writeRows();
void valueRows();
void recipeRows();
void callbackRows();
void limitRows();

/** One script, played with property values 7 (reports), 0, 0, 3 (tries), 64 (block limit). */
void row(const QString &name, const QString &script);

#endif
