#pragma once

#include "host/help/CommandLine.h"

namespace flowmere::host {

// flowmere completion bash|zsh|fish: a script by which a shell completes command lines.
void addCompletion(Command const& program, Result& result);

} // namespace flowmere::host
