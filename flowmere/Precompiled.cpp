#include "flowmere/Precompiled.h"
