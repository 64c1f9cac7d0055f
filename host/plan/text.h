// The planned cycle in text and in JSON.
#pragma once

#include "host/plan/cycle.h"

#include <QtCore/QJsonObject>
#include <QtCore/QTextStream>

namespace host {

/** "5.12 ms" */
QString timeText(std::chrono::microseconds time);

/** What text and picture are headed by: "tags joined up to 64 words; 115200,8,NONE,1, ..." */
QString settingsText(const Plan &plan);

void printPlan(const Driver &driver, const Plan &plan, QTextStream &out);
QJsonObject planToJson(const Driver &driver, const Plan &plan);

}  // namespace host
