#include "host/run/Journal.h"

#include "host/basics/Command.h"
#include "host/document/Tree.h"
#include "host/files/Digest.h"
#include "host/files/SafeFile.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

constexpr int kVersion = 1;

std::string lineOf(Json const& event) {
    return event.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

bool isUtf8(std::string const& text) {
    try {
        static_cast<void>(Json(text).dump());
        return true;
    } catch (Json::type_error const&) {
        return false;
    }
}

// Any bytes.
Json fromBytes(std::string const& text) {
    if (isUtf8(text))
        return text;
    std::string digits;
    for (char const byte : text)
        digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    return {{"bytes", digits}};
}

std::optional<std::string> toBytes(Json const& json) {
    if (json.is_string())
        return json.get<std::string>();
    if (!json.is_object() || !json.contains("bytes") || !json["bytes"].is_string())
        return std::nullopt;
    std::string const digits = json["bytes"].get<std::string>();
    auto const digitAt = [&](std::size_t index) {
        auto const place = std::string_view("0123456789abcdef").find(digits[index]);
        return place == std::string_view::npos ? -1 : static_cast<int>(place);
    };
    if (digits.size() % 2 != 0)
        return std::nullopt;
    std::string bytes;
    for (std::size_t index = 0; index < digits.size(); index += 2) {
        int const high = digitAt(index);
        int const low = digitAt(index + 1);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

// Any text that the library can hold, the characters among them that no UTF-8 has.
Json fromText(TuString const& text) {
    std::string const bytes = utf8(text);
    if (isUtf8(bytes) && wide(bytes).View() == text.View())
        return bytes;
    Json codes = Json::array();
    for (wchar_t const character : text.View())
        codes.push_back(static_cast<std::uint32_t>(character));
    return {{"codes", codes}};
}

std::optional<TuString> toText(Json const& json) {
    if (json.is_string())
        return wide(json.get<std::string>());
    if (!json.is_object() || !json.contains("codes") || !json["codes"].is_array())
        return std::nullopt;
    std::wstring text;
    for (Json const& code : json["codes"]) {
        if (!code.is_number_unsigned() || code.get<std::uint64_t>() == 0 || code.get<std::uint64_t>() > 0xFFFFFFFFU)
            return std::nullopt;
        text += static_cast<wchar_t>(code.get<std::uint32_t>());
    }
    return TuString(std::wstring_view(text));
}

Json toJson(JournalAim const& aim) {
    Json options = {{"scripts", Json::array()}};
    for (std::string const& root : aim.scriptRoots)
        options["scripts"].push_back(fromBytes(root));
    for (auto const& [key, name] : {std::pair("from", aim.from), std::pair("until", aim.until)})
        if (!name.empty())
            options[key] = name;
    if (!aim.breaks.empty())
        options["breaks"] = aim.breaks;
    if (aim.timeout > 0)
        options["timeout"] = aim.timeout;
    return options;
}

// Not what a journal holds.
struct WrongEvent {
    std::string cause;
};

Json const& member(Json const& event, char const* key) {
    auto const entry = event.find(key);
    if (entry == event.end())
        throw WrongEvent{fmt::format("lacks \"{}\"", key)};
    return *entry;
}

std::string textOf(Json const& value, char const* key) {
    if (auto const text = toBytes(value))
        return *text;
    throw WrongEvent{fmt::format("\"{}\" is no text", key)};
}

std::string textAt(Json const& event, char const* key) {
    return textOf(member(event, key), key);
}

double numberAt(Json const& event, char const* key) {
    Json const& value = member(event, key);
    if (!value.is_number())
        throw WrongEvent{fmt::format("\"{}\" is no number", key)};
    return value.get<double>();
}

int gripOf(Json const& value) {
    if (!value.is_number_integer() || value.get<std::int64_t>() < std::numeric_limits<int>::min() ||
        value.get<std::int64_t>() > std::numeric_limits<int>::max())
        throw WrongEvent{"has a grip that is no number"};
    return value.get<int>();
}

JournalAim aimAt(Json const& event) {
    Json const& options = member(event, "options");
    auto const texts = [](Json const& list, char const* key) {
        if (!list.is_array())
            throw WrongEvent{fmt::format("\"{}\" is no list", key)};
        std::vector<std::string> result;
        for (Json const& value : list)
            result.push_back(textOf(value, key));
        return result;
    };
    if (!options.is_object())
        throw WrongEvent{"\"options\" is no object"};
    JournalAim aim;
    aim.scriptRoots = texts(member(options, "scripts"), "scripts");
    if (options.contains("from"))
        aim.from = textAt(options, "from");
    if (options.contains("until"))
        aim.until = textAt(options, "until");
    if (options.contains("breaks"))
        aim.breaks = texts(options["breaks"], "breaks");
    if (options.contains("timeout"))
        aim.timeout = numberAt(options, "timeout");
    return aim;
}

std::optional<BlockRun::State> stateOf(std::string const& name) {
    for (auto const state :
         {BlockRun::State::Executed, BlockRun::State::Failed, BlockRun::State::Undone, BlockRun::State::Interrupted})
        if (name == stateName(state))
            return state;
    return std::nullopt;
}

bool isFailure(RunStep const& step) {
    return step.state == BlockRun::State::Failed || step.state == BlockRun::State::Interrupted;
}

// The event of a line; none when it is no event.
std::optional<Json> parse(std::string_view line) {
    Json event = Json::parse(line, nullptr, false);
    if (!event.is_object() || !event.contains("event") || !event["event"].is_string())
        return std::nullopt;
    return event;
}

} // namespace

std::string digestOf(fs::path const& file) {
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    Digest digest;
    std::string buffer(65536, '\0');
    while (in) {
        in.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        digest.add(std::string_view(buffer).substr(0, static_cast<std::size_t>(in.gcount())));
    }
    if (!in.eof())
        throw Failure(file.string(), "", std::string("cannot be read: ") + std::strerror(errno));
    return digest.text();
}

// Names

JournalNames::JournalNames(Document& document) {
    Tree const tree(document.process());
    Digest digest;
    auto const add = [&digest](std::string const& text) {
        digest.add(text);
        digest.add(std::string_view("\0", 1));
    };
    std::unordered_map<std::string, std::size_t> counts;
    auto const uniqueName = [&counts](std::string const& path, auto const& known) {
        std::string const base = isUtf8(path) ? path : oneLine(path);
        std::string name = base;
        while (known.contains(name) || name.empty())
            name = fmt::format("{}#{}", base, ++counts[base] + 1);
        return name;
    };
    for (TreeNode const& node : tree.nodes()) {
        add(node.path);
        for (CFCConnector* const way : node.ways)
            if (CFCBlockNode* const end = way->GetEndObject())
                add(fmt::format("{} {} {}", way->GetStartHandle(), way->GetEndHandle(), tree.indexOf(end)));
        if (node.block == nullptr)
            continue;
        std::string const name = uniqueName(node.path, m_blocks);
        m_blocks.emplace(name, node.block);
        m_blockNames.emplace(node.block, name);
    }
    counts.clear();
    for (TreeVariable const& variable : tree.variables()) {
        std::string const name = uniqueName(variable.path, m_variables);
        m_variables.emplace(name, variable.data);
        m_variableNames.emplace(variable.data, name);
        add(variable.path);
        add(variable.linkPath);
        add(utf8(variable.data->GetValue()));
    }
    m_contents = digest.text();
}

std::string const& JournalNames::nameOf(CFCBlockNode* block) const {
    static std::string const none;
    auto const entry = m_blockNames.find(block);
    return entry != m_blockNames.end() ? entry->second : none;
}

std::string const& JournalNames::nameOf(CFCVariableData* variable) const {
    static std::string const none;
    auto const entry = m_variableNames.find(variable);
    return entry != m_variableNames.end() ? entry->second : none;
}

CFCBlockNode* JournalNames::block(std::string const& name) const {
    auto const entry = m_blocks.find(name);
    return entry != m_blocks.end() ? entry->second : nullptr;
}

CFCVariableData* JournalNames::variable(std::string const& name) const {
    auto const entry = m_variables.find(name);
    return entry != m_variables.end() ? entry->second : nullptr;
}

// Reading

Journal::Journal(std::string const& file, Use use) : m_file(file) {
    bool const isNew = use == Use::New;
    if (file.empty())
        throw Failure("", "", "the name of the journal is empty");
    std::error_code error;
    fs::file_status const status = fs::status(file, error);
    std::string const intent = isNew ? "cannot be written: it " : "cannot be resumed: it ";
    if (status.type() == fs::file_type::directory)
        throw Failure(file, "", intent + "is a folder");
    if (fs::exists(status) && status.type() != fs::file_type::regular)
        throw Failure(file, "", intent + "is no regular file");
    if (!isNew && status.type() == fs::file_type::not_found)
        throw Failure(file, "", "there is no such journal");
    if (status.type() == fs::file_type::not_found)
        if (std::string const fault = folderFault(file); !fault.empty())
            throw Failure(file, "", "cannot be written: " + fault);

    m_descriptor = ::open(file.c_str(), O_RDWR | O_CLOEXEC | (isNew ? O_CREAT : 0), 0666);
    if (m_descriptor < 0)
        checkWritable(errno);
    m_isNewFile = status.type() == fs::file_type::not_found;
    try {
        if (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
            throw Failure(file, "", "is in use by another run");
        read();
        if (isNew) {
            checkReplaceable();
        } else {
            if (m_content.empty())
                throw Failure(file, "", "cannot be resumed: it is empty");
            if (wholeLines() == 0)
                throw Failure(file, "", "cannot be resumed: it ends before the run began");
            readStart(std::string_view(m_content).substr(0, m_content.find('\n')));
        }
    } catch (Failure const&) {
        ::close(m_descriptor);
        throw;
    }
}

Journal::~Journal() {
    // Nothing was written to it.
    if (m_isNewFile && m_size == 0)
        ::unlink(m_file.c_str());
    ::close(m_descriptor);
}

void Journal::fail(int line, std::string const& cause) const {
    throw Failure(m_file, fmt::format("line {}", line), cause);
}

void Journal::checkWritable(int error) const {
    throw Failure(m_file, "", std::string("cannot be written: ") + std::strerror(error));
}

void Journal::read() {
    std::string buffer(65536, '\0');
    for (;;) {
        ssize_t const count = ::read(m_descriptor, buffer.data(), buffer.size());
        if (count == 0)
            return;
        if (count < 0)
            throw Failure(m_file, "", std::string("cannot be read: ") + std::strerror(errno));
        m_content.append(buffer, 0, static_cast<std::size_t>(count));
    }
}

// The size of all lines but the last, which is cut off where the program was killed while it wrote.
std::size_t Journal::wholeLines() const {
    auto const end = m_content.rfind('\n');
    return end == std::string::npos ? 0 : end + 1;
}

void Journal::readStart(std::string_view line) {
    auto const event = parse(line);
    if (!event || (*event)["event"] != "begin")
        fail(1, "is not the beginning of a journal");
    try {
        if (numberAt(*event, "journal") != kVersion)
            throw WrongEvent{"is of a journal of another version"};
        m_start.path = textAt(*event, "path");
        m_start.sha256 = textAt(*event, "sha256");
        m_start.contents = textAt(*event, "contents");
        m_start.startedAt = textAt(*event, "at");
        m_start.aim = aimAt(*event);
    } catch (WrongEvent const& wrong) {
        fail(1, wrong.cause);
    }
    // Where scripts are found was told anew by whoever resumed the run last. What is wrong with that line is told
    // later.
    std::string_view const content(m_content.data(), wholeLines());
    auto const resumed = content.rfind("\n{\"event\":\"resume\"");
    if (resumed == std::string_view::npos)
        return;
    std::string_view const last = content.substr(resumed + 1);
    if (auto const again = parse(last.substr(0, last.find('\n')))) {
        try {
            m_start.aim.scriptRoots = aimAt(*again).scriptRoots;
        } catch (WrongEvent const&) {
            return;
        }
    }
}

// What a run may be resumed from is not given up for another run.
void Journal::checkReplaceable() const {
    constexpr std::string_view kBegin = R"({"event":"begin")";
    std::string_view const content(m_content);
    std::string_view const head = content.substr(0, kBegin.size());
    std::size_t const size = wholeLines();
    bool const hasBegun = head == kBegin;
    if (content.empty() || (size == 0 && kBegin.starts_with(head)))
        return;
    if (!hasBegun)
        throw Failure(m_file, "", "is no journal, and is not overwritten");
    if (size == 0)
        return;
    std::string_view last = content.substr(0, size - 1);
    if (auto const before = last.rfind('\n'); before != std::string_view::npos)
        last.remove_prefix(before + 1);
    auto const event = parse(last);
    bool const isOver = size == content.size() && event && (*event)["event"] == "end" && event->contains("end") &&
                        (*event)["end"] == "ended";
    if (!isOver)
        throw Failure(m_file, "", "holds a run that has not come to its end: go on with --resume, or remove the file");
}

void Journal::checkDocument(Document const& document, JournalNames const& names) const {
    if (digestOf(document.path()) != m_start.sha256) {
        std::string_view const content(m_content.data(), wholeLines());
        auto const saved = content.rfind("\n{\"event\":\"save\"");
        std::string cause = "is not the document of this journal, or has been changed since: " + m_start.path;
        if (saved != std::string_view::npos) {
            std::string_view line = content.substr(saved + 1);
            line = line.substr(0, line.find('\n'));
            auto const event = parse(line);
            auto const path = event && event->contains("file") ? toBytes((*event)["file"]) : std::nullopt;
            if (path && *path == document.path().string())
                cause = "the run of this journal has been saved into its document, which can be run with --from";
        }
        throw Failure(m_file, document.file(), cause);
    }
    if (names.contents() != m_start.contents)
        throw Failure(m_file, document.file(), "a file that the document links to has been changed since");
}

std::vector<std::pair<std::string, double>> Journal::times() const {
    std::vector<std::pair<std::string, double>> times;
    std::string_view content(m_content.data(), wholeLines());
    while (!content.empty()) {
        auto const end = content.find('\n');
        std::string_view const line = content.substr(0, end);
        content.remove_prefix(end + 1);
        if (!line.starts_with(R"({"event":"done")"))
            continue;
        auto const event = parse(line);
        if (event && event->contains("block") && (*event)["block"].is_string() && event->contains("milliseconds") &&
            (*event)["milliseconds"].is_number())
            times.emplace_back((*event)["block"].get<std::string>(), (*event)["milliseconds"].get<double>());
    }
    return times;
}

// Goes over the lines behind the first.
class Journal::Reader {
public:
    Reader(JournalNames const& names, JournalRecord& record) : m_names(names), m_record(record) {}

    void read(Json const& event) {
        std::string const kind = event["event"].get<std::string>();
        m_record.end.clear();
        if (kind == "values")
            readValues(event);
        else if (kind == "start" || kind == "undo")
            readOpening(event, kind);
        else if (kind == "printed")
            readPrinted(event);
        else if (kind == "done" || kind == "undone")
            readStep(event, kind);
        else if (kind == "history")
            m_record.history.push_back(textAt(event, "text"));
        else if (kind == "resume")
            readResume(event);
        else if (kind == "end")
            m_record.end = textAt(event, "end");
        else if (kind != "save")
            throw WrongEvent{"holds an event of no known kind: " + kind};
    }

    // Whether a block has started that is not done.
    bool isOpen() const { return m_open != nullptr; }

    // What was not done, and what failed and was followed by nothing, is to be done again.
    void dropFailures() {
        m_open = nullptr;
        m_values.clear();
        m_printed.clear();
        std::vector<RunStep>& steps = m_record.steps;
        while (!steps.empty() && isFailure(steps.back())) {
            RunStep const& step = steps.back();
            if (step.kind == RunStep::Kind::Forward)
                m_done.pop_back();
            m_record.unasked = step.kind == RunStep::Kind::Consent ? step.block : nullptr;
            steps.pop_back();
        }
    }

private:
    CFCBlockNode* blockOf(std::string const& name) const {
        if (CFCBlockNode* const block = m_names.block(name))
            return block;
        throw WrongEvent{"there is no block " + name + " in the document"};
    }

    void add(RunStep step) {
        m_record.unasked = nullptr;
        m_record.steps.push_back(std::move(step));
    }

    void readValues(Json const& event) {
        std::vector<std::pair<CFCVariableData*, TuString>> values;
        Json const& given = member(event, "values");
        if (!given.is_object())
            throw WrongEvent{"\"values\" is no object"};
        for (auto const& [name, json] : given.items()) {
            CFCVariableData* const variable = m_names.variable(name);
            if (variable == nullptr)
                throw WrongEvent{"there is no variable " + name + " in the document"};
            auto value = toText(json);
            if (!value)
                throw WrongEvent{"the value of " + name + " is no text"};
            values.emplace_back(variable, std::move(*value));
        }
        if (m_open != nullptr) {
            m_values = std::move(values);
            return;
        }
        RunStep step;
        step.kind = RunStep::Kind::Values;
        step.values = std::move(values);
        readGrips(event, step);
        add(std::move(step));
    }

    void readOpening(Json const& event, std::string const& kind) {
        if (m_open != nullptr)
            throw WrongEvent{"a block starts before the one before it is done"};
        m_open = blockOf(textAt(event, "block"));
        m_opening = kind;
    }

    void readPrinted(Json const& event) {
        std::string const stream = textAt(event, "stream");
        if (stream != "output" && stream != "error")
            throw WrongEvent{"names no stream"};
        m_printed.push_back({stream == "error", textAt(event, "text")});
    }

    void readGrips(Json const& event, RunStep& step) const {
        if (!event.contains("grips"))
            return;
        if (!event["grips"].is_object())
            throw WrongEvent{"\"grips\" is no object"};
        for (auto const& [name, grip] : event["grips"].items())
            step.grips.emplace_back(blockOf(name), gripOf(grip));
    }

    void readStep(Json const& event, std::string const& kind) {
        RunStep step;
        BlockRun run;
        run.path = textAt(event, "block");
        step.block = blockOf(run.path);
        bool const isConsent = event.contains("consent");
        step.kind = isConsent ? RunStep::Kind::Consent : kind == "done" ? RunStep::Kind::Forward : RunStep::Kind::Back;
        if (!isConsent && (m_open != step.block || m_opening != (kind == "done" ? "start" : "undo")))
            throw WrongEvent{"a block is done that has not started"};
        auto const state = stateOf(textAt(event, "state"));
        if (!state || (isConsent && *state == BlockRun::State::Executed) ||
            (*state == (kind == "done" ? BlockRun::State::Undone : BlockRun::State::Executed)))
            throw WrongEvent{"names no state that a block may have then"};
        step.state = *state;
        run.state = *state;
        run.milliseconds = numberAt(event, "milliseconds");
        step.grips.emplace_back(step.block, gripOf(member(event, "grip")));
        readGrips(event, step);
        if (Json const& next = member(event, "next"); !next.is_null())
            step.next = blockOf(textOf(next, "next"));
        if (event.contains("outputs") && event["outputs"].is_object())
            for (auto const& [name, value] : event["outputs"].items())
                run.outputs.emplace_back(name, textOf(value, "outputs"));
        if (event.contains("error") && event["error"].is_object())
            readError(event["error"], run);
        checkOrder(step);
        step.values = std::exchange(m_values, {});
        run.printed = std::exchange(m_printed, {});
        m_open = nullptr;
        m_record.blocks.push_back(std::move(run));
        add(std::move(step));
    }

    static void readError(Json const& event, BlockRun& run) {
        ScriptError& error = run.error.emplace();
        error.block = run.path;
        error.type = textAt(event, "type");
        error.text = textAt(event, "text");
        error.traceback = textAt(event, "traceback");
        error.file = textAt(event, "file");
        error.line = static_cast<int>(numberAt(event, "line"));
        error.source = textAt(event, "source");
    }

    void checkOrder(RunStep const& step) {
        if (step.kind == RunStep::Kind::Forward) {
            m_done.push_back(step.block);
        } else if (step.kind == RunStep::Kind::Back) {
            if (m_done.empty() || m_done.back() != step.block)
                throw WrongEvent{"undoes a block that was not the last to run"};
            if (!isFailure(step))
                m_done.pop_back();
        }
    }

    void readResume(Json const& event) {
        m_record.aim = aimAt(event);
        dropFailures();
    }

    JournalNames const& m_names;
    JournalRecord& m_record;
    CFCBlockNode* m_open = nullptr;
    std::string m_opening;
    std::vector<std::pair<CFCVariableData*, TuString>> m_values;
    std::vector<PrintedText> m_printed;
    std::vector<CFCBlockNode*> m_done;
};

JournalRecord Journal::record(JournalNames const& names) const {
    JournalRecord record;
    record.aim = m_start.aim;
    Reader reader(names, record);
    std::string_view content(m_content.data(), wholeLines());
    for (int line = 1; !content.empty(); ++line) {
        auto const end = content.find('\n');
        std::string_view const text = content.substr(0, end);
        content.remove_prefix(end + 1);
        if (line == 1)
            continue;
        auto const event = parse(text);
        if (!event)
            fail(line, "is no event of a journal");
        try {
            reader.read(*event);
        } catch (WrongEvent const& wrong) {
            fail(line, wrong.cause);
        }
    }
    record.isOpen = reader.isOpen();
    reader.dropFailures();
    return record;
}

// Writing

void Journal::put(Json const& event) {
    if (!m_fault.empty())
        return;
    std::string const line = lineOf(event);
    std::string_view rest = line;
    while (!rest.empty()) {
        ssize_t const written =
            ::pwrite(m_descriptor, rest.data(), rest.size(), static_cast<off_t>(m_size + line.size() - rest.size()));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            m_fault = std::strerror(written < 0 ? errno : ENOSPC);
            // Who resumes the run is to find whole lines.
            static_cast<void>(::ftruncate(m_descriptor, static_cast<off_t>(m_size)));
            return;
        }
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    m_size += line.size();
}

void Journal::flush() {
    while (m_fault.empty() && ::fdatasync(m_descriptor) != 0)
        if (errno != EINTR)
            m_fault = std::strerror(errno);
}

void Journal::sync() {
    flush();
    if (!m_fault.empty())
        throw Failure(m_file, "", "cannot be written: " + m_fault);
}

void Journal::begin(JournalStart const& start, std::string const& file) {
    if (::ftruncate(m_descriptor, 0) != 0)
        checkWritable(errno);
    put({{"event", "begin"},
         {"journal", kVersion},
         {"file", fromBytes(file)},
         {"path", fromBytes(start.path)},
         {"sha256", start.sha256},
         {"contents", start.contents},
         {"at", start.startedAt},
         {"options", toJson(start.aim)}});
    sync();
    // The name of a new file comes to disk with its folder.
    std::error_code error;
    fs::path const folder = fs::absolute(m_file, error).parent_path();
    int const descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

void Journal::resume(JournalAim const& aim, std::string const& at) {
    m_size = wholeLines();
    if (::ftruncate(m_descriptor, static_cast<off_t>(m_size)) != 0)
        checkWritable(errno);
    put({{"event", "resume"}, {"at", at}, {"options", toJson(aim)}});
    sync();
}

void Journal::blockStarts(std::string const& name, bool isUndo) {
    put({{"event", isUndo ? "undo" : "start"}, {"block", name}});
    sync();
}

void Journal::printed(std::string const& name, PrintedText const& text) {
    put({{"event", "printed"},
         {"block", name},
         {"stream", text.isError ? "error" : "output"},
         {"text", fromBytes(text.text)}});
}

void Journal::history(std::string const& text) {
    put({{"event", "history"}, {"text", fromBytes(text)}});
}

void Journal::step(RunStep const& step, BlockRun const& run, JournalNames const& names) {
    bool const isValues = step.kind == RunStep::Kind::Values;
    std::string const& name = names.nameOf(step.block);
    Json grips = Json::object();
    for (auto const& [block, grip] : step.grips)
        if (isValues || block != step.block)
            grips[names.nameOf(block)] = grip;
    if (!step.values.empty() || (isValues && !grips.empty())) {
        Json event = {{"event", "values"}};
        if (!name.empty() && !isValues)
            event["block"] = name;
        Json values = Json::object();
        // Setting them by name would look through all those before.
        for (auto const& [variable, value] : step.values)
            values.get_ref<Json::object_t&>().emplace_back(names.nameOf(variable), fromText(value));
        event["values"] = std::move(values);
        if (isValues && !grips.empty())
            event["grips"] = grips;
        put(event);
    }
    for (PrintedText const& text : run.printed)
        printed(name, text);
    if (isValues)
        return;
    Json event = {{"event", step.kind == RunStep::Kind::Back ? "undone" : "done"},
                  {"block", name},
                  {"state", stateName(run.state)},
                  {"milliseconds", run.milliseconds},
                  {"grip", step.block != nullptr ? step.block->GetActiveHandle() : 0}};
    if (!grips.empty())
        event["grips"] = grips;
    event["next"] = step.next != nullptr ? Json(names.nameOf(step.next)) : Json();
    if (step.kind == RunStep::Kind::Consent)
        event["consent"] = false;
    if (!run.outputs.empty()) {
        event["outputs"] = Json::object();
        for (auto const& [output, value] : run.outputs)
            event["outputs"][isUtf8(output) ? output : oneLine(output)] = fromBytes(value);
    }
    if (run.error)
        event["error"] = {{"type", fromBytes(run.error->type)},
                          {"text", fromBytes(run.error->text)},
                          {"traceback", fromBytes(run.error->traceback)},
                          {"file", fromBytes(run.error->file)},
                          {"line", run.error->line},
                          {"source", fromBytes(run.error->source)}};
    put(event);
}

void Journal::saves(fs::path const& file) {
    put({{"event", "save"}, {"file", fromBytes(file.string())}});
    flush();
}

void Journal::ends(RunReport const& report) {
    put({{"event", "end"},
         {"end", report.end},
         {"next", report.next ? Json(*report.next) : Json()},
         {"executed", report.executed},
         {"undone", report.undone},
         {"milliseconds", report.milliseconds},
         {"saved", report.savedTo ? fromBytes(*report.savedTo) : Json()}});
    flush();
}

} // namespace flowmere::host
