#include "host/document/Places.h"

namespace flowmere::host {

namespace {

constexpr int kPageHeight = 1300;

int settledMeasure(int hundredths) {
    for (;;) {
        int const read = static_cast<int>(hundredths / 100.0 * 100.0);
        if (read == hundredths)
            return read;
        hundredths = read;
    }
}

} // namespace

TuRect settled(TuRect place) {
    while (place.right > place.left && place.bottom > place.top) {
        CFCShape shape;
        shape.SetTuRectInInchReverse(place.left / 100.0, (kPageHeight - place.bottom) / 100.0,
                                     (place.right - place.left) / 100.0, (place.bottom - place.top) / 100.0);
        TuRect const& read = *shape.GetTuRect();
        if (read.left == place.left && read.top == place.top && read.right == place.right &&
            read.bottom == place.bottom)
            break;
        place = read;
    }
    return place;
}

_TgPointLStr settled(_TgPointLStr point) {
    point.x = settledMeasure(point.x);
    point.y = kPageHeight - settledMeasure(kPageHeight - point.y);
    return point;
}

} // namespace flowmere::host
