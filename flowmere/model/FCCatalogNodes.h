#pragma once

#include <memory>

#include "flowmere/Export.h"
#include "flowmere/foundation/TuString.h"
#include "flowmere/model/FCEnumerations.h"
#include "flowmere/model/FCNode.h"
#include "flowmere/model/FCNodeFactory.h"

// The small nodes of the catalogs: data types with their code, files, file types, MIME types,
// code fragments, documents, favourites, packages and help entries.
//
// Texts start empty, setters copy them, and a null text is the empty text. A text result points
// into the node and holds until that member changes.

// Code that moves a value of a data type out of and into each script language.
struct FLOWMERE_API NodeCode {
    TuString getCodeJS;
    TuString getCodeJython;
    TuString getCodePython;
    TuString setCodeJS;
    TuString setCodeJython;
    TuString setCodePython;
};

// A data type of the catalog, or a group of them.
class FLOWMERE_API CFCDataTypeNode : public CFCNode {
public:
    CFCDataTypeNode();
    // Copies are shallow and share the code record, which goes with the last of them.
    CFCDataTypeNode(CFCDataTypeNode const& other);
    CFCDataTypeNode& operator=(CFCDataTypeNode const& other);
    ~CFCDataTypeNode() override;

    void Create() override;

    // The code record, owned by the node; null only after a null was set.
    NodeCode* GetCodeNode() { return codeRecord().get(); }
    // Takes over `record`, made with new and held by no other node, in place of the present one;
    // the caller keeps it when there is no present one. Null leaves the node without a record.
    void SetCodeNode(NodeCode* record);
    // Stores one text of the record: script type 0 Python, 6 JS, 7 Jython, any other stores nothing;
    // `isGetCode` selects the get code, else the set code.
    void SetCodeNode(EScriptType scriptType, wchar_t const* text, bool isGetCode);
    void SetCodeNode(int scriptType, wchar_t const* text, bool isGetCode) {
        SetCodeNode(static_cast<EScriptType>(scriptType), text, isGetCode);
    }

    // Type word.
    wchar_t const* GetType() { return m_type; }
    void SetType(wchar_t const* text) { m_type = text; }
    // Scope word.
    wchar_t const* GetScope() { return m_scope; }
    void SetScope(wchar_t const* text) { m_scope = text; }
    // The language that a reader last named for this node; 0 in a new node.
    EScriptType GetLanguage() { return m_language; }
    void SetLanguage(EScriptType scriptType) { m_language = scriptType; }
    void SetLanguage(int scriptType) { m_language = static_cast<EScriptType>(scriptType); }

    // The type word begins with "Orrin" and names a structured value, not a credential; letter
    // case does not count.
    bool IsOrrinType();

    // Copies caption, type, scope and the six code texts, but not the language. False, and nothing
    // done, for a null.
    static bool Copy(CFCDataTypeNode* source, CFCDataTypeNode* target);

protected:
    // Whether the record is there by now. Every variable has a data type node, and hardly any has code of its own, so
    // an empty record is made when it is first asked for.
    bool HasOwnRecord() const { return m_codeNode != nullptr; }

private:
    std::shared_ptr<NodeCode> const& codeRecord() const;

    mutable std::shared_ptr<NodeCode> m_codeNode;
    TuString m_type;
    TuString m_scope;
    EScriptType m_language = static_cast<EScriptType>(0);
    bool m_withoutRecord = false; // a null was set
};

// Root of the loaded data type catalog.
class FLOWMERE_API CFCDataTypeList : public CFCDataTypeNode {
public:
    CFCDataTypeList();
    CFCDataTypeList(CFCDataTypeList const&) = default;
    CFCDataTypeList& operator=(CFCDataTypeList const&) = default;
    ~CFCDataTypeList() override;
};

// A file in a process list or a library; the library state of CFCNode is real here.
class FLOWMERE_API CFCFileNode : public CFCNode {
public:
    CFCFileNode();
    // The argument is ignored; the node type is the caller's to set.
    explicit CFCFileNode(int typeCode);
    CFCFileNode(CFCFileNode const&) = default;
    CFCFileNode& operator=(CFCFileNode const&) = default;
    ~CFCFileNode() override;

    void Create() override;

    // 0 unless the project type is 1; then by check-out, age and unsaved changes.
    int GetImage() override;
    // Where the file lives; 0 in a new node.
    int GetNodeLocationType() override;
    void SetNodeLocationType(int locationType) override;
    // Identifier of the node.
    wchar_t const* GetNodeId() override;
    void SetNodeId(wchar_t const* text) override;
    // Path of the file, and the directory that it is relative to.
    wchar_t const* GetItemFilePath() override;
    void SetItemFilePath(wchar_t const* text) override;
    wchar_t const* GetItemFileBaseDirectory() override;
    void SetItemFileBaseDirectory(wchar_t const* text) override;
    // Kind of project in the file; 8 in a new node.
    EProjectType GetProjectType() override;
    void SetProjectType(EProjectType kind) override;
    // Version of the item.
    void SetVersionNo(float version) override;
    // Library state.
    bool IsDirty() override;
    void SetDirty(bool flag) override;
    bool IsCheckedOut() override;
    void SetCheckedOut(bool flag) override;
    bool IsUptoDate() override;
    void SetUptoDate(bool flag) override;
    wchar_t const* GetCheckedOutUser() override;
    void SetCheckedOutUser(wchar_t const* text) override;

private:
    int m_nodeLocationType = 0;
    TuString m_nodeId;
};

// A file type of the catalog.
class FLOWMERE_API CFCFileTypeNode : public CFCFileNode {
public:
    CFCFileTypeNode();
    CFCFileTypeNode(CFCFileTypeNode const&) = default;
    CFCFileTypeNode& operator=(CFCFileTypeNode const&) = default;
    ~CFCFileTypeNode() override;

    // 3 when modified, else 0.
    int GetImage() override;

    // Description of the file type.
    wchar_t const* GetFileTypeDescription() { return m_fileTypeDescription; }
    void SetFileTypeDescription(wchar_t const* text) { m_fileTypeDescription = text; }
    // Extension of the files.
    wchar_t const* GetFileTypeExtension() { return m_fileTypeExtension; }
    void SetFileTypeExtension(wchar_t const* text) { m_fileTypeExtension = text; }
    // MIME type of the files.
    wchar_t const* GetMimeType() { return m_mimeType; }
    void SetMimeType(wchar_t const* text) { m_mimeType = text; }
    // Name of the file type.
    wchar_t const* GetFileTypeName() { return m_fileTypeName; }
    void SetFileTypeName(wchar_t const* text) { m_fileTypeName = text; }
    // Identifier of the file type.
    int GetFileTypeID() { return m_fileTypeId; }
    void SetFileTypeID(int number) { m_fileTypeId = number; }

    // Unsaved changes and mark for deletion, apart from those of the base.
    using CFCFileNode::SetDeleted;
    using CFCFileNode::SetModified;
    bool IsModified() override;
    void SetModified(bool flag) override;
    bool IsDeleted() override;
    void SetDeleted(bool flag) override;

    // Copies all fields, the two flags through the virtual setters. False, and nothing done, for a
    // null.
    static bool Copy(CFCFileTypeNode* source, CFCFileTypeNode* target);

private:
    TuString m_fileTypeDescription;
    TuString m_fileTypeExtension;
    TuString m_mimeType;
    TuString m_fileTypeName;
    int m_fileTypeId = 0;
    bool m_fileTypeModified = false;
    bool m_fileTypeDeleted = false;
};

// A MIME type of the catalog.
class FLOWMERE_API CFCMimeTypeNode : public CFCNode {
public:
    CFCMimeTypeNode();
    CFCMimeTypeNode(CFCMimeTypeNode const&) = default;
    CFCMimeTypeNode& operator=(CFCMimeTypeNode const&) = default;
    ~CFCMimeTypeNode() override;

    void Create() override;

    // The content type, such as "text/plain".
    wchar_t const* GetContentType() { return m_contentType; }
    void SetContentType(wchar_t const* text) { m_contentType = text; }

private:
    TuString m_contentType;
};

// A code fragment.
class FLOWMERE_API CFCCodeNode : public CFCNode {
public:
    CFCCodeNode();
    CFCCodeNode(CFCCodeNode const&) = default;
    CFCCodeNode& operator=(CFCCodeNode const&) = default;
    ~CFCCodeNode() override;

    void Create() override;

    // The code.
    wchar_t const* GetNodeCode() override;
    void SetNodeCode(wchar_t const* text) override;

private:
    TuString m_code;
};

// A document of a block or of the favourites; node type 177 from construction on.
class FLOWMERE_API CFCDocumentNode : public CFCNode {
public:
    CFCDocumentNode();
    CFCDocumentNode(CFCDocumentNode const&) = default;
    CFCDocumentNode& operator=(CFCDocumentNode const&) = default;
    ~CFCDocumentNode() override;

    void Create() override;

    // The document is open in the host.
    bool IsOpened() { return m_opened; }
    void SetOpened(bool flag) { m_opened = flag; }
    // Kind of document, a number of the host.
    int GetDocType() { return m_docType; }
    void SetDocType(int number) { m_docType = number; }

private:
    bool m_opened = false;
    int m_docType = 0;
};

// The favourites of a process; node type 176 and caption "FAVOURITES" from construction on.
class FLOWMERE_API CFCFavouriteNode : public CFCNode {
public:
    CFCFavouriteNode();
    CFCFavouriteNode(CFCFavouriteNode const&) = default;
    CFCFavouriteNode& operator=(CFCFavouriteNode const&) = default;
    ~CFCFavouriteNode() override;

    void Create() override;
    // Always 6.
    int GetImage() override;

    // The first node of that caption here or below, this node included; null when there is none.
    // Defined in algorithms/FavouriteFolders.cpp.
    IFCNode* GetFolderNode(wchar_t const* name);

private:
    CFCNodeFactory m_factory;
};

// A package as its manifest describes it.
class FLOWMERE_API CFCPackageNode : public CFCNode {
public:
    CFCPackageNode();
    CFCPackageNode(CFCPackageNode const&) = default;
    CFCPackageNode& operator=(CFCPackageNode const&) = default;
    ~CFCPackageNode() override;

    void Create() override;

    // Texts of the manifest; dates and numbers stay as written.
    TuString version;
    TuString build;
    TuString releaseDate;
    TuString releaseNumber;
    TuString path;
    // Not in a manifest; the library makes no use of them.
    TuString patchFile;
    TuString installationLocation;

    // The same texts for hosts that go by accessors.
    wchar_t const* GetVersion() { return version; }
    void SetVersion(wchar_t const* text) { version = text; }
    wchar_t const* GetBuild() { return build; }
    void SetBuild(wchar_t const* text) { build = text; }
    wchar_t const* GetReleaseDate() { return releaseDate; }
    void SetReleaseDate(wchar_t const* text) { releaseDate = text; }
    wchar_t const* GetReleaseNumber() { return releaseNumber; }
    void SetReleaseNumber(wchar_t const* text) { releaseNumber = text; }
    wchar_t const* GetPath() { return path; }
    void SetPath(wchar_t const* text) { path = text; }
};

// A help entry.
class FLOWMERE_API CFCAPIHelpNode : public CFCNode {
public:
    CFCAPIHelpNode();
    CFCAPIHelpNode(CFCAPIHelpNode const&) = default;
    CFCAPIHelpNode& operator=(CFCAPIHelpNode const&) = default;
    ~CFCAPIHelpNode() override;

    void Create() override;

    // The help text; the code of the node is the same text.
    virtual wchar_t const* GetNodeText();
    virtual void SetNodeText(wchar_t const* text);
    wchar_t const* GetNodeCode() override;
    void SetNodeCode(wchar_t const* text) override;

private:
    TuString m_nodeText;
};
