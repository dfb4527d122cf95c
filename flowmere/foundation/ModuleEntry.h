#pragma once

namespace flowmere {

// Why the loader calls a module.
enum ModuleReason : int { kModuleUnloaded = 0, kProcessAttached = 1, kThreadAttached = 2, kThreadDetached = 3 };

// What happens when the module comes and goes. An unload without anything in `reserved` is one under a running program,
// of which the host's console is warned if warnings are on; at the end of a process `reserved` is set. Always true.
bool moduleEntry(int reason, void const* reserved) noexcept;

} // namespace flowmere
