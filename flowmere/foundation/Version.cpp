#include "flowmere/Version.h"

namespace flowmere {

#define FLOWMERE_TEXT_OF(number) #number
#define FLOWMERE_DOTTED(major, minor, patch)                                                                           \
    FLOWMERE_TEXT_OF(major) "." FLOWMERE_TEXT_OF(minor) "." FLOWMERE_TEXT_OF(patch)

char const* versionText() {
    return FLOWMERE_DOTTED(FLOWMERE_VERSION_MAJOR, FLOWMERE_VERSION_MINOR, FLOWMERE_VERSION_PATCH);
}

} // namespace flowmere
