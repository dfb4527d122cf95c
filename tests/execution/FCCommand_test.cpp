#include "flowmere/execution/FCCommand.h"
#include "flowmere/execution/FCExecutionMechanism.h"
#include "flowmere/foundation/TuConsole.h"
#include "flowmere/foundation/TuMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

// A command object of its own, with its tables given back at the end.
class Command : public CFCCommand {
public:
    ~Command() override {
        for (int index = 0; index < resourceCount; ++index)
            SetValues(resources[index].name, "int", &zero, 0); // gives up a text
        TuFree(resources, __FILE__, __LINE__);
        TuFree(commands, __FILE__, __LINE__);
    }
    using CFCCommand::SetValues;
    int SetValues(char const* name, char const* type, void const* value, int count) override {
        calls.push_back(std::string(name != nullptr ? name : "(null)") + "/" + (type != nullptr ? type : "(null)"));
        return CFCCommand::SetValues(name, type, value, count);
    }
    std::vector<std::string> calls;
    using CFCCommand::commandCount;
    using CFCCommand::commands;
    using CFCCommand::errorText;
    using CFCCommand::foundCount;
    using CFCCommand::foundResources;
    using CFCCommand::m_bActivated;
    using CFCCommand::m_nResCount;
    using CFCCommand::m_pCommandName;
    using CFCCommand::m_pResTable;
    using CFCCommand::resourceCount;
    using CFCCommand::resources;

private:
    std::int32_t const zero = 0;
};

TuString lastError(CFCCommand& command) {
    wchar_t const* text = nullptr;
    EXPECT_EQ(command.GetValues("Error", &text, nullptr), 0);
    return TuString(text);
}

char const* storedText(CFCCommand& command, char const* name) {
    char const* text = nullptr;
    EXPECT_EQ(command.GetValues(name, &text, nullptr), 0);
    return text;
}

struct CommandRow {
    int id;
    char const* name;
    char const* description;
    int count;
    std::vector<char const*> arguments;
};

std::vector<CommandRow> const kCommands = {
    {0, "Create Project", "Creates a new project", 2, {"Project Template File", "Project Directory"}},
    {1, "Open Project", "Opens saved project", 0, {}},
    {2, "Close Project", "Close current project", 0, {}},
    {3, "Save Project", "Saves project", 1, {"Project Directory"}},
    {4, "Save Project As", "Saves the project As", 1, {"Project Directory"}},
    {5, "Save Iteration Data", "Saves Iteration data", 1, {"Project Directory"}},
    {6, "Execute Block", "Executes given block", 1, {"Executing Block"}},
    {7, "Undo Block", "Undoes the execution of given block", 1, {"Executing Block"}},
    {8, "Execution Begin", "Starts the execution of block", 0, {}},
    {9, "Execution Step", "Steps the execution", 0, {}},
    {10, "Execution Undo", "Undo the execution till previous break", 0, {}},
    {11, "Execution Undo Step", "Undo one step of execution", 0, {}},
    {12, "Continue Execution", "Continue Execution of block", 0, {}},
    {13, "Stop At", "Stops the execution at given block", 1, {"Selected Block"}},
    {14, "Skip Block", "Skips the execution at given block", 1, {"Selected Block"}},
    {15, "Clear Stop At", "Clears the stop of a given block", 1, {"Selected Block"}},
    {16, "Clear Skip Block", "Clears the skip of a given block", 1, {"Selected Block"}},
    {17, "Clear All Stop", "Clears all blocks stop status", 0, {}},
    {18, "Clear All Skip", "Clears all blocks skip status", 0, {}},
    {19, "Expand Block", "Expands the given sub process block", 0, {}},
    {20, "Auto Execute", "Sets the execution to Auto Mode(non interactive)", 0, {}},
    {21, "Set Variable Data", "Sets the variable data to current Executing Block", 1, {"Executing Block"}},
    {22, "Extract Variable Data", "Extracts the variable data to current Executing Block", 1, {"Executing Block"}},
    {23, "Set Break", "Sets Breakpoints", 0, {"Selected Block"}},
    {24, "Clear Break", "Clears Breakpoints", 0, {"Selected Block"}},
    {25, "Clear All Break", "Clears all Breakpoints", 0, {}},
};

} // namespace

TEST(FCCommand, TablesHoldEveryCommandAndResource) {
    Command command;
    ASSERT_EQ(command.commandCount, 26);
    for (CommandRow const& row : kCommands) {
        int found = 0;
        for (int index = 0; index < command.commandCount; ++index) {
            _CFCCommandTable const& entry = command.commands[index];
            if (entry.id != row.id)
                continue;
            ++found;
            EXPECT_STREQ(entry.name, row.name);
            EXPECT_STREQ(entry.description, row.description);
            EXPECT_EQ(entry.argumentCount, row.count);
            for (std::size_t slot = 0; slot < 50; ++slot)
                EXPECT_STREQ(entry.arguments[slot], slot < row.arguments.size() ? row.arguments[slot] : nullptr);
        }
        EXPECT_EQ(found, 1) << row.name;
    }
    struct ResourceRow {
        int id;
        char const* name;
        int type;
        char const* description;
    };
    ASSERT_EQ(command.resourceCount, 6);
    for (ResourceRow const& row : {ResourceRow{51, "Project Name", 5, "Project Name To be Executed"},
                                   ResourceRow{52, "Project Template File", 5, "Project Template XML file"},
                                   ResourceRow{53, "Project Directory", 5, "Project Execution Directory"},
                                   ResourceRow{54, "Executing Block", 5, "The block being Executed"},
                                   ResourceRow{55, "Selected Block", 5, "Selected block for which skip/stop to be set"},
                                   ResourceRow{56, "Variable Data", 11, "Variable Data of current executing Block"}}) {
        _CFCResourceTable const* const entry = command.getResourceFromName(row.name);
        ASSERT_NE(entry, nullptr) << row.name;
        EXPECT_EQ(entry->id, row.id);
        EXPECT_EQ(entry->type, row.type);
        EXPECT_STREQ(entry->description, row.description);
        EXPECT_FALSE(entry->isSet);
        EXPECT_EQ(entry->arrayCount, 0);
    }
}

TEST(FCCommand, TablesAreSortedByBytes) {
    Command command;
    for (int index = 1; index < command.commandCount; ++index)
        EXPECT_LT(std::strcmp(command.commands[index - 1].name, command.commands[index].name), 0);
    for (int index = 1; index < command.resourceCount; ++index)
        EXPECT_LT(std::strcmp(command.resources[index - 1].name, command.resources[index].name), 0);
    _CFCCommandTable left{};
    _CFCCommandTable right{};
    left.name = "a";
    right.name = "\xC3\xA4";
    EXPECT_EQ(CFCCommand::compareCommandName(&left, &right), -1);
    EXPECT_EQ(CFCCommand::compareCommandName(&right, &left), 1);
    EXPECT_EQ(CFCCommand::compareCommandName(&left, &left), 0);
    _CFCResourceTable upper{};
    _CFCResourceTable lower{};
    upper.name = "Z";
    lower.name = "a";
    EXPECT_EQ(CFCCommand::compareResName(&upper, &lower), -1);
    EXPECT_EQ(CFCCommand::compareResName(&lower, &upper), 1);
    EXPECT_EQ(CFCCommand::compareResName(&lower, &lower), 0);
}

TEST(FCCommand, EveryCommandIsAcceptedWithNothingSet) {
    Command command;
    for (CommandRow const& row : kCommands)
        EXPECT_EQ(command.ExecuteCommand(row.name, nullptr), 0) << row.name;
    EXPECT_EQ(command.ExecuteCommand(8, nullptr), -1) << "by number nothing is executed";
}

TEST(FCCommand, UnknownCommandsFail) {
    Command command;
    for (char const* name : {"execution begin", "Execution Begin ", "", static_cast<char const*>(nullptr)}) {
        command.calls.clear();
        EXPECT_EQ(command.ExecuteCommand(name, nullptr), -1);
        EXPECT_EQ(command.calls, (std::vector<std::string>{"Status/int", "ErrorString/string"}));
        EXPECT_EQ(lastError(command), L"Resource not found\n") << "the report overwrites the message";
    }
}

TEST(FCCommand, DerivedClassWithTheReportResourcesSeesTheMessage) {
    class Reporting : public Command {
    public:
        using Command::SetValues;
        int SetValues(char const* name, char const* type, void const* value, int count) override {
            if (std::strcmp(name, "Status") == 0) {
                std::memcpy(&status, value, sizeof(status));
                return 0;
            }
            if (std::strcmp(name, "ErrorString") == 0) {
                text = static_cast<char const*>(value);
                return 0;
            }
            return Command::SetValues(name, type, value, count);
        }
        std::int32_t status = -5;
        std::string text;
    } command;
    command.ExecuteCommand("Nothing", nullptr);
    EXPECT_EQ(command.status, 0);
    EXPECT_EQ(command.text, "Command Not Found\n");
    EXPECT_EQ(lastError(command), L"Command Not Found\n");
    command.GetValues("Nothing", nullptr, nullptr);
    EXPECT_EQ(command.text, "Resources Not Found\n");
    command.GetValues("Project Name", nullptr, nullptr);
    EXPECT_EQ(command.text, "Value not set\n");
    command.getResourceFromName("Project Name")->isSet = true;
    command.getResourceFromName("Project Name")->type = 99;
    command.GetValues("Project Name", nullptr, nullptr);
    EXPECT_EQ(command.text, "Unknown Data Type\n");
    command.getResourceFromName("Project Name")->type = 5;
}

TEST(FCCommand, ValidationCollectsTheResourcesWithAValue) {
    Command command;
    command.SetValues("Project Directory", "string", "here", 0);
    command.ExecuteCommand("Create Project", nullptr);
    ASSERT_EQ(command.foundCount, 1);
    EXPECT_STREQ(command.foundResources[0]->name, "Project Directory");
    command.ExecuteCommand("Set Break", nullptr);
    EXPECT_EQ(command.foundCount, 0) << "an argument beyond the count is not examined";
    _CFCCommandTable wrong{};
    wrong.name = "Wrong";
    wrong.argumentCount = 3;
    wrong.arguments[0] = "No Such Resource";
    wrong.arguments[1] = "Project Directory";
    EXPECT_FALSE(command.validateInput(&wrong));
    EXPECT_EQ(command.foundCount, 1) << "the walk goes on behind an unknown name";
    _CFCCommandTable many{};
    many.argumentCount = 40;
    for (char const*& argument : many.arguments)
        argument = "Project Directory";
    EXPECT_TRUE(command.validateInput(&many));
    EXPECT_EQ(command.foundCount, 25);
    // A count beyond the names there are reaches no further than they do.
    many.argumentCount = 1000;
    EXPECT_TRUE(command.validateInput(&many));
    EXPECT_EQ(command.foundCount, 25);
    many.argumentCount = -1;
    EXPECT_TRUE(command.validateInput(&many));
    EXPECT_EQ(command.foundCount, 0);
    EXPECT_FALSE(command.validateInput(nullptr));
}

TEST(FCCommand, TextsAreCopiedAndReplaced) {
    Command command;
    char text[] = "x";
    EXPECT_EQ(command.SetValues("Project Name", "string", text, 0), 0);
    text[0] = 'y';
    EXPECT_STREQ(storedText(command, "Project Name"), "x");
    EXPECT_EQ(command.SetValues("Project Name", "string", "second", 0), 0);
    EXPECT_STREQ(storedText(command, "Project Name"), "second");
    EXPECT_EQ(command.getResourceFromName("Project Name")->type, 5);
}

TEST(FCCommand, ValuesOfEachTypeComeBack) {
    Command command;
    std::int32_t const whole = -7;
    command.SetValues("Project Name", "int", &whole, 0);
    std::int32_t wholeBack = 0;
    EXPECT_EQ(command.GetValues("Project Name", &wholeBack, nullptr), 0);
    EXPECT_EQ(wholeBack, -7);
    EXPECT_EQ(command.getResourceFromName("Project Name")->type, 1);

    float const single = 2.5f;
    command.SetValues("Project Name", "float", &single, 0);
    float singleBack = 0;
    command.GetValues("Project Name", &singleBack, nullptr);
    EXPECT_EQ(singleBack, 2.5f);
    EXPECT_EQ(command.getResourceFromName("Project Name")->type, 2);

    std::int32_t const five = 5;
    command.SetValues("Project Name", "double", &five, 0);
    double wideBack = 0;
    command.GetValues("Project Name", &wideBack, nullptr);
    EXPECT_EQ(wideBack, 5.0) << "doubles are given as whole numbers";
    EXPECT_EQ(command.getResourceFromName("Project Name")->type, 3);
    double const half = 2.5;
    command.SetValues("Project Name", "double", &half, 0);
    command.GetValues("Project Name", &wideBack, nullptr);
    EXPECT_EQ(wideBack, 0.0) << "the low half of 2.5 is 0";

    struct PointRow {
        char const* type;
        int code;
        int count;
    };
    double const numbers[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    for (PointRow const& row : {PointRow{"point3", 6, 3}, PointRow{"point2", 7, 2}, PointRow{"matrix", 8, 16}}) {
        command.SetValues("Project Name", row.type, numbers, 0);
        double const* back = nullptr;
        EXPECT_EQ(command.GetValues("Project Name", &back, nullptr), 0);
        EXPECT_EQ(std::memcmp(back, numbers, sizeof(double) * static_cast<std::size_t>(row.count)), 0) << row.type;
        EXPECT_EQ(command.getResourceFromName("Project Name")->type, row.code);
    }

    int something = 0;
    command.SetValues("Project Name", "hashtable", &something, 0);
    EXPECT_EQ(command.getResourceFromName("Project Name")->type, 11);
    void* pointer = nullptr;
    command.GetValues("Project Name", &pointer, nullptr);
    EXPECT_EQ(pointer, &something);
}

TEST(FCCommand, PointerFormsKeepTheTypeOfTheRecord) {
    Command command;
    int something = 0;
    for (char const* type : {"object", "pointer", "command"}) {
        command.SetValues("Project Name", "string", "text", 0);
        EXPECT_EQ(command.SetValues("Project Name", type, &something, 0), 0);
        EXPECT_EQ(command.getResourceFromName("Project Name")->type, 5) << type;
        void* pointer = nullptr;
        command.GetValues("Project Name", &pointer, nullptr);
        EXPECT_EQ(pointer, &something) << type;
        // The area now holds a foreign pointer, which a new text must not free.
        command.SetValues("Project Name", "string", "again", 0);
        EXPECT_STREQ(storedText(command, "Project Name"), "again");
    }
}

TEST(FCCommand, ArraysAreKeptAsTheyAreGiven) {
    Command command;
    command.SetValues("Project Name", "string", "text", 0);
    char const* const names[] = {"a", "b"};
    EXPECT_EQ(command.SetValues("Project Name", "string", names, 2), 0);
    void const* pointer = nullptr;
    int count = 0;
    EXPECT_EQ(command.GetValues("Project Name", &pointer, &count), 0);
    EXPECT_EQ(pointer, names);
    EXPECT_EQ(count, 2);
    command.SetValues("Project Name", "string", "scalar", 0);
    EXPECT_STREQ(storedText(command, "Project Name"), "scalar");
    EXPECT_EQ(command.getResourceFromName("Project Name")->arrayCount, 0);
}

TEST(FCCommand, ValuesMayComeFromTheRecordItself) {
    Command command;
    command.SetValues("Project Name", "string",
                      "text that is long enough for the numbers of a matrix: "
                      "0123456789012345678901234567890123456789012345678901234567890123456789"
                      "0123456789",
                      0);
    std::string const text = storedText(command, "Project Name");
    // Its text, as a new text, as a pointer, and as the bytes of other values.
    command.SetValues("Project Name", "string", storedText(command, "Project Name"), 0);
    EXPECT_EQ(storedText(command, "Project Name"), text);
    command.SetValues("Project Name", "pointer", storedText(command, "Project Name"), 0);
    EXPECT_EQ(storedText(command, "Project Name"), text) << "the text stays the record's";
    command.SetValues("Project Name", "string", storedText(command, "Project Name"), 3);
    EXPECT_EQ(storedText(command, "Project Name"), text) << "as an array, too";
    command.SetValues("Project Name", "matrix", storedText(command, "Project Name"), 0);
    unsigned char const* area = nullptr;
    ASSERT_EQ(command.GetValues("Project Name", &area, nullptr), 0);
    EXPECT_EQ(std::memcmp(area, text.data(), 16 * sizeof(double)), 0);
    // A value area, as another form of itself.
    command.SetValues("Project Name", "point2", area, 0);
    ASSERT_EQ(command.GetValues("Project Name", &area, nullptr), 0);
    EXPECT_EQ(std::memcmp(area, text.data(), 2 * sizeof(double)), 0);
    command.SetValues("Project Name", "string", "done", 0);
    EXPECT_STREQ(storedText(command, "Project Name"), "done");
}

TEST(FCCommand, MessagesGoThroughTheTranslation) {
    Command command;
    static std::vector<int> flags;
    flags.clear();
    TuSetTranslator([](wchar_t const* text, int flag) -> wchar_t const* {
        flags.push_back(flag);
        return TuString(text) == L"Resource not found\n" ? L"Nicht da\n" : nullptr;
    });
    EXPECT_EQ(command.SetValues("No Such", "int", nullptr, 0), -1);
    TuSetTranslator(nullptr);
    EXPECT_EQ(lastError(command), L"Nicht da\n");
    EXPECT_EQ(flags, std::vector<int>{0});
}

TEST(FCCommand, UnknownTypeChangesNothing) {
    Command command;
    int const value = 1;
    EXPECT_EQ(command.SetValues("Project Name", "Int", &value, 0), 0);
    EXPECT_EQ(command.SetValues("Project Name", nullptr, &value, 0), 0);
    EXPECT_EQ(command.SetValues("Project Name", "int", nullptr, 0), 0);
    EXPECT_FALSE(command.getResourceFromName("Project Name")->isSet);
    EXPECT_EQ(command.getResourceFromName("Project Name")->type, 5);
}

TEST(FCCommand, UnknownResourceIsToldWithoutAnException) {
    Command command;
    EXPECT_EQ(command.SetValues("No Such", "int", nullptr, 0), -1);
    EXPECT_EQ(command.calls.size(), 1u);
    EXPECT_EQ(lastError(command), L"Resource not found\n");
    EXPECT_EQ(command.SetValues(nullptr, nullptr, nullptr, 0), -1);
}

TEST(FCCommand, ValueThatWasNeverSetFails) {
    Command command;
    char const* text = "untouched";
    EXPECT_EQ(command.GetValues("Project Name", &text, nullptr), -1);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(lastError(command), L"Resource not found\n");
    EXPECT_EQ(command.GetValues("No Such", &text, nullptr), -1);
    EXPECT_EQ(command.GetValues(nullptr, &text, nullptr), -1);
}

TEST(FCCommand, TypesOfTheTableDecideHowMuchIsGiven) {
    Command command;
    _CFCResourceTable& record = *command.getResourceFromName("Project Name");
    record.isSet = true;
    std::uint64_t const bits = 0x1122334455667788u;
    std::memcpy(record.value, &bits, sizeof(bits));
    for (int type : {3, 5, 9, 10, 11, 12}) {
        record.type = type;
        std::uint64_t value = 0;
        EXPECT_EQ(command.GetValues("Project Name", &value, nullptr), 0);
        EXPECT_EQ(value, bits) << type;
    }
    for (int type : {1, 2}) {
        record.type = type;
        std::uint64_t value = 0;
        command.GetValues("Project Name", &value, nullptr);
        EXPECT_EQ(value, bits & 0xFFFFFFFFu) << type;
    }
    record.type = 4;
    std::uint64_t value = 42;
    EXPECT_EQ(command.GetValues("Project Name", &value, nullptr), 0);
    EXPECT_EQ(value, 42u);
    for (int type : {0, 13, -1}) {
        record.type = type;
        EXPECT_EQ(command.GetValues("Project Name", &value, nullptr), -1) << type;
    }
    record.type = 5;
    record.isSet = false;
}

TEST(FCCommand, NullOutArgumentsAreMisses) {
    Command command;
    command.SetValues("Project Name", "string", "x", 0);
    EXPECT_EQ(command.GetValues("Error", nullptr, nullptr), 0);
    EXPECT_EQ(command.GetValues("Project Name", nullptr, nullptr), 0);
    command.SetValues("Project Name", "string", "x", 3);
    EXPECT_EQ(command.GetValues("Project Name", nullptr, nullptr), 0);
}

TEST(FCCommand, FrameworkTableIsLookedUpByIdAndName) {
    Command command;
    EXPECT_EQ(command.GetResourceInfoFromId(1), nullptr);
    EXPECT_EQ(command.TCmdGetResourceId("One"), -1);
    EXPECT_EQ(command.TCmdGetResInfoFromId(1, nullptr), nullptr);
    _TCmdResTable table[] = {{1, "One"}, {2, "Two"}, {3, "One"}};
    command.m_pResTable = table;
    command.m_nResCount = 3;
    EXPECT_EQ(command.GetResourceInfoFromId(1), table);
    EXPECT_EQ(command.GetResourceInfoFromId(99), table);
    EXPECT_EQ(command.TCmdGetResourceId("One"), 1);
    EXPECT_EQ(command.TCmdGetResourceId("one"), -1);
    EXPECT_EQ(command.TCmdGetResourceId(nullptr), -1);
    EXPECT_EQ(command.TCmdGetResInfoFromId(2, nullptr), &table[1]);
    EXPECT_EQ(command.TCmdGetResInfoFromId(3, table), &table[2]);
    EXPECT_EQ(command.TCmdGetResInfoFromId(4, table), nullptr);
    command.m_nResCount = 0;
    EXPECT_EQ(command.TCmdGetResInfoFromId(1, table), nullptr);
    command.m_pResTable = nullptr;
}

TEST(FCCommand, OtherOperationsAreTheFrameworks) {
    Command command;
    int value = 0;
    int count = 0;
    std::vector<int> const numbers{1};
    std::vector<int>* out = nullptr;
    EXPECT_EQ(command.CreateWithoutGUI(), 0);
    EXPECT_EQ(command.GetConstResourceInfoFromId(1), nullptr);
    EXPECT_EQ(command.Activate(1, "x"), 0);
    EXPECT_EQ(command.CFCCommand::SetValues(1, &value, 1), 0);
    EXPECT_EQ(command.CFCCommand::SetValues(1, numbers), 0);
    EXPECT_EQ(command.GetValues(1, &value, &count), 0);
    EXPECT_EQ(command.GetValues(1, &out), 0);
    EXPECT_EQ(command.ActivateChild(nullptr, "x"), 0);
    EXPECT_EQ(command.ActivateAsChild(1, "x"), 0);
    EXPECT_EQ(command.Reconstruct(1), 0);
    for (int result : {command.Cancel(), command.Accept(), command.Undo(), command.Quit(), command.GuiAnyEvent(),
                       command.UpdateGui(), command.Build(nullptr), command.OnClientCmdEvent(1, nullptr)})
        EXPECT_EQ(result, 0);
    EXPECT_STREQ(command.m_pCommandName, "ProcessCommand");
}

TEST(FCCommand, CopiesShareTheTables) {
    class Copied : public CFCCommand {
    public:
        using CFCCommand::CFCCommand;
        using CFCCommand::resources;
    };
    Command command;
    command.SetValues("Project Name", "string", "shared", 0);
    CFCCommand copy(command);
    EXPECT_STREQ(storedText(copy, "Project Name"), "shared");
    CFCCommand assigned(command);
    assigned = copy;
    EXPECT_EQ(assigned.getResourceFromName("Project Name"), command.getResourceFromName("Project Name"));
}

TEST(FCCommandDeathTest, ObjectBuiltFirstIsTheOne) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            Command* const own = new Command;
            bool const same = activateFlowmereCommand() == own && !own->m_bActivated;
            std::_Exit(same ? 0 : 3);
        },
        testing::ExitedWithCode(0), "");
}

TEST(FCCommandDeathTest, ObjectIsMadeAndActivatedOnFirstUse) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            class Open : public CFCCommand {
            public:
                static bool isActivated(CFCCommand const& command) { return command.*(&Open::m_bActivated); }
            };
            CFCCommand* const first = activateFlowmereCommand();
            bool const good = first != nullptr && Open::isActivated(*first) && first != nullptr &&
                              activateFlowmereCommand() == first && getExecutive() != nullptr &&
                              first->getExecutionMechanism() == nullptr;
            std::_Exit(good ? 0 : 3);
        },
        testing::ExitedWithCode(0), "");
}
