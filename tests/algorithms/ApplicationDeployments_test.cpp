#include "flowmere/model/FCApplicationNode.h"

#include "TreeBuilder.h"
#include "flowmere/environment/FCEnvironment.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCNodeManager.h"
#include "flowmere/model/FCVariableList.h"
#include "support/EnvironmentGuard.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

using namespace flowmere::test;

namespace {

// An application "App" of a user with a folder of his own.
class ApplicationDeployments : public ScratchTest {
protected:
    ApplicationDeployments() {
        node.SetNodeId(L"App");
        CFCEnvironment::SetUserPath(wideWithBackslashes(scratch / "user"));
    }
    void TearDown() override { CFCNodeHelper::DestroyTree(&node); }

    CFCVariableData* add(wchar_t const* name, wchar_t const* value = L"", wchar_t const* nature = L"Deployment") {
        CFCVariableData* const variable = addVariable(&node, name);
        variable->SetValue(value);
        variable->SetNature(nature);
        return variable;
    }
    CFCVariableData* addFile(wchar_t const* name, wchar_t const* value, wchar_t const* type = L"File") {
        CFCVariableData* const variable = add(name, value);
        variable->GetDataTypeNode()->SetType(type);
        return variable;
    }
    CFCDeploymentData* deploy(wchar_t const* caption) {
        CFCDeploymentData* const deployment = node.CreateNewDeployment();
        deployment->SetNodeCaption(caption);
        return deployment;
    }
    static CFCVariableData* addEntry(CFCDeploymentData* deployment, wchar_t const* name, wchar_t const* value = L"") {
        CFCVariableData* const entry = addVariable(deployment, name);
        entry->SetValue(value);
        return entry;
    }

    // The application's own folder.
    std::filesystem::path home() const { return scratch / "user/BPM/ApplicationConfiguration/App"; }
    // The files and folders there, each with a blank behind; folders end with a slash.
    std::string filesOf(std::filesystem::path const& folder) const {
        std::vector<std::string> names;
        if (std::filesystem::exists(folder)) {
            for (auto const& entry : std::filesystem::recursive_directory_iterator(folder))
                names.push_back(entry.path().lexically_relative(folder).generic_string() +
                                (entry.is_directory() ? "/" : ""));
        }
        std::sort(names.begin(), names.end());
        std::string text;
        for (std::string const& name : names)
            text += name + " ";
        return text;
    }

    EnvironmentGuard environment;
    CFCApplicationNode& node = *new CFCApplicationNode;
};

std::string listing(CFCDeploymentData* deployment) {
    std::string text;
    CFCVariableList* const list = deployment->GetVariableList();
    for (__FCPOSITION* position = list->GetHeadPosition(); position != nullptr;) {
        CFCVariableData* const variable = list->GetNext(position);
        text += narrow(variable->GetVariableName()) + "=" + narrow(variable->GetValue()) +
                (variable->IsModified() ? "*;" : ";");
    }
    return text + (deployment->IsModified() ? "*" : "");
}

} // namespace

// --- Default deployments ----------------------------------------------------------------------------------------

TEST_F(ApplicationDeployments, TheDefaultOneHoldsCopiesOfTheVariablesOfThatNature) {
    add(L"a", L"1")->SetCaption(L"caption");
    add(L"b", L"2", L"System");
    add(L"c", L"3", L"DEPLOYMENT");
    add(L"d", L"4", L"");
    add(L"e", L"5", L"deployment");
    node.CreateDefaultDeployments();
    ASSERT_EQ(node.GetDeploymentList()->GetCount(), 1);
    CFCDeploymentData* const deployment = node.GetDeploymentList()->GetHead();
    EXPECT_STREQ(deployment->GetNodeCaption(), L"Windows");
    EXPECT_EQ(deployment->GetNodeType(), 182);
    EXPECT_EQ(deployment->GetParentNode(), &node);
    EXPECT_EQ(listing(deployment), "a=1;c=3;e=5;");
    CFCVariableData* const first = deployment->GetVariableList()->GetAt(0)->GetVariableData();
    EXPECT_EQ(first->GetParentNode(), deployment);
    EXPECT_EQ(first->GetNodeType(), 72);
    EXPECT_STREQ(first->GetCaption(), L"caption");
    EXPECT_STREQ(first->GetNature(), L"Deployment");
    first->SetValue(L"own");
    EXPECT_STREQ(node.GetFCBlockData()->FindVariable(L"a")->GetValue(), L"1");
    EXPECT_EQ(filesOf(scratch / "user"), "") << "folders come with the files";
}

TEST_F(ApplicationDeployments, ASecondCallForTheDefaultAddsNothing) {
    add(L"a");
    node.CreateDefaultDeployments();
    add(L"b");
    node.CreateDefaultDeployments();
    ASSERT_EQ(node.GetDeploymentList()->GetCount(), 1);
    EXPECT_EQ(listing(node.GetDeploymentList()->GetHead()), "a=;");
}

TEST_F(ApplicationDeployments, ThereIsNoDefaultBesideAnyOther) {
    add(L"a");
    CFCDeploymentData* const linux = deploy(L"Linux");
    node.CreateDefaultDeployments();
    EXPECT_EQ(node.GetDeploymentList()->GetCount(), 1);
    EXPECT_EQ(listing(linux), "");
}

// --- Clearing ---------------------------------------------------------------------------------------------------

TEST_F(ApplicationDeployments, EntriesWithoutVariableOfThatNatureGo) {
    add(L"kept", L"", L"dePLOYment");
    add(L"changed", L"", L"System");
    add(L"natureless", L"", L"");
    CFCDeploymentData* const first = deploy(L"A");
    for (wchar_t const* const name : {L"gone", L"kept", L"changed", L"Kept", L"natureless", L""})
        addEntry(first, name, L"v");
    CFCDeploymentData* const second = deploy(L"B");
    addEntry(second, L"kept");
    CFCDeploymentData* const third = deploy(L"C");
    int const changed = addEntry(third, L"changed")->GetNodeHandle();
    node.ClearDeploymentVars();
    EXPECT_EQ(listing(first), "kept=v;*");
    EXPECT_EQ(listing(second), "kept=;") << "nothing went, nothing was modified";
    EXPECT_EQ(listing(third), "*");
    EXPECT_EQ(CFCNodeManager::GetNode(changed), nullptr);
    EXPECT_EQ(node.GetVariableList()->GetCount(), 3);
}

TEST_F(ApplicationDeployments, OneOfSeveralVariablesOfANameDecides) {
    add(L"x", L"", L"System");
    add(L"x", L"", L"Deployment");
    CFCDeploymentData* const deployment = deploy(L"A");
    addEntry(deployment, L"x");
    node.ClearDeploymentVars();
    EXPECT_EQ(listing(deployment), "*") << "the first one";
}

TEST_F(ApplicationDeployments, ADeploymentWithoutListEndsTheClearing) {
    struct Listless : CFCDeploymentData {
        CFCVariableList* GetVariableList() override { return nullptr; }
    };
    CFCDeploymentData* const first = deploy(L"A");
    addEntry(first, L"gone");
    node.GetDeploymentList()->AddTail(new CFCArgumentData); // a stranger does not
    auto* const listless = new Listless;
    node.GetDeploymentList()->AddTail(listless);
    CFCDeploymentData* const last = deploy(L"B");
    addEntry(last, L"gone");
    node.ClearDeploymentVars();
    EXPECT_EQ(listing(first), "*");
    EXPECT_FALSE(listless->IsModified());
    EXPECT_EQ(listing(last), "gone=;");
}

// --- Updating ---------------------------------------------------------------------------------------------------

TEST_F(ApplicationDeployments, AnEmptyEntryTakesTheValueAndAnyOtherKeepsItsOwn) {
    CFCVariableData* const variable = add(L"x", L"new");
    CFCDeploymentData* const empty = deploy(L"A");
    addEntry(empty, L"x");
    CFCDeploymentData* const set = deploy(L"B");
    addEntry(set, L"x", L"own");
    CFCDeploymentData* const both = deploy(L"C");
    addEntry(both, L"x");
    addEntry(both, L"x");
    CFCDeploymentData* const other = deploy(L"D");
    addEntry(other, L"X", L"capital");
    node.UpdateDeploymentVariable(variable);
    EXPECT_EQ(listing(empty), "x=new*;*");
    EXPECT_EQ(listing(set), "x=own;");
    EXPECT_EQ(listing(both), "x=new*;x=;*");
    EXPECT_EQ(listing(other), "X=capital;x=new*;*") << "names are looked up with their case";
}

TEST_F(ApplicationDeployments, AnEmptyEntryCountsAsModifiedByAnEmptyValueToo) {
    CFCDeploymentData* const deployment = deploy(L"A");
    addEntry(deployment, L"x");
    node.UpdateDeploymentVariable(add(L"x", L""));
    EXPECT_EQ(listing(deployment), "x=*;*");
}

TEST_F(ApplicationDeployments, AMissingEntryIsMadeAsACopyWithoutIdentifier) {
    CFCVariableData* const variable = add(L"x", L"v");
    variable->SetVariableID(12);
    variable->SetCaption(L"caption");
    variable->GetDataTypeNode()->SetType(L"Text");
    CFCDeploymentData* const deployments[] = {deploy(L"A"), deploy(L"B")};
    node.UpdateDeploymentVariable(variable);
    for (CFCDeploymentData* const deployment : deployments) {
        EXPECT_EQ(listing(deployment), "x=v*;*");
        CFCVariableData* const entry = deployment->GetVariableList()->GetAt(0)->GetVariableData();
        EXPECT_EQ(entry->GetVariableID(), 0);
        EXPECT_STREQ(entry->GetCaption(), L"caption");
        EXPECT_STREQ(entry->GetNature(), L"Deployment");
        EXPECT_STREQ(entry->GetDataTypeNode()->GetType(), L"Text");
        EXPECT_EQ(entry->GetParentNode(), deployment);
    }
    EXPECT_EQ(variable->GetVariableID(), 12);
    EXPECT_FALSE(variable->IsModified());
}

TEST_F(ApplicationDeployments, UpdatingByNothingOrWithoutDeploymentsDoesNothing) {
    CFCDeploymentData* const deployment = deploy(L"A");
    node.UpdateDeploymentVariable(nullptr);
    EXPECT_EQ(listing(deployment), "");
    node.GetDeploymentList()->DeleteAll();
    scratch.write("user/script.py", "text");
    node.UpdateDeploymentVariable(addFile(L"f", L"script.py"));
    EXPECT_FALSE(std::filesystem::exists(scratch / "user/BPM"));
}

TEST_F(ApplicationDeployments, ADeploymentThatMakesNoVariableIsLeftAlone) {
    struct Barren : CFCDeploymentData {
        CFCVariableData* CreateNewVariable() override { return nullptr; }
    };
    auto* const barren = new Barren;
    node.GetDeploymentList()->AddTail(barren);
    CFCDeploymentData* const next = deploy(L"B");
    node.UpdateDeploymentVariable(add(L"x", L"v"));
    EXPECT_EQ(listing(barren), "");
    EXPECT_EQ(listing(next), "x=v*;*");
}

// --- Files ------------------------------------------------------------------------------------------------------

TEST_F(ApplicationDeployments, FilesAndBindingScriptsGoIntoEachFolder) {
    scratch.write("user/scripts/bind.py", "bind");
    scratch.write("user/data.txt", "data");
    deploy(L"Windows");
    deploy(L"Linux");
    node.UpdateDeploymentVariable(addFile(L"script", L"scripts\\bind.py", L"applicationBINDINGscript"));
    EXPECT_EQ(filesOf(home()), "Linux/ Linux/bind.py Windows/ Windows/bind.py ");
    node.UpdateDeploymentVariable(addFile(L"data", L"data.txt", L"FILE"));
    EXPECT_EQ(filesOf(home()), "Linux/ Linux/bind.py Linux/data.txt Windows/ Windows/bind.py Windows/data.txt ");
    EXPECT_EQ(readFile(home() / "Linux/bind.py"), "bind");
    EXPECT_EQ(readFile(home() / "Windows/data.txt"), "data");
}

TEST_F(ApplicationDeployments, ValuesOfOtherTypesNameNoFile) {
    scratch.write("user/data.txt", "data");
    deploy(L"Windows");
    for (wchar_t const* const type : {L"Files", L"Fil", L"", L"BindingScript", L"Directory"})
        node.UpdateDeploymentVariable(addFile(L"data", L"data.txt", type));
    CFCVariableData* const typeless = add(L"typeless", L"data.txt");
    std::unique_ptr<CFCDataTypeNode> const own(typeless->GetDataTypeNode());
    typeless->SetDataTypeNode(nullptr);
    node.UpdateDeploymentVariable(typeless);
    EXPECT_FALSE(std::filesystem::exists(scratch / "user/BPM"));
}

TEST_F(ApplicationDeployments, TheFileOfTheUserComesBeforeThatOfTheApplication) {
    scratch.write("user/data.txt", "user");
    writeFile(home() / "data.txt", "application");
    deploy(L"Windows");
    CFCVariableData* const variable = addFile(L"data", L"data.txt");
    node.UpdateDeploymentVariable(variable);
    EXPECT_EQ(readFile(home() / "Windows/data.txt"), "user");
    std::filesystem::remove(scratch / "user/data.txt");
    node.UpdateDeploymentVariable(variable);
    EXPECT_EQ(readFile(home() / "Windows/data.txt"), "application") << "and replaces what is there";
}

TEST_F(ApplicationDeployments, AFileOfTheSharedFolderIsFoundToo) {
    CFCEnvironment::SetBasePath(wideWithBackslashes(scratch / "base"));
    scratch.write("base/data.txt", "shared");
    deploy(L"Windows");
    node.UpdateDeploymentVariable(addFile(L"data", L"data.txt"));
    EXPECT_EQ(readFile(home() / "Windows/data.txt"), "shared");
}

TEST_F(ApplicationDeployments, TheVariablesValueDecidesOnTheFileAndNotThatOfTheDeployment) {
    scratch.write("user/new.txt", "new");
    scratch.write("user/own.txt", "own");
    addEntry(deploy(L"Windows"), L"data", L"own.txt");
    node.UpdateDeploymentVariable(addFile(L"data", L"new.txt"));
    EXPECT_EQ(filesOf(home()), "Windows/ Windows/new.txt ");
}

TEST_F(ApplicationDeployments, AMissingFileLeavesTheFolderWithoutIt) {
    CFCDeploymentData* const deployment = deploy(L"Windows");
    node.UpdateDeploymentVariable(addFile(L"data", L"nowhere.txt"));
    EXPECT_EQ(filesOf(home()), "Windows/ ");
    EXPECT_EQ(listing(deployment), "data=nowhere.txt*;*");
}

TEST_F(ApplicationDeployments, AnEmptyValueNamesAFolderAndNothingIsCopied) {
    writeFile(home() / "inside.txt", "text");
    deploy(L"Windows");
    node.UpdateDeploymentVariable(addFile(L"data", L""));
    EXPECT_EQ(filesOf(home()), "Windows/ inside.txt ");
}

TEST_F(ApplicationDeployments, UpdateFolderCopiesUnderTheFilesOwnName) {
    deploy(L"Windows");
    deploy(L"Old One");
    scratch.write("elsewhere/deep/tool.exe", "tool");
    node.UpdateDeploymentFolder(wideWithBackslashes(scratch / "elsewhere/deep/tool.exe"));
    EXPECT_EQ(filesOf(home()), "Old One/ Old One/tool.exe Windows/ Windows/tool.exe ");
    node.UpdateDeploymentFolder(scratch.text("elsewhere/deep/tool.exe"));
    EXPECT_EQ(readFile(home() / "Old One/tool.exe"), "tool");
    node.UpdateDeploymentFolder(wideWithBackslashes(home() / "Windows/tool.exe"));
    EXPECT_EQ(readFile(home() / "Windows/tool.exe"), "tool") << "a file of a deployment stays what it is";
}

TEST_F(ApplicationDeployments, UpdateFolderOfNothingMakesNoFolders) {
    deploy(L"Windows");
    node.UpdateDeploymentFolder(nullptr);
    EXPECT_FALSE(std::filesystem::exists(scratch / "user/BPM"));
    node.GetDeploymentList()->AddTail(new CFCArgumentData); // a stranger has no folder
    node.UpdateDeploymentFolder(L"");
    EXPECT_EQ(filesOf(home()), "Windows/ ");
}

TEST_F(ApplicationDeployments, UpdateFolderTakesTheNodesOwnPathAsText) {
    deploy(L"Windows");
    node.SetNodeId(L"App\\file");
    writeFile(home() / "file", "text");
    wchar_t const* const path = node.GetPath();
    node.SetNodeId(L"App");
    node.UpdateDeploymentFolder(path);
    EXPECT_EQ(filesOf(home()), "Windows/ Windows/file file ");
}

TEST_F(ApplicationDeployments, FoldersThatCannotBeMadeArePassedOver) {
    scratch.write("user/BPM/ApplicationConfiguration/App", "a file in the way");
    scratch.write("user/data.txt", "data");
    CFCDeploymentData* const deployment = deploy(L"Windows");
    node.UpdateDeploymentVariable(addFile(L"data", L"data.txt"));
    EXPECT_EQ(listing(deployment), "data=data.txt*;*");
    EXPECT_EQ(scratch.read("user/BPM/ApplicationConfiguration/App"), "a file in the way");
}

// --- All of it --------------------------------------------------------------------------------------------------

TEST_F(ApplicationDeployments, RefreshMakesTheDefaultDeploymentWithItsFiles) {
    scratch.write("user/data.txt", "data");
    add(L"a", L"1");
    add(L"b", L"2", L"System");
    addFile(L"data", L"data.txt");
    node.RefreshDeployments();
    ASSERT_EQ(node.GetDeploymentList()->GetCount(), 1);
    EXPECT_EQ(listing(node.GetDeploymentList()->GetHead()), "a=1;data=data.txt;");
    EXPECT_EQ(filesOf(home()), "Windows/ Windows/data.txt ");
}

TEST_F(ApplicationDeployments, RefreshFollowsTheVariables) {
    CFCVariableData* const first = add(L"a", L"1");
    CFCVariableData* const second = add(L"b", L"");
    add(L"c", L"3");
    node.RefreshDeployments();
    CFCDeploymentData* const deployment = node.GetDeploymentList()->GetHead();
    EXPECT_EQ(listing(deployment), "a=1;b=*;c=3;*") << "the empty value was given once more";
    first->SetNature(L"Task");
    second->SetValue(L"2");
    node.GetFCBlockData()->FindVariable(L"c")->SetValue(L"33");
    add(L"d", L"4");
    node.RefreshDeployments();
    EXPECT_EQ(listing(deployment), "b=2*;c=3;d=4*;*");
    node.DeleteVariables();
    node.RefreshDeployments();
    EXPECT_EQ(listing(deployment), "*");
    EXPECT_EQ(node.GetDeploymentList()->GetCount(), 1);
}

TEST_F(ApplicationDeployments, NamelessVariablesDoNotPileUp) {
    add(L"", L"v");
    node.RefreshDeployments();
    node.RefreshDeployments();
    EXPECT_EQ(listing(node.GetDeploymentList()->GetHead()), "=v*;*");
}

TEST_F(ApplicationDeployments, ClearedEntriesLeaveNothingBehind) {
    CFCDeploymentData* const deployment = deploy(L"A");
    Tree const before(71);
    addEntry(deployment, L"gone");
    node.ClearDeploymentVars();
    Tree const after(71);
    for (int handle = before->GetNodeHandle() + 1; handle < after->GetNodeHandle(); ++handle)
        EXPECT_EQ(CFCNodeManager::GetNode(handle), nullptr) << handle;
}
