#pragma once

// Points and rectangles of a picture. The unit is a hundredth of an inch, Y grows downwards.

#include <algorithm>
#include <cmath>

namespace flowmere::host::drawing {

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(Point const&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
};

struct Rect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    bool operator==(Rect const&) const = default;

    double width() const { return right - left; }
    double height() const { return bottom - top; }
    Point centre() const { return {(left + right) / 2, (top + bottom) / 2}; }
    bool isEmpty() const { return right <= left || bottom <= top; }

    Rect inflated(double by) const { return {left - by, top - by, right + by, bottom + by}; }
    Rect moved(double x, double y) const { return {left + x, top + y, right + x, bottom + y}; }
    Rect united(Rect const& other) const {
        return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                std::max(bottom, other.bottom)};
    }
    Rect united(Point const& point) const { return united(Rect{point.x, point.y, point.x, point.y}); }
    // Share more than a border of this depth.
    bool overlaps(Rect const& other, double depth = 0) const {
        return left < other.right - depth && other.left < right - depth && top < other.bottom - depth &&
               other.top < bottom - depth;
    }
    bool contains(Rect const& other, double tolerance = 0) const {
        return left <= other.left + tolerance && top <= other.top + tolerance && right >= other.right - tolerance &&
               bottom >= other.bottom - tolerance;
    }

    static Rect around(Point const& centre, Size const& size) {
        return {centre.x - size.width / 2, centre.y - size.height / 2, centre.x + size.width / 2,
                centre.y + size.height / 2};
    }
    // The rectangle of two points, whichever comes first.
    static Rect of(Point const& one, Point const& other) {
        return {std::min(one.x, other.x), std::min(one.y, other.y), std::max(one.x, other.x), std::max(one.y, other.y)};
    }
};

enum class Direction : int { Up = 0, Right = 1, Down = 2, Left = 3 };

inline Direction opposite(Direction direction) {
    return static_cast<Direction>((static_cast<int>(direction) + 2) % 4);
}

inline bool isVertical(Direction direction) {
    return direction == Direction::Up || direction == Direction::Down;
}

inline Point moved(Point const& point, Direction direction, double by) {
    switch (direction) {
    case Direction::Up:
        return {point.x, point.y - by};
    case Direction::Right:
        return {point.x + by, point.y};
    case Direction::Down:
        return {point.x, point.y + by};
    case Direction::Left:
        return {point.x - by, point.y};
    }
    return point;
}

// The point of a grip, 1 to 8 clockwise from the top left corner. Other numbers give the centre.
inline Point gripPoint(Rect const& rect, int grip) {
    Point const centre = rect.centre();
    switch (grip) {
    case 1:
        return {rect.left, rect.top};
    case 2:
        return {centre.x, rect.top};
    case 3:
        return {rect.right, rect.top};
    case 4:
        return {rect.right, centre.y};
    case 5:
        return {rect.right, rect.bottom};
    case 6:
        return {centre.x, rect.bottom};
    case 7:
        return {rect.left, rect.bottom};
    case 8:
        return {rect.left, centre.y};
    default:
        return centre;
    }
}

inline bool isGrip(int grip) {
    return grip >= 1 && grip <= 8;
}

} // namespace flowmere::host::drawing
