#pragma once

// The side catalogs, read by the library and told in words and in JSON.

#include "host/basics/Text.h"

#include "flowmere/Flowmere.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace flowmere::host {

// Keeps what it makes until it goes itself: some readers leave nodes behind that are nobody's.
class KeepingFactory : public CFCNodeFactory {
public:
    KeepingFactory() = default;
    ~KeepingFactory() override;
    KeepingFactory(KeepingFactory const&) = delete;
    KeepingFactory& operator=(KeepingFactory const&) = delete;

    IFCNode* Create(int typeCode) override;
    // What has no parent, oldest first.
    std::vector<IFCNode*> tops() const;

private:
    std::vector<int> m_handles;
};

// One catalog, of one file or of several that are laid over each other.
class Catalog {
public:
    virtual ~Catalog() = default;

    // Reads one file more, which is well-formed XML. False when the library does not take it.
    virtual bool read(TuString const& file) = 0;
    // Whether anything was found.
    virtual bool isEmpty() const = 0;
    // "2 groups, 12 data types"; empty for a catalog that has nothing to count.
    virtual std::string summary() const = 0;
    // Lines for a person.
    virtual std::string text() const = 0;
    // The members of the JSON document.
    virtual Json json() const = 0;
    // What the files hold and the catalog has no place for, as ends of messages.
    virtual std::vector<std::string> leftOut() const { return {}; }
};

// A kind of catalog.
struct CatalogKind {
    char const* name = "";    // on the command line
    char const* content = ""; // "data types", in messages
    char const* help = "";
    char const* example = "";                 // arguments of an example
    wchar_t const* (*commonPath)() = nullptr; // null where there is no common place
    bool takesUser = false;                   // whether the folder of the user makes a difference
    wchar_t const* (*userPath)() = nullptr;   // null where the user has no such file
    std::vector<std::string> roots = {};      // names that the root element may have in a file that holds nothing
    std::unique_ptr<Catalog> (*make)() = nullptr;
};

// All kinds, in the order in which the help names them.
std::vector<CatalogKind> const& catalogKinds();

} // namespace flowmere::host
