#pragma once

// FLOWMERE_API marks what the shared library shows to the outside; everything else stays hidden.
// FLOWMERE_STATIC: the sources are linked straight into the program, nothing is marked.
// FLOWMERE_BUILDING: set while the shared library itself is compiled (it matters on Windows only).
#if defined(FLOWMERE_STATIC)
#define FLOWMERE_API
#elif defined(_WIN32)
#if defined(FLOWMERE_BUILDING)
#define FLOWMERE_API __declspec(dllexport)
#else
#define FLOWMERE_API __declspec(dllimport)
#endif
#else
#define FLOWMERE_API __attribute__((visibility("default")))
#endif
