// Conditions and offsets of a program's head.
// Knows no file but those of the conditions.
#include "outputiso/conditionlist.h"

#include <algorithm>
#include <cmath>

#include "machining/conditionlines.h"
#include "machining/conditiontable.h"
#include "outputiso/offsets.h"
#include "outputiso/postslots.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

// Catalogue numbers.
constexpr int kNoFile = 1848, kNoCell = 1849, kNoLine = 20261, kNearest = 20262, kUnreadFile = 20263;

std::string comment(const std::string& text) {
  return "(//" + text + ")\n";
}

double nearestOf(const std::vector<ConditionTable::Value>& list, double wanted) {
  const auto best = std::ranges::min_element(
      list, {}, [&](const ConditionTable::Value& v) { return std::abs(v.value - wanted); });
  return best == list.end() ? 0.0 : best->value;
}

class ListMaker {
 public:
  explicit ListMaker(const ConditionRequest& request)
      : request_(request), post_(request.post), job_(request.job), message_(request.message) {}

  ConditionList make() {
    const auto file = post_.conditionFile[static_cast<std::size_t>(std::clamp(job_.nDbf, 0, 1))];
    const std::string path = conditionPath(request_.installFolder, job_.sPostPath, file);
    if (table_.load(path, conditionListsPath(request_.installFolder)) <= 0) {
      list_.text = comment(message_(kNoFile, {std::string_view(post_.conditionFile[0])}));
      // Without the folder: a batch works in a copy of it that is gone when this is read.
      const std::string name = "MZS\\" + job_.sPostPath + "\\" + file + ".ini";
      list_.warnings.push_back(message_(kUnreadFile, {std::string_view(name)}));
      return std::move(list_);
    }
    const auto cell = cellInForce();
    if (!cell) {
      list_.text = comment(message_(kNoCell, {std::string_view(job_.sMaterial), job_.dThick}));
      if (post_.nFamily == kFamilyCellOfJob) tellNearest();
      return std::move(list_);
    }
    const auto& lines = table_.linesOf(*cell);
    for (std::size_t i = 0; i < headLineCount(lines); ++i) add(lines[i]);
    if (post_.nFamily == kFamilyCellOfJob) {
      list_.hasCell = true;
      list_.sCornerCode = table_.cornerCode(*cell);
      if (const auto* start = startConditionLine(lines)) add(*start);
    }
    passConditions(lines);
    return std::move(list_);
  }

 private:
  void add(const std::string& line) { list_.text += line + "\n"; }

  std::optional<ConditionTable::Cell> cellInForce() const {
    if (post_.nFamily == kFamilyFirstCell) return ConditionTable::Cell{};
    if (post_.nFamily == kFamilyCellOfJob) return table_.find(job_.sMaterial, job_.dWireRad, job_.dThick);
    return std::nullopt;
  }

  void passConditions(const std::vector<std::string>& lines) {
    for (const auto& use : request_.styles.list)
      for (std::size_t g = 0; g < static_cast<std::size_t>(passesOf(*use.style)); ++g) {
        const std::string& number = use.style->passes[g].sSub1;
        if (isListed(number)) continue;
        const auto* line = conditionLine(lines, number);
        if (!line) {
          list_.warnings.push_back(
              message_(kNoLine, {std::string_view(use.style->sName), std::string_view(number)}));
          continue;
        }
        add(*line);
        keys_.push_back(number);
      }
  }

  [[nodiscard]] bool isListed(const std::string& number) const {
    return std::ranges::any_of(keys_, [&](const std::string& key) { return sameLetters(key, number); });
  }

  void tellNearest() {
    if (table_.materialCount() == 0) return;
    std::string_view material = table_.materialName(0);
    for (std::size_t m = 0; m < table_.materialCount(); ++m)
      if (sameLetters(table_.materialName(m), job_.sMaterial)) material = table_.materialName(m);
    list_.warnings.push_back(message_(
        kNearest, {std::string_view(job_.sMaterial), job_.dWireRad, job_.dThick, material,
                   nearestOf(table_.rads(), job_.dWireRad), nearestOf(table_.thicks(), job_.dThick)}));
  }

  const ConditionRequest& request_;
  const MachinePost& post_;
  const JobLayout& job_;
  const MessageText& message_;
  ConditionTable table_;
  ConditionList list_;
  std::vector<std::string> keys_;
};

}  // namespace

StylesInUse stylesInUse(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& ids,
                        const JobLayout& job) {
  const auto count = static_cast<std::size_t>(std::clamp(job.nStyleCount, 0, kMostStyles));
  std::vector<StyleInUse> found(count, {nullptr, {}, 0});
  StylesInUse use;
  for (AcDbObjectId id : ids) {
    const auto* path = drawing.peek<CToolPath>(id);
    if (!path) continue;
    const ProcessStyle carried = path->getProcessStyle();
    bool known = false;
    for (std::size_t i = 0; i < count; ++i) {
      if (!sameStyle(job.styles[i], carried)) continue;
      known = true;
      if (!found[i].style) found[i] = {&job.styles[i], id, path->nSide()};
    }
    if (!known) use.strangers.push_back(id);
  }
  for (const auto& f : found)
    if (f.style) use.list.push_back(f);
  return use;
}

ConditionList conditionList(const ConditionRequest& request) {
  return ListMaker(request).make();
}

std::string offsetTable(const MachinePost& post, const StylesInUse& styles) {
  std::string table;
  if (post.nFamily == kFamilyCornerWords) {
    const bool millimetres = post.paramInt(PostParam::kIntegerMicrometres) == 0;
    table = post.word[PostWord::kOffset] + (millimetres ? "000=0.010\n" : "000=10\n");
  }
  int counter = 1;
  for (const auto& use : styles.list) table += offsetLines(post, *use.style, use.nSide, counter);
  return table;
}

}  // namespace tarnex
