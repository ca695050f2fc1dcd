// The command that draws a polyline of lines and arcs.
// Knows no application.
#include <cmath>

#include "host/editor/hostcommands.h"

namespace tarnex {

namespace {

class DrawnPolyline {
 public:
  DrawnPolyline(AcEditor& editor, const AcGePoint3d& start) : editor_(editor), elevation_(start.z) {
    curve_.vertices.push_back({start.flat(), 0});
  }
  void run();

 private:
  enum class Next { kOn, kEnd };
  [[nodiscard]] Next lineStep();
  [[nodiscard]] Next arcStep();
  [[nodiscard]] Next keyword();
  void throughPoint();
  void add(AcGePoint2d p, double bulge);
  [[nodiscard]] AcGeVector2d heading() const;
  [[nodiscard]] AcGePoint3d last() const { return solid(curve_.vertices.back().point, elevation_); }

  AcEditor& editor_;
  PolylineCurve curve_;
  double elevation_;
  bool arcs_ = false;
};

void DrawnPolyline::add(AcGePoint2d p, double bulge) {
  curve_.vertices.back().bulge = bulge;
  curve_.vertices.push_back({p, 0});
}

// The direction in which the last span ends; along +x before there is one.
AcGeVector2d DrawnPolyline::heading() const {
  const std::size_t n = curve_.vertices.size();
  if (n < 2) return {1, 0};
  const Curve span = spanCurve(curve_, n - 2);
  const AcGeVector2d t = tangentAtParam(span, endParam(span));
  const auto* arc = std::get_if<ArcCurve>(&span);
  return (arc && arc->sweep < 0 ? -t : t).normal();
}

// A chord at the angle a to the start direction belongs to an arc of the sweep 2a: bulge tan(a / 2).
double tangentBulge(AcGeVector2d heading, AcGeVector2d chord) {
  const double a = std::atan2(heading.crossProduct(chord), heading.dotProduct(chord));
  return std::tan(a / 2);
}

// The bulge from a to b over m: half the angle that m sees, measured from straight on.
double bulgeThrough(AcGePoint2d a, AcGePoint2d m, AcGePoint2d b) {
  const AcGeVector2d in = m - a, out = b - m;
  return std::tan(std::atan2(in.crossProduct(out), in.dotProduct(out)) / 2);
}

void DrawnPolyline::throughPoint() {
  const AcGePoint3d from = last();
  const auto second = askWorldPoint(editor_, "Specify second point on arc: ", &from);
  if (!second) return;
  const auto end = askWorldPoint(editor_, "Specify end point of arc: ", &second.value);
  if (end) add(end.value.flat(), bulgeThrough(from.flat(), second.value.flat(), end.value.flat()));
}

DrawnPolyline::Next DrawnPolyline::keyword() {
  const std::string word = editor_.acedGetInput();
  if (word == "Arc" || word == "Line") arcs_ = word == "Arc";
  if (word == "Second") throughPoint();
  if (word == "Undo" && curve_.vertices.size() > 1) {
    curve_.vertices.pop_back();
    curve_.vertices.back().bulge = 0;
  }
  if (word != "CLose" || curve_.vertices.size() < 2) return Next::kOn;
  if (arcs_)
    curve_.vertices.back().bulge =
        tangentBulge(heading(), curve_.vertices.front().point - curve_.vertices.back().point);
  curve_.closed = true;
  return Next::kEnd;
}

DrawnPolyline::Next DrawnPolyline::lineStep() {
  editor_.acedInitGet(0, "Arc CLose Undo");
  const AcGePoint3d from = last();
  const auto next = askWorldPoint(editor_, "Specify next point or [Arc/CLose/Undo]: ", &from);
  if (next.reply == Reply::RTKWORD) return keyword();
  if (!next) return Next::kEnd;
  add(next.value.flat(), 0);
  return Next::kOn;
}

DrawnPolyline::Next DrawnPolyline::arcStep() {
  editor_.acedInitGet(0, "Line Second CLose Undo");
  const AcGePoint3d from = last();
  const auto next = askWorldPoint(editor_, "Specify endpoint of arc or [Line/Second/CLose/Undo]: ", &from);
  if (next.reply == Reply::RTKWORD) return keyword();
  if (!next) return Next::kEnd;
  add(next.value.flat(), tangentBulge(heading(), next.value.flat() - from.flat()));
  return Next::kOn;
}

void DrawnPolyline::run() {
  while ((arcs_ ? arcStep() : lineStep()) == Next::kOn) continue;
  if (curve_.vertices.size() < 2) return;
  auto polyline = std::make_unique<AcDbPolyline>(std::move(curve_));
  polyline->setElevation(elevation_);
  appendNew(editor_, std::move(polyline));
}

}  // namespace

void plineCommand(AcEditor& editor) {
  const auto start = askWorldPoint(editor, "Specify start point: ");
  if (start) DrawnPolyline(editor, start.value).run();
}

}  // namespace tarnex
