#pragma once

#include "records/ModelRoom.h"

#include <QString>

namespace corvane {

/// "Room for a model of about 13 GB on GPU 0", or what prevents it: "No room for a model in
/// memory", "Memory is under pressure". Rounded down.
QString roomText(const ModelRoom &room);

/// How it was reckoned, for the tool tip: one sentence a line.
QString roomReckoning(const ModelRoom &room);

} // namespace corvane
