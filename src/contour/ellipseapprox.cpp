// An ellipse as the arc polyline that the host draws when PELLIPSE is 1, trimmed to what the ellipse covers;
// and the two conversion commands. Knows the host's commands; who joins the results is above it.
#include "contour/approximation.h"
#include "contour/hosthelpers.h"

namespace tarnex {

namespace {

// What has to be known of an ellipse after it is gone.
struct EllipseData {
  AcGePoint3d centre;
  AcGeVector2d axis;
  double ratio, startAngle, endAngle;
  AcGePoint2d s, e, m;  // its ends and its middle
  AcDbObjectId layer;
  int color;
  [[nodiscard]] bool full() const { return startAngle == 0.0 && std::abs(endAngle - 2 * kPi) < 0.001; }
};

EllipseData dataOf(const AcDbEllipse& ellipse) {
  EllipseData d{ellipse.center(),
                ellipse.majorAxis(),
                ellipse.radiusRatio(),
                ellipse.startAngle(),
                ellipse.endAngle(),
                {},
                {},
                {},
                ellipse.layerId(),
                ellipse.colorIndex()};
  const Curve c = ellipse.geometry();
  d.s = startPoint(c);
  d.e = endPoint(c);
  d.m = pointAtDist(c, length(c) / 2).value_or(d.s);
  return d;
}

void drawFullEllipse(AcEditor& editor, const EllipseData& d) {
  const int pellipse = setPellipse(editor, 1);
  const AcGePoint3d axisEnd{d.centre.x + d.axis.x, d.centre.y + d.axis.y, 0};
  editor.acedCommand({std::string("ellipse"), std::string("c"), AcGePoint3d{d.centre.x, d.centre.y, 0},
                      axisEnd, d.axis.length() * d.ratio});
  setPellipse(editor, pellipse);
}

// Step by step as the host's user would: a line along the chord, trim what lies on its far side, erase the
// line.
AcDbObjectId trimToArc(AcEditor& editor, AcDbObjectId polyline, const EllipseData& d) {
  AcDbDatabase& drawing = editor.database();
  std::vector<AcGePoint2d> hits;
  if (const auto* p = drawing.peek<AcDbPolyline>(polyline))
    hits = intersect(p->geometry(), LineCurve{midpoint(d.s, d.e), d.m}, Extend::kExtendArg);
  if (hits.size() != 2) return polyline;
  const AcGePoint2d away = hits[0].distanceTo(d.m) > hits[1].distanceTo(d.m) ? hits[0] : hits[1];
  const AcGeVector2d chord = d.s - d.e;
  auto line = std::make_unique<AcDbLine>(solid(d.s + chord * 10), solid(d.e - chord * 10));
  const AcDbObjectId edge = appendToModelSpace(drawing, std::move(line), {}, kColorByLayer, "");
  editor.acedCommand(
      {std::string("trim"), edge, std::string(), EntityPick{polyline, solid(away)}, std::string()});
  editor.acedCommand({std::string("erase"), edge, std::string()});
  return editor.acdbEntLast();
}

// The arcs run a thousandth of the ellipse's size beside it; its ends must still meet those of its
// neighbours.
void placeEnds(AcDbDatabase& drawing, AcDbObjectId id, const EllipseData& d) {
  auto polyline = drawing.open<AcDbPolyline>(id, OpenMode::kForWrite);
  if (!polyline || polyline->isClosed() || polyline->numVerts() < 2) return;
  const int last = polyline->numVerts() - 1;
  const AcGePoint2d first = polyline->getPointAt(0);
  const bool forward = first.distanceTo(d.s) <= first.distanceTo(d.e);
  polyline->setPointAt(0, forward ? d.s : d.e);
  polyline->setPointAt(last, forward ? d.e : d.s);
}

AcDbObjectId drawInPlace(AcEditor& editor, const EllipseData& d, AcDbObjectId before) {
  AcDbDatabase& drawing = editor.database();
  drawFullEllipse(editor, d);
  AcDbObjectId id = editor.acdbEntLast();
  if (id.isNull() || id == before) return {};
  if (const auto* heavy = drawing.peek<AcDb2dPolyline>(id)) {
    auto light = convertFrom(*heavy);
    if (auto old = drawing.open<AcDbEntity>(id, OpenMode::kForWrite)) old->erase();
    id = appendToModelSpace(drawing, std::move(light), d.layer, d.color, "");
    editor.acedCommand({std::string("regen")});
  }
  {
    auto made = drawing.open<AcDbEntity>(id, OpenMode::kForWrite);
    if (!made) return {};
    made->setLayer(d.layer);
    made->setColorIndex(d.color);
    if (!made->isKindOf(AcDbPolyline::desc())) return {};
  }
  if (d.full()) return id;
  id = trimToArc(editor, id, d);
  placeEnds(drawing, id, d);
  return id;
}

// One conversion command: every entity of class T in a selection.
template <class T, class Convert>
void convertSelection(AcEditor& editor, Convert convert) {
  const auto set = editor.acedSSGet("");
  if (!set) return;
  int done = 0;
  for (std::size_t i = 0; i < set.value.size(); ++i) {
    const bool wanted{editor.database().open<T>(set.value[i], OpenMode::kForWrite)};
    if (wanted && convert(set.value[i], static_cast<int>(i))) ++done;
  }
  editor.acutPrintf("\n *** %d OK!", done);
}

}  // namespace

AcDbObjectId ellipseToPolyline(AcEditor& editor, AcDbObjectId id) {
  AcDbDatabase& drawing = editor.database();
  EllipseData d;
  const AcDbObjectId before = editor.acdbEntLast();
  {
    auto ellipse = drawing.open<AcDbEllipse>(id, OpenMode::kForWrite);
    if (!ellipse || ellipse->isNull()) return {};
    d = dataOf(*ellipse);
  }
  CommandSetting setting(editor);
  setting.osmode(0).cmdEcho(0).world();
  const AcDbObjectId made = drawInPlace(editor, d, before);
  if (!made.isNull())
    if (auto ellipse = drawing.open<AcDbEllipse>(id, OpenMode::kForWrite)) ellipse->erase();
  return made;
}

void s2p(Module& module) {
  AcEditor& editor = module.editor;
  convertSelection<AcDbSpline>(editor, [&](AcDbObjectId id, int i) {
    bool ok = false;
    {
      const auto spline = editor.database().open<AcDbSpline>(id);
      ok = spline && !splineToPolyline(editor, *spline).isNull();
    }
    if (!ok) {
      editor.acutPrintf("\n %d: join spline failed!", i);
      return false;
    }
    if (auto spline = editor.database().open<AcDbSpline>(id, OpenMode::kForWrite)) spline->erase();
    return true;
  });
}

void e2p(Module& module) {
  AcEditor& editor = module.editor;
  convertSelection<AcDbEllipse>(editor, [&](AcDbObjectId id, int i) {
    if (!ellipseToPolyline(editor, id).isNull()) return true;
    editor.acutPrintf("\n %d: join Ellipse failed!", i);
    return false;
  });
}

}  // namespace tarnex
