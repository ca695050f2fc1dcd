// `AF`: the walk over a path's corners, and the command.
// Knows windows and prompts; what becomes of one corner or entry stands in the room's other files.
#include "pathcmd/autofix.h"

#include <algorithm>

#include "contour/hosthelpers.h"
#include "frame/dialoglibrary.h"
#include "host/editor/ucs.h"
#include "pathcmd/pathchange.h"

namespace tarnex {

namespace {

bool isAtSpike(const PolylineCurve& path, int vertex) {
  const auto marked = [&](int i) { return path.vertices[static_cast<std::size_t>(i)].bulge == kMarkedBulge; };
  if (marked(vertex)) return marked(vertex - 1) || marked(vertex + 1);
  return marked(vertex - 1) && marked(vertex - 2);
}

std::optional<CornerChange> changeOf(const FixCorner& corner, const AutoFixSettings& sizes) {
  switch (static_cast<FixKind>(sizes.nKind)) {
    case FixKind::kNotchAndRound:
      return notchAndRound(corner, sizes);
    case FixKind::kRoundAll:
      return roundAll(corner, sizes);
    case FixKind::kReliefCircle:
      return reliefCircle(corner, sizes);
    case FixKind::kSpike:
      return spike(corner, sizes);
    case FixKind::kEar:
      return ear(corner, sizes);
    default:
      return std::nullopt;
  }
}

// Coordinates that a path at the far end of the drawing could lose to rounding are no fix.
bool isFinite(const CornerChange& change) {
  const auto finite = [](AcGePoint2d p) { return std::isfinite(p.x) && std::isfinite(p.y); };
  return finite(change.at) && std::all_of(change.before.begin(), change.before.end(), [&](const auto& v) {
           return finite(v.point) && std::isfinite(v.bulge);
         });
}

void apply(CToolPath& path, int vertex, const CornerChange& change) {
  for (std::size_t k = 0; k < change.before.size(); ++k)
    path.addVertexAt(vertex + static_cast<int>(k), change.before[k].point, change.before[k].bulge);
  path.setPointAt(vertex + static_cast<int>(change.before.size()), change.at);
}

}  // namespace

CornersFixed fixCorners(CToolPath& path, const AutoFixSettings& sizes, const Extents2d& window) {
  CornersFixed fixed;
  const bool spikes = sizes.nKind == static_cast<int>(FixKind::kSpike);
  for (int i = 2; i < path.numVerts() - 1; ++i) {
    if (!window.contains(path.getPointAt(i))) continue;
    const FixCorner corner = fixCornerAt(path.polyline(), i, path.nDirection());
    if (sizes.nKind == static_cast<int>(FixKind::kRoundAll) && isSmoothJoin(corner)) {
      fixed.smooth.push_back(i);
      continue;
    }
    if (spikes && isAtSpike(path.polyline(), i)) continue;
    const auto change = changeOf(corner, sizes);
    if (!change || !isFinite(*change)) continue;
    const int added = static_cast<int>(change->before.size());
    fixed.full = path.numVerts() + added > kMostPathVertices;
    if (fixed.full) break;
    apply(path, i, *change);
    if (sizes.nKind == static_cast<int>(FixKind::kEar)) fixed.loops.push_back(corner.p);
    if (spikes) fixed.spikeTips.push_back(change->before.back().point);
    fixed.changed = true;
    i += added;
  }
  if (fixed.changed) path.settleBreak();
  return fixed;
}

namespace {

class AutoFix {
 public:
  AutoFix(Module& module, const AutoFixSettings& sizes)
      : module_(module), drawing_(module.drawing()), sizes_(sizes) {}

  void run() {
    while (askWindow()) {
      if (isEntryKind() && !isPocket(sizes_)) {
        module_.editor.print("\nFailed!");
        continue;
      }
      for (const AcDbObjectId id : set_) fix(id);
    }
  }

 private:
  [[nodiscard]] bool isEntryKind() const {
    return sizes_.nKind == static_cast<int>(FixKind::kRoundPocket) ||
           sizes_.nKind == static_cast<int>(FixKind::kSquarePocket);
  }

  // False: no window, or nothing in it.
  bool askWindow() {
    const bool round = sizes_.nKind == static_cast<int>(FixKind::kRoundPocket);
    const auto first = module_.editor.acedGetPoint("\n" + module_.message(round ? 302 : 261));
    if (!first) return false;
    const auto second = module_.editor.acedGetCorner(first.value, "");
    if (const auto named = module_.editor.namedInsteadOfCorner()) {
      constexpr double kAll = std::numeric_limits<double>::infinity();
      set_ = *named;
      window_ = {{-kAll, -kAll}, {kAll, kAll}};
      return !set_.empty();
    }
    if (!second) return false;
    AcEditor::SelectArgs args;
    args.first = {std::min(first.value.x, second.value.x), std::min(first.value.y, second.value.y), 0};
    args.second = {std::max(first.value.x, second.value.x), std::max(first.value.y, second.value.y), 0};
    set_ = module_.editor.acedSSGet("C", args).value;
    window_ = {};
    window_.add(ucsToWorld(drawing_, *args.first).flat());
    window_.add(ucsToWorld(drawing_, *args.second).flat());
    return !set_.empty();
  }

  void fix(AcDbObjectId id) {
    auto entity = drawing_.open<AcDbEntity>(id, OpenMode::kForWrite);
    if (!entity) return;
    entity.close();
    auto path = drawing_.open<CToolPath>(id, OpenMode::kForWrite);
    if (!path) {
      module_.editor.print("\n" + module_.message(157));
      return;
    }
    if (refusesFourAxis(module_, *path)) return;
    const PolylineCurve old = path->polyline();
    const bool changed = isEntryKind() ? pocket(*path) : corners(*path);
    const int number = path->nPathNo();
    const PolylineCurve now = path->polyline();
    path.close();
    label();
    if (!changed) return;
    const auto contacts = newContacts(pathContacts(old), pathContacts(now));
    auto ordered = newContacts(loops_, contacts);
    // What ears do at their own corners is expected: it comes last.
    const auto expected = newContacts(ordered, contacts);
    ordered.insert(ordered.end(), expected.begin(), expected.end());
    tellContacts(module_, number, ordered);
  }

  bool corners(CToolPath& path) {
    const auto fixed = fixCorners(path, sizes_, window_);
    for (const int vertex : fixed.smooth) module_.editor.acutPrintf("\n%d:qie", vertex);
    if (fixed.full) tellFull(module_, path.nPathNo());
    tips_ = fixed.spikeTips;
    loops_ = fixed.loops;
    return fixed.changed;
  }

  bool pocket(CToolPath& path) {
    if (path.hasFlag(kAutoFixed)) {
      say(20223, path.nPathNo());
      return false;
    }
    if (fixEntry(path, sizes_)) return true;
    say(20224, path.nPathNo());
    return false;
  }

  void label() {
    const std::string text =
        module_.message(551, {kPi * sizes_.dSpikeAngle * 0.005555555555555556 * 180 / kPi, sizes_.dSpikeLen});
    for (const AcGePoint2d tip : tips_)
      appendToModelSpace(drawing_, std::make_unique<AcDbText>(solid(tip), text, module_.settings.dTextHeight),
                         {}, kLabelColor, "");
    tips_.clear();
  }

  void say(int text, int pathNo) {
    module_.editor.print(module_.message(text, {static_cast<long long>(pathNo)}));
  }

  static constexpr int kLabelColor = 3;
  Module& module_;
  AcDbDatabase& drawing_;
  const AutoFixSettings sizes_;
  SelectionSet set_;
  Extents2d window_;  // world
  std::vector<AcGePoint2d> tips_, loops_;
};

}  // namespace

void AF(Module& module) {
  std::string cause;
  (void)AutoFixLoad(module.installFolder, &cause);
  if (!cause.empty()) module.editor.print("\n" + cause + "\n");
  if (DialogLibrary(module).call("AutoFixDlg", 0) == 0) return;
  const AutoFixSettings sizes = AutoFixLoad(module.installFolder);
  if (const auto field = sizes.unusableField()) {
    const std::string name = "AutoFix.set: " + *field;
    module.editor.print("\n" +
                        module.message(20004, {std::string_view(name), 0.0, AutoFixSettings::kMostSize}));
    module.editor.commandFailed();
    return;
  }
  AutoFix(module, sizes).run();
}

}  // namespace tarnex
