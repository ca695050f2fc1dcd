// Many drawings: one job each, several at a time.
// Knows jobs; what one does stands in job3b and jobiso.
#include "apps/tarnex/batch.h"

#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>
#include <thread>

#include "apps/tarnex/report.h"
#include "host/display/plot.h"
#include "host/platform/files.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

JobTold toldOf(const JobResult& r, std::string text) {
  return {r.exitCode, r.interrupted, !r.failure.empty(), std::move(text), r.script};
}

class Batch {
 public:
  explicit Batch(const BatchRequest& request)
      : request_(request), options_(request.options), told_(options_.drawings.size()) {
    for (std::size_t i = 0; i < told_.size(); ++i) {
      JobResult result;
      result.drawing = options_.drawings[i];
      result.exitCode = kFailed;
      result.failure = result.drawing + ": not begun, the run was interrupted";
      told_[i] = toldOf(result, options_.json ? jsonOf(result) : result.failure + "\n");
    }
  }

  int run() {
    const auto workers =
        std::max<std::size_t>(1, std::min<std::size_t>(static_cast<std::size_t>(options_.jobs), 64));
    std::vector<std::thread> threads;
    for (std::size_t i = 1; i < std::min(workers, told_.size()); ++i)
      threads.emplace_back([this] { work(); });
    work();
    for (auto& t : threads) t.join();
    tellProgress(true);
    int worst = kDone;
    for (const auto& t : told_) {
      tell(t);
      worst = worse(worst, t.exitCode);
    }
    return worst;
  }

 private:
  // A failure of any kind goes before success; of two kinds the one that a single drawing would give.
  static int worse(int a, int b) { return a == kDone ? b : b == kDone ? a : a == b ? a : kFailed; }

  void work() {
    for (std::size_t i; (i = next_++) < told_.size() && !stopped_ && !interruptPending();) {
      told_[i] = request_.job(options_.drawings[i]);
      if (told_[i].interrupted) stopped_ = true;
      const std::lock_guard lock(mutex_);
      ++done_;
      if (told_[i].exitCode != kDone) ++failed_;
      tellProgress(false);
    }
  }

  void tellProgress(bool end) const {
    if (told_.size() < 2 || !isTerminal(2)) return;
    std::fprintf(stderr, "\r%zu of %zu drawings, %zu failed%s", done_, told_.size(), failed_,
                 end ? "\n" : "");
  }

  void tell(const JobTold& t) const {
    if (options_.showScript) {
      for (const auto& line : t.script) std::printf("%s\n", line.c_str());
      if (!t.failed) return;
    }
    std::fputs(t.text.c_str(), !t.failed || options_.json ? stdout : stderr);
  }

  const BatchRequest& request_;
  const JobOptions& options_;
  std::vector<JobTold> told_;
  std::atomic<std::size_t> next_{0};
  std::atomic<bool> stopped_{false};
  std::mutex mutex_;
  std::size_t done_ = 0, failed_ = 0;
};

// Why these options can't be meant; empty when they can.
std::string contradiction(const BatchRequest& request) {
  const JobOptions& options = request.options;
  const bool several = options.drawings.size() > 1;
  if (several && !options.output.empty()) return "-o names one file; for several drawings use --out-dir";
  if (several && (!options.save.empty() || !options.plot.empty()))
    return std::string(options.save.empty() ? "--plot" : "--save") + " names one file; give one drawing";
  if (!options.plot.empty() && !plotFormatOf(options.plot))
    return "--plot " + options.plot + ": the name of a plot ends in .svg, .pdf or .png";
  std::map<std::string, std::string> writers;  // absolute path of a program: the drawing that it comes from
  for (const auto& drawing : options.drawings) {
    const std::string program = absolutePath(programFileOf(drawing, options, request.extension));
    const auto [other, first] = writers.emplace(program, drawing);
    if (!first) return other->second + " and " + drawing + " would both be written to " + program;
  }
  for (const auto& drawing : options.drawings)
    if (writers.contains(absolutePath(drawing))) return drawing + " would be overwritten by a program";
  return {};
}

}  // namespace

int runBatch(const BatchRequest& request) {
  if (const std::string why = contradiction(request); !why.empty()) {
    std::fprintf(stderr, "%s\n", why.c_str());
    return kUsage;
  }
  return Batch(request).run();
}

int run3b(const Job3bOptions& options) {
  return runBatch({options, "3b", [&](const std::string& drawing) {
                     const Job3bResult r = runJob3b(drawing, options);
                     return toldOf(r, options.json ? jsonOf(r) : summaryOf(r));
                   }});
}

int runIso(const JobIsoOptions& options) {
  // GG would put one behind it.
  if (!options.output.empty() && fileNameOf(options.output).find('.') == std::string::npos) {
    std::fprintf(stderr, "-o %s: the name of an ISO program has an extension, such as .iso\n",
                 options.output.c_str());
    return kUsage;
  }
  const IsoJobChoice choice = chooseIsoJob(options);
  if (choice.exitCode != kDone) {
    std::fprintf(stderr, "%s\n", choice.why.c_str());
    return choice.exitCode;
  }
  return runBatch({options, choice.extension, [&](const std::string& drawing) {
                     const JobIsoResult r = runJobIso(drawing, options);
                     return toldOf(r, options.json ? jsonOf(r) : summaryOf(r));
                   }});
}

}  // namespace tarnex
