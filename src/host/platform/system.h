// What else of the operating system the program uses: clock, environment, the registry's stand-in, loadable
// modules, started programs, the shared text area, interrupts.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

struct LocalTime {
  int year, month, day, hour, minute, second;
};
// SOURCE_DATE_EPOCH (seconds, shown in UTC) takes the clock's place, so that a program can be made again byte
// for byte.
[[nodiscard]] LocalTime localTime();
[[nodiscard]] double steadySeconds();
void sleepMilliseconds(int ms);
[[nodiscard]] std::optional<std::string> environment(const std::string& name);

// The registry stand-in: section and value names in the profile file `tarnex/tarnex.ini` of the user's
// configuration folder, XDG_CONFIG_HOME or ~/.config (TARNEX_CONFIG names another file). Environment
// variables go before it: TARNEX_INSTALL answers for every value `Path`, TARNEX_LANGUAGE for `Language`; an
// empty one counts as not set.
[[nodiscard]] std::string configurationFile();
[[nodiscard]] std::string userDataFolder();  // XDG_DATA_HOME or ~/.local/share, + "/tarnex"
[[nodiscard]] std::optional<std::string> registryValue(std::string_view section, std::string_view name);
// The system's language as the two-letter code and region of LC_ALL, LC_MESSAGES or LANG, such as "zh_TW"; ""
// unknown.
[[nodiscard]] std::string systemLocale();

// A loaded module; unloaded when the value goes.
class LoadedModule {
 public:
  static std::optional<LoadedModule> load(const std::string& path, std::string* cause = nullptr);
  LoadedModule(LoadedModule&&) noexcept;
  LoadedModule& operator=(LoadedModule&&) noexcept;
  ~LoadedModule();
  [[nodiscard]] void* entry(const char* name) const;  // null when the module has none of that name

 private:
  explicit LoadedModule(void* handle) : handle_(handle) {}
  void* handle_ = nullptr;
};

// Shared memory that a started program can read. It is private to this process and to the programs that it is
// handed to (StartedProcess::start), which find it by the path in their environment (TARNEX_TEXT_AREA); so
// two programs at work don't write over each other, and nothing is left behind when one is killed. It starts
// zeroed.
class SharedTextArea {
 public:
  static constexpr std::size_t kSize = 0x7D000;
  static std::optional<SharedTextArea> create(
      std::string_view name);                                  // the name shows in the system's tools alone
  static std::optional<SharedTextArea> openFromEnvironment();  // the started program's side
  SharedTextArea(SharedTextArea&&) noexcept;
  SharedTextArea& operator=(SharedTextArea&&) noexcept;
  ~SharedTextArea();
  [[nodiscard]] char* data() const { return data_; }  // kSize bytes
  [[nodiscard]] int file() const { return fd_; }      // the open file behind it

 private:
  SharedTextArea() = default;
  char* data_ = nullptr;
  int fd_ = -1;
};

// A program started by us. The destructor does not end it.
class StartedProcess {
 public:
  // argv[0] is the program's path (a bare name is searched for as the shell does). Nothing when it can't be
  // started (missing or not executable). `area` is handed on to the program by TARNEX_TEXT_AREA, which is
  // empty without one.
  static std::optional<StartedProcess> start(const std::vector<std::string>& argv,
                                             const SharedTextArea* area = nullptr);
  [[nodiscard]] int wait();  // exit code; -1 when it was ended by a signal
  [[nodiscard]] bool running();

 private:
  explicit StartedProcess(int pid) : pid_(pid) {}
  int pid_ = -1;
  std::optional<int> code_;
};
// Runs to the end, with nothing to read on its standard input: exit code (-1 when ended by a signal) and what
// it printed on stdout. Nothing when it can't be started. Without `output` it prints where we print.
[[nodiscard]] std::optional<int> runProcess(const std::vector<std::string>& argv,
                                            std::string* output = nullptr);

[[nodiscard]] bool isTerminal(int fd);
// Waits until something can be read there or its end is reached. False: an interrupt came, before or
// meanwhile.
[[nodiscard]] bool waitForTyping(int fd);
// Letters typed and shown are those of the user's character set from now on; numbers are untouched.
void useTypedLetters();
struct TerminalSize {
  int columns = 80, lines = 24;
};  // the usual ones when unknown
[[nodiscard]] TerminalSize terminalSize();
[[nodiscard]] int terminalWidth();  // columns; 80 when unknown

// Ctrl-C sets a flag that commands look at; a second one within a second ends the program.
void catchInterrupts();
[[nodiscard]] bool interruptPending();
void clearInterrupt();

}  // namespace tarnex
