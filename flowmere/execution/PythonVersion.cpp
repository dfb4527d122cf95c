#include <Python.h>

#include "flowmere/Version.h"

#include <string>

namespace flowmere {

char const* pythonVersionText() {
    static std::string const text = [] {
        std::string const full = Py_GetVersion();
        return full.substr(0, full.find(' '));
    }();
    return text.c_str();
}

} // namespace flowmere
