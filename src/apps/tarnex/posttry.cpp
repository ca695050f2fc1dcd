// A post tried out.
// Knows where programs are kept; how they are made, the job knows.
#include "apps/tarnex/posttry.h"

#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/tarnex/jobiso.h"
#include "exchange/programdiff.h"
#include "frame/cataloglanguage.h"
#include "frame/folders.h"
#include "host/platform/codepage.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "machining/machines.h"

namespace tarnex {

namespace {

constexpr std::string_view kSample = "samples\\plate.dxf";

// Tells drawings of one name in several folders apart (FNV-1a).
std::string shortHash(std::string_view text) {
  std::uint32_t hash = 2166136261u;
  for (char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  return formatted("%08x", hash);
}

std::string withoutExtension(const std::string& name) {
  const auto dot = name.rfind('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

// A folder that is gone with its owner.
class ScratchFolder {
 public:
  ScratchFolder() : path_(temporaryFolder("tarnex-try")) {}
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() { (void)removeTree(path_); }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

struct Outcome {
  int exitCode = kDone;
  std::string failure;  // a sentence; empty when the program stands
  std::string drawing, kept;
  bool isFirst = false;
  std::string program;  // UTF-8
  long lines = 0;
  ProgramDiff diff;
  std::vector<std::string> warnings;
};

class PostTry {
 public:
  explicit PostTry(const PostTryOptions& options) : options_(options), install_(installFolder()) {}

  Outcome run() {
    std::string error;
    if (!parseMachine(options_.machine, machine_, error)) return failed(kUsage, error);
    out_.drawing = options_.drawing;
    if (out_.drawing.empty()) out_.drawing = realPath(dataFile(install_, kSample));
    if (!fileExists(out_.drawing)) return failed(kUnreadable, out_.drawing + ": there is no such drawing");
    out_.kept = realPath(keptPath());
    if (!write()) return out_;
    compare();
    return out_;
  }

 private:
  Outcome failed(int exitCode, std::string why) {
    out_.exitCode = exitCode;
    out_.failure = std::move(why);
    return out_;
  }

  // Outside the machines' folders, which every job copies. The sample has its plain name.
  [[nodiscard]] std::string keptPath() const {
    std::string name = withoutExtension(fileNameOf(out_.drawing));
    if (!options_.drawing.empty()) name += "-" + shortHash(absolutePath(out_.drawing));
    return install_ + "\\TRY\\" + machine_.folder + "\\" + machine_.name + "\\" + name + ".iso";
  }

  bool write() {
    JobIsoOptions job;
    job.machine = machine_.text();
    job.drawings = {out_.drawing};
    job.job = options_.job;
    job.by = options_.by;
    job.sets = options_.sets;
    const ScratchFolder folder;
    job.output = folder.path() + "/program.iso";
    if (const auto choice = chooseIsoJob(job); choice.exitCode != kDone) {
      (void)failed(choice.exitCode, choice.why);
      return false;
    }
    const JobIsoResult result = runJobIso(out_.drawing, job);
    out_.warnings = result.warnings;
    if (result.exitCode != kDone) {
      (void)failed(result.exitCode, result.failure);
      return false;
    }
    const auto bytes = readFile(result.program);
    if (!bytes) {
      (void)failed(kFailed, bytes.error.text());
      return false;
    }
    bytes_ = *bytes.value;
    out_.lines = result.lines;
    return true;
  }

  void compare() {
    const std::string page = catalogLanguage(language()).writePage;
    out_.program = toUtf8(bytes_, page);
    const auto last = readFile(out_.kept);
    out_.isFirst = !last;
    if (last) out_.diff = compareProgram(toUtf8(*last.value, page), out_.program);
    auto failure = makeFolders(out_.kept.substr(0, out_.kept.rfind('/')));
    if (!failure) failure = writeFileAtomically(out_.kept, bytes_);
    if (failure) (void)failed(kFailed, failure->text());
  }

  const PostTryOptions& options_;
  const std::string install_;
  MachineName machine_;
  std::string bytes_;  // of the program as it stands in its file
  Outcome out_;
};

std::string resultOf(const Outcome& out) {
  const ProgramDiff& diff = out.diff;
  if (out.isFirst) return formatted("the first program, %ld lines", out.lines);
  if (diff.changed == 0) return "no change";
  std::string text = formatted("%zu %s changed (%zu removed, %zu added)", diff.changed,
                               diff.changed == 1 ? "line" : "lines", diff.removed, diff.added);
  if (diff.isShortened) text += ", too many to show: only the first";
  return text;
}

void print(const PostTryOptions& options, const Outcome& out) {
  for (const auto& warning : out.warnings) std::fprintf(stderr, "  %s\n", warning.c_str());
  if (!out.failure.empty()) std::fprintf(stderr, "%s\n", out.failure.c_str());
  if (out.kept.empty() || out.program.empty()) return;
  if (out.isFirst)
    std::fputs(out.program.c_str(), stdout);
  else if (out.diff.changed > 0)
    std::printf("--- last try\n+++ this try\n%s", out.diff.text.c_str());
  std::printf("%s, %s: %s\n", options.machine.c_str(), fileNameOf(out.drawing).c_str(),
              resultOf(out).c_str());
}

void printJson(const PostTryOptions& options, const Outcome& out) {
  nlohmann::ordered_json j;
  j["machine"] = options.machine;
  j["drawing"] = out.drawing;
  j["ok"] = out.failure.empty();
  if (!out.failure.empty()) j["failure"] = out.failure;
  j["exitCode"] = out.exitCode;
  if (!out.program.empty()) {
    j["kept"] = out.kept;
    j["first"] = out.isFirst;
    j["lines"] = out.lines;
    j["changed"] = out.diff.changed;
    j["removed"] = out.diff.removed;
    j["added"] = out.diff.added;
    j["shortened"] = out.diff.isShortened;
    j["diff"] = out.diff.text;
    j["program"] = out.program;
  }
  j["warnings"] = out.warnings;
  std::printf("%s\n", j.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

}  // namespace

int tryPost(const PostTryOptions& options) {
  const Outcome out = PostTry(options).run();
  (options.json ? printJson : print)(options, out);
  return out.exitCode;
}

}  // namespace tarnex
