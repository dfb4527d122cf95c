#include "host/shell/Completion.h"

#include "host/basics/Command.h"
#include "host/shell/Commands.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace flowmere::host::shell {

namespace fs = std::filesystem;

namespace {

class Completer {
public:
    Completer(std::string_view line, Workspace const& workspace) : m_open(openLineOf(line)), m_workspace(workspace) {
        m_completion.begin = m_open.current.begin;
    }

    Completion work() {
        if (m_open.isComment)
            return std::move(m_completion);
        std::vector<std::string> const names = commandNames();
        addNames(0, names);
        if (std::optional<Found> const found = nameAt(m_open.words, 0, names))
            addArguments(*found);
        auto& candidates = m_completion.candidates;
        auto const before = [](auto const& left, auto const& right) {
            return left.text < right.text;
        };
        auto const isSame = [](auto const& left, auto const& right) {
            return left.text == right.text;
        };
        std::stable_sort(candidates.begin(), candidates.end(), before);
        candidates.erase(std::unique(candidates.begin(), candidates.end(), isSame), candidates.end());
        return std::move(m_completion);
    }

private:
    // Names that may have several words, of which those from a place on are typed.
    void addNames(std::size_t place, std::vector<std::string> const& names) {
        if (place > m_open.words.size())
            return;
        std::string typed;
        for (std::size_t at = place; at < m_open.words.size(); ++at) {
            if (m_open.words[at].isQuoted)
                return;
            typed += m_open.words[at].text + " ";
        }
        bool const isQuoted = m_open.current.isQuoted;
        if (isQuoted && place < m_open.words.size())
            return;
        std::size_t const done = typed.size();
        typed += m_open.current.text;
        for (std::string const& name : names)
            if (name.starts_with(typed))
                add(name, isQuoted ? "\"" + name + "\"" : name.substr(done));
    }

    void addArguments(Found const& found) {
        auto const command = std::find_if(commands().begin(), commands().end(),
                                          [&](Command const& candidate) { return candidate.name == found.name; });
        std::size_t place = found.words;
        for (std::size_t at = 0; at < command->parameters.size(); ++at) {
            Parameter const& parameter = command->parameters[at];
            bool const isLast = place == m_open.words.size();
            switch (parameter.kind) {
            case Argument::Command:
                addNames(place, commandNames());
                return;
            case Argument::Resource: {
                addNames(place, resourceNames());
                std::optional<Found> const resource = nameAt(m_open.words, place, resourceNames());
                if (!resource)
                    return;
                place += resource->words;
                m_resource = resource->name;
                continue;
            }
            case Argument::Values:
                addVariables(place > found.words ? m_open.words[found.words].text : std::string());
                return;
            case Argument::Value:
                addValues();
                return;
            case Argument::File:
            case Argument::Target:
                if (isLast)
                    addFiles(false);
                break;
            case Argument::Folder:
                if (isLast)
                    addFiles(true);
                break;
            case Argument::Block:
                if (isLast)
                    addBlocks();
                break;
            case Argument::Name:
                break;
            }
            if (isLast)
                return;
            ++place;
        }
    }

    // For a resource.
    void addValues() {
        if (m_resource == "Executing Block" || m_resource == "Selected Block")
            addBlocks();
        else if (m_resource == "Project Directory")
            addFiles(true);
        else if (m_resource != "Variable Data")
            addFiles(false);
    }

    void addBlocks() {
        if (m_workspace.document() == nullptr)
            return;
        for (std::string const& path : m_workspace.document()->blockPaths())
            addWord(path);
    }

    void addVariables(std::string const& block) {
        if (m_workspace.document() == nullptr || block.empty())
            return;
        try {
            for (std::string const& name : m_workspace.variableNames(block))
                addWord(name + "=", true);
        } catch (Failure const&) {
            // A block that is not there has no variables.
            return;
        }
    }

    void addFiles(bool onlyFolders) {
        std::string const& typed = m_open.current.text;
        auto const slash = typed.rfind('/');
        std::string const folder = slash == std::string::npos ? std::string() : typed.substr(0, slash + 1);
        std::string const start = typed.substr(folder.size());
        std::error_code error;
        for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end; !error && entry != end;
             entry.increment(error)) {
            std::string const name = entry->path().filename().string();
            if (!name.starts_with(start) || (name.starts_with('.') && !start.starts_with('.')))
                continue;
            std::error_code ignored;
            bool const isFolder = entry->is_directory(ignored);
            if (isFolder)
                addWord(folder + name + "/", true);
            else if (!onlyFolders)
                addWord(folder + name);
        }
    }

    void addWord(std::string const& text, bool isOpen = false) {
        if (!text.starts_with(m_open.current.text))
            return;
        std::string word = asWord(text);
        if (m_open.current.isQuoted && word == text)
            word = "\"" + text + "\"";
        // The quote stays open for what is to come.
        if (isOpen && word.ends_with('"'))
            word.pop_back();
        add(text, std::move(word), isOpen);
    }

    void add(std::string text, std::string inserted, bool isOpen = false) {
        m_completion.candidates.push_back({std::move(text), std::move(inserted), isOpen});
    }

    OpenLine m_open;
    Workspace const& m_workspace;
    std::string m_resource;
    Completion m_completion;
};

} // namespace

Completion complete(std::string_view line, Workspace const& workspace) {
    return Completer(line, workspace).work();
}

std::string commonStart(Completion const& completion) {
    std::string start;
    bool isFirst = true;
    for (Completion::Candidate const& candidate : completion.candidates) {
        if (std::exchange(isFirst, false)) {
            start = candidate.inserted;
            continue;
        }
        auto const end =
            std::mismatch(start.begin(), start.end(), candidate.inserted.begin(), candidate.inserted.end());
        start.erase(end.first, start.end());
    }
    // Not within a character.
    auto const isInside = [](char character) {
        return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
    };
    if (!completion.candidates.empty()) {
        std::string const& whole = completion.candidates.front().inserted;
        while (!start.empty() && start.size() < whole.size() && isInside(whole[start.size()]))
            start.pop_back();
    }
    return start;
}

} // namespace flowmere::host::shell
