#include <pybind11/embed.h>

#include "host/scripting/Interpreter.h"

#include "host/basics/Command.h"
#include "host/basics/Text.h"
#include "host/scripting/HostModule.h"
#include "host/scripting/OutputCapture.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <sys/types.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace py = pybind11;

namespace flowmere::host {

namespace fs = std::filesystem;

namespace {

// A build with sanitizers sees nothing of what lies in the interpreter's own memory pools.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FLOWMERE_HOST_SANITIZED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define FLOWMERE_HOST_SANITIZED
#endif
#if defined(FLOWMERE_HOST_SANITIZED)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

volatile std::sig_atomic_t interruptCount = 0;

// The first Ctrl-C reaches the script as KeyboardInterrupt; a script that does not let go is left behind by the second.
void onInterrupt(int) {
    interruptCount = interruptCount + 1;
    if (interruptCount > 1)
        ::_exit(kExitInterrupted);
    ::PyErr_SetInterruptEx(SIGINT);
}

fs::path programFolder() {
    std::error_code error;
    fs::path const program = fs::read_symlink("/proc/self/exe", error);
    return program.parent_path();
}

// The folder that holds lib/pythonX.Y of the very library that is loaded. Left to itself the library would take the
// modules of whatever python3 comes first on the PATH.
fs::path pythonHome() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<void*>(&::Py_IsInitialized), &info) == 0 || info.dli_fname == nullptr)
        return {};
    std::error_code error;
    fs::path const library = fs::canonical(info.dli_fname, error);
    std::string const modules = fmt::format("lib/python{}.{}/os.py", PY_MAJOR_VERSION, PY_MINOR_VERSION);
    for (fs::path folder = library.parent_path(); folder.has_relative_path(); folder = folder.parent_path())
        if (fs::exists(folder / modules, error))
            return folder;
    return {};
}

void check(PyStatus const& status) {
    if (::PyStatus_Exception(status) != 0)
        throw Failure("Python", "", status.err_msg != nullptr ? status.err_msg : "does not start");
}

void setText(PyConfig& config, wchar_t*& field, fs::path const& path) {
    check(::PyConfig_SetBytesString(&config, &field, path.c_str()));
}

// A script that puts another program in the place of this one would end the run without a word, as a success of that
// program. Processes that it forks off may become what they like. `data` is the process in which the program runs.
int refuseReplacing(char const* event, PyObject*, void* data) {
    if (std::strcmp(event, "os.exec") != 0 || ::getpid() != *static_cast<pid_t const*>(data))
        return 0;
    ::PyErr_SetString(PyExc_RuntimeError,
                      "a script cannot put another program in the place of this one; subprocess starts one beside it");
    return -1;
}

void initialise() {
    registerHostModule();
    static pid_t const owner = ::getpid();
    ::PySys_AddAuditHook(refuseReplacing, const_cast<pid_t*>(&owner));
    PyPreConfig before;
    ::PyPreConfig_InitIsolatedConfig(&before);
    before.utf8_mode = 1;
    if (kIsSanitized)
        before.allocator = PYMEM_ALLOCATOR_MALLOC;
    check(::Py_PreInitialize(&before));

    PyConfig config;
    ::PyConfig_InitIsolatedConfig(&config);
    config.install_signal_handlers = 0;
    config.write_bytecode = 0;
    if (fs::path const home = pythonHome(); !home.empty())
        setText(config, config.home, home);
    setText(config, config.program_name, programFolder() / "flowmere");
    PyStatus const status = ::Py_InitializeFromConfig(&config);
    ::PyConfig_Clear(&config);
    check(status);
}

} // namespace

std::string errorText(ScriptError const& error) {
    std::string line;
    if (!error.file.empty())
        line += error.file + (error.line > 0 ? ":" + std::to_string(error.line) : std::string()) + ": ";
    if (!error.source.empty())
        line += "`" + error.source + "`: ";
    return line + (error.text.empty() ? error.type : error.type + ": " + error.text);
}

Interpreter::Interpreter() : m_owner(::getpid()) {
    fs::path const modules = moduleFolder();
    std::error_code error;
    if (!fs::is_regular_file(modules / "_flowmere_setup.py", error))
        throw Failure(modules.string(), "", "the Python modules of the program are missing");
    initialise();
    hostServices().interpreter = this;
    try {
        py::module_::import("sys").attr("path").attr("insert")(0, modules.string());
        py::module_::import("_flowmere_setup").attr("set_up")(modules.string());
    } catch (py::error_already_set const& problem) {
        throw Failure("Python", "", problem.what());
    }
}

Interpreter::~Interpreter() = default;

Interpreter& Interpreter::start(std::vector<fs::path> const& scriptRoots) {
    static Interpreter* const interpreter = new Interpreter;
    std::vector<std::string> roots;
    for (fs::path const& root : scriptRoots)
        roots.push_back(root.string());
    py::gil_scoped_acquire const lock;
    try {
        py::list names;
        for (std::string const& root : roots)
            names.append(root);
        py::module_::import("_flowmere_setup").attr("set_script_roots")(names, moduleFolder().string());
    } catch (py::error_already_set const& problem) {
        throw Failure("Python", "", problem.what());
    }
    return *interpreter;
}

fs::path Interpreter::moduleFolder() {
    return (programFolder() / "../share/flowmere/python").lexically_normal();
}

void Interpreter::setExecutingBlock(std::function<std::string()> executingBlock) {
    m_executingBlock = std::move(executingBlock);
}

std::string Interpreter::executingBlock() const {
    return m_executingBlock ? m_executingBlock() : std::string();
}

void Interpreter::addError(ScriptError error) {
    m_errors.push_back(std::move(error));
}

std::vector<ScriptError> Interpreter::takeErrors() {
    return std::exchange(m_errors, {});
}

void Interpreter::finishTick(std::string const& scriptName) {
    // A process that a script has forked off would go on with the run beside this one, and write to the same files.
    if (::getpid() != m_owner) {
        printError(
            errorLine("", executingBlock(), "a process that the script has forked off comes back, and ends here") +
            "\n");
        ::_exit(kExitFound);
    }
    py::gil_scoped_acquire const lock;
    try {
        py::module_::import("_flowmere_setup").attr("finish_tick")(scriptName);
    } catch (py::error_already_set& problem) {
        // Ctrl-C between two blocks arrives here; anything else is a script that broke what all scripts share.
        if (!problem.matches(PyExc_KeyboardInterrupt))
            addError(errorOf("RuntimeError", problem.what()));
    }
    settleOutput();
    if (m_capture != nullptr)
        if (std::string const fault = m_capture->takeFault(); !fault.empty())
            addError(errorOf("OSError", fault));
}

ScriptError Interpreter::errorOf(std::string const& type, std::string const& text) const {
    ScriptError error;
    error.block = executingBlock();
    error.type = type;
    error.text = text;
    return error;
}

void Interpreter::watchOutput() {
    py::gil_scoped_acquire const lock;
    try {
        py::module_::import("_flowmere_setup").attr("watch_output")();
    } catch (py::error_already_set const& problem) {
        throw Failure("Python", "", problem.what());
    }
}

void Interpreter::captureOutput(bool allToError) {
    if (m_capture != nullptr)
        return;
    watchOutput();
    m_capture = std::make_unique<OutputCapture>(allToError);
}

void Interpreter::labelOutput(std::string const& label) {
    if (m_capture != nullptr)
        m_capture->label(label);
}

std::vector<PrintedText> Interpreter::takePrinted() {
    std::vector<PrintedText> printed = std::exchange(m_printed, {});
    if (m_capture != nullptr)
        for (PrintedText& piece : m_capture->take())
            printed.push_back(std::move(piece));
    return printed;
}

void Interpreter::releaseOutput() {
    m_printed = takePrinted();
    m_capture.reset();
}

void Interpreter::settleOutput() {
    if (m_capture != nullptr)
        m_capture->settle();
}

void Interpreter::orderOutput() {
    if (m_capture != nullptr)
        m_capture->order();
}

void Interpreter::pauseCapture() {
    if (m_capture != nullptr)
        m_capture->pause();
}

void Interpreter::resumeCapture() {
    if (m_capture != nullptr)
        m_capture->resume();
}

void Interpreter::takeSignals() {
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGINT, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

bool Interpreter::interrupted() const {
    return interruptCount > 0;
}

void Interpreter::forgetInterrupt() {
    interruptCount = 0;
}

} // namespace flowmere::host
