// The steps of a job as lines that a user could type.
// Knows the language of prompts; the job knows their order.
#include "apps/tarnex/jobsteps.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "host/display/plot.h"
#include "host/platform/format.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return std::tolower(x) == std::tolower(y); });
}

bool listed(const std::vector<std::string>& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(), [&](const auto& n) { return sameName(n, name); });
}

template <class T>
std::vector<AcDbObjectId> allShown(const AcDbDatabase& drawing) {
  std::vector<AcDbObjectId> ids;
  for (AcDbObjectId id : drawing.modelSpaceEntities())
    if (const T* entity = drawing.peek<T>(id); entity && drawing.isShown(*entity)) ids.push_back(id);
  return ids;
}

}  // namespace

bool JobSteps::holds(const AcRxClass& kind) {
  const AcDbDatabase& drawing = session_.drawing();
  if (kindsAsOf_ != drawing.changeStamp()) {
    kinds_.clear();
    for (AcDbObjectId id : drawing.modelSpaceEntities()) {
      const AcRxClass* c = &drawing.peek<AcDbEntity>(id)->isA();
      if (std::find(kinds_.begin(), kinds_.end(), c) == kinds_.end()) kinds_.push_back(c);
    }
    kindsAsOf_ = drawing.changeStamp();
  }
  return std::any_of(kinds_.begin(), kinds_.end(), [&](auto* c) { return c->isDerivedFrom(kind); });
}

template <class T>
std::vector<AcDbObjectId> JobSteps::shownOf() {
  return holds(T::desc()) ? allShown<T>(session_.drawing()) : std::vector<AcDbObjectId>();
}

std::vector<AcDbObjectId> JobSteps::shown() const {
  return allShown<AcDbEntity>(session_.drawing());
}

bool JobSteps::hasPaths() {
  return !shownOf<CToolPath>().empty();
}

std::string JobSteps::named(const std::vector<AcDbObjectId>& ids) const {
  std::string line;
  for (AcDbObjectId id : ids) {
    if (!line.empty()) line += ' ';
    line += formatted("&%llX",
                      static_cast<unsigned long long>(session_.drawing().peek<AcDbObject>(id)->handle()));
  }
  return line;
}

bool JobSteps::chooseLayers(const std::vector<std::string>& only, const std::vector<std::string>& skip,
                            std::vector<std::string>& said) {
  AcDbDatabase& drawing = session_.drawing();
  bool any = only.empty();
  for (AcDbObjectId id : drawing.layers()) {
    const auto* layer = drawing.peek<AcDbLayerTableRecord>(id);
    if (!layer) continue;
    const std::string& name = layer->getName();
    const bool wanted = (only.empty() || listed(only, name)) && !listed(skip, name);
    any = any || wanted;
    if (!wanted && !layer->isOff()) turnedOff_.push_back(name);
  }
  for (const auto& name : only)
    if (drawing.layer(name).isNull()) said.push_back("there is no layer \"" + name + "\"");
  for (const auto& name : turnedOff_) session_.run({"layer off", name, ""});
  return any && (only.empty() || !shown().empty());
}

void JobSteps::restoreLayers() {
  for (const auto& name : turnedOff_) session_.run({"layer on", name, ""});
  turnedOff_.clear();
}

// Entities of a reference's block that taking it apart leaves out.
std::size_t JobSteps::keptInside(AcDbObjectId reference) const {
  AcDbDatabase& drawing = session_.drawing();
  const auto* insert = drawing.peek<AcDbBlockReference>(reference);
  const auto* block = insert ? drawing.peek<AcDbBlockTableRecord>(insert->blockTableRecord()) : nullptr;
  if (!block) return 0;
  const auto& inside = block->entities();
  return static_cast<std::size_t>(std::count_if(inside.begin(), inside.end(), [&](AcDbObjectId id) {
    return drawing.peek<AcDbKeptEntity>(id) != nullptr;
  }));
}

void JobSteps::takeBlocksApart(std::vector<std::string>& said) {
  constexpr int kDeepest = 64;  // blocks in blocks; a drawing that nests deeper isn't a part
  std::size_t count = 0, lost = 0;
  for (int depth = 0; depth < kDeepest; ++depth) {
    const auto inserts = shownOf<AcDbBlockReference>();
    if (inserts.empty()) break;
    count += inserts.size();
    for (AcDbObjectId id : inserts) lost += keptInside(id);
    session_.run({"explode", named(inserts), ""});
    if (shownOf<AcDbBlockReference>() == inserts) break;  // what can't be taken apart stays
  }
  if (count > 0) said.push_back(formatted("%zu block references taken apart", count));
  if (lost > 0)
    said.push_back(
        formatted("%zu dimensions, hatches or unknown entities inside them could not be taken along", lost));
  std::vector<AcDbObjectId> open = shownOf<AcDb2dPolyline>();
  std::erase_if(open,
                [&](AcDbObjectId id) { return session_.drawing().peek<AcDb2dPolyline>(id)->isClosed(); });
  if (!open.empty()) session_.run({"explode", named(open), ""});
}

void JobSteps::clean(std::vector<std::string>& said) {
  const std::size_t before = shown().size();
  session_.run({"scc", "all", ""});
  said.push_back(formatted("cleaned: %zu entities less", before - shown().size()));
}

void JobSteps::joinLooseCurves(const LooseSurvey& loose, std::optional<double> gap) {
  std::vector<AcDbObjectId> splines, others;
  const bool anySpline = holds(AcDbSpline::desc());
  for (AcDbObjectId id : loose.joinable)
    (anySpline && session_.drawing().peek<AcDbSpline>(id) ? splines : others).push_back(id);
  for (AcDbObjectId id : shownOf<AcDbSpline>())
    if (session_.drawing().peek<AcDbSpline>(id)->isClosed()) splines.push_back(id);
  if (!splines.empty()) {
    const AcDbObjectId before = session_.editor.acdbEntLast();
    session_.run({"s2p", named(splines), ""});
    for (AcDbObjectId id = session_.editor.acdbEntNext(before); !id.isNull();
         id = session_.editor.acdbEntNext(id))
      others.push_back(id);
  }
  for (AcDbObjectId id : shownOf<AcDbEllipse>())
    if (session_.drawing().peek<AcDbEllipse>(id)->isClosed()) others.push_back(id);
  if (others.empty()) return;
  // A long list of handles is left out where the word for it means the same.
  session_.run(
      {"AJ", loose.open.empty() ? "all" : named(others), "", shortestNumber(gap.value_or(kSamePoint))});
}

ContourSurvey JobSteps::survey(const LooseSurvey& loose) const {
  auto rest = shown();
  const std::set<AcDbObjectId> left(loose.notJoined.begin(), loose.notJoined.end());
  std::erase_if(rest, [&](AcDbObjectId id) { return left.count(id) != 0; });
  ContourSurvey found = surveyContours(session_.drawing(), rest);
  found.open.insert(found.open.end(), loose.open.begin(), loose.open.end());
  return found;
}

std::string JobSteps::emptyPlace() const {
  const Extents2d all = session_.drawing().drawingExtents();
  const double out = std::max((all.high - all.low).length(), 1.0);
  return formatted("*%s,%s", shortestNumber(all.low.x - out).c_str(),
                   shortestNumber(all.low.y - out).c_str());
}

void JobSteps::makePaths(const PathCommand& command, const std::vector<const SurveyedContour*>& contours) {
  if (contours.empty()) return;
  std::vector<AcDbObjectId> ids;
  for (const auto* c : contours) ids.push_back(c->id);
  std::vector<std::string> lines{formatted("SET nSide %d", command.side), command.name, emptyPlace(),
                                 named(ids)};
  lines.insert(lines.end(), command.answers.begin(), command.answers.end());
  lines.push_back("");
  session_.run(lines, command.answerer);
}

std::size_t JobSteps::mendOrder() {
  const auto list = session_.module().state<PathState>().PathList;
  const std::vector<AcDbObjectId> wanted = insideFirst(session_.drawing(), list);
  std::size_t moved = 0;
  for (std::size_t i = 0; i < list.size(); ++i) moved += list[i] != wanted[i] ? 1 : 0;
  if (moved == 0) return 0;
  std::vector<std::string> lines{"CS"};
  for (AcDbObjectId id : wanted) lines.push_back(named({id}));
  lines.push_back("");
  session_.run(lines);
  return moved;
}

std::string JobSteps::whatIsThere(const DxfReport& read, const ContourSurvey& found) const {
  if (!found.open.empty())
    return formatted("%zu chains, none of them closed (the first from %.3f,%.3f to %.3f,%.3f)",
                     found.open.size(), found.open[0].from.x, found.open[0].from.y, found.open[0].to.x,
                     found.open[0].to.y);
  std::size_t tilted = 0;
  for (AcDbObjectId id : session_.drawing().modelSpaceEntities())
    if (const auto* kept = session_.drawing().peek<AcDbKeptEntity>(id); kept && kept->isThreeDimensional())
      ++tilted;
  std::string kinds;
  for (const auto& [name, count] : read.entities) {
    const auto inModel = read.modelSpace.find(name);
    kinds += (kinds.empty() ? "" : ", ") + std::to_string(count) + " " + name;
    if (inModel == read.modelSpace.end()) kinds += " (none in model space)";
  }
  if (kinds.empty()) return "the drawing is empty";
  if (tilted > 0) kinds += formatted("; %zu of them do not lie in the drawing plane (3D or tilted)", tilted);
  return "the drawing holds " + kinds;
}

std::string sentenceOf(const WireWarning& w) {
  const std::string where = formatted("path %d at %.3f,%.3f: ", w.path, w.at.x, w.at.y);
  switch (w.trouble) {
    case WireTrouble::kRadiusBelowOffset:
      return where + formatted("radius %.3f mm is below the wire offset of %.3f mm", w.value, w.limit);
    case WireTrouble::kVanished:
      return where + formatted("vanishes under its wire offset of %.3f mm", w.limit);
    case WireTrouble::kFallsApart:
      return where +
             formatted(
                 "falls into %.0f parts under its wire offset of %.3f mm, only the one at the entry is cut",
                 w.value, w.limit);
    case WireTrouble::kOwnMethod:
      return where + "the offset was made corner by corner, look at it before cutting";
    case WireTrouble::kCutsNeighbour:
      return where + formatted("the wire comes within %.3f mm of path %d, its offset is %.3f mm", w.value,
                               w.other, w.limit);
    case WireTrouble::kSharpCorner:
      return where + formatted("a corner so sharp that the wire runs %.3f mm out before it turns", w.value);
    case WireTrouble::kLeadInCrosses:
      return where + (w.other == w.path ? std::string("the lead-in crosses its own contour")
                                        : formatted("the lead-in crosses path %d", w.other));
  }
  return where;
}

std::optional<FileError> plotPaths(Session& session, const std::string& path) {
  return writePlot(path, session.editor.shown());
}

}  // namespace tarnex
