// The planned cycle in text and in JSON.
#pragma once

#include "host/plan/cycle.h"

#include <QtCore/QJsonObject>
#include <QtCore/QTextStream>

namespace host {

/** All that is known of a cycle. */
struct Plan
{
    QVector<Tag> tags;
    LineCosts line;
    QString lineText;  ///< the serial settings as given
    int blockLimit = 0;
    QVector<Block> blocks;
    CycleCosts costs;
    CycleCosts oneByOne;
    BlockLimit best;  ///< 0 words when it was not asked for
};

/** "5.12 ms" */
QString timeText(std::chrono::microseconds time);

/** What the picture and the text are headed by: "tags joined up to 64 words; 115200,8,NONE,1, ..."
 */
QString settingsText(const Plan &plan);

void printPlan(const Driver &driver, const Plan &plan, QTextStream &out);
QJsonObject planToJson(const Driver &driver, const Plan &plan);

}  // namespace host
