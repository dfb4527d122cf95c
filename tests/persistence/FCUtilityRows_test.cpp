// Every call of the front door beside the same work done by hand: object, wiring, call. Both must come to the same for
// whatever a host may hand in.
#include "flowmere/persistence/FCUtility.h"

#include "CatalogTestSupport.h"
#include "flowmere/persistence/FCAPIHelpReader.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCFavouriteReader.h"
#include "flowmere/persistence/FCFavouriteWriter.h"
#include "flowmere/persistence/FCFileTypeListWriter.h"
#include "flowmere/persistence/FCHintsReader.h"
#include "flowmere/persistence/FCManifestReader.h"
#include "flowmere/persistence/FCManifestWriter.h"
#include "flowmere/persistence/FCMimeTypeReader.h"
#include "flowmere/persistence/FCProcessListReader.h"
#include "flowmere/persistence/FCProcessListWriter.h"
#include "flowmere/persistence/FCReader.h"
#include "flowmere/persistence/FCWriter.h"
#include "flowmere/workflow/FCMSPReader.h"
#include "flowmere/workflow/FCProcessDefinitionReader.h"
#include "flowmere/workflow/FCProcessDefinitionWriter.h"
#include "flowmere/workflow/FCWorkFlowWriter.h"
#include "flowmere/workflow/ScheduleColumns.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace flowmere::test;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

// --- What each call takes and gives ------------------------------------------------------------------------------

template <typename Form, typename Function>
constexpr bool hasForm(Function) {
    return std::is_same_v<Form, Function>;
}

using Path = wchar_t const*;
using F = FCUtility;
static_assert(hasForm<bool (*)(CFCNodeFactory&, Path, IFCNode**, int)>(&F::CFCReader_Parse));
static_assert(
    hasForm<bool (*)(CFCNodeFactory&, CFCBaseContainer*, Path, IFCNode**, int)>(&F::CFCReader_ParseContainer));
static_assert(hasForm<void (*)(CFCNodeFactory&, Path, IFCNode*, bool)>(&F::CFCReader_LoadFileNode));
static_assert(hasForm<bool (*)(Path, IFCNode*, bool)>(&F::CFCWriter_WriteFile));
static_assert(hasForm<bool (*)(Path, IFCNode*, bool, TuString&)>(&F::CFCWriter_WriteFileGetVariableErrors));
static_assert(hasForm<void (*)(Path)>(&F::CFCWriter_LoadAndFormatXML));
static_assert(hasForm<bool (*)(CFCNodeFactory&, Path, CFCProcessList*, Path)>(&F::CFCProcessListReader_Parse));
static_assert(hasForm<bool (*)(Path, IFCNode*, bool, bool, bool)>(&F::CFCProcessListWriter_WriteFile));
static_assert(hasForm<CFCDataTypeNode* (*)()>(&F::CFCDataTypeListReader_GetDataTypeRootNode));
static_assert(hasForm<void (*)()>(&F::CFCDataTypeListReader_RefreshDataTypes));
static_assert(hasForm<bool (*)(Path, IFCNode*, bool)>(&F::CFCFileTypeListWriter_WriteFile));
static_assert(hasForm<bool (*)(CFCNodeFactory&, Path, CFCMimeTypeNode*)>(&F::CFCMimeTypeReader_Parse));
static_assert(hasForm<bool (*)(Path)>(&F::CFCHintsReader_Parse));
static_assert(hasForm<std::map<int, TuString>& (*)()>(&F::CFCHintsReader_BlockHints));
static_assert(hasForm<std::map<int, TuString>& (*)()>(&F::CFCHintsReader_ActionHints));
static_assert(hasForm<bool (*)(CFCNodeFactory&, Path, CFCProcessList*)>(&F::CFCAPIHelpReader_Parse));
static_assert(hasForm<bool (*)(CFCNodeFactory&, Path, CFCPackageNode**)>(&F::CFCManifestReader_Parse));
static_assert(hasForm<bool (*)(Path, IFCNode*, bool)>(&F::CFCManifestWriter_WriteFile));
static_assert(hasForm<bool (*)(CFCNodeFactory&, Path, IFCNode**)>(&F::CFCFavouriteReader_Parse));
static_assert(hasForm<bool (*)(Path, IFCNode*, bool)>(&F::CFCFavouriteWriter_WriteFile));
static_assert(hasForm<bool (*)(CFCNodeFactory&, Path, IFCNode**, int)>(&F::CFCProcessDefinitionReader_Parse));
static_assert(hasForm<bool (*)(CFCNodeFactory&, CFCBaseContainer*, Path, IFCNode**, int)>(
    &F::CFCProcessDefinitionReader_ParseContainer));
static_assert(hasForm<bool (*)(CFCNodeFactory&, Path, IFCNode*)>(&F::CFCProcessDefinitionReader_LoadFileNode));
static_assert(hasForm<bool (*)(Path, IFCNode*, bool)>(&F::CFCProcessDefinitionWriter_WriteFile));
static_assert(hasForm<bool (*)(Path, IFCNode*, IFCNode*)>(&F::CFCWorkFlowWriter_WriteFile));
static_assert(
    hasForm<bool (*)(CFCNodeFactory&, CFCBaseContainer*, Path, IFCNode**, int)>(&F::CFCMSPReader_ParseContainer));

// --- The same work twice -----------------------------------------------------------------------------------------

enum Way { ByHand, ByFrontDoor };

// Notes what it is told of; throws at the given call.
class NotingContainer : public CFCBaseContainer {
public:
    void Attach(IFCNode* node) override {
        if (throwAt == static_cast<int>(noted.size()))
            throw std::runtime_error("no room");
        noted.push_back(narrow(node->GetNodeCaption()));
    }

    std::vector<std::string> noted;
    int throwAt = -1;
};

class ThrowingFactory : public RememberingFactory {
public:
    IFCNode* Create(int type) override {
        if (throwAt == static_cast<int>(asked.size()))
            throw std::runtime_error("no node");
        return RememberingFactory::Create(type);
    }

    int throwAt = 0;
};

class FCUtilityRows : public CatalogTest {
protected:
    FCUtilityRows() { forget(); }
    ~FCUtilityRows() override { forget(); }

    static void forget() {
        FCUtility::CFCHintsReader_BlockHints().clear();
        FCUtility::CFCHintsReader_ActionHints().clear();
        flowmere::scheduleColumns() = flowmere::ScheduleColumns();
    }

    // A reader's row: what the call came to, in one text.
    using Read = std::function<std::string(Way, CFCNodeFactory&, Path)>;

    // What a call finds where its result goes: a node of the host's, into which some read, or nothing.
    IFCNode* start() {
        former.reset(startsWithNode ? CFCNodeFactory().Create(160) : nullptr);
        return former.get();
    }
    // A workflow folder without its variables is a failure that hands out what it read all the same.
    enum Failure { ChangesNothing, MayHandOut };

    std::string told(bool isRead, IFCNode* out, Failure failure = ChangesNothing) {
        if (!isRead && failure == ChangesNothing) {
            EXPECT_EQ(former.get(), out) << "a failure changes nothing";
        }
        std::string const place = out == nullptr ? "nothing" : out == former.get() ? "the former" : "another";
        return (isRead ? "true " : "false ") + place + " " + (out == nullptr ? "" : treeOf(out)) + " " +
               testing::PrintToString(container.noted);
    }
    // The same for rows that hand no node out.
    std::string told(bool isRead) { return isRead ? "true " : "false "; }
    template <typename Node>
    std::unique_ptr<Node, TreeEnd> make(int kind) {
        return std::unique_ptr<Node, TreeEnd>(dynamic_cast<Node*>(CFCNodeFactory().Create(kind)));
    }
    static std::string hints(std::map<int, TuString> const& map) {
        std::string text;
        for (auto const& [kind, hint] : map)
            text += " " + std::to_string(kind) + "=" + narrow(hint);
        return text;
    }

    // The rows that read. Trees that are made stay with the factory, which knows them all.
    std::map<std::string, Read> readers() {
        std::map<std::string, Read> rows;
        rows["CFCReader_Parse"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            IFCNode* out = start();
            CFCReader reader;
            reader.SetNodeFactory(&maker);
            bool const isRead =
                way == ByFrontDoor ? FCUtility::CFCReader_Parse(maker, path, &out, 16) : reader.Parse(path, &out, 16);
            return told(isRead, out);
        };
        rows["CFCReader_ParseContainer"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            IFCNode* out = start();
            CFCReader reader;
            reader.SetNodeFactory(&maker);
            reader.SetContainer(&container);
            bool const isRead = way == ByFrontDoor
                                    ? FCUtility::CFCReader_ParseContainer(maker, &container, path, &out, 16)
                                    : reader.Parse(path, &out, 16);
            return told(isRead, out);
        };
        rows["CFCReader_LoadFileNode"] = [](Way way, CFCNodeFactory& maker, Path path) {
            std::string text;
            for (bool const flag : {false, true}) {
                Tree const block(CFCNodeFactory().Create(61));
                if (way == ByFrontDoor) {
                    FCUtility::CFCReader_LoadFileNode(maker, path, block.get(), flag);
                } else {
                    CFCReader reader;
                    reader.SetNodeFactory(&maker);
                    reader.LoadFileNode(path, block.get(), flag);
                }
                text += treeOf(block.get()) + (block->IsLoaded() ? " loaded " : " not loaded ");
            }
            return text;
        };
        rows["CFCProcessListReader_Parse"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            auto const list = make<CFCProcessList>(69);
            CFCProcessListReader reader;
            reader.SetNodeFactory(&maker);
            bool const isRead = way == ByFrontDoor
                                    ? FCUtility::CFCProcessListReader_Parse(maker, path, list.get(), L"base")
                                    : reader.Parse(path, list.get(), L"base");
            IFCNode* const first = list->GetChild();
            return told(isRead) + treeOf(list.get()) +
                   (first != nullptr ? narrow(first->GetItemFileBaseDirectory()) : "");
        };
        rows["CFCMimeTypeReader_Parse"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            auto const list = make<CFCMimeTypeNode>(86);
            CFCMimeTypeReader reader;
            reader.SetNodeFactory(&maker);
            bool const isRead = way == ByFrontDoor ? FCUtility::CFCMimeTypeReader_Parse(maker, path, list.get())
                                                   : reader.Parse(path, list.get());
            return told(isRead) + treeOf(list.get());
        };
        rows["CFCHintsReader_Parse"] = [this](Way way, CFCNodeFactory&, Path path) {
            forget();
            CFCHintsReader reader;
            bool const isRead = way == ByFrontDoor ? FCUtility::CFCHintsReader_Parse(path) : reader.Parse(path);
            return told(isRead) +
                   (way == ByFrontDoor
                        ? hints(FCUtility::CFCHintsReader_BlockHints()) + hints(FCUtility::CFCHintsReader_ActionHints())
                        : hints(CFCHintsReader::BlockHints()) + hints(CFCHintsReader::ActionHints()));
        };
        rows["CFCAPIHelpReader_Parse"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            auto const list = make<CFCProcessList>(69);
            CFCAPIHelpReader reader;
            reader.SetNodeFactory(&maker);
            bool const isRead = way == ByFrontDoor ? FCUtility::CFCAPIHelpReader_Parse(maker, path, list.get())
                                                   : reader.Parse(path, list.get());
            return told(isRead) + treeOf(list.get());
        };
        rows["CFCManifestReader_Parse"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            auto const package = make<CFCPackageNode>(172);
            CFCPackageNode* out = startsWithNode ? package.get() : nullptr;
            CFCManifestReader reader;
            reader.SetNodeFactory(&maker);
            bool const isRead =
                way == ByFrontDoor ? FCUtility::CFCManifestReader_Parse(maker, path, &out) : reader.Parse(path, &out);
            bool const isFormer = out == (startsWithNode ? package.get() : nullptr);
            EXPECT_TRUE(isRead || isFormer) << "a failure changes nothing";
            return told(isRead) + (isFormer ? "the former" : narrow(out->GetVersion()));
        };
        rows["CFCFavouriteReader_Parse"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            auto const process = make<CFCProcessNode>(56);
            IFCNode* out = process.get();
            CFCFavouriteReader reader;
            reader.SetNodeFactory(&maker);
            bool const isRead =
                way == ByFrontDoor ? FCUtility::CFCFavouriteReader_Parse(maker, path, &out) : reader.Parse(path, &out);
            EXPECT_EQ(process.get(), out);
            return told(isRead) + treeOf(process->GetFavouriteNode());
        };
        rows["CFCProcessDefinitionReader_Parse"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            IFCNode* out = start();
            CFCProcessDefinitionReader reader;
            reader.SetNodeFactory(&maker);
            bool const isRead = way == ByFrontDoor ? FCUtility::CFCProcessDefinitionReader_Parse(maker, path, &out, 16)
                                                   : reader.Parse(path, &out, 16);
            return told(isRead, out, MayHandOut);
        };
        rows["CFCProcessDefinitionReader_ParseContainer"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            IFCNode* out = start();
            CFCProcessDefinitionReader reader;
            reader.SetContainer(&container);
            reader.SetNodeFactory(&maker);
            bool const isRead =
                way == ByFrontDoor
                    ? FCUtility::CFCProcessDefinitionReader_ParseContainer(maker, &container, path, &out, 16)
                    : reader.Parse(path, &out, 16);
            return told(isRead, out, MayHandOut);
        };
        rows["CFCProcessDefinitionReader_LoadFileNode"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            Tree const process(CFCNodeFactory().Create(160));
            IFCNode* const block = addChild(process.get(), 162, L"sub");
            CFCProcessDefinitionReader reader;
            reader.SetNodeFactory(&maker);
            bool const isRead = way == ByFrontDoor
                                    ? FCUtility::CFCProcessDefinitionReader_LoadFileNode(maker, path, block)
                                    : reader.LoadFileNode(path, block);
            return told(isRead) + treeOf(process.get());
        };
        rows["CFCMSPReader_ParseContainer"] = [this](Way way, CFCNodeFactory& maker, Path path) {
            flowmere::scheduleColumns() = flowmere::ScheduleColumns();
            IFCNode* out = start();
            CFCMSPReader reader;
            reader.SetNodeFactory(&maker);
            reader.SetContainer(&container);
            bool const isRead = way == ByFrontDoor
                                    ? FCUtility::CFCMSPReader_ParseContainer(maker, &container, path, &out, 16)
                                    : reader.Parse(path, &out, 16);
            return told(isRead, out);
        };
        return rows;
    }

    // A writer's row.
    using Write = std::function<bool(Way, Path, IFCNode*)>;

    std::map<std::string, Write> writers() {
        std::map<std::string, Write> rows;
        for (bool const deep : {false, true}) {
            std::string const suffix = deep ? ", deep" : "";
            rows["CFCWriter_WriteFile" + suffix] = [deep](Way way, Path path, IFCNode* node) {
                CFCWriter writer;
                return way == ByFrontDoor ? FCUtility::CFCWriter_WriteFile(path, node, deep)
                                          : writer.WriteFile(path, node, deep);
            };
            rows["CFCWriter_WriteFileGetVariableErrors" + suffix] = [this, deep](Way way, Path path, IFCNode* node) {
                CFCWriter writer;
                bool isWritten = false;
                if (way == ByFrontDoor) {
                    errors = L"of before";
                    isWritten = FCUtility::CFCWriter_WriteFileGetVariableErrors(path, node, deep, errors);
                } else {
                    isWritten = writer.WriteFile(path, node, deep);
                    errors = writer.GetVariableErrors();
                }
                return isWritten;
            };
            for (bool const writeAll : {false, true}) {
                for (bool const bpmList : {false, true}) {
                    rows["CFCProcessListWriter_WriteFile" + suffix + (writeAll ? ", all" : "") +
                         (bpmList ? ", workflow" : "")] = [=](Way way, Path path, IFCNode* node) {
                        CFCProcessListWriter writer;
                        writer.m_bBPMList = bpmList;
                        return way == ByFrontDoor
                                   ? FCUtility::CFCProcessListWriter_WriteFile(path, node, deep, writeAll, bpmList)
                                   : writer.WriteFile(path, node, deep, writeAll);
                    };
                }
            }
            rows["CFCFileTypeListWriter_WriteFile" + suffix] = [deep](Way way, Path path, IFCNode* node) {
                CFCFileTypeListWriter writer;
                return way == ByFrontDoor ? FCUtility::CFCFileTypeListWriter_WriteFile(path, node, deep)
                                          : writer.WriteFile(path, node, deep);
            };
            rows["CFCManifestWriter_WriteFile" + suffix] = [deep](Way way, Path path, IFCNode* node) {
                CFCManifestWriter writer;
                return way == ByFrontDoor ? FCUtility::CFCManifestWriter_WriteFile(path, node, deep)
                                          : writer.CFCWriter::WriteFile(path, node, deep);
            };
            rows["CFCFavouriteWriter_WriteFile" + suffix] = [deep](Way way, Path path, IFCNode* node) {
                CFCFavouriteWriter writer;
                return way == ByFrontDoor ? FCUtility::CFCFavouriteWriter_WriteFile(path, node, deep)
                                          : writer.CFCWriter::WriteFile(path, node, deep);
            };
            rows["CFCProcessDefinitionWriter_WriteFile" + suffix] = [deep](Way way, Path path, IFCNode* node) {
                CFCProcessDefinitionWriter writer;
                return way == ByFrontDoor ? FCUtility::CFCProcessDefinitionWriter_WriteFile(path, node, deep)
                                          : writer.WriteFile(path, node, deep);
            };
        }
        rows["CFCWorkFlowWriter_WriteFile"] = [this](Way way, Path path, IFCNode* node) {
            CFCWorkFlowWriter writer;
            return way == ByFrontDoor ? FCUtility::CFCWorkFlowWriter_WriteFile(path, node, applications.get())
                                      : writer.WriteFile(path, node, applications.get());
        };
        rows["CFCWorkFlowWriter_WriteFile, no applications"] = [](Way way, Path path, IFCNode* node) {
            CFCWorkFlowWriter writer;
            return way == ByFrontDoor ? FCUtility::CFCWorkFlowWriter_WriteFile(path, node, nullptr)
                                      : writer.WriteFile(path, node, nullptr);
        };
        rows["CFCWriter_LoadAndFormatXML"] = [](Way way, Path path, IFCNode*) {
            if (way == ByFrontDoor)
                FCUtility::CFCWriter_LoadAndFormatXML(path);
            else
                CFCWriter::LoadAndFormatXML(path);
            return true;
        };
        return rows;
    }

    TuString place(std::filesystem::path const& name, std::string_view text) {
        scratch.write(name, text);
        return scratch.text(name);
    }
    // Hosts hand in the paths of workflow files with backslashes.
    TuString workflow(char const* folder, std::string_view text) {
        scratch.write(std::filesystem::path(folder) / "processdefinition.xml", text);
        return wideWithBackslashes(scratch / folder / "processdefinition.xml");
    }
    // One good file for each kind of reader, and files that no reader can be content with.
    std::vector<TuString> files() {
        return {
            place("native.bpt", "<PROCESS Name='Plant'><BLOCK Name='first' ID='first'/><BLOCK Name='second' "
                                "ID='second'/></PROCESS>"),
            place("list.xml", "<P Name='Mine'><PROCESS Name='Beam' FILE='beam.bpt'/></P>"),
            workflow("flow", "<process-definition name='Flow'><task-node name='step'><transition "
                             "to='done'/><transition to='step'/></task-node>"
                             "<end-state name='done'/></process-definition>"),
            place("flow/process.var", "<P/>"),
            workflow("bare", "<process-definition name='Bare'><task-node name='step'/></process-definition>"),
            place("plan.xml", "<Project><Name>Plan</Name><Tasks><Task><UID>1</UID><Name>One</Name><Type>1</Type>"
                              "<WBS>1</WBS></Task></Tasks></Project>"),
            place("hints.xml", "<H><FORK Block='b' Action='a'/></H>"),
            place("help.xml", "<P Name='Help'><MODULE Name='m'/></P>"),
            place("mime.xml", "<M><MIMETYPE contentType='text/plain' description='Text'/></M>"),
            place("manifest.mf", "<Manifest><MANIFEST_INFO Version='2.1' Build='7'/></Manifest>"),
            place("favourites.xml", "<P><FAVOURITES Name='Mine'><CUSTOM_FOLDER Name='a'/></FAVOURITES></P>"),
            place("other.xml", "<A/>"),
            place("text.txt", "no markup at all"),
        };
    }
    // Paths behind which there is nothing to read, each in its own way.
    std::vector<TuString> deadEnds() {
        std::filesystem::create_directories(scratch / "folder" / "processdefinition.xml");
        std::filesystem::create_symlink("nowhere.xml", scratch / "dangling.xml");
        std::filesystem::create_symlink("circle.xml", scratch / "circle.xml");
        TuString const locked = place("locked.xml", "<PROCESS Name='Plant'/>");
        std::filesystem::permissions(scratch / "locked.xml", std::filesystem::perms::none);
        std::vector<TuString> paths = {
            TuString(),
            TuString(L" "),
            TuString(L"\\"),
            scratch.text("missing.xml"),
            wideWithBackslashes(scratch / "missing" / "processdefinition.xml"),
            scratch.text(),
            scratch.text("folder"),
            scratch.text("folder") + TuString(L"/"),
            scratch.text("folder") + TuString(L"\\"),
            wideWithBackslashes(scratch / "folder" / "processdefinition.xml"),
            scratch.text("flow/processdefinition.xml.old"),
            scratch.text("dangling.xml"),
            scratch.text("circle.xml"),
            place("plain.txt", "<A/>") + TuString(L"/below.xml"),
            TuString(std::wstring_view(std::wstring(100000, L'p'))),
            TuString(std::wstring_view(L"half \xD83D.xml")),
            TuString(std::wstring_view(L"beyond \x7FFFFFF0.xml")),
            place("empty.xml", ""),
            workflow("empty", ""),
            place("broken.xml", "<A><B></A>"),
            workflow("broken", "<A><B></A>"),
            TuString(L"/dev/null"),
        };
        // A superuser reads what is locked, too.
        if (::geteuid() != 0)
            paths.push_back(locked);
        return paths;
    }

    bool startsWithNode = false;
    Tree former;
    Tree applications{CFCNodeFactory().Create(168)};
    NotingContainer container;
    TuString errors;
};

std::string excerpt(Path path) {
    std::string const text = path == nullptr ? "no path" : narrow(path);
    return text.substr(0, 200);
}

TEST_F(FCUtilityRows, ReadersComeToWhatTheirClassesComeTo) {
    std::vector<TuString> paths = files();
    std::vector<TuString> const others = deadEnds();
    paths.insert(paths.end(), others.begin(), others.end());
    auto const rows = readers();
    EXPECT_THAT(rows, SizeIs(13));
    std::map<std::string, int> successes;
    printedBy([&] {
        for (auto const& [name, call] : rows) {
            for (TuString const& path : paths) {
                for (bool const isNodeThere : {false, true}) {
                    startsWithNode = isNodeThere;
                    container.noted.clear();
                    std::string const byHand = call(ByHand, factory, path);
                    container.noted.clear();
                    std::string const outcome = call(ByFrontDoor, factory, path);
                    EXPECT_EQ(byHand, outcome) << name << " " << excerpt(path);
                    if (outcome.starts_with("true") || outcome.find(" loaded") != std::string::npos)
                        ++successes[name];
                }
            }
        }
    });
    for (auto const& row : rows)
        EXPECT_GT(successes[row.first], 0) << row.first << " never read anything";
}

TEST_F(FCUtilityRows, ReadersGiveFalseAndChangeNothingAtADeadEnd) {
    std::vector<TuString> const paths = deadEnds();
    startsWithNode = true;
    printedBy([&] {
        for (auto const& [name, call] : readers()) {
            std::string const nothing = call(ByFrontDoor, factory, nullptr);
            EXPECT_FALSE(nothing.starts_with("true")) << name;
            for (TuString const& path : paths)
                EXPECT_EQ(nothing, call(ByFrontDoor, factory, path)) << name << " " << excerpt(path);
        }
    });
    EXPECT_TRUE(container.noted.empty());
}

TEST_F(FCUtilityRows, ReadersComeToTheSameWithAFactoryThatMakesNothing) {
    EmptyFactory empty;
    std::vector<TuString> const paths = files();
    printedBy([&] {
        for (auto const& [name, call] : readers()) {
            for (TuString const& path : paths) {
                for (bool const isNodeThere : {false, true}) {
                    startsWithNode = isNodeThere;
                    container.noted.clear();
                    std::string const byHand = call(ByHand, empty, path);
                    container.noted.clear();
                    EXPECT_EQ(byHand, call(ByFrontDoor, empty, path)) << name << " " << excerpt(path);
                }
            }
        }
    });
}

// What a call throws; empty when it throws nothing.
template <typename Call>
std::string thrownBy(Call const& call) {
    try {
        call();
    } catch (std::runtime_error const& error) {
        return error.what();
    }
    return "";
}

TEST_F(FCUtilityRows, WhatTheHostsFactoryThrowsPassesThrough) {
    std::vector<TuString> const paths = files();
    std::map<std::string, int> thrown;
    ThrowingFactory throwing;
    printedBy([&] {
        for (auto const& [name, call] : readers()) {
            for (TuString const& path : paths) {
                for (Way const way : {ByHand, ByFrontDoor}) {
                    std::string const what = thrownBy([&, &row = call] { row(way, throwing, path); });
                    EXPECT_TRUE(what.empty() || what == "no node") << name;
                    thrown[name] += way == ByHand ? (what.empty() ? 0 : 1) : (what.empty() ? 0 : 100);
                }
            }
        }
    });
    for (auto const& [name, times] : thrown) {
        EXPECT_EQ(times % 100, times / 100) << name << " keeps what is thrown";
        // Hints are no nodes.
        EXPECT_EQ(name != "CFCHintsReader_Parse", times > 0) << name;
    }
}

TEST_F(FCUtilityRows, WhatTheHostsContainerThrowsPassesThrough) {
    std::vector<TuString> const paths = files();
    auto const rows = readers();
    struct Case {
        char const* name;
        TuString file;
    };
    for (Case const& tried :
         {Case{"CFCReader_ParseContainer", paths[0]}, Case{"CFCProcessDefinitionReader_ParseContainer", paths[2]},
          Case{"CFCMSPReader_ParseContainer", paths[5]}}) {
        Read const& call = rows.at(tried.name);
        for (int const at : {0, 1}) {
            container.noted.clear();
            container.throwAt = at;
            EXPECT_EQ("no room", thrownBy([&] { call(ByFrontDoor, factory, tried.file); })) << tried.name << at;
        }
        container.noted.clear();
        container.throwAt = -1;
        EXPECT_THAT(call(ByFrontDoor, factory, tried.file), HasSubstr("true")) << "the next call works";
    }
}

// All files below a folder with their bytes.
std::map<std::string, std::string> filesBelow(std::filesystem::path const& folder) {
    std::map<std::string, std::string> found;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder))
        found[entry.path().lexically_relative(folder).generic_string()] =
            entry.is_regular_file() ? readFile(entry.path()) : "folder";
    return found;
}

TEST_F(FCUtilityRows, WritersComeToWhatTheirClassesComeTo) {
    std::vector<std::pair<std::string, Tree>> trees;
    for (int const kind : {56, 69, 81, 160, 172}) {
        Tree& tree = trees.emplace_back(std::to_string(kind), CFCNodeFactory().Create(kind)).second;
        ASSERT_NE(nullptr, tree) << kind;
        tree->SetNodeCaption(L"Top");
        if (tree->GetVariableList() != nullptr)
            addVariable(tree.get(), L"lost");
    }
    addBlock(trees[0].second.get(), L"inner");
    addChild(trees[1].second.get(), 70, L"p", L"Placed")->SetItemFilePath(L"placed.bpt");
    addChild(trees[3].second.get(), 150, L"step", L"Step");
    addChild(applications.get(), 167, L"solver");
    trees.emplace_back("no node", nullptr);

    std::filesystem::path const folder = scratch / "out";
    constexpr std::size_t kGoodPath = 0;
    constexpr std::size_t kOldFile = 1;
    std::vector<TuString> const paths = {
        wideWithBackslashes(folder / "inner" / "processdefinition.xml"),
        wide(folder / "old.xml"),
        TuString(),
        wide(folder),
        wide(folder) + TuString(L"/"),
        wide(folder / "file.xml"),
        wideWithBackslashes(folder / "file.xml"),
        wide(folder / "missing" / "file.xml"),
        wide(folder / "old.txt" / "file.xml"),
        wide(folder / std::string(300, 'n')),
        wide(folder) + TuString(std::wstring_view(L"/half \xD83D.xml")),
        TuString(L"/dev/full"),
    };
    auto const rows = writers();
    EXPECT_THAT(rows, SizeIs(23));
    std::map<std::string, int> written;
    std::map<std::string, std::string> fresh;
    std::map<std::string, std::string> after;
    // The folder is made anew only when the run before it has changed it.
    auto const run = [&](Write const& call, Way way, Path path, IFCNode* node) {
        if (after.empty() || after != fresh) {
            std::filesystem::remove_all(folder);
            std::filesystem::create_directories(folder / "inner");
            writeFile(folder / "old.txt", "old");
            writeFile(folder / "old.xml", "<A><D>t</D></A>");
            fresh = filesBelow(folder);
        }
        if (node != nullptr && node->GetVariableList() != nullptr && node->GetVariableList()->Find(L"lost") != nullptr)
            node->GetVariableList()->Find(L"lost")->SetLinkPath(L"Gone.y");
        errors = L"";
        bool const isWritten = call(way, path, node);
        after = filesBelow(folder);
        auto outcome = after;
        outcome["result"] = isWritten ? "true" : "false";
        outcome["errors"] = narrow(errors);
        return outcome;
    };
    printedBy([&] {
        for (auto const& [name, call] : rows) {
            for (auto const& [kind, tree] : trees) {
                EXPECT_EQ(run(call, ByHand, nullptr, tree.get()), run(call, ByFrontDoor, nullptr, tree.get()))
                    << name << " " << kind;
                for (TuString const& path : paths) {
                    // What is odd about a path does not depend on the kind of tree.
                    if (kind != "160" && path != paths[kGoodPath] && path != paths[kOldFile])
                        continue;
                    auto const byHand = run(call, ByHand, path, tree.get());
                    auto const byFrontDoor = run(call, ByFrontDoor, path, tree.get());
                    EXPECT_EQ(byHand, byFrontDoor) << name << " " << kind << " " << excerpt(path);
                    written[name] += after != fresh ? 1 : 0;
                }
            }
        }
    });
    for (auto const& row : rows)
        EXPECT_GT(written[row.first], 0) << row.first << " never wrote anything";
}

TEST_F(FCUtilityRows, TheDataTypesAreThoseOfTheirClass) {
    CFCEnvironment::SetBasePath(scratch.text());
    for (char const* const caption : {"All", "New"}) {
        scratch.write("DataTypes.xml", std::string("<D><GROUP Name='") + caption + "'/></D>");
        FCUtility::CFCDataTypeListReader_RefreshDataTypes();
        CFCDataTypeNode* const root = CFCDataTypeListReader::GetDataTypeRootNode();
        ASSERT_NE(nullptr, root);
        EXPECT_EQ(caption, narrow(root->GetNodeCaption()));
        EXPECT_EQ(root, FCUtility::CFCDataTypeListReader_GetDataTypeRootNode());
    }
    CFCEnvironment::SetBasePath(L"");
    FCUtility::CFCDataTypeListReader_RefreshDataTypes();
}

} // namespace
