#include "flowmere/Flowmere.h"

#include <cstdio>
#include <string>

// The headers that this program was built with and the library that it found must be of one version.
int main() {
    std::string const headers = std::to_string(FLOWMERE_VERSION_MAJOR) + "." + std::to_string(FLOWMERE_VERSION_MINOR) +
                                "." + std::to_string(FLOWMERE_VERSION_PATCH);
    std::printf("Flowmere %s, with Xerces-C %s and Python %s\n", flowmere::versionText(), flowmere::xercesVersionText(),
                flowmere::pythonVersionText());
    return headers == flowmere::versionText() ? 0 : 1;
}
