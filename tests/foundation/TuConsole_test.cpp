#include "flowmere/foundation/TuConsole.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<std::pair<int, std::wstring>> s_messages;

class TuConsole : public testing::Test {
protected:
    void SetUp() override { s_messages.clear(); }
    void TearDown() override {
        TuSetConsoleSink(nullptr);
        TuSetTranslator(nullptr);
        TuEnableDLLUnloadWarning(true);
    }
};

} // namespace

TEST_F(TuConsole, MessagesGoToTheSinkFormatted) {
    TuSetConsoleSink([](_TuMessageType kind, wchar_t const* text) { s_messages.emplace_back(kind, text); });
    TuWriteConsoleMessage(TuMessageOrdinary, L"'%s' has %d blocks", L"Main", 3);
    TuWriteConsoleMessage(static_cast<_TuMessageType>(4), L"plain");
    ASSERT_EQ(s_messages.size(), 2U);
    EXPECT_EQ(s_messages[0], std::make_pair(0, std::wstring(L"'Main' has 3 blocks")));
    EXPECT_EQ(s_messages[1], std::make_pair(4, std::wstring(L"plain")));
}

TEST_F(TuConsole, WithoutASinkMessagesAreLinesOfStandardOutput) {
    testing::internal::CaptureStdout();
    TuWriteConsoleMessage(TuMessageOrdinary, L"gr\u00F6\u00DFer %d", 5);
    TuWriteConsoleMessage(TuMessageOrdinary, L"with its own end\n");
    TuWriteConsoleMessage(TuMessageOrdinary, nullptr);
    // Standard output stays narrow, so this line still comes through.
    std::printf("narrow\n");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "gr\xC3\xB6\xC3\x9F"
                                                      "er 5\nwith its own end\n\nnarrow\n");
}

TEST_F(TuConsole, UnloadWarningIsOnUntilSwitchedOff) {
    EXPECT_TRUE(TuIsDLLUnloadWarningEnabled());
    TuEnableDLLUnloadWarning(false);
    EXPECT_FALSE(TuIsDLLUnloadWarningEnabled());
}

TEST_F(TuConsole, AMessageWithoutTranslationIsItself) {
    wchar_t const* const text = L"Command Not Found\n";
    EXPECT_EQ(TuLocalizeStringExW(text, 0), text);
    EXPECT_STREQ(TuLocalizeStringExW(nullptr, 0), L"");
}

TEST_F(TuConsole, TheTranslatorIsAsked) {
    TuSetTranslator([](wchar_t const* text, int) -> wchar_t const* {
        return std::wstring(text) == L"Value not set\n" ? L"Wert nicht gesetzt\n" : nullptr;
    });
    EXPECT_STREQ(TuLocalizeStringExW(L"Value not set\n", 0), L"Wert nicht gesetzt\n");
    EXPECT_STREQ(TuLocalizeStringExW(L"Other", 0), L"Other");
}
