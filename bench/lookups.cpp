// What the look-ups in catalogue and profile files cost beside a job.
// Knows the catalogue and the machine file by their readers.
#include "lookups.h"

#include <cstdio>
#include <vector>

#include "figures.h"
#include "frame/catalog.h"
#include "frame/folders.h"
#include "machining/machinetable.h"

namespace tarnex::bench {

namespace {

constexpr int kHighestNumber = 32767;

std::vector<int> numbersOf(const std::string& path) {
  std::vector<int> numbers;
  MessageCatalog catalog;
  if (catalog.open(path, 1)) return numbers;
  for (int id = 0; id <= kHighestNumber; ++id)
    if (!catalog.getMessage(id).empty()) numbers.push_back(id);
  return numbers;
}

}  // namespace

void printLookUps(double job) {
  const std::string install = installFolder(), path = messageFilePath(install, 1);
  const auto numbers = numbersOf(path);
  std::size_t bytes = 0;
  std::vector<double> texts, profiles;
  for (int i = 0; i < 11; ++i) {
    texts.push_back(secondsOf([&] {
      MessageCatalog catalog;
      if (catalog.open(path, 1)) return;
      for (int id : numbers) bytes += catalog.getMessage(id).size();
    }));
    profiles.push_back(secondsOf([&] {
      MachineTable machines;
      machines.load(install, 1);
      bytes += machines.machines().size() + productFolder("", "x").size() + static_cast<unsigned>(language());
    }));
  }
  const double all = median(texts), read = median(profiles);
  std::printf("  look-ups: %zu texts %.2f ms, profile files %.2f ms, together %.2f %% of the job\n",
              bytes > 0 ? numbers.size() : 0, all * 1000, read * 1000, (all + read) / job * 100);
}

}  // namespace tarnex::bench
