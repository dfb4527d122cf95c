#pragma once

#include "flowmere/Export.h"
#include "flowmere/persistence/FCWriter.h"

// Writes a process list, and enters new processes into one. A list holds links to files, not what is in them.
class FLOWMERE_API CFCProcessListWriter : public CFCWriter {
public:
    CFCProcessListWriter();
    CFCProcessListWriter(CFCProcessListWriter const& other);
    CFCProcessListWriter& operator=(CFCProcessListWriter const& other);
    ~CFCProcessListWriter() override;

    using CFCWriter::WriteFile;
    // Writes the node and the entries below it to the path, which is truncated and written in place. Without
    // `writeAll`, entries that are not newly placed are left out with all below them; the root, which has no parent,
    // is always written. `deep` plays no part. True whatever became of the file.
    bool WriteFile(wchar_t const* path, IFCNode* node, bool deep, bool writeAll);
    // Writes the list root to the user's list file of CFCEnvironment. The write-all flag is that of the last
    // WriteFile. False for a null list root, no path, or a parser library that does not come up.
    bool WriteNewFile();
    // Enters a copy of the node below the list root, in groups named like those above the node; groups that are there
    // are used where their path, or at least their topmost name, fits. Nothing for a null node, a node without parent,
    // or a null list root. The list owns the copy.
    void UpdateNewProcess(IFCNode* node);
    // Whether both nodes have the same captions from themselves upwards. Above `listed` the process list itself does
    // not count; above `fresh` everything does. False when one is null.
    bool PathCompare(IFCNode* listed, IFCNode* fresh);

    // The node and the entries below it; a null `self` makes the element below `parent`. Nothing for a null node, a
    // type that has no element, or without either element.
    void WriteObject(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* parent,
                     XERCES_CPP_NAMESPACE::DOMNode* self) override;
    // The attributes of an entry; those of version and check-out only for the files of a BPM list.
    void WriteProperties(IFCNode* node, XERCES_CPP_NAMESPACE::DOMNode* element) override;

    // What WriteNewFile and UpdateNewProcess work on; not owned, null until the owner of the writer sets it.
    IFCNode* m_pListRoot = nullptr;
    // Whether that is a BPM list; false until the owner of the writer sets it.
    bool m_bBPMList = false;

protected:
    bool m_bWriteAll = false;

private:
    int m_nListDepth = 0;
};
