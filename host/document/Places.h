#pragma once

// Places on the page, as documents keep them: in inches, and what lies below a hundredth is cut off when they are read.
// Through that some become smaller by one, once or several times. A place that is settled comes back as it is.

#include "flowmere/Flowmere.h"

namespace flowmere::host {

// What the place comes to in the end. One without width or height stays as it is: documents do not tell of it.
TuRect settled(TuRect place);
_TgPointLStr settled(_TgPointLStr point);

} // namespace flowmere::host
