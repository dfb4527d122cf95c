#pragma once

#include "flowmere/foundation/Encoding.h"
#include "flowmere/foundation/TuString.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

// Texts in messages of failed expectations.
inline void PrintTo(TuString const& text, std::ostream* out) {
    *out << '"' << flowmere::toUtf8(text.View()) << '"';
}

namespace flowmere::test {

// Whether the tests run with AddressSanitizer, where what is done over and over is done less often.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif
#else
inline constexpr bool kIsSanitized = false;
#endif

// Bytes of a whole file; throws when it cannot be read, so that a missing file fails the test.
inline std::string readFile(std::filesystem::path const& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Writes a whole file, creating its folder; throws when that fails.
inline void writeFile(std::filesystem::path const& path, std::string_view bytes) {
    if (path.has_parent_path()) {
        std::filesystem::create_directories(path.parent_path());
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

// Wide text of a path, as the library takes it.
inline TuString wide(std::filesystem::path const& path) {
    return TuString(std::wstring_view(fromUtf8(path.string())));
}

// The same with backslashes throughout, the form in which hosts hand in roots.
inline TuString wideWithBackslashes(std::filesystem::path const& path) {
    TuString text = wide(path);
    text.Replace(L'/', L'\\');
    return text;
}

// The bytes of a wide text, for expectations on plain strings.
inline std::string narrow(wchar_t const* text) {
    return text == nullptr ? std::string("(null)") : toUtf8(text);
}

// The folder of the test data.
inline std::filesystem::path dataFolder() {
    return std::filesystem::path(FLOWMERE_TEST_DATA);
}

// An empty folder of its own, removed with all it holds at the end.
class ScratchFolder {
public:
    ScratchFolder() {
        static std::atomic<unsigned> number{0};
        for (;;) {
            auto const stamp = std::to_string(std::filesystem::file_time_type::clock::now().time_since_epoch().count());
            m_path = std::filesystem::path(testing::TempDir()) /
                     ("flowmere_" + stamp + "_" + std::to_string(number.fetch_add(1)));
            if (std::filesystem::create_directories(m_path)) {
                break;
            }
        }
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;

    std::filesystem::path const& path() const noexcept { return m_path; }
    std::filesystem::path operator/(std::filesystem::path const& name) const { return m_path / name; }

    // The folder, or a path below it, as wide text.
    TuString text() const { return wide(m_path); }
    TuString text(std::filesystem::path const& name) const { return wide(m_path / name); }
    // Writes a file below the folder and gives its path.
    std::filesystem::path write(std::filesystem::path const& name, std::string_view bytes) const {
        writeFile(m_path / name, bytes);
        return m_path / name;
    }
    std::string read(std::filesystem::path const& name) const { return readFile(m_path / name); }

private:
    std::filesystem::path m_path;
};

// Base of test fixtures that write files.
class ScratchTest : public testing::Test {
protected:
    ScratchFolder scratch;
};

} // namespace flowmere::test
