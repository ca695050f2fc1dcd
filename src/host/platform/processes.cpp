// Programs started by us, the terminal, and Ctrl-C.
// Knows no program by name.
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstring>
#include <ctime>

#include "host/platform/format.h"
#include "host/platform/system.h"

namespace tarnex {
namespace {

constexpr std::size_t kMostOutput = std::size_t{1} << 28;  // a program may never stop printing
constexpr std::string_view kAreaVariable = "TARNEX_TEXT_AREA=";

// What the child is to see: its arguments, its environment, its files.
class Launch {
 public:
  explicit Launch(const std::vector<std::string>& argv) {
    for (const std::string& arg : argv) arguments_.push_back(const_cast<char*>(arg.c_str()));
    arguments_.push_back(nullptr);
    posix_spawn_file_actions_init(&files_);
    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setflags(&attributes_, flags_);
  }
  Launch(const Launch&) = delete;
  Launch& operator=(const Launch&) = delete;
  ~Launch() {
    posix_spawn_file_actions_destroy(&files_);
    posix_spawnattr_destroy(&attributes_);
  }

  // The area goes along as an open file, so it lives as long as either of the two programs. A process group
  // of its own keeps a Ctrl-C meant for us from a program that holds the only copy of a text.
  void handOn(int areaFile) {
    posix_spawn_file_actions_adddup2(&files_, areaFile, areaFile);
    area_ = std::string(kAreaVariable) + "/proc/self/fd/" + std::to_string(areaFile);
    flags_ = static_cast<short>(flags_ | POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setflags(&attributes_, flags_);
    posix_spawnattr_setpgroup(&attributes_, 0);
  }
  // An empty variable tells that it was we who started it, without a text.
  void handOnNothing() { area_ = kAreaVariable; }
  void connect(int file, int as) { posix_spawn_file_actions_adddup2(&files_, file, as); }
  void closeInput() { posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0); }

  // The child's id, -1 when it can't be started.
  int run() {
    if (arguments_.size() < 2) return -1;
    std::vector<char*> variables;
    for (char** variable = environ; variable && *variable; ++variable)
      if (std::strncmp(*variable, kAreaVariable.data(), kAreaVariable.size()) != 0)
        variables.push_back(*variable);
    if (!area_.empty()) variables.push_back(area_.data());
    variables.push_back(nullptr);
    pid_t pid = -1;
    const int code =
        posix_spawnp(&pid, arguments_[0], &files_, &attributes_, arguments_.data(), variables.data());
    return code == 0 ? pid : -1;
  }

 private:
  std::vector<char*> arguments_;
  std::string area_;
  short flags_ = POSIX_SPAWN_SETSIGMASK;
  posix_spawn_file_actions_t files_{};
  posix_spawnattr_t attributes_{};
};

int exitCode(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int waitFor(int pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0)
    if (errno != EINTR) return -1;
  return exitCode(status);
}

void readAll(int fd, std::string& out) {
  char room[1 << 14];
  for (;;) {
    const ssize_t count = read(fd, room, sizeof room);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    if (out.size() < kMostOutput) out.append(room, count);
  }
}

// A signal handler reaches nothing but what has a fixed place; these two are all that it keeps.
std::atomic<bool> interrupted{false};
std::atomic<long long> lastInterrupt{0};  // milliseconds of the steady clock
static_assert(std::atomic<long long>::is_always_lock_free);

void onInterrupt(int signal) {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const long long ms = now.tv_sec * 1000LL + now.tv_nsec / 1000000;
  if (interrupted && ms - lastInterrupt < 1000) {
    std::signal(signal, SIG_DFL);
    raise(signal);
  }
  interrupted = true;
  lastInterrupt = ms;
}

}  // namespace

std::optional<StartedProcess> StartedProcess::start(const std::vector<std::string>& argv,
                                                    const SharedTextArea* area) {
  Launch launch(argv);
  if (area) {
    launch.handOn(area->file());
  } else {
    launch.handOnNothing();
  }
  const int pid = launch.run();
  return pid < 0 ? std::nullopt : std::optional<StartedProcess>(StartedProcess(pid));
}

int StartedProcess::wait() {
  if (!code_) code_ = waitFor(pid_);
  return *code_;
}

bool StartedProcess::running() {
  if (code_) return false;
  int status = 0;
  const int answer = waitpid(pid_, &status, WNOHANG);
  if (answer == 0 || (answer < 0 && errno == EINTR)) return true;
  code_ = answer == pid_ ? exitCode(status) : -1;
  return false;
}

std::optional<int> runProcess(const std::vector<std::string>& argv, std::string* output) {
  Launch launch(argv);
  launch.closeInput();
  int ends[2] = {-1, -1};
  if (output) {
    output->clear();
    if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
    launch.connect(ends[1], STDOUT_FILENO);
  }
  const int pid = launch.run();
  if (output) {
    close(ends[1]);
    if (pid >= 0) readAll(ends[0], *output);
    close(ends[0]);
  }
  return pid < 0 ? std::nullopt : std::optional<int>(waitFor(pid));
}

bool isTerminal(int fd) {
  return isatty(fd) == 1;
}

TerminalSize terminalSize() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0)
    return {size.ws_col, size.ws_row};
  TerminalSize told;
  const auto take = [](const char* name, int& value) {
    long long number = 0;
    if (auto text = environment(name); text && parseInteger(*text, number) && number > 0 && number < 10000)
      value = static_cast<int>(number);
  };
  take("COLUMNS", told.columns);
  take("LINES", told.lines);
  return told;
}

int terminalWidth() {
  return terminalSize().columns;
}

bool waitForTyping(int fd) {
  // Looks again from time to time: a signal that comes just before the call doesn't end it.
  pollfd typed{fd, POLLIN, 0};
  while (!interruptPending())
    if (poll(&typed, 1, 100) > 0) return true;
  return false;
}

void useTypedLetters() {
  std::setlocale(LC_CTYPE, "");
}

void catchInterrupts() {
  struct sigaction action {};
  action.sa_handler = onInterrupt;  // without SA_RESTART: a prompt that waits for a line comes back
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
}

bool interruptPending() {
  return interrupted;
}

void clearInterrupt() {
  interrupted = false;
}

}  // namespace tarnex
