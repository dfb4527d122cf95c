#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// "flowmere schedule": makes a document or a workflow folder of a project schedule.
void addSchedule(Command const& program, Result& result);

} // namespace flowmere::host
