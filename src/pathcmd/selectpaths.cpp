// The choice of paths for a program.
// Knows prompts and the list; what is written from it is above.
#include <algorithm>
#include <set>
#include <string>

#include "contour/userinput.h"
#include "machining/joblayout.h"
#include "pathcmd/nearestfirst.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

using Ids = std::vector<AcDbObjectId>;

Ids withFirstPass(AcDbDatabase& drawing, const Ids& from) {
  Ids kept;
  for (AcDbObjectId id : from)
    if (const auto* path = drawing.peek<CToolPath>(id); path && path->hasFirstPass()) kept.push_back(id);
  return kept;
}

// An index in PathList: typed from 1, or the number of a picked path as it stands. Nothing on cancel.
std::optional<int> askIndex(Module& module, const std::string& prompt, int onEnter) {
  for (;;) {
    const auto input = getUserInput(module.editor, prompt, PickMode::kEntityPickBox);
    switch (input.kind) {
      case InputKind::kCancel:
        return std::nullopt;
      case InputKind::kEnter:
        return onEnter;
      case InputKind::kInteger:
        return input.intValue - 1;
      case InputKind::kReal:
        return static_cast<int>(input.realValue - 1.0);
      case InputKind::kEntity:
        if (const auto* path = module.drawing().peek<CToolPath>(input.entity)) return path->nPathNo();
        break;
      default:
        break;
    }
  }
}

std::optional<Ids> askRange(Module& module, const Ids& list) {
  const int count = static_cast<int>(list.size());
  const auto from = askIndex(module, module.message(482), 0);
  if (!from) return std::nullopt;
  const auto to = askIndex(module, module.message(483, {static_cast<long long>(count)}), count - 1);
  if (!to) return std::nullopt;
  Ids chosen;
  for (int i = std::max(*from, 0); i <= std::min(*to, count - 1); ++i)
    chosen.push_back(list[static_cast<std::size_t>(i)]);
  return chosen;
}

std::optional<Ids> askChoice(Module& module, const Ids& list) {
  constexpr int kSelect = 0, kNumbers = 1;
  for (;;) {
    const auto input = getUserInput(module.editor, module.message(260), PickMode::kEntityPickBox, "S N");
    if (input.kind == InputKind::kCancel) return std::nullopt;
    if (input.kind == InputKind::kEnter) return withFirstPass(module.drawing(), list);
    if (input.kind != InputKind::kKeyword) continue;
    if (input.keyword == kSelect) {
      const auto set = module.editor.acedSSGet("");
      if (!set) return std::nullopt;
      return withFirstPass(module.drawing(), set.value);
    }
    if (input.keyword == kNumbers) return askRange(module, list);
  }
}

void sortByNumber(AcDbDatabase& drawing, Ids& ids) {
  const auto number = [&](AcDbObjectId id) { return drawing.peek<CToolPath>(id)->nPathNo(); };
  std::stable_sort(ids.begin(), ids.end(),
                   [&](AcDbObjectId a, AcDbObjectId b) { return number(a) < number(b); });
}

// The last path stays last. The one that the next is sought for gives up its place to it.
void sortNearestNext(AcDbDatabase& drawing, Ids& ids) {
  std::vector<NearestFirst::Member> starts;
  for (std::size_t i = 0; i + 1 < ids.size(); ++i)
    starts.push_back({drawing.peek<CToolPath>(ids[i])->getPointAt(0)});
  NearestFirst row(starts);
  for (std::size_t i = 0; i + 1 < row.size(); ++i) row.run({i, i + 1, row.at(i).at, kFarAway});
  const Ids before = ids;
  for (std::size_t i = 0; i < row.size(); ++i) ids[i] = before[row.origin(i)];
}

// Paths of the job's styles in their order, the others behind them. Entries that aren't in use share a name;
// it counts once.
void sortByStyle(AcDbDatabase& drawing, const JobLayout& job, Ids& ids) {
  std::vector<std::string> names;
  for (AcDbObjectId id : ids) names.push_back(drawing.peek<CToolPath>(id)->getProcessStyle().sName);
  std::set<std::string> seen;
  std::size_t next = 0;
  for (const auto& style : job.styles) {
    if (!seen.insert(style.sName).second) continue;
    for (std::size_t p = next; p < ids.size(); ++p)
      if (names[p] == style.sName) {
        std::swap(ids[p], ids[next]);
        std::swap(names[p], names[next]);
        ++next;
      }
  }
}

}  // namespace

std::optional<Ids> selectProgramPaths(Module& module) {
  rebuildPathList(module);
  const Ids list = module.state<PathState>().PathList;
  if (list.empty()) {
    module.editor.messageBox(module.message(295), MB_ICONINFORMATION);
    return std::nullopt;
  }
  module.editor.print("\n" + module.message(64, {static_cast<long long>(list.size())}) + "\n");
  auto ids = askChoice(module, list);
  if (!ids) return std::nullopt;
  if (ids->empty()) {  // a program without a path would only stop the machine
    module.editor.messageBox(module.message(295), MB_ICONINFORMATION);
    return std::nullopt;
  }
  AcDbDatabase& drawing = module.drawing();
  sortByNumber(drawing, *ids);
  const auto& job = module.state<JobLayout>();
  if (job.nSortMode == SortMode::kNearestNext) sortNearestNext(drawing, *ids);
  if (job.nSortMode == SortMode::kByStyle) sortByStyle(drawing, job, *ids);
  return ids;
}

}  // namespace tarnex
