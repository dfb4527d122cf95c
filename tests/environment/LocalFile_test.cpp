#include "flowmere/environment/LocalFile.h"

#include "flowmere/environment/FCEnvironment.h"
#include "support/EnvironmentGuard.h"
#include "support/TestSupport.h"

using flowmere::LocalFile;
using namespace flowmere::test;

namespace {

class LocalFileTest : public ScratchTest {
protected:
    EnvironmentGuard environment;
};

TEST_F(LocalFileTest, AnswersAsTheTwoQuestionsToTheEnvironmentDo) {
    scratch.write("user/Both.py", "");
    scratch.write("base/Both.py", "");
    scratch.write("base/Deep/Base.py", "");
    scratch.write("whole.py", "");
    std::filesystem::create_directories(scratch / "user/Folder.py");
    CFCEnvironment::SetUserPath(scratch.text("user"));
    CFCEnvironment::SetBasePath(scratch.text("base"));
    struct Row {
        TuString name;
        bool isThere;
    };
    Row const rows[] = {{L"Both", true},          {L"Deep.Base", true}, {L"Missing", false},
                        {L"Deep.Missing", false}, {L"Folder", false},   {scratch.text("whole.py"), true},
                        {L"C:\\x.py", false},     {L"", false}};
    for (Row const& row : rows) {
        LocalFile const found = flowmere::findLocalFile(row.name);
        EXPECT_EQ(found.isThere, row.isThere) << narrow(row.name);
        EXPECT_EQ(found.isThere, CFCEnvironment::IsLocalFileExist(row.name)) << narrow(row.name);
        EXPECT_EQ(found.path, TuString(CFCEnvironment::GetLocalFilePath(row.name))) << narrow(row.name);
    }
    EXPECT_FALSE(flowmere::findLocalFile(nullptr).isThere);
}

TEST_F(LocalFileTest, OneRootForBothIsNoOtherPlace) {
    scratch.write("Here.py", "");
    CFCEnvironment::SetBasePath(scratch.text());
    EXPECT_TRUE(flowmere::findLocalFile(L"Here").isThere);
    EXPECT_FALSE(flowmere::findLocalFile(L"There").isThere);
    EXPECT_EQ(flowmere::findLocalFile(L"There").path, TuString(CFCEnvironment::GetLocalFilePath(L"There")));
}

} // namespace
