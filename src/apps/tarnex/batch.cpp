// Many drawings: one job each, several at a time.
// Knows jobs; what one does stands in job3b.
#include "apps/tarnex/batch.h"

#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>
#include <thread>

#include "apps/tarnex/report3b.h"
#include "host/display/plot.h"
#include "host/platform/files.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

class Batch {
 public:
  explicit Batch(const Job3bOptions& options) : options_(options), results_(options.drawings.size()) {
    for (std::size_t i = 0; i < results_.size(); ++i) {
      results_[i].drawing = options.drawings[i];
      results_[i].exitCode = kFailed;
      results_[i].failure = options.drawings[i] + ": not begun, the run was interrupted";
    }
  }

  int run() {
    const auto workers =
        std::max<std::size_t>(1, std::min<std::size_t>(static_cast<std::size_t>(options_.jobs), 64));
    std::vector<std::thread> threads;
    for (std::size_t i = 1; i < std::min(workers, results_.size()); ++i)
      threads.emplace_back([this] { work(); });
    work();
    for (auto& t : threads) t.join();
    tellProgress(true);
    int worst = kDone;
    for (const auto& r : results_) {
      tell(r);
      worst = worse(worst, r.exitCode);
    }
    return worst;
  }

 private:
  // A failure of any kind goes before success; of two kinds the one that a single drawing would give.
  static int worse(int a, int b) { return a == kDone ? b : b == kDone ? a : a == b ? a : kFailed; }

  void work() {
    for (std::size_t i; (i = next_++) < results_.size() && !stopped_ && !interruptPending();) {
      results_[i] = runJob3b(options_.drawings[i], options_);
      if (results_[i].interrupted) stopped_ = true;
      const std::lock_guard lock(mutex_);
      ++done_;
      if (results_[i].exitCode != kDone) ++failed_;
      tellProgress(false);
    }
  }

  void tellProgress(bool end) const {
    if (results_.size() < 2 || !isTerminal(2)) return;
    std::fprintf(stderr, "\r%zu of %zu drawings, %zu failed%s", done_, results_.size(), failed_,
                 end ? "\n" : "");
  }

  void tell(const Job3bResult& r) const {
    if (options_.showScript) {
      for (const auto& line : r.script) std::printf("%s\n", line.c_str());
      if (r.failure.empty()) return;
    }
    const std::string text = options_.json ? jsonOf(r) : summaryOf(r);
    std::fputs(text.c_str(), r.failure.empty() || options_.json ? stdout : stderr);
  }

  const Job3bOptions& options_;
  std::vector<Job3bResult> results_;
  std::atomic<std::size_t> next_{0};
  std::atomic<bool> stopped_{false};
  std::mutex mutex_;
  std::size_t done_ = 0, failed_ = 0;
};

}  // namespace

namespace {

// Why these options can't be meant; empty when they can.
std::string contradiction(const Job3bOptions& options) {
  const bool several = options.drawings.size() > 1;
  if (several && !options.output.empty()) return "-o names one file; for several drawings use --out-dir";
  if (several && (!options.save.empty() || !options.plot.empty()))
    return std::string(options.save.empty() ? "--plot" : "--save") + " names one file; give one drawing";
  if (!options.plot.empty() && !plotFormatOf(options.plot))
    return "--plot " + options.plot + ": the name of a plot ends in .svg, .pdf or .png";
  std::map<std::string, std::string> writers;  // absolute path of a program: the drawing that it comes from
  for (const auto& drawing : options.drawings) {
    const std::string program = absolutePath(programFileOf(drawing, options));
    const auto [other, first] = writers.emplace(program, drawing);
    if (!first) return other->second + " and " + drawing + " would both be written to " + program;
  }
  for (const auto& drawing : options.drawings)
    if (writers.contains(absolutePath(drawing))) return drawing + " would be overwritten by a program";
  return {};
}

}  // namespace

int run3b(const Job3bOptions& options) {
  if (const std::string why = contradiction(options); !why.empty()) {
    std::fprintf(stderr, "%s\n", why.c_str());
    return kUsage;
  }
  return Batch(options).run();
}

}  // namespace tarnex
