// A condition file of many cells.
// Knows the table by its calls.
#include "conditions.h"

#include <cstdio>
#include <string>
#include <vector>

#include "figures.h"
#include "host/platform/files.h"
#include "host/platform/usage.h"
#include "machining/conditiontable.h"

namespace tarnex::bench {

namespace {

constexpr int kOfEach = 100, kLines = 20;

std::string listsText() {
  std::string text;
  for (const char* section : {"Matrial", "Rad", "Thick"}) {
    text += "[" + std::string(section) + "]\n";
    for (int i = 1; i <= kOfEach; ++i) {
      const std::string number = std::to_string(i);
      text += number + "=" + (section[0] == 'M' ? "STEEL " + number : number) + "\n";
    }
  }
  return text;
}

// Cells with lines lie evenly over the table.
std::string cellsText(int cells) {
  constexpr int kCells = kOfEach * kOfEach * kOfEach;
  std::string text = "[Main]\nVer=2\n";
  for (int c = 0; c < cells; ++c) {
    const int n = c * (kCells / cells) + c % kOfEach;
    text += "[STEEL " + std::to_string(n / 10000 + 1) + "-" + std::to_string(n / 100 % 100 + 1) + "-" +
            std::to_string(n % 100 + 1) + "]\n";
    for (int i = 1; i <= kLines; ++i)
      text += std::to_string(i) + "=C" + std::to_string(100 + i) +
              "= 012 013 4455 0 1 22 33 0 0 48 2 9 0 0 0 0\n";
    text += "CORNERCODE=CC " + std::to_string(c) + "\n";
  }
  return text;
}

// Every cell asked for, as a look at the whole table does.
std::size_t linesOfAll(const ConditionTable& table) {
  std::size_t lines = 0;
  for (ConditionTable::Cell c; c.material < table.materialCount(); ++c.material)
    for (c.rad = 0; c.rad < table.radCount(c.material); ++c.rad)
      for (c.thick = 0; c.thick < table.thickCount(c.material, c.rad); ++c.thick) lines += table.lineCount(c);
  return lines;
}

}  // namespace

void printConditionTable() {
  const std::string folder = temporaryFolder("tarnex-bench");
  const std::string lists = folder + "/Main.dat", cells = folder + "/cells.ini";
  (void)writeFileAtomically(lists, listsText());
  std::printf("condition table of 100 x 100 x 100 cells\n  %12s %8s %12s %8s %12s\n", "with lines", "MB",
              "loading, ms", "growth", "all read, ms");
  double before = 0;
  for (const int count : {100, 1000}) {
    const std::string text = cellsText(count);
    (void)writeFileAtomically(cells, text);
    std::vector<double> times, readings;
    std::size_t lines = 0;
    for (int run = 0; run < 7; ++run) {
      ConditionTable table;
      times.push_back(secondsOf([&] { (void)table.load(cells, lists); }));
      readings.push_back(secondsOf([&] { lines = linesOfAll(table); }));
    }
    const double seconds = median(times);
    std::printf("  %12d %8.2f %12.2f", count, static_cast<double>(text.size()) / 1e6, seconds * 1000);
    if (before > 0)
      std::printf(" %8.1f", seconds / before);
    else
      std::printf(" %8s", "");
    std::printf(" %12.1f\n", median(readings) * 1000);
    if (lines != static_cast<std::size_t>(count) * kLines)
      std::printf("  %zu lines are missing\n", count * kLines - lines);
    before = seconds;
  }
  std::printf("  peak memory %.1f MB\n", static_cast<double>(peakMemory()) / 1048576);
  (void)removeTree(folder);
}

}  // namespace tarnex::bench
