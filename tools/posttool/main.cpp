// The compiler of machine posts and jobs that the build runs: text sources to the files of the install
// folder. Knows files; the formats are the machining room's.
#include <cstdio>
#include <string>

#include "host/platform/files.h"
#include "machining/jobsource.h"
#include "machining/postsource.h"

namespace {

using namespace tarnex;

constexpr int kDone = 0, kFailed = 1, kWrongUsage = 2, kUnreadable = 3;

int write(const std::string& to, const std::string& bytes) {
  const auto failure = writeFileAtomically(to, bytes);
  if (!failure) return kDone;
  std::fprintf(stderr, "%s\n", failure->text().c_str());
  return kFailed;
}

int tell(const std::vector<std::string>& faults) {
  for (const auto& fault : faults) std::fprintf(stderr, "%s\n", fault.c_str());
  return faults.empty() ? kDone : kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string what = argc == 4 ? argv[1] : "";
  if (what != "post" && what != "job") {
    std::fputs("posttool post SOURCE.toml FILE.pc\nposttool job SOURCE.toml ISO.LYT\n", stderr);
    return kWrongUsage;
  }
  const auto source = readFile(argv[2]);
  if (!source) {
    std::fprintf(stderr, "%s\n", source.error.text().c_str());
    return kUnreadable;
  }
  if (what == "post") {
    const auto made = compilePost(*source.value, argv[2]);
    return tell(made.faults) == kDone ? write(argv[3], encodePost(made.post)) : kFailed;
  }
  const auto made = readJobSource(*source.value, argv[2], JobLayout());
  return tell(made.faults) == kDone ? write(argv[3], made.job.encode()) : kFailed;
}
