// Writing down what is drawn.
#include "drawlog.h"

#include <gtest/gtest.h>

#include "host/platform/format.h"

namespace tarnex {

namespace {

std::string number(double v) {
  const double rounded = std::round(v * 1e4) / 1e4;
  return formatted("%g", rounded == 0 ? 0.0 : rounded);
}

std::string point(const AcGePoint3d& p) {
  return number(p.x) + ',' + number(p.y) + (p.z != 0 ? ',' + number(p.z) : "");
}

}  // namespace

void DrawLog::setLineType(std::string_view name) {
  linetype_ = name == "CONTINUOUS"       ? "-"
              : name == "Acad_iso02W100" ? "--"
              : name == "Acad_iso03W100" ? "- -"
                                         : name;
}

void DrawLog::add(const std::string& shape) {
  lines.push_back(std::to_string(marker_) + ' ' + std::to_string(color_) + ' ' + linetype_ + ": " + shape);
}

void DrawLog::polyline(std::span<const AcGePoint3d> points) {
  std::string shape = "line";
  for (const AcGePoint3d& p : points) shape += ' ' + point(p);
  add(shape);
}
void DrawLog::circle(const AcGePoint3d& centre, double radius) {
  add("circle " + point(centre) + " r " + number(radius));
}
void DrawLog::circularArc(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end) {
  add("arc " + point(start) + ' ' + point(middle) + ' ' + point(end));
}
void DrawLog::text(const AcGePoint3d& position, AcGeVector3d direction, double height,
                   std::string_view utf8) {
  EXPECT_EQ(direction, (AcGeVector3d{1, 0, 0}));
  add("text " + point(position) + " h " + number(height) + ' ' + std::string(utf8));
}

std::vector<std::string> drawn(const CToolPath& path, const PathDisplay* display) {
  DrawLog log(display);
  path.worldDraw(log);
  return log.lines;
}

namespace {

PolylineCurve square(bool clockwise) {
  PolylineCurve c{{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 20}, 0}, {{0, 20}, 0}}, true};
  if (clockwise) std::swap(c.vertices[1], c.vertices[3]);
  return c;
}

std::unique_ptr<CToolPath> made(bool done, std::unique_ptr<CToolPath> path) {
  EXPECT_TRUE(done);
  return path;
}

}  // namespace

std::unique_ptr<CToolPath> squareHole() {
  auto path = std::make_unique<CToolPath>();
  const bool done =
      path->initContour({{10, 10}, {20, 10}, kInnerHole, kCounterClockwise, 1, 0}, square(false), 1);
  return made(done, std::move(path));
}

std::unique_ptr<CToolPath> squarePunch() {
  auto path = std::make_unique<CToolPath>();
  const bool done = path->initContour({{-5, 10}, {0, 10}, kOuterShape, kClockwise, 1, 0}, square(true), 0);
  return made(done, std::move(path));
}

std::unique_ptr<CToolPath> roundHole(int direction) {
  auto path = std::make_unique<CToolPath>();
  const bool done = path->initCircle({{0, 0}, {10, 0}, kInnerHole, direction, 1, 0}, {0, 0}, 10, 4);
  return made(done, std::move(path));
}

std::unique_ptr<CToolPath> stored(const StoredPath& fields) {
  AcDbDwgFiler f;
  f.writeInt32(213);
  for (const int v : {fields.nPathNo, fields.nSide, fields.nDirection}) f.writeInt32(v);
  f.writeDouble(0);
  f.writeBoolean(false);  // the polyline: open, on the plane
  f.writeDouble(0);
  f.writeInt32(static_cast<int>(fields.vertices.size()));
  for (const BulgeVertex& v : fields.vertices) {
    f.writePoint2d(v.point);
    f.writeDouble(v.bulge);
  }
  f.writeInt16(static_cast<std::int16_t>(fields.vertices.size()));
  for (std::size_t i = 0; i < fields.vertices.size(); ++i) f.writeDouble(0);
  f.writeBoolean(false);  // no circle
  f.writeBoolean(fields.bClosed);
  f.writeInt32(fields.nFlags);
  f.writeDouble(0);
  f.writeDouble(fields.dOffset);
  f.writeInt16(0);
  if (fields.nFlags & (kFourAxis | kGuideCurve)) {
    f.writeInt16(static_cast<std::int16_t>(fields.upper.vertices.size()));
    for (std::size_t i = 0; i < fields.upper.vertices.size(); ++i) {
      f.writeDouble(fields.upper.bulges[i]);
      f.writePoint2d(fields.upper.vertices[i]);
    }
  }
  if (fields.nFlags & kFourAxis) {
    f.writeBoolean(false);
    f.writeBoolean(true);
    f.writeInt16(0);
  }
  f.writeInt16(256);
  f.writeString("STYLE1");
  for (int i = 0; i < 4; ++i) f.writeDouble(0);
  f.writeInt16(-1);  // no passes
  f.writeInt16(700);
  f.writeBoolean(fields.bHasStyle);
  f.writePoint2d(fields.ptBreak);
  f.writePoint2d(fields.ptBreakExit);
  f.writeDouble(0);
  f.writeDouble(0);
  f.writeDouble(fields.dHeight);
  if (fields.nFlags & kFourAxis) {
    f.writeInt16(0);
    f.writeInt16(static_cast<std::int16_t>(fields.aSyncMark.size()));
    for (const double mark : fields.aSyncMark) f.writeDouble(mark);
  }
  f.writeInt16(static_cast<std::int16_t>(fields.nBreakSeg));
  for (const double bulge : {fields.dBreakBulgeA, fields.dBreakBulgeB, 0.0, 0.0}) f.writeDouble(bulge);
  f.writePoint2d(fields.ptBreakUpper);
  f.writePoint2d(fields.ptBreakUpperExit);
  f.writeInt16(0);
  auto path = std::make_unique<CToolPath>();
  AcDbDwgFiler in(f.bytes());
  EXPECT_EQ(path->dwgInFields(in), ErrorStatus::eOk);
  return path;
}

}  // namespace tarnex
