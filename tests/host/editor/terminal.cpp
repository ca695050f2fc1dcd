// A person at a terminal: prompts, completion, the meter line, Ctrl-C, history. And interrupts of scripts.
#include "host/editor/terminal.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <thread>

#include "host/platform/files.h"
#include "host/platform/system.h"
#include "session.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;

// The program that the person uses.
int terminalProgram(const std::string& historyFile) {
  setenv("TERM", "xterm", 1);
  catchInterrupts();
  AcEditor ed(std::make_unique<StreamSink>());
  ed.addCommand({"QV", "PICK", "PICK", 0,
                 [&ed] {
                   ed.acutPrintf("\nMID of ");
                   ed.acedInitGet(128, "Undo Done");
                   const auto answer = ed.acedDragGen({}, "", true);
                   ed.acutPrintf("got %d %s\n", static_cast<int>(answer.reply), ed.acedGetInput().c_str());
                 },
                 ""});
  ed.addCommand({"QV", "WORK", "WORK", 0,
                 [&ed] {
                   ed.acedSetStatusBarProgressMeter("Working", 0, 4);
                   for (int i = 0; i < 200; ++i) {
                     sleepMilliseconds(50);
                     ed.acedSetStatusBarProgressMeterPos(1);
                   }
                   ed.acutPrintf("never done\n");
                 },
                 ""});
  ed.pushInput(terminalInput(historyFile));
  return ed.runLoop();
}

// What a command left on the line is shown again by the prompt, which reads keys one by one from then on.
const std::string kPrompt = hasLineEditor() ? "MID of \rMID of " : "MID of ";

class Person {
 public:
  explicit Person(const std::string& historyFile) {
    child_ = forkpty(&fd_, nullptr, nullptr, nullptr);
    if (child_ == 0) _exit(terminalProgram(historyFile));
  }
  ~Person() {
    if (fd_ >= 0) close(fd_);
  }
  // Waits until the words stand on the screen (at most 10 s), then types.
  void seesThenTypes(const std::string& words, const std::string& keys) {
    waitFor(words);
    const auto at = screen_.find(words);
    EXPECT_NE(at, std::string::npos) << "\"" << words << "\" isn't in \"" << screen_ << "\"";
    screen_.erase(0, at == std::string::npos ? 0 : at + words.size());
    sleepMilliseconds(
        100);  // a person types after the prompt stands; the terminal changes its mode just then
    ASSERT_EQ(write(fd_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }
  int leaves() {
    waitFor("\x01");  // to the end of the output
    int status = 0;
    bool gone = false;
    for (int i = 0; i < 50 && !gone; ++i) {
      gone = waitpid(child_, &status, WNOHANG) != 0;
      if (!gone) sleepMilliseconds(100);
    }
    if (!gone) {  // it hangs; nothing is left running
      kill(child_, SIGKILL);
      waitpid(child_, &status, 0);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  void waitFor(const std::string& words) {
    const double end = steadySeconds() + 10;
    while (screen_.find(words) == std::string::npos && steadySeconds() < end) {
      pollfd ready{fd_, POLLIN, 0};
      if (poll(&ready, 1, 100) <= 0) continue;
      char buffer[4096];
      const ssize_t n = read(fd_, buffer, sizeof buffer);
      if (n <= 0) return;
      screen_.append(buffer, static_cast<std::size_t>(n));
    }
  }
  int fd_ = -1;
  pid_t child_ = -1;
  std::string screen_;
};

TEST(Terminal, APersonAtWork) {
  const std::string folder = temporaryFolder("tarnex-terminal-"), history = folder + "/new/history";
  {
    Person person(history);
    person.seesThenTypes("Command: ", hasLineEditor() ? "PI\t\r" : "PICK\r");
    person.seesThenTypes(kPrompt, hasLineEditor() ? "und\t\r" : "undo\r");
    person.seesThenTypes("got -5005 Undo\r\n", "");
    person.seesThenTypes("Command: ", "WORK\r");
    person.seesThenTypes("\rWorking 25%", "\x03");
    person.seesThenTypes("*Cancel*\r\n", "");
    person.seesThenTypes("Command: ", "PICK\r");
    person.seesThenTypes(kPrompt, "\x03");
    person.seesThenTypes("*Cancel*\r\n", "");
    person.seesThenTypes("Command: ", "quit\r");
    EXPECT_EQ(person.leaves(), 1);
  }
  if (hasLineEditor()) {
    const auto kept = readFile(history);
    ASSERT_TRUE(kept);
    EXPECT_THAT(*kept.value, HasSubstr("WORK"));
    Person again(history);
    again.seesThenTypes("Command: ", "\x1b[A\x1b[A\r");  // two lines up: PICK
    again.seesThenTypes(kPrompt, "1,2\r");
    again.seesThenTypes("got 5100", "");
    again.seesThenTypes("Command: ", "\x04");  // the end of the input
    EXPECT_EQ(again.leaves(), 0);
  }
  (void)removeFile(history);
  (void)removeFile(folder + "/new");
  (void)removeFile(folder);
}

TEST(Interrupts, AnInterruptUndoesTheCommandAndDropsTheScript) {
  Session s;
  int told = 0;
  s.ed.afterUndo.push_back([&] { ++told; });
  s.ed.addCommand({"QV", "WORK", "", 0,
                   [&] {
                     s.circle({1, 1}, 1);
                     (void)s.ed.acedSetVar("OSMODE", 1LL);
                     s.ed.database().ucsorg = {5, 5, 0};
                     s.ed.acedSetStatusBarProgressMeter("Working", 0, 10);
                     std::raise(SIGINT);
                     s.ed.acedSetStatusBarProgressMeterPos(5);
                     FAIL() << "went on";
                   },
                   ""});
  catchInterrupts();
  s.run({"point 0,0"});
  const auto out = s.runScript("a.scr", "WORK\ncircle 0,0 1\n");
  EXPECT_THAT(out, HasSubstr("*Cancel*\n"));
  EXPECT_EQ(s.all().size(), 1u);
  EXPECT_EQ(s.status, 1);
  EXPECT_EQ(told, 1);
  EXPECT_EQ(s.ed.intVar("OSMODE"), 0);
  EXPECT_EQ(s.ed.database().ucsorg, AcGePoint3d{});
  s.run({"u"});  // the point's step, not the rolled back one
  EXPECT_TRUE(s.all().empty());
  EXPECT_FALSE(interruptPending());
}

TEST(Interrupts, AnInterruptEndsAWait) {
  Session s;
  catchInterrupts();
  std::thread person([] {
    sleepMilliseconds(60);
    std::raise(SIGINT);
  });
  const double from = steadySeconds();
  EXPECT_THROW(s.ed.Sleep(60'000), CommandInterrupted);
  person.join();
  EXPECT_LT(steadySeconds() - from, 10);
  EXPECT_FALSE(interruptPending());
  s.ed.setPaced(false);
  std::raise(SIGINT);
  EXPECT_THROW(s.ed.Sleep(0), CommandInterrupted) << "also where nobody waits";
}

}  // namespace
}  // namespace tarnex
