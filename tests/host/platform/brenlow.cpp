// The NC editor's stand-in, run as the built program: hand-over, plain output, pages on a terminal.
#include <gmock/gmock.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "host/platform/files.h"
#include "host/platform/system.h"

namespace tarnex {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

const std::string kBrenlow = TARNEX_BINARY_DIR "/bin/brenlow";

class Brenlow : public ::testing::Test {
 protected:
  ~Brenlow() override { std::filesystem::remove_all(folder_); }
  void put(std::string_view bytes) const { ASSERT_FALSE(writeFileAtomically(file_, bytes)); }
  [[nodiscard]] std::string get() const { return readFile(file_).value.value_or("<missing>"); }
  [[nodiscard]] int handOver(std::string_view text, const std::string& file) const {
    auto area = SharedTextArea::create("test");
    std::copy(text.begin(), text.end(), area->data());
    auto editor = StartedProcess::start({kBrenlow, file}, &*area);
    return editor ? editor->wait() : -2;
  }
  // With a variable that names an area which isn't there.
  [[nodiscard]] int withoutArea(const std::string& path) const {
    std::string output;
    const auto code = runProcess({"/usr/bin/env", "TARNEX_TEXT_AREA=" + path, kBrenlow, file_}, &output);
    EXPECT_EQ(output, "");
    return *code;
  }
  std::string folder_ = temporaryFolder("tarnex-brenlow-");
  std::string file_ = folder_ + "/plate.3b";
};

TEST_F(Brenlow, SavesTheTextHandedOver) {
  put("");
  EXPECT_EQ(handOver("N   1: B  1\nN   2: DD", file_), 0);
  EXPECT_EQ(get(), "N   1: B  1\nN   2: DD");
  const std::string full(SharedTextArea::kSize - 1, 'B');
  EXPECT_EQ(handOver(full, file_), 0);
  EXPECT_EQ(get(), full);
  EXPECT_EQ(handOver("text", folder_ + "/no/such.3b"), 1);
  EXPECT_EQ(handOver("text", ""), 0);
  EXPECT_EQ(folderEntries(folder_).size(), 1u);
}

TEST_F(Brenlow, WithoutATextTheFileIsLeftAlone) {
  put("the only copy");
  EXPECT_EQ(handOver("", file_), 0);
  EXPECT_EQ(handOver(std::string(SharedTextArea::kSize, 'x'), file_),
            1);  // no zero: nobody knows where it ends
  EXPECT_EQ(withoutArea(folder_ + "/none"), 0);
  EXPECT_EQ(withoutArea(""), 0);
  EXPECT_EQ(get(), "the only copy");
  put("");
  EXPECT_EQ(handOver("", file_), 1);
  EXPECT_EQ(withoutArea(folder_ + "/none"), 1);
  EXPECT_EQ(withoutArea(""), 1);
  EXPECT_EQ(get(), "");
}

TEST_F(Brenlow, PrintsAsItStandsWhereThereIsNoTerminal) {
  put("N   1: B  1\r\n\x1B[2J\xFF");
  std::string output;
  EXPECT_THAT(runProcess({kBrenlow, file_}, &output), Optional(0));
  EXPECT_EQ(output, get());
  EXPECT_THAT(runProcess({kBrenlow, "--help"}, &output), Optional(0));
  EXPECT_THAT(output, HasSubstr("usage: brenlow FILE"));
  EXPECT_THAT(runProcess({kBrenlow}, &output), Optional(2));
  EXPECT_THAT(runProcess({kBrenlow, file_, file_}, &output), Optional(2));
  EXPECT_THAT(runProcess({kBrenlow, "--nonsense"}, &output), Optional(2));
  EXPECT_THAT(runProcess({kBrenlow, folder_ + "/none"}, &output), Optional(3));
  EXPECT_THAT(runProcess({kBrenlow, folder_}, &output), Optional(3));
}

// What stands on a terminal of 40 by 5 after `typed`, and that the program ended well.
std::string onTerminal(const std::string& file, const std::string& typed) {
  winsize size{};
  size.ws_col = 40;
  size.ws_row = 5;
  int master = -1;
  const pid_t pid = forkpty(&master, nullptr, nullptr, &size);
  if (pid == 0) {
    execl(kBrenlow.c_str(), kBrenlow.c_str(), file.c_str(), nullptr);
    _exit(127);
  }
  EXPECT_EQ(write(master, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
  std::string screen;
  char room[4096];
  for (ssize_t count; (count = read(master, room, sizeof room)) > 0;) screen.append(room, count);
  int status = 0;
  waitpid(pid, &status, 0);
  close(master);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  return screen;
}

TEST_F(Brenlow, PagesOnATerminal) {
  std::string text;
  for (int i = 1; i <= 100; ++i) text += "N " + std::to_string(i) + (i == 60 ? " Gxl1\n" : " block\r\n");
  put(text);
  const auto first = onTerminal(file_, "q\n");
  EXPECT_THAT(first,
              HasSubstr("     1  N 1 block\r\n     2  N 2 block\r\n     3  N 3 block\r\n     4  N 4 block"));
  EXPECT_THAT(first, HasSubstr("plate.3b 4/100"));
  EXPECT_THAT(first, Not(HasSubstr("N 5 ")));
  EXPECT_THAT(onTerminal(file_, "\nq\n"), HasSubstr("     8  N 8 block"));
  const auto found = onTerminal(file_, "/GXL\nn\nq\n");
  EXPECT_THAT(found, HasSubstr("    60  N 60 Gxl1\r\n    61  N 61 block"));
  EXPECT_THAT(found, HasSubstr("    63  N 63 block"));
  EXPECT_THAT(onTerminal(file_, "/nowhere\nq\n"), HasSubstr("not found: nowhere"));
  EXPECT_THAT(onTerminal(file_, "G\n\nb\nq\n"), HasSubstr("    93  N 93 block"));
  EXPECT_THAT(onTerminal(file_, "99999999\n0\n100\nq\n"), HasSubstr("   100  N 100 block"));
}

TEST_F(Brenlow, TerminalIsSafeFromTheFile) {
  put("\x1B[2Jclear\x07\n\xC2\x9B"
      "1m\n\xD6\xB8\xC1\xEE\n" +
      std::string(200, 'w') + "\n");
  const auto screen = onTerminal(file_, "q\n");
  EXPECT_THAT(screen, Not(HasSubstr("\x1B")));
  EXPECT_THAT(screen, HasSubstr(".[2Jclear.\r\n     2  .1m\r\n     3  指令\r\n"));
  EXPECT_THAT(screen,
              HasSubstr("     4  " + std::string(32, 'w') + "\r\n"));  // 40 columns less the number's 8
  put("");
  EXPECT_THAT(onTerminal(file_, "\n/x\nG\nb\n5\nq\n"), HasSubstr("plate.3b 0/0"));
}

}  // namespace
}  // namespace tarnex
