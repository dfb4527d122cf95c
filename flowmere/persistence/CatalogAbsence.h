#pragma once

#include "flowmere/foundation/TuString.h"

namespace flowmere {

// While one of these lives, a catalog file that was not there is not looked for again: every variable of a document
// asks for it, and each look goes to the disk. Another base path is another question.
class CatalogAbsence {
public:
    CatalogAbsence();
    ~CatalogAbsence();
    CatalogAbsence(CatalogAbsence const&) = delete;
    CatalogAbsence& operator=(CatalogAbsence const&) = delete;

    // Whether the catalog is known to be missing, and the order to remember that it is.
    static bool isKnown();
    static void note();
};

} // namespace flowmere
