// Condition files: each is read once, sections are found by their names.
// Knows no program.
#include "machining/conditiontable.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "frame/folders.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "host/platform/profile.h"
#include "machining/textcode.h"

namespace tarnex {

namespace {

const std::string kNoText;
const std::vector<std::string> kNoLines;

std::string lowered(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

// The leading number of a text, 0 of a text without one.
double leadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double v = 0;
  std::from_chars(text.data(), text.data() + text.size(), v);
  return v;
}

// A key "1", "2", ... without anything around it; nothing for another.
std::optional<std::size_t> keyNumber(std::string_view key, std::size_t most) {
  std::size_t n = 0;
  const auto [stop, error] = std::from_chars(key.data(), key.data() + key.size(), n);
  if (error != std::errc() || stop != key.data() + key.size() || key.front() == '0') return std::nullopt;
  return n >= 1 && n <= most ? std::optional(n) : std::nullopt;
}

// The texts of one file: bytes of whatever page it is in, cut as the reader of such files cuts, then UTF-8.
class FileTexts {
 public:
  explicit FileTexts(const Profile& file) {
    std::vector<const std::string*> all;
    for (const auto& e : file.entries()) {
      all.push_back(&e.value);
      all.push_back(&e.section);
    }
    code_ = textCodeOf(all);
  }
  [[nodiscard]] std::string text(std::string_view bytes) const { return textFromBytes(bytes, code_); }
  [[nodiscard]] std::string value(std::string_view bytes) const {
    std::size_t keep = std::min(bytes.size(), ConditionTable::kMostBytes);
    if (keep < bytes.size() && code_ == "UTF-8")
      while (keep > 0 && (static_cast<unsigned char>(bytes[keep]) & 0xC0) == 0x80) --keep;
    return text(bytes.substr(0, keep));
  }

 private:
  std::string code_;
};

std::vector<std::string> listOf(const Profile& file, const FileTexts& texts, std::string_view section) {
  std::vector<std::optional<std::string>> byKey(ConditionTable::kMostEntries);
  for (const auto& e : file.entries())
    if (lowered(e.section) == section)
      if (const auto n = keyNumber(e.key, byKey.size()); n && !byKey[*n - 1])
        byKey[*n - 1] = texts.value(e.value);
  std::vector<std::string> list;
  for (const auto& value : byKey) {
    if (!value || value->empty()) break;
    list.push_back(*value);
  }
  return list;
}

std::vector<ConditionTable::Value> valuesOfList(const std::vector<std::string>& list) {
  std::vector<ConditionTable::Value> values;
  for (const auto& text : list) values.push_back({text, leadingNumber(text)});
  return values;
}

}  // namespace

int ConditionTable::load(const std::string& conditionFile, const std::string& listsFile) {
  clear();
  const Profile lists = Profile::load(realPath(listsFile));
  const FileTexts listTexts(lists);
  materials_ = listOf(lists, listTexts, "matrial");  // spelled so in the file
  rads_ = valuesOfList(listOf(lists, listTexts, "rad"));
  thicks_ = valuesOfList(listOf(lists, listTexts, "thick"));

  hasFile_ = fileExists(realPath(conditionFile));
  const Profile file = Profile::load(realPath(conditionFile));
  const FileTexts texts(file);
  nVer_ = file.intOf("Main", "Ver", 0);
  // The values of a section by their keys; of doubled keys the first counts.
  std::unordered_map<std::size_t, std::vector<std::optional<std::string_view>>> keyed;
  for (const auto& e : file.entries()) {
    const auto [at, isNew] = sections_.try_emplace(lowered(texts.text(e.section)), contents_.size());
    if (isNew) contents_.push_back({texts.text(e.section), {}, {}, 0, 0});
    Content& content = contents_[at->second];
    if (lowered(e.key) == "cornercode" && content.sCornerCode.empty())
      content.sCornerCode = texts.value(e.value);
    const auto n = keyNumber(e.key, kMostLines);
    if (!n) continue;
    auto& values = keyed[at->second];
    if (values.size() < *n) values.resize(*n);
    if (!values[*n - 1]) values[*n - 1] = e.value;
  }
  for (const auto& [index, values] : keyed) {
    Content& content = contents_[index];
    bool open = true;
    for (const auto& value : values) {
      open = open && value && !value->empty();
      if (open)
        content.lines.push_back(texts.value(*value));
      else if (value && !value->empty())
        ++content.behindGap;
      if (value && value->size() > kMostBytes) ++content.cut;
    }
  }
  return nVer_;
}

void ConditionTable::clear() {
  *this = ConditionTable();
}

const std::string& ConditionTable::materialName(std::size_t material) const {
  return material < materials_.size() ? materials_[material] : kNoText;
}

std::size_t ConditionTable::radCount(std::size_t material) const {
  return material < materials_.size() ? rads_.size() : 0;
}

double ConditionTable::radValue(std::size_t material, std::size_t rad) const {
  return rad < radCount(material) ? rads_[rad].value : 0.0;
}

std::size_t ConditionTable::thickCount(std::size_t material, std::size_t rad) const {
  return rad < radCount(material) ? thicks_.size() : 0;
}

double ConditionTable::thickValue(std::size_t material, std::size_t rad, std::size_t thick) const {
  return thick < thickCount(material, rad) ? thicks_[thick].value : 0.0;
}

std::string ConditionTable::sectionOf(Cell cell) const {
  if (cell.thick >= thickCount(cell.material, cell.rad)) return {};
  const std::string wire = nVer_ == 1 ? "" : rads_[cell.rad].text + "-";
  return materials_[cell.material] + "-" + wire + thicks_[cell.thick].text;
}

const ConditionTable::Content* ConditionTable::contentOf(Cell cell) const {
  const std::string section = sectionOf(cell);
  const auto at = section.empty() ? sections_.end() : sections_.find(lowered(section));
  return at == sections_.end() ? nullptr : &contents_[at->second];
}

const std::vector<std::string>& ConditionTable::linesOf(Cell cell) const {
  const auto* content = contentOf(cell);
  return content ? content->lines : kNoLines;
}

const std::string& ConditionTable::line(Cell cell, std::size_t line) const {
  const auto& lines = linesOf(cell);
  return line < lines.size() ? lines[line] : kNoText;
}

const std::string& ConditionTable::cornerCode(Cell cell) const {
  const auto* content = contentOf(cell);
  return content ? content->sCornerCode : kNoText;
}

std::optional<ConditionTable::Cell> ConditionTable::find(std::string_view material, double rad,
                                                         double thick) const {
  const std::string name = lowered(material);
  const auto m = std::ranges::find_if(materials_, [&](const auto& text) { return lowered(text) == name; });
  const auto r = std::ranges::find(rads_, rad, &Value::value);
  const auto t = std::ranges::find(thicks_, thick, &Value::value);
  if (m == materials_.end() || r == rads_.end() || t == thicks_.end()) return std::nullopt;
  return Cell{static_cast<std::size_t>(m - materials_.begin()), static_cast<std::size_t>(r - rads_.begin()),
              static_cast<std::size_t>(t - thicks_.begin())};
}

std::vector<std::string> ConditionTable::faults() const {
  std::vector<std::string> told;
  if (materials_.empty()) told.push_back("Main.dat lists no material ([Matrial], keys 1, 2, ...)");
  if (rads_.empty()) told.push_back("Main.dat lists no wire value ([Rad], keys 1, 2, ...)");
  if (thicks_.empty()) told.push_back("Main.dat lists no thickness ([Thick], keys 1, 2, ...)");
  if (!hasFile_) {
    told.push_back("there is no such condition file");
    return told;
  }
  if (nVer_ <= 0) told.push_back("[Main] has no Ver above 0, so programs take no condition from the file");
  std::set<std::string> meant;
  for (Cell c; c.material < materials_.size(); ++c.material)
    for (c.rad = 0; c.rad < rads_.size(); ++c.rad)
      for (c.thick = 0; c.thick < thicks_.size(); ++c.thick)
        if (auto name = lowered(sectionOf(c)); sections_.contains(name)) meant.insert(std::move(name));
  for (const auto& content : contents_) {
    const std::string section = "[" + content.section + "]";
    if (lowered(content.section) != "main" && !meant.contains(lowered(content.section)))
      told.push_back(section + " is the cell of no material, wire and thickness of Main.dat");
    if (content.behindGap > 0)
      told.push_back(formatted("%s: %zu line(s) behind a missing or empty key aren't read", section.c_str(),
                               content.behindGap));
    if (content.cut > 0)
      told.push_back(formatted("%s: %zu line(s) longer than %zu bytes are cut", section.c_str(), content.cut,
                               kMostBytes));
    std::set<int> numbers;
    for (const auto& line : content.lines)
      if (const int n = conditionNumber(line); n >= 0 && !numbers.insert(n).second)
        told.push_back(formatted("%s: condition C%d stands twice, the first counts", section.c_str(), n));
  }
  return told;
}

std::string conditionPath(std::string_view installFolder, std::string_view folder, std::string_view name) {
  std::string file = "MZS\\";
  file.append(folder).append("\\").append(name).append(".ini");
  return dataFile(installFolder, file);
}

std::string conditionListsPath(std::string_view installFolder) {
  return dataFile(installFolder, "MZS\\Main.dat");
}

int conditionNumber(std::string_view line) {
  if (line.empty() || (line.front() != 'C' && line.front() != 'c')) return -1;
  line.remove_prefix(1);
  int n = 0;
  const auto [stop, error] = std::from_chars(line.data(), line.data() + line.size(), n);
  return error == std::errc() && stop != line.data() + line.size() && *stop == '=' && n >= 0 ? n : -1;
}

}  // namespace tarnex
