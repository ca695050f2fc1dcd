// Machining conditions: lines of text for each material, wire and thickness, and the corner code of each.
// Knows the two files; what of a cell goes into a program, its writer knows.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnex {

// Texts are UTF-8; the files may be UTF-8, UTF-16 with its mark, or GB18030. Indices start at 0; of one that
// is out of range the answer is 0, 0.0 or an empty text.
class ConditionTable {
 public:
  static constexpr std::size_t kMostEntries = 100, kMostLines = 300, kMostBytes = 127;

  struct Value {
    std::string text;  // as the list spells it; sections are named by it
    double value = 0;  // its leading number
  };
  struct Cell {
    std::size_t material = 0, rad = 0, thick = 0;
  };

  // The lists come from `listsFile` (Main.dat), the cells from `conditionFile`; each is read once. The result
  // is the condition file's Ver, 0 for a file without one or no file at all: the lists are there all the
  // same.
  int load(const std::string& conditionFile, const std::string& listsFile);
  void clear();

  [[nodiscard]] int version() const { return nVer_; }
  [[nodiscard]] std::size_t materialCount() const { return materials_.size(); }
  [[nodiscard]] const std::string& materialName(std::size_t material) const;
  [[nodiscard]] std::size_t radCount(std::size_t material) const;
  [[nodiscard]] double radValue(std::size_t material, std::size_t rad) const;
  [[nodiscard]] std::size_t thickCount(std::size_t material, std::size_t rad) const;
  [[nodiscard]] double thickValue(std::size_t material, std::size_t rad, std::size_t thick) const;
  [[nodiscard]] std::size_t lineCount(Cell cell) const { return linesOf(cell).size(); }
  [[nodiscard]] const std::string& line(Cell cell, std::size_t line) const;
  [[nodiscard]] const std::string& cornerCode(Cell cell) const;

  [[nodiscard]] const std::vector<std::string>& linesOf(Cell cell) const;
  [[nodiscard]] const std::vector<Value>& rads() const { return rads_; }
  [[nodiscard]] const std::vector<Value>& thicks() const { return thicks_; }
  [[nodiscard]] std::string sectionOf(Cell cell) const;  // "SKD11-0.2-5", "SKD11-5" when Ver is 1
  // The first cell whose material has this name, ignoring case, and whose wire and thickness are just these
  // numbers.
  [[nodiscard]] std::optional<Cell> find(std::string_view material, double rad, double thick) const;

  // What the one who wrote the files may not have meant, a sentence each.
  [[nodiscard]] std::vector<std::string> faults() const;

 private:
  struct Content {
    std::string section;
    std::vector<std::string> lines;
    std::string sCornerCode;
    std::size_t behindGap = 0, cut = 0;  // lines that aren't read; lines cut to kMostBytes
  };
  [[nodiscard]] const Content* contentOf(Cell cell) const;

  int nVer_ = 0;
  bool hasFile_ = false;
  std::vector<std::string> materials_;
  std::vector<Value> rads_, thicks_;
  std::vector<Content> contents_;
  std::unordered_map<std::string, std::size_t> sections_;  // by name in lower case
};

// "<install folder>\MZS\<folder>\<name>.ini" and "<install folder>\MZS\Main.dat", paths of the system; the
// shipped ones where the install folder has none.
[[nodiscard]] std::string conditionPath(std::string_view installFolder, std::string_view folder,
                                        std::string_view name);
[[nodiscard]] std::string conditionListsPath(std::string_view installFolder);
// The number of a condition line "C12=...": 12, and -1 of a line that is none. Ignores case.
[[nodiscard]] int conditionNumber(std::string_view line);

}  // namespace tarnex
