// From one contour to one path.
// Knows settings, contours and paths; prompts belong to the commands.
#include "pathcmd/makepath.h"

#include "contour/chaining.h"
#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"

namespace tarnex {

namespace {

// The settings that a call may change for itself, put back (and the file with them) on every way out.
class KeptSettings {
 public:
  explicit KeptSettings(Module& module)
      : module_(module),
        snap_(module.settings.nSnapMode),
        side_(module.settings.nSide),
        direction_(module.settings.nDirection) {}
  KeptSettings(const KeptSettings&) = delete;
  KeptSettings& operator=(const KeptSettings&) = delete;
  ~KeptSettings() {
    module_.loadSettings();
    module_.settings.nSnapMode = snap_;
    module_.settings.nSide = side_;
    module_.settings.nDirection = direction_;
    module_.saveSettings();
  }

 private:
  Module& module_;
  std::int32_t snap_, side_, direction_;
};

CToolPath::Making makingOf(const WireCutSettings& s, AcGePoint2d thread, AcGePoint2d entry) {
  return {thread, entry, s.nSide, s.nDirection, s.dOffset, s.dClearance};
}

// Layer and colour of the source; the source goes.
struct Source {
  AcDbObjectId layer;
  int color = kColorByLayer;
};
Source takeSource(AcDbDatabase& drawing, AcDbObjectId id) {
  auto entity = drawing.open<AcDbEntity>(id, OpenMode::kForWrite);
  if (!entity) return {};
  const Source source{entity->layerId(), entity->colorIndex()};
  entity->erase();
  return source;
}

class PathMaker {
 public:
  PathMaker(Module& module, const MakeRequest& request)
      : module_(module), s_(module.settings), drawing_(module.drawing()), request_(request) {
    points_.thread = points_.entry = request.pick;
  }

  bool run() {
    {
      const auto entity = drawing_.open<AcDbEntity>(request_.entity, OpenMode::kForWrite);
      if (!entity || entity->isKindOf(CToolPath::desc()) || !entity->isKindOf(AcDbCurve::desc()))
        return false;
    }
    // In a batch nothing changes them; its caller keeps them once for all paths.
    std::optional<KeptSettings> kept;
    if (!batch() || request_.fraction > 0) kept.emplace(module_);
    if (request_.fraction > 0) {
      s_.nSnapMode = 0;
      s_.nSide = kOuterShape;
    }
    return drawing_.peek<AcDbCircle>(request_.entity) ? circle() : contour();
  }

 private:
  // ---- circle

  bool circle() {
    AcGePoint2d centre;
    double radius = 0;
    {
      const auto circle = drawing_.open<AcDbCircle>(request_.entity);
      centre = circle->center().flat();
      radius = circle->radius();
    }
    const bool smallHoles = s_.bSmallHole != 0 && s_.nSide == kInnerHole;
    if (smallHoles && batch() && radius <= s_.dSmallHoleRadius) return false;
    if (!smallHoles || !holeInCircle(centre, radius)) leadIntoCircle(centre, radius);
    auto path = std::make_unique<CToolPath>();
    if (!path->initCircle(makingOf(s_, points_.thread, points_.entry), centre, radius, s_.nCircleArcs))
      return false;
    finish(std::move(path));
    return true;
  }

  bool holeInCircle(AcGePoint2d centre, double radius) {
    AcEditor::SelectArgs args;
    args.first = solid(centre - AcGeVector2d{radius, radius});
    args.second = solid(centre + AcGeVector2d{radius, radius});
    for (AcDbObjectId id : module_.editor.acedSSGet("C", args).value) {
      const auto* hole = id == request_.entity ? nullptr : drawing_.peek<AcDbCircle>(id);
      if (!hole || hole->radius() > s_.dSmallHoleRadius ||
          !(hole->center().flat().distanceTo(centre) < radius))
        continue;
      points_.thread = hole->center().flat();
      points_.entry = closestPoint(ArcCurve{centre, radius, 0, 2 * kPi}, points_.thread).point;
      return true;
    }
    return false;
  }

  void leadIntoCircle(AcGePoint2d centre, double radius) {
    double a = batch() ? 0 : acutAngle(centre, request_.pick);
    if (s_.bFixedLeadAngle) a = kPi * s_.dLeadAngle * 0.005555555555555556;
    points_.entry = acutPolar(centre, a, radius);
    points_.thread = centre;
    if (s_.nSide != kInnerHole)
      points_.thread = acutPolar(points_.entry, a, s_.dLeadLen);
    else if (!s_.bThreadAtCentre && s_.dLeadLen < radius)
      points_.thread = acutPolar(points_.entry, a, -s_.dLeadLen);
  }

  // ---- any other contour

  bool contour() {
    AcDbObjectId id = request_.entity;
    if (!prepareContour(module_, id)) return false;
    id_ = id;
    if (!batch() && !snapEntry()) return false;
    if (!takeClosedPolyline()) return false;
    orient();
    if (!batch() && !findSpan()) return false;
    if (request_.fraction > 0 && !batch() && !moveEntry()) return false;
    if (!batch()) module_.saveSettings();
    const bool hole = s_.bSmallHole != 0 && findThreadingHole(module_, request_.mode, polyline_, points_);
    if (!hole) chooseThread();
    auto path = makeContourPath(module_, points_.thread, points_.entry, polyline_, points_.spanIndex, false);
    if (!path) return false;
    finish(std::move(path));
    return true;
  }

  bool batch() const { return request_.mode == MakeMode::kBatch; }

  bool snapEntry() {
    const char* mode = s_.nSnapMode == 0 ? "near" : "mid";
    {
      CommandSetting setting(module_.editor);
      setting.osmode(0);
      module_.editor.print(mode);
      for (int twice = 0; twice < 2; ++twice)
        if (const auto snapped = module_.editor.acedOsnap(solid(points_.entry), mode))
          points_.entry = snapped->flat();
    }
    const auto* polyline = drawing_.peek<AcDbPolyline>(id_);
    if (!polyline) return false;
    points_.entry = closestPoint(polyline->geometry(), points_.entry).point;
    return true;
  }

  bool takeClosedPolyline() {
    auto polyline = drawing_.open<AcDbPolyline>(id_, OpenMode::kForWrite);
    if (!polyline || polyline->numVerts() < 2) return false;
    if (!polyline->isClosed()) {
      const auto& v = polyline->polyline().vertices;
      if (!(v.front().point.distanceTo(v.back().point) <= kSamePoint)) {
        polyline.close();
        if (request_.fraction > 0)
          module_.editor.messageBox(module_.message(41), MB_ICONSTOP);
        else
          module_.editor.print(module_.message(74));
        return false;
      }
      polyline->setClosed(true);
    }
    polyline_ = polyline->polyline();
    return true;
  }

  void orient() {
    if (polylineOrientation(polyline_) != s_.nDirection) reversePolyline(polyline_);
  }

  bool findSpan() {
    const auto at = findSpanAt(polyline_, points_.entry);
    if (!at) {
      module_.editor.print("\ncan not find the pick point!");
      return false;
    }
    points_.spanIndex = at->index;
    spanSide_ = at->side;
    return true;
  }

  BulgeVertex spanStart() const { return polyline_.vertices[static_cast<std::size_t>(points_.spanIndex)]; }
  AcGePoint2d spanEnd() const {
    return polyline_.vertices[(static_cast<std::size_t>(points_.spanIndex) + 1) % polyline_.vertices.size()]
        .point;
  }

  // The entry at a fraction of its span; picked in the first half, the cut goes the other way round.
  bool moveEntry() {
    const BulgeVertex start = spanStart();
    const AcGePoint2d end = spanEnd();
    if (start.bulge == 0) {
      const double part = spanSide_ == -1 ? request_.fraction : 1 - request_.fraction;
      points_.entry = start.point + (end - start.point) * part;
    } else {
      const AcGePoint2d c = bulgeToCircle(start.point, end, start.bulge).centre;
      const double quarter = std::atan(start.bulge);
      points_.entry = spanSide_ == -1
                          ? acutPolar(c, acutAngle(c, start.point) + quarter, c.distanceTo(start.point))
                          : acutPolar(c, acutAngle(c, end) - quarter, c.distanceTo(end));
    }
    if (spanSide_ != -1) return true;
    s_.nDirection = -s_.nDirection;
    orient();
    return findSpan();
  }

  void chooseThread() {
    if (!batch()) {
      leadFromPick();
    } else if (s_.nSide == kOuterShape) {
      leadOfOuterShape();
    } else {
      const ThreadPoint found = findThreadPoint(polyline_);
      points_.thread = found.thread;
      points_.entry = found.contour;
      if (points_.entry.distanceTo(points_.thread) > s_.dLeadLen)
        points_.thread = acutPolar(points_.entry, acutAngle(points_.entry, points_.thread), s_.dLeadLen);
      if (const auto at = findSpanAt(polyline_, points_.entry)) points_.spanIndex = at->index;
    }
  }

  // Square on the contour, on the side that direction and side give; halfway across where the part is narrow.
  void leadFromPick() {
    const BulgeVertex start = spanStart();
    const AcGePoint2d end = spanEnd(), q = points_.entry;
    const double turn = s_.nDirection * s_.nSide;
    if (start.bulge == 0) {
      points_.thread = acutPolar(q, acutAngle(start.point, end) + turn * kPi / 2, s_.dLeadLen);
    } else {
      const AcGePoint2d c = bulgeToCircle(start.point, end, start.bulge).centre;
      points_.thread = acutPolar(q, acutAngle(c, q), (start.bulge > 0 ? -1 : 1) * turn * s_.dLeadLen);
    }
    if (points_.thread == q) return;
    auto hits = intersect(polyline_, LineCurve{q, points_.thread},
                          s_.nSide == kInnerHole ? Extend::kExtendArg : Extend::kOnBothOperands);
    if (hits.size() > 2) keepWallsOfSlot(hits);
    if (hits.size() < 2) return;
    sortPoints(hits, 2);
    if (hits[0].distanceTo(hits[1]) / 2 < s_.dLeadLen) points_.thread = midpoint(hits[0], hits[1]);
  }

  // Of many hits the entry itself and the one that the lead-in meets next.
  void keepWallsOfSlot(std::vector<AcGePoint2d>& hits) const {
    const AcGePoint2d q = points_.entry;
    const AcGeVector2d way = points_.thread - q;
    std::optional<AcGePoint2d> next;
    for (AcGePoint2d hit : hits)
      if ((hit - q).dotProduct(way) > kSamePoint * way.length() &&
          (!next || hit.distanceTo(q) < next->distanceTo(q)))
        next = hit;
    hits = {q};
    if (next) hits.push_back(*next);
  }

  // The middle of the first span; of the next ones where a lead-in from there would run into the contour
  // itself. A threading point with room all round goes before one that only keeps the wire off the contour.
  void leadOfOuterShape() {
    for (double room : {s_.dLeadLen, std::min(s_.dLeadLen, s_.dOffset)})
      for (std::size_t i = 0; i < polyline_.vertices.size(); ++i) {
        leadFromSpanMiddle(static_cast<int>(i));
        if (leadIsClear(room)) return;
      }
    leadFromSpanMiddle(0);
  }

  void leadFromSpanMiddle(int span) {
    points_.spanIndex = span;
    const BulgeVertex start = spanStart();
    const AcGePoint2d end = spanEnd();
    AcGePoint2d q = midpoint(start.point, end);
    const int dir = s_.nDirection;
    if (start.bulge == 0) {
      points_.thread = acutPolar(q, acutAngle(start.point, end) - dir * kPi / 2, s_.dLeadLen);
    } else {
      const auto circle = bulgeToCircle(start.point, end, start.bulge);
      // The middle of the arc; of a half circle the chord's middle is the centre and has no direction.
      const double mid = acutAngle(circle.centre, start.point) + 2 * std::atan(start.bulge);
      q = acutPolar(circle.centre, mid, circle.radius);
      points_.thread = acutPolar(q, mid, dir * start.bulge > 0 ? s_.dLeadLen : -s_.dLeadLen);
    }
    points_.entry = q;
  }

  bool leadIsClear(double room) const {
    const AcGePoint2d t = points_.thread, q = points_.entry;
    if (closestPoint(polyline_, t).distance < room - kSamePoint) return false;
    for (AcGePoint2d hit : intersect(polyline_, LineCurve{q, t}, Extend::kOnBothOperands))
      if (hit.distanceTo(q) > kSamePoint) return false;
    return true;
  }

  void finish(std::unique_ptr<CToolPath> path) {
    const Source source = takeSource(drawing_, id_.isNull() ? request_.entity : id_);
    addPath(module_, std::move(path), source.layer, source.color, request_.style);
  }

  Module& module_;
  WireCutSettings& s_;
  AcDbDatabase& drawing_;
  const MakeRequest& request_;
  AcDbObjectId id_;  // the prepared polyline
  PolylineCurve polyline_;
  EntryPoints points_;
  int spanSide_ = 1;
};

}  // namespace

bool makePath(Module& module, const MakeRequest& request) {
  return PathMaker(module, request).run();
}

std::unique_ptr<CToolPath> makeContourPath(Module& module, AcGePoint2d thread, AcGePoint2d entry,
                                           PolylineCurve contour, int spanIndex, bool testSide) {
  auto making = makingOf(module.settings, thread, entry);
  if (testSide) {
    making.nSide = pointInPolyline(contour, thread);
    if (making.nSide == 0) {
      module.editor.print(module.message(46));
      return nullptr;
    }
    module.editor.print(making.nSide == kInnerHole ? "--------内孔" : "------外形");
  }
  if (polylineOrientation(contour) != making.nDirection) {
    reversePolyline(contour);
    const auto at = findSpanAt(contour, entry);
    if (!at) return nullptr;
    spanIndex = at->index;
  }
  auto path = std::make_unique<CToolPath>();
  return path->initContour(making, contour, spanIndex) ? std::move(path) : nullptr;
}

void addPath(Module& module, std::unique_ptr<CToolPath> path, AcDbObjectId layer, int color,
             const ProcessStyle* style) {
  auto& state = module.state<PathState>();
  path->setColor(color);
  if (style) path->setProcessStyle(*style);
  const AcDbObjectId id = appendToModelSpace(module.drawing(), std::move(path), layer, color, "");
  numberPath(module.drawing(), state, id, state.nextPathNo);
  ++state.nextPathNo;
  state.PathList.push_back(id);
}

}  // namespace tarnex
