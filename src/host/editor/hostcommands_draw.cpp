// Commands that draw: line, circle, arc, ellipse, point, text.
// Knows no application.
#include <cmath>
#include <vector>

#include "host/editor/hostcommands.h"
#include "host/editor/state.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

void fail(AcEditor& editor, const std::string& why) {
  editor.print(why + "\n");
  editor.commandFailed();
}

// The circle through three points; nothing when they lie on a line.
std::optional<ArcCurve> circleThrough(AcGePoint2d a, AcGePoint2d b, AcGePoint2d c) {
  const AcGeVector2d u = b - a, v = c - a;
  const double cross = 2 * u.crossProduct(v);
  if (std::abs(cross) <= roundoff(u.length() * v.length())) return std::nullopt;
  const double uu = u.dotProduct(u), vv = v.dotProduct(v);
  const AcGeVector2d toCentre{(v.y * uu - u.y * vv) / cross, (u.x * vv - v.x * uu) / cross};
  return ArcCurve{a + toCentre, toCentre.length(), 0, 2 * kPi};
}

void appendArc(AcEditor& editor, const AcGePoint3d& centre, double radius, double from, double to) {
  appendNew(editor, std::make_unique<AcDbArc>(centre, radius, normalizedAngle(from), normalizedAngle(to)));
}

void arcThrough(AcEditor& editor, const AcGePoint3d& start, const AcGePoint3d& second) {
  const auto end = askWorldPoint(editor, "Specify end point of arc: ", &second);
  if (!end) return;
  const auto circle = circleThrough(start.flat(), second.flat(), end.value.flat());
  if (!circle) return fail(editor, "Three points on a line make no arc.");
  const bool left = (second.flat() - start.flat()).crossProduct(end.value.flat() - start.flat()) > 0;
  const double a = acutAngle(circle->centre, start.flat()), b = acutAngle(circle->centre, end.value.flat());
  appendArc(editor, solid(circle->centre, start.z), circle->radius, left ? a : b, left ? b : a);
}

// Counter-clockwise from the start to the direction of the end.
void arcAbout(AcEditor& editor, std::optional<AcGePoint3d> start) {
  const auto centre = askWorldPoint(editor, "Specify center point of arc: ", start ? &*start : nullptr);
  if (!centre) return;
  if (!start) {
    const auto first = askWorldPoint(editor, "Specify start point of arc: ", &centre.value);
    if (!first) return;
    start = first.value;
  }
  const auto end = askWorldPoint(editor, "Specify end point of arc: ", &centre.value);
  if (!end) return;
  const AcGePoint2d c = centre.value.flat();
  const double radius = c.distanceTo(start->flat());
  if (!(radius > 0) || c == end.value.flat())
    return fail(editor, "An arc needs a radius and a direction to end at.");
  appendArc(editor, centre.value, radius, acutAngle(c, start->flat()), acutAngle(c, end.value.flat()));
}

void appendCircle(AcEditor& editor, const AcGePoint3d& centre, double radius) {
  if (!(radius > 0)) return fail(editor, "A circle needs a radius above 0.");
  appendNew(editor, std::make_unique<AcDbCircle>(centre, radius));
}

void circleThroughPoints(AcEditor& editor, bool three) {
  std::vector<AcGePoint3d> points;
  for (int i = 0; i < (three ? 3 : 2); ++i) {
    const auto p =
        askWorldPoint(editor, "Specify point on circle: ", points.empty() ? nullptr : &points.back());
    if (!p) return;
    points.push_back(p.value);
  }
  if (!three) {
    const AcGePoint2d centre = midpoint(points[0].flat(), points[1].flat());
    return appendCircle(editor, solid(centre, points[0].z), centre.distanceTo(points[0].flat()));
  }
  const auto circle = circleThrough(points[0].flat(), points[1].flat(), points[2].flat());
  if (!circle) return fail(editor, "Three points on a line make no circle.");
  appendCircle(editor, solid(circle->centre, points[0].z), circle->radius);
}

// The half axis may be the longer one; an ellipse's record wants the longer one first.
void appendEllipse(AcEditor& editor, const AcGePoint3d& centre, AcGeVector2d axis, double other) {
  double first = axis.length();
  if (!(first > 0) || !(other > 0)) return fail(editor, "An ellipse needs two axes longer than 0.");
  if (other > first) {
    axis = axis.perpVector() * (other / first);
    std::swap(first, other);
  }
  const double ratio = other / first;
  if (editor.intVar("PELLIPSE") == 0) {
    appendNew(editor, std::make_unique<AcDbEllipse>(centre, axis, ratio, 0, 2 * kPi));
    return;
  }
  auto polyline = std::make_unique<AcDbPolyline>(ellipseAsArcs(centre.flat(), axis, ratio));
  polyline->setElevation(centre.z);
  appendNew(editor, std::move(polyline));
}

}  // namespace

void lineCommand(AcEditor& editor) {
  auto at = askWorldPoint(editor, "Specify first point: ");
  if (!at) return;
  std::vector<AcGePoint3d> points{at.value};
  std::vector<AcDbObjectId> drawn;
  for (;;) {
    editor.acedInitGet(0, points.size() > 2 ? "Close Undo" : "Undo");
    const auto next = askWorldPoint(
        editor, points.size() > 2 ? "Specify next point or [Close/Undo]: " : "Specify next point or [Undo]: ",
        &points.back());
    if (next) {
      drawn.push_back(appendNew(editor, std::make_unique<AcDbLine>(points.back(), next.value)));
      points.push_back(next.value);
    } else if (next.reply == Reply::RTKWORD && editor.acedGetInput() == "Close") {
      appendNew(editor, std::make_unique<AcDbLine>(points.back(), points.front()));
      return;
    } else if (next.reply == Reply::RTKWORD) {
      if (drawn.empty()) continue;
      if (auto line = editor.database().open<AcDbLine>(drawn.back(), OpenMode::kForWrite)) line->erase();
      drawn.pop_back();
      points.pop_back();
    } else {
      return;
    }
  }
}

void circleCommand(AcEditor& editor) {
  editor.acedInitGet(0, "3P 2P");
  const auto centre = askWorldPoint(editor, "Specify center point for circle or [3P/2P]: ");
  if (centre.reply == Reply::RTKWORD) return circleThroughPoints(editor, editor.acedGetInput() == "3P");
  if (!centre) return;
  editor.acedInitGet(kNoEnter | kNotZero | kNotNegative, "Diameter");
  auto radius = askDistance(editor, "Specify radius of circle or [Diameter]: ", centre.value);
  if (radius.reply == Reply::RTKWORD) {
    editor.acedInitGet(kNoEnter | kNotZero | kNotNegative, "");
    radius = askDistance(editor, "Specify diameter of circle: ", centre.value);
    radius.value /= 2;
  }
  if (radius) appendCircle(editor, centre.value, radius.value);
}

void arcCommand(AcEditor& editor) {
  editor.acedInitGet(0, "Center");
  const auto start = askWorldPoint(editor, "Specify start point of arc or [Center]: ");
  if (start.reply == Reply::RTKWORD) return arcAbout(editor, {});
  if (!start) return;
  editor.acedInitGet(0, "Center");
  const auto second = askWorldPoint(editor, "Specify second point of arc or [Center]: ", &start.value);
  if (second.reply == Reply::RTKWORD) return arcAbout(editor, start.value);
  if (second) arcThrough(editor, start.value, second.value);
}

void ellipseCommand(AcEditor& editor) {
  editor.acedInitGet(0, "Center");
  const auto first = askWorldPoint(editor, "Specify axis endpoint of ellipse or [Center]: ");
  AcGePoint3d centre;
  AcGeVector2d axis;
  if (first.reply == Reply::RTKWORD) {
    const auto middle = askWorldPoint(editor, "Specify center of ellipse: ");
    if (!middle) return;
    const auto end = askWorldPoint(editor, "Specify endpoint of axis: ", &middle.value);
    if (!end) return;
    centre = middle.value;
    axis = end.value.flat() - centre.flat();
  } else {
    if (!first) return;
    const auto end = askWorldPoint(editor, "Specify other endpoint of axis: ", &first.value);
    if (!end) return;
    centre = solid(midpoint(first.value.flat(), end.value.flat()), first.value.z);
    axis = end.value.flat() - centre.flat();
  }
  editor.acedInitGet(kNoEnter | kNotZero | kNotNegative, "");
  const auto other = askDistance(editor, "Specify distance to other axis: ", centre);
  if (other) appendEllipse(editor, centre, axis, other.value);
}

void pointCommand(AcEditor& editor) {
  const auto at = askWorldPoint(editor, "Specify a point: ");
  if (at) appendNew(editor, std::make_unique<AcDbPoint>(at.value));
}

void textCommand(AcEditor& editor) {
  const auto at = askWorldPoint(editor, "Specify start point of text: ");
  if (!at) return;
  const double standing = editor.realVar("TEXTSIZE");
  editor.acedInitGet(kNotZero | kNotNegative, "");
  const auto height =
      orStanding(editor.acedGetDist("Specify height <" + shortestNumber(standing) + ">: "), standing);
  if (!height) return;
  const auto rotation = orStanding(editor.acedGetAngle("Specify rotation angle of text <0>: "), 0.0);
  if (!rotation) return;
  const auto text = editor.acedGetString(true, "Enter text: ");
  if (!text || text.value.empty()) return;
  (void)editor.acedSetVar("TEXTSIZE", *height);
  appendNew(editor, std::make_unique<AcDbText>(at.value, text.value, *height, *rotation));
}

}  // namespace tarnex
