#include "flowmere/foundation/FCModule.h"

#include "flowmere/Version.h"
#include "flowmere/foundation/ModuleEntry.h"
#include "flowmere/foundation/TuConsole.h"
#include "support/TestSupport.h"

#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

#if defined(FLOWMERE_LIBRARY)
#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#endif

using namespace flowmere::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

std::vector<std::string> messages;

constexpr char kWarning[] = "'Flowmere' dll is getting unloaded with application still running!";

class ModuleEntry : public testing::Test {
protected:
    void SetUp() override {
        messages.clear();
        TuSetConsoleSink([](_TuMessageType kind, wchar_t const* text) {
            messages.push_back(std::to_string(static_cast<int>(kind)) + " " + narrow(text));
        });
    }
    void TearDown() override {
        TuSetConsoleSink(nullptr);
        TuEnableDLLUnloadWarning(true);
    }
};

TEST_F(ModuleEntry, WarnsOfAnUnloadUnderARunningProgram) {
    EXPECT_TRUE(flowmere::moduleEntry(flowmere::kModuleUnloaded, nullptr));
    EXPECT_THAT(messages, ElementsAre("0 " + std::string(kWarning)));
}

TEST_F(ModuleEntry, SaysNothingAtTheEndOfTheProcess) {
    int reserved = 0;
    EXPECT_TRUE(flowmere::moduleEntry(flowmere::kModuleUnloaded, &reserved));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(ModuleEntry, SaysNothingWhenWarningsAreOff) {
    TuEnableDLLUnloadWarning(false);
    EXPECT_TRUE(flowmere::moduleEntry(flowmere::kModuleUnloaded, nullptr));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(ModuleEntry, SaysNothingForAnyOtherReason) {
    int reserved = 0;
    for (int const reason : {-1, 1, 2, 3, 4}) {
        EXPECT_TRUE(flowmere::moduleEntry(reason, nullptr)) << reason;
        EXPECT_TRUE(flowmere::moduleEntry(reason, &reserved)) << reason;
    }
    EXPECT_THAT(messages, IsEmpty());
}

TEST(FCModule, ZeroGivesTheKindOfModule) {
    EXPECT_STREQ("Dynamic linked library", Flowmere_get_module_info(0));
}

TEST(FCModule, OneGivesTheVersionWithTheHashOfTheBuildBehindIt) {
    std::string const version = Flowmere_get_module_info(1);
    EXPECT_THAT(version, StartsWith(std::string(flowmere::versionText()) + "."));
    EXPECT_TRUE(std::regex_match(version, std::regex(R"(\d+\.\d+\.\d+\.[0-9a-f]{8})"))) << version;
}

TEST(FCModule, AnyOtherNumberGivesTheLineThatIdentifiesTheFile) {
    std::string const line = Flowmere_get_module_info(2);
    EXPECT_THAT(line, StartsWith("@(#)"));
    EXPECT_THAT(line, HasSubstr("; Flowmere; version " + std::string(Flowmere_get_module_info(1)) + ";"));
    EXPECT_THAT(line, HasSubstr("; support: "));
    EXPECT_THAT(line, HasSubstr("; built on: "));
    EXPECT_TRUE(std::regex_search(line, std::regex(R"(; built at: \d{4}-\d\d-\d\d$)"))) << line;
    for (int const what : {-1, 3, 1000, -2147483647 - 1})
        EXPECT_EQ(line, Flowmere_get_module_info(what)) << what;
}

TEST(FCModule, TheLineHasNoPath) {
    EXPECT_THAT(std::string(Flowmere_get_module_info(2)), Not(HasSubstr("/")));
    EXPECT_THAT(std::string(Flowmere_get_module_info(2)), Not(HasSubstr("\\")));
}

TEST(FCModule, TextsStayWhereTheyAre) {
    for (int what = 0; what < 3; ++what)
        EXPECT_EQ(Flowmere_get_module_info(what), Flowmere_get_module_info(what)) << what;
}

TEST(FCModule, TheFunctionThatStandsForTheModuleDoesNothing) {
    void (*const function)() = &_localFnToKeepFlowmereDllLoaded;
    ASSERT_NE(nullptr, function);
    messages.clear();
    function();
    EXPECT_THAT(messages, IsEmpty());
}

#if defined(FLOWMERE_LIBRARY)

using InfoFunction = char const* (*)(int);

// Loading and closing changes a process for good, so each of these runs in one of its own and tells by its exit code
// and output.
class LoadedModule : public testing::Test {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    static void fail(char const* what) {
        std::fprintf(stderr, "failed: %s\n", what);
        std::_Exit(1);
    }
    static void* load(char const* path) {
        if (dlopen(path, RTLD_NOW | RTLD_NOLOAD) != nullptr)
            fail("the module is there before it is loaded");
        void* const handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr)
            fail(dlerror());
        return handle;
    }
    // Whether the file itself asks to stay loaded. A module may also stay by accident, for what it happens to define.
    static bool isPinned(void* handle) {
        link_map* map = nullptr;
        if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0)
            fail(dlerror());
        for (ElfW(Dyn) const* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry)
            if (entry->d_tag == DT_FLAGS_1)
                return (entry->d_un.d_val & DF_1_NODELETE) != 0;
        return false;
    }
    static bool isLoaded(char const* path) { return dlopen(path, RTLD_NOW | RTLD_NOLOAD) != nullptr; }
    // What the module prints goes where death tests look.
    [[noreturn]] static void end(char const* what) {
        std::fprintf(stderr, "%s", what);
        std::exit(0);
    }
    static void printToError() {
        std::fflush(stdout);
        if (dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
            fail("no output");
    }
};

TEST_F(LoadedModule, StaysWhenItIsClosed) {
    EXPECT_EXIT(
        {
            printToError();
            void* const handle = load(FLOWMERE_LIBRARY);
            auto const info = reinterpret_cast<InfoFunction>(dlsym(handle, "Flowmere_get_module_info"));
            void* const address = dlsym(handle, "_localFnToKeepFlowmereDllLoaded");
            if (info == nullptr || address == nullptr)
                fail("a name is not exported");
            std::string const line = info(2);
            for (int round = 0; round < 3; ++round) {
                if (dlclose(handle) != 0 && round == 0)
                    fail(dlerror());
            }
            Dl_info place{};
            if (!isLoaded(FLOWMERE_LIBRARY) || dladdr(address, &place) == 0)
                fail("the module is gone");
            if (info(2) != line || std::string(info(0)) != "Dynamic linked library")
                fail("the module does not work any more");
            end("still present");
        },
        testing::ExitedWithCode(0), "^still present$");
}

TEST_F(LoadedModule, AsksToStay) {
    for (bool const isPinnedModule : {true, false}) {
        EXPECT_EXIT(
            {
                if (isPinned(load(isPinnedModule ? FLOWMERE_LIBRARY : FLOWMERE_UNPINNED_MODULE)) != isPinnedModule)
                    fail("the mark in the file is not as it should be");
                std::_Exit(0);
            },
            testing::ExitedWithCode(0), "^$")
            << isPinnedModule;
    }
}

TEST_F(LoadedModule, WithoutThePinWarnsWhenItIsClosed) {
    EXPECT_EXIT(
        {
            printToError();
            if (dlclose(load(FLOWMERE_UNPINNED_MODULE)) != 0)
                fail(dlerror());
            end(isLoaded(FLOWMERE_UNPINNED_MODULE) ? "still there" : "gone");
        },
        testing::ExitedWithCode(0), "^" + std::string(kWarning) + "\ngone$");
}

TEST_F(LoadedModule, WithoutThePinAndWithoutTheWarningGoesInSilence) {
    EXPECT_EXIT(
        {
            printToError();
            void* const handle = load(FLOWMERE_UNPINNED_MODULE);
            auto const enable = reinterpret_cast<void (*)(bool)>(dlsym(handle, "_Z24TuEnableDLLUnloadWarningb"));
            if (enable == nullptr)
                fail("a name is not exported");
            enable(false);
            dlclose(handle);
            end(isLoaded(FLOWMERE_UNPINNED_MODULE) ? "still there" : "gone");
        },
        testing::ExitedWithCode(0), "^gone$");
}

TEST_F(LoadedModule, WithoutAStampOfTheBuildHasTheHashZero) {
    EXPECT_EXIT(
        {
            void* const handle = load(FLOWMERE_UNPINNED_MODULE);
            auto const info = reinterpret_cast<InfoFunction>(dlsym(handle, "Flowmere_get_module_info"));
            if (info == nullptr || info(1) != std::string(flowmere::versionText()) + ".0")
                fail("another version");
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), "^$");
}

TEST_F(LoadedModule, SaysNothingWhenTheProcessEnds) {
    for (char const* const path : {FLOWMERE_LIBRARY, FLOWMERE_UNPINNED_MODULE}) {
        EXPECT_EXIT(
            {
                printToError();
                load(path);
                end("end");
            },
            testing::ExitedWithCode(0), "^end$");
    }
}

#endif

} // namespace
