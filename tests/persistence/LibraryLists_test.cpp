#include "ListTestSupport.h"

#include "flowmere/model/FCPointerConverter.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

using namespace flowmere::test;

namespace {

class LibraryLists : public ScratchTest {
protected:
    EnvironmentGuard environment;

    static constexpr char kList[] = "<Processes><SUB_GRP Name='g'><SUB_GRP Name='h'><PROCESS Name='a'/></SUB_GRP>"
                                    "<PROCESS Name='b'/></SUB_GRP><PROCESS Name='c'/></Processes>";

    ListTree load(std::string const& name, wchar_t const* base = L"base") {
        testing::internal::CaptureStdout();
        ListTree list(CFCNodeHelper::LoadProcessList(scratch.text(name), nullptr, base));
        printed = testing::internal::GetCapturedStdout();
        return list;
    }
    ListTree loadUser(bool bpm = false) {
        testing::internal::CaptureStdout();
        ListTree list(CFCNodeHelper::LoadUserProcessList(bpm));
        printed = testing::internal::GetCapturedStdout();
        return list;
    }

    std::string printed;
};

// --- LoadProcessList ---------------------------------------------------------------------------------------------

TEST_F(LibraryLists, WithoutAListANewOneIsMade) {
    scratch.write("process.lst", kList);
    ListTree const list = load("process.lst");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->GetNodeType(), 69);
    EXPECT_EQ(outlineOf(list.get()), "g(h(a) b) c");
    EXPECT_STREQ(found(list.get(), L"a")->GetItemFileBaseDirectory(), L"base");
}

TEST_F(LibraryLists, AListThatIsThereIsFilledAndComesBack) {
    scratch.write("BPMProcess.lst", kList);
    ListTree const list = newList(L"mine");
    addFile(list.get(), L"old");
    EXPECT_EQ(CFCNodeHelper::LoadProcessList(scratch.text("BPMProcess.lst"), list.get(), nullptr), list.get());
    EXPECT_EQ(outlineOf(list.get()), "old g(h(a) b) c");
    EXPECT_STREQ(list->GetNodeCaption(), L"BPM Processes");
    EXPECT_EQ(found(list.get(), L"a")->GetProjectType(), EProjectType_TASK);
}

TEST_F(LibraryLists, AFileThatIsMissingOrBrokenGivesAnEmptyList) {
    scratch.write("broken.lst", "<Processes><PROCESS Name='a'/>");
    for (char const* name : {"missing.lst", "broken.lst"}) {
        ListTree const list = load(name);
        ASSERT_NE(list, nullptr) << name;
        EXPECT_EQ(list->GetNodeType(), 69) << name;
        EXPECT_EQ(list->GetChild(), nullptr) << name;
        EXPECT_EQ(printed, "Init failed\n") << name;
    }
    ListTree const mine = newList(L"mine");
    EXPECT_EQ(CFCNodeHelper::LoadProcessList(nullptr, mine.get(), nullptr), mine.get());
    EXPECT_EQ(CFCNodeHelper::LoadProcessList(L"", mine.get(), L""), mine.get());
    EXPECT_STREQ(mine->GetNodeCaption(), L"mine");
    ListTree const none(CFCNodeHelper::LoadProcessList(nullptr, nullptr, nullptr));
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(none->GetNodeType(), 69);
}

// --- LoadUserProcessList -----------------------------------------------------------------------------------------

TEST_F(LibraryLists, WithoutAUserPathThereIsNoUsersList) {
    CFCEnvironment::SetBasePath(scratch.text("BrindleExec"));
    scratch.write("BrindleExec/process.lst", kList);
    scratch.write("BrindleExec/BPMProcess.lst", kList);
    EXPECT_EQ(loadUser(false), nullptr);
    EXPECT_EQ(loadUser(true), nullptr);
    CFCEnvironment::SetUserPath(scratch.text("BrindleExec"));
    EXPECT_EQ(loadUser(false), nullptr) << "the user's folder is the common one";
    EXPECT_EQ(printed, "");
}

TEST_F(LibraryLists, TheResourceFolderIsNoUsersFolder) {
    CFCEnvironment::SetResourcePath(scratch.text("BrindleExec"));
    scratch.write("BrindleExec/process.lst", kList);
    EXPECT_EQ(loadUser(), nullptr) << "the common list lies there, and a user's one nowhere";
    EXPECT_EQ(printed, "");
}

TEST_F(LibraryLists, AUserPathOutsideTheFolderWordHasNoUsersList) {
    CFCEnvironment::SetBasePath(scratch.text("base"));
    for (char const* folder : {"own", "brindleexec/own", "Brindle Exec"}) {
        scratch.write(std::filesystem::path(folder) / "process.lst", kList);
        CFCEnvironment::SetUserPath(scratch.text(folder));
        EXPECT_EQ(loadUser(), nullptr) << folder;
        EXPECT_EQ(printed, "") << folder;
    }
}

TEST_F(LibraryLists, TheUsersListOfEachKindIsRead) {
    CFCEnvironment::SetBasePath(scratch.text("base"));
    CFCEnvironment::SetUserPath(scratch.text("data/BrindleExec/own"));
    scratch.write("data/BrindleExec/own/process.lst", kList);
    scratch.write("data/BrindleExec/own/BPMProcess.lst", "<Processes><PROCESS Name='task'/></Processes>");
    ListTree const plain = loadUser(false);
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(plain->GetNodeType(), 69);
    EXPECT_EQ(outlineOf(plain.get()), "g(h(a) b) c");
    ListTree const bpm = loadUser(true);
    ASSERT_NE(bpm, nullptr);
    EXPECT_EQ(outlineOf(bpm.get()), "task");
    EXPECT_STREQ(bpm->GetNodeCaption(), L"BPM Processes");
}

TEST_F(LibraryLists, EverythingInAUsersListIsNewlyPlaced) {
    CFCEnvironment::SetUserPath(scratch.text("BrindleExec/own"));
    scratch.write("BrindleExec/own/process.lst", kList);
    ListTree const list = loadUser();
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(list->IsNewPath());
    EXPECT_EQ(allBelow(list.get()).size(), 5U);
    for (IFCNode* const node : allBelow(list.get()))
        EXPECT_TRUE(node->IsNewPath()) << narrow(node->GetNodeCaption());
}

TEST_F(LibraryLists, FilesOfAUsersListLieBesideTheFolderWord) {
    struct Row {
        std::wstring before; // what stands in front of the word
        std::wstring base;
    };
    std::wstring const folder(scratch.text().View());
    // One character goes with the word, whatever it is, and a word at the start leaves nothing.
    for (Row const& row :
         {Row{folder + L"/", folder}, Row{folder + L"\\x\\", folder + L"\\x"}, Row{folder + L"/My", folder + L"/M"}}) {
        std::wstring const user = row.before + L"BrindleExec/own";
        CFCEnvironment::SetUserPath(user.c_str());
        std::string file = narrow(user.c_str()) + "/process.lst";
        std::replace(file.begin(), file.end(), '\\', '/');
        writeFile(file, kList);
        ListTree const list = loadUser();
        ASSERT_NE(list, nullptr);
        EXPECT_STREQ(found(list.get(), L"a")->GetItemFileBaseDirectory(), row.base.c_str());
    }
}

TEST_F(LibraryLists, AFolderWordAtTheStartLeavesNoBase) {
    std::filesystem::path const before = std::filesystem::current_path();
    scratch.write("BrindleExec/process.lst", kList);
    scratch.write("xBrindleExec/process.lst", kList);
    std::filesystem::current_path(scratch.path());
    for (wchar_t const* user : {L"BrindleExec", L"xBrindleExec"}) {
        CFCEnvironment::SetUserPath(user);
        ListTree const list = loadUser();
        IFCNode* const first = list != nullptr ? list->GetChild() : nullptr;
        EXPECT_STREQ(first != nullptr ? first->GetItemFileBaseDirectory() : L"no list", L"") << narrow(user);
    }
    std::filesystem::current_path(before);
}

TEST_F(LibraryLists, TheFirstFolderWordCounts) {
    CFCEnvironment::SetUserPath(scratch.text("a/BrindleExec/b/BrindleExec"));
    scratch.write("a/BrindleExec/b/BrindleExec/process.lst", kList);
    ListTree const list = loadUser();
    ASSERT_NE(list, nullptr);
    EXPECT_STREQ(found(list.get(), L"a")->GetItemFileBaseDirectory(), scratch.text("a"));
}

TEST_F(LibraryLists, AUsersListThatCannotBeReadIsEmpty) {
    CFCEnvironment::SetUserPath(scratch.text("BrindleExec"));
    ListTree const list = loadUser();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->GetChild(), nullptr);
    EXPECT_EQ(list->GetNodeType(), 69);
    EXPECT_TRUE(list->IsNewPath());
    EXPECT_EQ(printed, "Init failed\n");
}

TEST_F(LibraryLists, AUsersListIsMergedIntoTheCommonOne) {
    CFCEnvironment::SetBasePath(scratch.text("base"));
    CFCEnvironment::SetUserPath(scratch.text("BrindleExec/own"));
    scratch.write("base/BPMProcess.lst",
                  "<P><SUB_GRP Name='g'><PROCESS Name='a' ID='1' Version='1' IsUptoDate='1'/><PROCESS Name='b' ID='2' "
                  "Version='3' IsUptoDate='1'/></SUB_GRP></P>");
    scratch.write("BrindleExec/own/BPMProcess.lst",
                  "<P><SUB_GRP Name='g'><PROCESS Name='a' ID='10' Version='2' IsCheckedOut='1'/><PROCESS Name='b' "
                  "ID='2' Version='3'/><PROCESS Name='new'/></SUB_GRP><PROCESS Name='top'/></P>");
    ListTree const common = load("base/BPMProcess.lst");
    ListTree const own = loadUser(true);
    ASSERT_NE(own, nullptr);
    CFCNodeHelper::Consolidate(common.get(), own->GetChild());
    EXPECT_EQ(outlineOf(common.get()), "g(a b new) top");
    IFCNode* const a = found(common.get(), L"a");
    EXPECT_FALSE(a->IsUptoDate());
    EXPECT_TRUE(a->IsCheckedOut());
    EXPECT_STREQ(a->GetNodeId(), L"10");
    EXPECT_TRUE(a->IsNewPath());
    EXPECT_TRUE(found(common.get(), L"b")->IsUptoDate());
    EXPECT_TRUE(found(common.get(), L"new")->IsNewPath());
}

// --- Block templates ---------------------------------------------------------------------------------------------

class Templates : public LibraryLists {
protected:
    Templates() {
        CFCEnvironment::SetBasePath(scratch.text("base"));
        CFCEnvironment::SetResourcePath(scratch.text("res"));
    }

    static CFCBlockNode* add(IFCNode* parent, wchar_t const* id, wchar_t const* folder) {
        CFCBlockNode* const block = addBlock(parent, id);
        block->SetScriptDir(folder);
        return block;
    }
    // The files in a folder of the resources, "a.xml b.xml"; their number when there are many.
    std::string filesIn(std::string const& folder) const {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(scratch / "res" / folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        std::string all;
        for (std::string const& name : names)
            all += (all.empty() ? "" : " ") + name;
        return all;
    }
    void makeFolder(std::string const& folder) const { std::filesystem::create_directories(scratch / "res" / folder); }

    Tree const process{CFCNodeFactory().Create(56)};
};

TEST_F(Templates, ABlockIsSavedUnderItsIdInItsScriptFolder) {
    makeFolder("blocks");
    CFCBlockNode* const block = add(process.get(), L"Bolt", L"blocks");
    addVariable(block, L"load", L"3");
    CFCNodeHelper::SaveSingleNode(block);
    EXPECT_EQ(filesIn("blocks"), "Bolt.xml");
    std::string const written = scratch.read("res/blocks/Bolt.xml");
    EXPECT_EQ(attributeIn(lineOf(written, "Process"), "Name"), "Bolt") << "the root is the block";
    EXPECT_EQ(attributeIn(lineOf(written, "VARIABLE"), "Name"), "load");
}

TEST_F(Templates, ASavedBlockIsAloneWithoutItsChildren) {
    makeFolder("blocks");
    auto* const group = dynamic_cast<CFCBlockNode*>(addChild(process.get(), 61, L"Group", L"Group"));
    group->SetScriptDir(L"blocks");
    connect(group, add(group, L"Inner", L"blocks"), add(group, L"Other", L"blocks"));
    CFCNodeHelper::SaveSingleNode(group);
    EXPECT_EQ(filesIn("blocks"), "Group.xml");
    std::string const written = scratch.read("res/blocks/Group.xml");
    EXPECT_THAT(linesOf(written, "BLOCK"), testing::IsEmpty());
    EXPECT_THAT(linesOf(written, "CONNECTOR"), testing::IsEmpty());
}

TEST_F(Templates, ABlockWithoutScriptFolderIsNotSaved) {
    makeFolder("");
    CFCNodeHelper::SaveSingleNode(add(process.get(), L"Bolt", L""));
    EXPECT_EQ(filesIn(""), "");
}

TEST_F(Templates, OnlyNodesWithBlockDataAreSaved) {
    makeFolder("");
    ListTree const list = newList();
    CFCNodeHelper::SaveSingleNode(addFile(list.get(), L"a"));
    CFCNodeHelper::SaveSingleNode(list.get());
    CFCNodeHelper::SaveSingleNode(nullptr);
    CFCNodeHelper::SaveNodes(nullptr);
    CFCNodeHelper::SaveRootNode(nullptr);
    CFCNodeHelper::SaveRootNode(list.get());
    EXPECT_EQ(filesIn(""), "");
}

TEST_F(Templates, NoFolderIsMade) {
    CFCNodeHelper::SaveSingleNode(add(process.get(), L"Bolt", L"blocks"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "res"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "base"));
}

TEST_F(Templates, AChainIsSavedFromTheNodeOn) {
    makeFolder("b");
    CFCBlockNode* const oldest = add(process.get(), L"A", L"b");
    CFCBlockNode* const middle = add(process.get(), L"B", L"b");
    add(middle, L"Inner", L"b");
    add(process.get(), L"C", L"b");
    CFCNodeHelper::SaveNodes(middle);
    EXPECT_EQ(filesIn("b"), "A.xml B.xml") << "the newer sibling stands in front, and children are not entered";
    std::filesystem::remove_all(scratch / "res/b");
    makeFolder("b");
    CFCNodeHelper::SaveNodes(oldest);
    EXPECT_EQ(filesIn("b"), "A.xml");
}

TEST_F(Templates, AChainGoesOnBehindWhatIsNotSaved) {
    makeFolder("b");
    add(process.get(), L"A", L"b");
    add(process.get(), L"B", L"");
    addChild(process.get(), 71, L"", L"folder");
    CFCNodeHelper::SaveNodes(add(process.get(), L"D", L"b"));
    EXPECT_EQ(filesIn("b"), "A.xml D.xml");
}

TEST_F(Templates, TheLastOfTwoWithOnePathStays) {
    makeFolder("b");
    add(process.get(), L"A", L"b")->SetNodeCaption(L"last in the chain");
    CFCNodeHelper::SaveNodes(add(process.get(), L"A", L"b"));
    EXPECT_EQ(attributeIn(lineOf(scratch.read("res/b/A.xml"), "Process"), "BlockString"), "last in the chain");
}

TEST_F(Templates, AChainThatFormsARingIsGoneRound) {
    makeFolder("b");
    CFCBlockNode* const a = add(process.get(), L"A", L"b");
    CFCBlockNode* const b = add(process.get(), L"B", L"b");
    a->SetNext(b);
    CFCNodeHelper::SaveNodes(b);
    a->SetNext(nullptr);
    EXPECT_EQ(filesIn("b"), "A.xml B.xml");
}

TEST_F(Templates, ALongChainTakesOneWriteForEach) {
    makeFolder("b");
    IFCNode* first = nullptr;
    for (int number = 0; number < 200; ++number)
        first = add(process.get(), (L"B" + std::to_wstring(number)).c_str(), L"b");
    CFCNodeHelper::SaveNodes(first); // would not end if each sibling doubled the writes
    EXPECT_TRUE(std::filesystem::exists(scratch / "res/b/B0.xml"));
    EXPECT_TRUE(std::filesystem::exists(scratch / "res/b/B199.xml"));
}

TEST_F(Templates, TheChildrenOfAListAreSaved) {
    makeFolder("b");
    ListTree const list = newList();
    add(list.get(), L"A", L"b");
    add(list.get(), L"B", L"b");
    add(list.get(), L"C", L"b");
    CFCNodeHelper::SaveRootNode(list.get());
    EXPECT_EQ(filesIn("b"), "A.xml B.xml C.xml");
}

} // namespace
