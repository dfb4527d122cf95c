#pragma once

#include "flowmere/Export.h"
#include "flowmere/model/FCFolderNodes.h"
#include "flowmere/persistence/FCReader.h"

// Reads a process list: which processes there are, in which groups, and in which files they lie. The files themselves
// are not opened.
class FLOWMERE_API CFCProcessListReader : public CFCReader {
public:
    CFCProcessListReader();
    CFCProcessListReader(CFCProcessListReader const& other);
    CFCProcessListReader& operator=(CFCProcessListReader const& other);
    ~CFCProcessListReader() override;

    // Fills the list, which the caller owns, through the factory of the reader. Every node gets `baseDirectory` as
    // the folder of its file. The list gets node type 69 and the name in the file, else "BPM Processes" or "Processes".
    // A path with "BPMProcess.lst" in it, but not at its start, is that of a BPM list; a path with the user path of
    // CFCEnvironment in it that of a user's list. False, with the list as it was, for an empty path, a null list and a
    // file that is no well-formed XML; the last also prints "Init failed".
    bool Parse(wchar_t const* path, CFCProcessList* list, wchar_t const* baseDirectory);
    // Appends what the children of the element tell, at any depth, to the node; other elements are passed over. False
    // for a null element or node.
    bool Load(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, wchar_t const* baseDirectory);
    // The attributes of an entry. What the file does not tell is reset, but for the path of the file. A node of a
    // user's list counts as newly placed. Nothing for a null element or node.
    void LoadPropertiesLite(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node) override;

protected:
    CFCProcessList* m_pList = nullptr; // the list of the last Parse; not owned
    bool m_bBPMList = false;
    bool m_bUserList = false;

private:
    void loadBelow(XERCES_CPP_NAMESPACE::DOMElement* element, IFCNode* node, TuString const& baseDirectory);
};
