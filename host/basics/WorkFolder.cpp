#include "host/basics/WorkFolder.h"

#include "host/basics/Command.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>

namespace flowmere::host {

namespace fs = std::filesystem;

WorkFolder::WorkFolder(fs::path const& wanted, fs::path const& beside) {
    std::error_code error;
    errno = 0;
    for (fs::path const& base : {beside, fs::temp_directory_path(error), fs::path("/tmp")}) {
        std::string name = (base / ".flowmere-XXXXXX").string();
        bool const isPlain = name.find(".xml") == std::string::npos && name.find('\\') == std::string::npos;
        if (!base.empty() && isPlain && ::mkdtemp(name.data()) != nullptr) {
            m_path = name;
            return;
        }
    }
    throw Failure(wanted.string(), "", std::string("cannot be written: ") + std::strerror(errno));
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

} // namespace flowmere::host
