#pragma once

#include "host/basics/Command.h"

namespace flowmere::host {

// flowmere completion bash|zsh|fish: a script by which a shell completes command lines.
void addCompletion(CLI::App& app, Result& result);

} // namespace flowmere::host
