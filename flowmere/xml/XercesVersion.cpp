#include "flowmere/Version.h"

#include <xercesc/util/XercesVersion.hpp>

namespace flowmere {

char const* xercesVersionText() {
    return XERCES_FULLVERSIONDOT;
}

} // namespace flowmere
