#include "flowmere/foundation/FCModule.h"

#include "flowmere/Version.h"
#include "flowmere/foundation/ModuleEntry.h"
#include "flowmere/foundation/TuConsole.h"

#include <dlfcn.h>

// Written by the build.
#if __has_include("flowmere/foundation/BuildStamp.h")
#include "flowmere/foundation/BuildStamp.h"
#endif
#ifndef FLOWMERE_BUILD_HASH
#define FLOWMERE_BUILD_HASH "0"
#endif
#ifndef FLOWMERE_BUILD_DATE
#define FLOWMERE_BUILD_DATE "unknown"
#endif

#define FLOWMERE_TEXT_OF(number) #number
#define FLOWMERE_BUILD_VERSION(major, minor, patch)                                                                    \
    FLOWMERE_TEXT_OF(major) "." FLOWMERE_TEXT_OF(minor) "." FLOWMERE_TEXT_OF(patch) "." FLOWMERE_BUILD_HASH

namespace {

constexpr char kKind[] = "Dynamic linked library";
constexpr char kVersion[] =
    FLOWMERE_BUILD_VERSION(FLOWMERE_VERSION_MAJOR, FLOWMERE_VERSION_MINOR, FLOWMERE_VERSION_PATCH);
// The machine has no name here: the same sources give the same line wherever they are built.
constexpr char kIdentification[] = "@(#)The Flowmere developers; Flowmere; version " FLOWMERE_BUILD_VERSION(
    FLOWMERE_VERSION_MAJOR, FLOWMERE_VERSION_MINOR,
    FLOWMERE_VERSION_PATCH) "; support: see the file README.md of the sources; built on: any machine; built at: " FLOWMERE_BUILD_DATE;

// An ending program runs the destructors of objects first and the functions below `destructor` then; a module that is
// closed runs them the other way round. So the object tells one from the other.
bool s_isProcessEnding = false;

struct EndMark {
    EndMark() = default;
    ~EndMark() { s_isProcessEnding = true; }
    EndMark(EndMark const&) = delete;
    EndMark& operator=(EndMark const&) = delete;
};
EndMark const s_endMark;

// A module that the program was linked with goes together with it, and runs the functions below `destructor` first all
// the same. It is known by the names that the program sees; a module's own view holds its own names in any case.
bool isOfTheProgram() {
    void* const program = dlopen(nullptr, RTLD_LAZY);
    if (program == nullptr)
        return false;
    void* const seen = dlsym(program, "_localFnToKeepFlowmereDllLoaded");
    dlclose(program);
    Dl_info place{};
    Dl_info own{};
    return seen != nullptr && dladdr(seen, &place) != 0 && dladdr(&s_isProcessEnding, &own) != 0 &&
           place.dli_fbase == own.dli_fbase;
}

__attribute__((destructor)) void moduleGoes() {
    bool const isEnding = s_isProcessEnding || isOfTheProgram();
    flowmere::moduleEntry(flowmere::kModuleUnloaded, isEnding ? &s_isProcessEnding : nullptr);
}

} // namespace

extern "C" char const* Flowmere_get_module_info(int what) {
    switch (what) {
    case 0:
        return kKind;
    case 1:
        return kVersion;
    default:
        return kIdentification;
    }
}

extern "C" void _localFnToKeepFlowmereDllLoaded(void) {}

namespace flowmere {

// Nothing is to be done when a process or thread attaches: the link editor has marked the module as one that stays.
bool moduleEntry(int reason, void const* reserved) noexcept {
    if (reason == kModuleUnloaded && reserved == nullptr && TuIsDLLUnloadWarningEnabled())
        TuWriteConsoleMessage(TuMessageOrdinary, L"'%s' dll is getting unloaded with application still running!",
                              L"Flowmere");
    return true;
}

} // namespace flowmere
