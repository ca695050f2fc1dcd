// Files: the old or the new and never half, paths whatever their case, trees copied once.
#include "host/platform/files.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

namespace tarnex {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Files : public ::testing::Test {
 protected:
  ~Files() override { fs::remove_all(folder_); }
  [[nodiscard]] std::string in(const std::string& name) const { return folder_ + "/" + name; }
  void put(const std::string& name, std::string_view bytes) const {
    ASSERT_FALSE(writeFileAtomically(in(name), bytes));
  }
  [[nodiscard]] std::string get(const std::string& name) const {
    const auto bytes = readFile(in(name));
    return bytes ? *bytes.value : "<" + bytes.error.cause + ">";
  }
  std::string folder_ = temporaryFolder("tarnex-files-");
};

// What the child does in a process of its own; its exit code, or minus the signal that ended it.
template <class Work>
int inChild(Work work) {
  const pid_t pid = fork();
  if (pid == 0) _exit(work());
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST_F(Files, WrittenIsReadAndNothingElseIsLeft) {
  std::string bytes(3'000'000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7);
  put("big", bytes);
  EXPECT_EQ(get("big"), bytes);
  put("empty", "");
  EXPECT_EQ(get("empty"), "");
  put("empty", "no more");
  EXPECT_EQ(get("empty"), "no more");
  put(std::string(250, 'n'), "long name");
  EXPECT_THAT(folderEntries(folder_), ElementsAre("big", "empty", std::string(250, 'n')));
}

TEST_F(Files, ReadingSaysWhyNot) {
  EXPECT_EQ(readFile(in("missing")).error.text(), in("missing") + ": No such file or directory");
  EXPECT_EQ(readFile(folder_).error.cause, "Is a directory");
}

TEST_F(Files, ReplacingKeepsModeAndFollowsLinks) {
  put("real", "old");
  chmod(in("real").c_str(), 0640);
  fs::create_symlink("real", in("link"));
  fs::create_symlink("not yet", in("dangling"));
  put("link", "new");
  put("dangling", "made");
  EXPECT_EQ(get("real"), "new");
  EXPECT_TRUE(fs::is_symlink(in("link")));
  struct stat info {};
  ASSERT_EQ(stat(in("real").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  EXPECT_EQ(get("not yet"), "made");
}

TEST_F(Files, FailedWriteLeavesTheOldAndNoTemporary) {
  put("program", "old");
  const int code = inChild([this] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100'000, 100'000};  // stands for a full disk
    setrlimit(RLIMIT_FSIZE, &limit);
    const auto error = writeFileAtomically(in("program"), std::string(1'000'000, 'x'));
    return error && error->cause == "File too large" ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(get("program"), "old");

  AtomicFile file(in("turned into a folder"));
  file.write("text");
  fs::create_directories(in("turned into a folder/inner"));
  const auto error = file.commit();
  ASSERT_TRUE(error);
  EXPECT_THAT(error->cause, HasSubstr("irectory"));
  EXPECT_TRUE(file.commit()) << "a second commit must not claim success";

  { AtomicFile(in("program")).write("dropped without commit"); }
  EXPECT_EQ(get("program"), "old");
  EXPECT_EQ(writeFileAtomically("/dev/full", "x")->cause, "No space left on device");
  EXPECT_EQ(writeFileAtomically(in("no/such/folder"), "x")->cause, "No such file or directory");
  EXPECT_EQ(writeFileAtomically(folder_, "x")->cause, "Is a directory");
  EXPECT_TRUE(writeFileAtomically("", "x"));
  EXPECT_THAT(folderEntries(folder_), ElementsAre("program", "turned into a folder"));
}

TEST_F(Files, WriteProtectedFileIsRefused) {
  put("kept", "old");
  chmod(in("kept").c_str(), 0444);
  const int code = inChild([this] {
    chmod(folder_.c_str(), 0777);
    if (getuid() == 0 && setuid(65534) != 0) return 2;  // the administrator may write everything
    const auto error = writeFileAtomically(in("kept"), "new");
    return error && error->cause == "Permission denied" ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(get("kept"), "old");
}

TEST_F(Files, KilledAtAnyMomentLeavesOneOfTheTwo) {
  const std::string even(400'000, 'e'), odd(700'000, 'o');
  put("program", even);
  for (int i = 0; i < 12; ++i) {
    const pid_t pid = fork();
    if (pid == 0) {
      for (int turn = 0;; ++turn)
        if (writeFileAtomically(in("program"), turn % 2 ? even : odd)) _exit(1);
    }
    usleep(2000 + 3700 * i);
    kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    const auto found = get("program");
    ASSERT_TRUE(found == even || found == odd) << found.size() << " bytes";
  }
  for (const auto& name : folderEntries(folder_)) {
    const bool temporary = name.rfind(".program.", 0) == 0 && name.size() == 9 + 16 + 4;
    EXPECT_TRUE(name == "program" || temporary) << name;
  }
}

TEST_F(Files, SystemPathsAreFoundWhateverTheirCase) {
  ASSERT_FALSE(makeFolders(in("MZS/Post A")));
  put("MZS/Post A/Machine.PC", "x");
  ASSERT_FALSE(makeFolders(in("kzs")));
  ASSERT_FALSE(makeFolders(in("KZS")));
  EXPECT_EQ(realPath(in("mzs\\POST a\\machine.pc")), in("MZS/Post A/Machine.PC"));
  EXPECT_EQ(realPath(in("KZS\\new.ini")), in("KZS/new.ini"));
  EXPECT_EQ(realPath(in("kzs\\new.ini")), in("kzs/new.ini"));
  EXPECT_EQ(realPath(in("Kzs\\new.ini")), in("KZS/new.ini"));  // two fit: the first in byte order
  EXPECT_EQ(realPath(in("mzs\\missing\\Deeper\\")), in("MZS/missing/Deeper/"));
  EXPECT_EQ(realPath(""), "");
  EXPECT_EQ(fileNameOf("a\\b/c.3b"), "c.3b");
  EXPECT_EQ(fileNameOf("c.3b"), "c.3b");
}

TEST_F(Files, TreeIsCopiedOnceAndWhatIsThereIsKept) {
  ASSERT_FALSE(makeFolders(in("from/deep/er")));
  put("from/deep/er/a", "shipped");
  put("from/b", "shipped");
  chmod(in("from/b").c_str(), 0555);
  fs::create_directory_symlink(in("from"), in("from/deep/itself"));
  ASSERT_FALSE(makeFolders(in("to")));
  put("to/b", "the user's");
  EXPECT_EQ(copyTree(in("from"), in("to"))->cause, "Too many levels of symbolic links");
  fs::remove(in("from/deep/itself"));
  fs::remove_all(in("to/deep"));
  EXPECT_FALSE(copyTree(in("from"), in("to")));
  EXPECT_EQ(get("to/deep/er/a"), "shipped");
  EXPECT_EQ(get("to/b"), "the user's");
  EXPECT_EQ(copyTree(in("nowhere"), in("to"))->cause, "No such file or directory");
  EXPECT_FALSE(removeFile(in("to/b")));
  EXPECT_FALSE(removeFile(in("to/b")));
  EXPECT_TRUE(removeFile(in("to/deep")));
}

TEST_F(Files, FoldersThatCannotBe) {
  put("file", "x");
  EXPECT_EQ(makeFolders(in("file/inner"))->cause, "Not a directory");
  EXPECT_EQ(makeFolders(in("file"))->path, in("file"));
  EXPECT_THAT(folderEntries(in("missing")), ElementsAre());
  EXPECT_EQ(absolutePath("./a/b"), currentFolder() + "/a/b");
  EXPECT_EQ(absolutePath("/a"), "/a");
}

}  // namespace
}  // namespace tarnex
