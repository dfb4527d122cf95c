#pragma once

// A rectangle of four 32-bit integers.
struct TuRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// A point of two 32-bit integers.
struct _TgPointLStr {
    int x = 0;
    int y = 0;
};

// Points of two and three doubles.
struct _TgPoint2Str {
    double x = 0.0;
    double y = 0.0;
};

struct _TgPoint3Str {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

// Kind of a console message.
enum _TuMessageType : int { TuMessageOrdinary = 0 };

// Unit of a memory size. The values belong to the host; the library stores them and hands them on.
enum _TMemoryUnitId : int { TMemoryUnitDefault = 1 };
