// Many drawings: one job each, several at a time.
// Knows jobs; what one does stands in job3b.
#include "apps/tarnex/batch.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <thread>

#include "apps/tarnex/report3b.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

class Batch {
 public:
  explicit Batch(const Job3bOptions& options) : options_(options), results_(options.drawings.size()) {}

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
    for (std::size_t i; (i = next_++) < results_.size() && !interruptPending();) {
      results_[i] = runJob3b(options_.drawings[i], options_);
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
  std::mutex mutex_;
  std::size_t done_ = 0, failed_ = 0;
};

}  // namespace

int run3b(const Job3bOptions& options) {
  if (options.drawings.size() > 1 && !options.output.empty()) {
    std::fprintf(stderr, "-o names one file; for several drawings use --out-dir\n");
    return kUsage;
  }
  return Batch(options).run();
}

}  // namespace tarnex
