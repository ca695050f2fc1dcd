// Clock, registry stand-in, started programs, the text area, interrupts.
#include "host/platform/system.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "host/platform/files.h"

namespace tarnex {
namespace {

using ::testing::Optional;

// Environment variables for the length of a test; an empty optional takes one away.
class Surroundings : public ::testing::Test {
 protected:
  ~Surroundings() override {
    for (auto& [name, value] : before_) change(name, value);
    std::filesystem::remove_all(folder_);
  }
  void surround(const std::string& name, std::optional<std::string> value) {
    before_.emplace(before_.begin(), name, environment(name));
    change(name, value);
  }
  std::string folder_ = temporaryFolder("tarnex-system-");

 private:
  static void change(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }
  std::vector<std::pair<std::string, std::optional<std::string>>> before_;
};

TEST_F(Surroundings, FixedDateTakesTheClocksPlace) {
  surround("TZ", "America/New_York");
  surround("SOURCE_DATE_EPOCH", "951826154");  // 29 February 2000, 12:09:14 UTC
  const auto t = localTime();
  EXPECT_EQ((std::vector{t.year, t.month, t.day, t.hour, t.minute, t.second}),
            (std::vector{2000, 2, 29, 12, 9, 14}));
  surround("SOURCE_DATE_EPOCH", "9223372036854775807");  // no year that an int holds
  EXPECT_GE(localTime().year, 2024);
}

TEST_F(Surroundings, RegistryIsAFileOfTheUser) {
  surround("TARNEX_CONFIG", std::nullopt);
  surround("TARNEX_INSTALL", std::nullopt);
  surround("TARNEX_LANGUAGE", "");
  surround("XDG_CONFIG_HOME", folder_);
  EXPECT_EQ(configurationFile(), folder_ + "/tarnex/tarnex.ini");
  ASSERT_FALSE(makeFolders(folder_ + "/tarnex"));
  const std::string longPath = "/opt/" + std::string(300, 'x');
  ASSERT_FALSE(writeFileAtomically(configurationFile(),
                                   "[Software\\KESTRIX]\nLanguage=3\n[Software\\KESTRIX\\Vornline]\n"
                                   "Path=" +
                                       longPath + "\n"));
  EXPECT_THAT(registryValue("software\\kestrix", "language"), Optional(std::string("3")));
  EXPECT_THAT(registryValue("Software\\KESTRIX\\Vornline", "Path"), Optional(longPath));
  EXPECT_EQ(registryValue("Software\\KESTRIX", "Path"), std::nullopt);
  surround("TARNEX_INSTALL", "/elsewhere");
  surround("TARNEX_LANGUAGE", "2");
  EXPECT_THAT(registryValue("Software\\KESTRIX\\Vornline", "Path"), Optional(std::string("/elsewhere")));
  EXPECT_THAT(registryValue("Software\\KESTRIX", "Language"), Optional(std::string("2")));
  surround("TARNEX_LANGUAGE", std::nullopt);
  surround("TARNEX_CONFIG", folder_ + "/none.ini");
  EXPECT_EQ(registryValue("Software\\KESTRIX", "Language"), std::nullopt);
}

TEST_F(Surroundings, FoldersAndLocaleFollowTheEnvironment) {
  surround("HOME", "/home/shop");
  surround("XDG_DATA_HOME", "relative/counts/as/unset");
  EXPECT_EQ(userDataFolder(), "/home/shop/.local/share/tarnex");
  surround("XDG_DATA_HOME", "/data");
  EXPECT_EQ(userDataFolder(), "/data/tarnex");
  surround("LC_ALL", "");
  surround("LC_MESSAGES", std::nullopt);
  surround("LANG", "zh_TW.Big5@x");
  EXPECT_EQ(systemLocale(), "zh_TW");
  surround("LC_MESSAGES", "C.UTF-8");
  EXPECT_EQ(systemLocale(), "");
}

TEST(LoadedModule, SaysWhatIsMissing) {
  std::string cause;
  EXPECT_FALSE(LoadedModule::load("no-such-module.so", &cause));
  EXPECT_THAT(cause, ::testing::HasSubstr("no-such-module.so"));
  // The room's own library is a module like any other.
  const auto module = LoadedModule::load(TARNEX_BINARY_DIR "/lib/libtarnex_platform.so", &cause);
  ASSERT_TRUE(module) << cause;
  EXPECT_EQ(module->entry("no_such_entry"), nullptr);
}

TEST(RunProcess, CodeOutputAndFailure) {
  std::string output;
  EXPECT_THAT(runProcess({"/bin/sh", "-c", "cat; printf 'a b\\n'; exit 7"}, &output), Optional(7));
  EXPECT_EQ(output, "a b\n");
  EXPECT_THAT(runProcess({"/bin/sh", "-c", "test \"$1\" = 'x y$HOME'", "sh", "x y$HOME"}), Optional(0));
  EXPECT_THAT(runProcess({"/bin/sh", "-c", "kill -9 $$"}), Optional(-1));
  EXPECT_THAT(runProcess({"/bin/sh", "-c", "head -c 3000000 /dev/zero"}, &output), Optional(0));
  EXPECT_EQ(output.size(), 3'000'000u);
  EXPECT_EQ(runProcess({"/no/such/program"}, &output), std::nullopt);
  EXPECT_EQ(runProcess({TARNEX_SOURCE_DIR "/CMakeLists.txt"}, &output), std::nullopt);
  EXPECT_EQ(runProcess({}), std::nullopt);
}

TEST(StartedProcess, RunsBesideUs) {
  auto process = StartedProcess::start({"/bin/sh", "-c", "sleep 0.2; exit 3"});
  ASSERT_TRUE(process);
  EXPECT_TRUE(process->running());
  EXPECT_EQ(process->wait(), 3);
  EXPECT_EQ(process->wait(), 3);
  EXPECT_FALSE(process->running());
}

TEST_F(Surroundings, TextAreaReachesOnlyTheProgramItIsHandedTo) {
  auto first = SharedTextArea::create("first"), second = SharedTextArea::create("second");
  ASSERT_TRUE(first && second);
  std::strcpy(first->data(), "N   1: B 1");
  std::strcpy(second->data(), "other");
  second->data()[SharedTextArea::kSize - 1] = 'z';
  const std::string out = folder_ + "/seen";
  const std::string script = "head -c 10 \"${TARNEX_TEXT_AREA:-/dev/null}\" > " + out;
  const auto seen = [&](const SharedTextArea* area) {
    EXPECT_EQ(StartedProcess::start({"/bin/sh", "-c", script}, area)->wait(), 0);
    return *readFile(out).value;
  };
  EXPECT_EQ(seen(&*first), "N   1: B 1");
  EXPECT_EQ(seen(&*second), std::string("other\0\0\0\0\0", 10));
  surround("TARNEX_TEXT_AREA", "/proc/self/fd/99");
  EXPECT_EQ(seen(nullptr), "");
}

TEST_F(Surroundings, TextAreaOfTheEnvironment) {
  surround("TARNEX_TEXT_AREA", std::nullopt);
  EXPECT_FALSE(SharedTextArea::openFromEnvironment());
  surround("TARNEX_TEXT_AREA", folder_ + "/area");
  EXPECT_FALSE(SharedTextArea::openFromEnvironment());
  ASSERT_FALSE(writeFileAtomically(folder_ + "/area", "too short to be mapped whole"));
  EXPECT_FALSE(SharedTextArea::openFromEnvironment());
  ASSERT_FALSE(writeFileAtomically(folder_ + "/area", std::string(SharedTextArea::kSize, 'x')));
  const auto area = SharedTextArea::openFromEnvironment();
  ASSERT_TRUE(area);
  EXPECT_EQ(area->data()[SharedTextArea::kSize - 1], 'x');
}

TEST(Interrupts, FirstSetsTheFlagSecondEnds) {
  const pid_t pid = fork();
  if (pid == 0) {
    catchInterrupts();
    raise(SIGINT);
    if (!interruptPending()) _exit(1);
    clearInterrupt();
    if (interruptPending()) _exit(2);
    raise(SIGINT);  // the first was dealt with: this one is a first again
    if (!interruptPending()) _exit(3);
    raise(SIGINT);
    _exit(4);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status)) << WEXITSTATUS(status);
  EXPECT_EQ(WTERMSIG(status), SIGINT);
}

}  // namespace
}  // namespace tarnex
