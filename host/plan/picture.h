// The planned cycle as a picture.
#pragma once

#include "host/plan/plan_text.h"

namespace host {

/**
 * An SVG document: a lane for each station and register type along the address axis, tags above,
 * blocks below in the colour of their wire time, bridged gaps hatched.
 */
QByteArray drawPlan(const Driver &driver, const Plan &plan);

}  // namespace host
