#include "TestSupport.h"
#include "flowmere/algorithms/FCNodeHelper.h"
#include "flowmere/model/FCCatalogNodes.h"
#include "flowmere/model/FCEnumTranslator.h"
#include "flowmere/model/FCNodeFactory.h"
#include "flowmere/persistence/FCDataTypeListReader.h"
#include "flowmere/persistence/FCFileTypeListReader.h"
#include "flowmere/persistence/FCMimeTypeReader.h"
#include "flowmere/persistence/FCReader.h"

#include <cstdlib>

namespace {

using flowmere::test::ScratchFolder;

bool namesAreKnown() {
    EScopeType scope = EScopeType_Resolve;
    return CFCEnumTranslator::StringToEnum(L"Global", scope) && scope == EScopeType_Global;
}

// Whether a reader makes the names known that nothing has made known before.
template <typename Read>
bool makesNamesKnown(Read read) {
    bool const before = namesAreKnown();
    ScratchFolder scratch;
    scratch.write("file.xml", "<X/>");
    CFCNodeFactory factory;
    bool const done = read(scratch.text("file.xml"), factory);
    return !before && done && namesAreKnown();
}

// Each in a process of its own: the names are filled once and stay.
TEST(EnumerationNamesDeathTest, AreKnownOnceAnyReaderHasReadAFile) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(makesNamesKnown([](TuString const& path, CFCNodeFactory& factory) {
                    CFCReader reader;
                    reader.SetNodeFactory(&factory);
                    IFCNode* root = nullptr;
                    bool const done = reader.Parse(path, &root, 1);
                    CFCNodeHelper::DestroyTree(root);
                    return done;
                })
                              ? 0
                              : 1),
                testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::exit(makesNamesKnown([](TuString const& path, CFCNodeFactory& factory) {
                    CFCDataTypeListReader reader;
                    reader.SetNodeFactory(&factory);
                    CFCDataTypeNode list;
                    return reader.Parse(path, &list);
                })
                              ? 0
                              : 1),
                testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::exit(makesNamesKnown([](TuString const& path, CFCNodeFactory& factory) {
                    CFCFileTypeListReader reader;
                    reader.SetNodeFactory(&factory);
                    CFCDataTypeNode list;
                    return reader.Parse(path, &list);
                })
                              ? 0
                              : 1),
                testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::exit(makesNamesKnown([](TuString const& path, CFCNodeFactory& factory) {
                    CFCMimeTypeReader reader;
                    reader.SetNodeFactory(&factory);
                    CFCMimeTypeNode list;
                    return reader.Parse(path, &list);
                })
                              ? 0
                              : 1),
                testing::ExitedWithCode(0), "");
}

} // namespace
