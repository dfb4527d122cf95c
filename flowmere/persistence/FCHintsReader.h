#pragma once

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/persistence/FCReader.h"

#include <map>

// Reads "Hints.xml": short texts to show for each kind of block. They go into two maps of the process, from node type
// to text. What a map holds stays: the first entry of a kind counts, and a further file only adds kinds. The maps have
// no lock; a host fills them once, when it starts.
class FLOWMERE_API CFCHintsReader : public CFCReader {
public:
    CFCHintsReader();
    CFCHintsReader(CFCHintsReader const& other);
    CFCHintsReader& operator=(CFCHintsReader const& other);
    ~CFCHintsReader() override;

    // The texts on blocks and on actions, empty until a file was read. They live as long as the process.
    static std::map<int, TuString>& BlockHints();
    static std::map<int, TuString>& ActionHints();

    // Adds the hints of the file. No factory is needed. False for a null or empty path, a missing file or anything but
    // well-formed XML.
    bool Parse(wchar_t const* path);
    // Adds the hints of the element's children, each named by its tag; other tags are skipped. False for null.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element);
    // Adds the "Block" and "Action" of one element as the hints of a node type, the empty text for an absent one.
    // Nothing for a null element or type 0.
    using CFCReader::LoadPropertiesLite;
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, int type);
};
