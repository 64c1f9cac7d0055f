// The planned cycle as a picture.
#pragma once

#include "host/plan/cycle.h"

namespace host {

/**
 * An SVG document, for light and dark surroundings: a waterfall along time. Every request has a row
 * with its block and tags, and holds the line from where its bar begins: request, turnaround, reply
 * with the unused words where they lie in it. The chart is 25 rows long; more go on in charts
 * below.
 */
QByteArray drawPlan(const Driver &driver, const Plan &plan);

}  // namespace host
