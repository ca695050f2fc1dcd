// One 3B block as a stroke of the wire: lines from counts, ends of arcs from the count length.
// Knows no program and no contour.
#include "exchange/walk3b.h"

#include <limits>

namespace tarnex::truth {

namespace {

constexpr double kPi1 = 3.141592653589793;
constexpr double kMicron = 0.001;      // mm of one count
constexpr double kHalfCount = 0.0005;  // mm; a count is a rounded length
constexpr double kAxisRule =
    0.1 * kPi1 / 180;  // rad; nearer to an axis the word is that of the quadrant behind it
// Below this radius, mm, half a count at the axis is more than the axis rule's angle, so a start that counts
// as lying on the axis may have the word of either side.
constexpr double kSmallArc = 0.3;

// Sum of |change| of cos from angle 0 to phi (phi from 0 on), in radii, and back.
double travelled(double phi) {
  const double half = std::floor(phi / kPi1);
  return 2 * half + 1 - std::cos(phi - half * kPi1);
}
double angleAfter(double travel) {
  const double half = std::floor(travel / 2);
  return half * kPi1 + std::acos(std::clamp(1 - (travel - 2 * half), -1.0, 1.0));
}

// Size of the sweep after which `bj` has been counted along the axis, radians.
double sweepFor(Vec start, double bj, char axis, bool clockwise) {
  const double radius = std::hypot(start.x, start.y);
  double phi = std::atan2(start.y, start.x) - (axis == 'Y' ? kPi1 / 2 : 0);
  if (clockwise) phi = -phi;
  phi = std::fmod(phi + 4 * kPi1, 2 * kPi1);
  return std::max(0.0, angleAfter(travelled(phi) + bj / radius) - phi);
}

Vec endFrom(Vec start, double sweep) {
  const double a = std::atan2(start.y, start.x) + sweep, r = std::hypot(start.x, start.y);
  return {r * std::cos(a) - start.x, r * std::sin(a) - start.y};
}

Walked walkLine(const Move3b& m) {
  Walked w;
  double dx = static_cast<double>(m.bx), dy = static_cast<double>(m.by);
  if (m.bx == 0 && m.by == 0) {
    const bool alongX = m.quadrant == 1 || m.quadrant == 3;
    (alongX ? dx : dy) = static_cast<double>(m.bj);
    if (alongX != (m.axis == 'X')) w.contradiction = "the counting axis isn't that of the word";
    if (m.bj == 0) w.contradiction = "the block moves nothing";
  } else {
    const auto along = m.axis == 'X' ? m.bx : m.by, across = m.axis == 'X' ? m.by : m.bx;
    if (along < across)
      w.contradiction = "the counting axis is that of the shorter extent";
    else if (along != m.bj)
      w.contradiction = "the count length isn't the extent along the counting axis";
    const bool onX = m.by == 0, onY = m.bx == 0;
    if ((onX && m.quadrant % 2 == 0) || (onY && m.quadrant % 2 == 1))
      w.contradiction = "the word isn't that of a line along its axis";
  }
  if (m.quadrant == 2 || m.quadrant == 3) dx = -dx;
  if (m.quadrant == 3 || m.quadrant == 4) dy = -dy;
  w.stroke = lineStroke({0, 0}, {dx * kMicron, dy * kMicron});
  w.endRounding = w.wayRounding = std::hypot(kHalfCount, kHalfCount);
  return w;
}

// Word and start on an axis must agree on where the wire goes from there.
bool wordFitsAxis(const Move3b& m) {
  if ((m.bx != 0 && m.by != 0) || std::max(m.bx, m.by) * kMicron < kSmallArc) return true;
  // A counter-clockwise arc goes from +x into quadrant 1, from +y into 2, ...; a clockwise one from +x into
  // 4, ...
  const bool onX = m.by == 0;
  const bool odd = m.quadrant % 2 == 1;
  return m.kind == 'N' ? onX == odd : onX != odd;
}

Vec startOf(const Move3b& m) {
  const double sx = m.quadrant == 1 || m.quadrant == 4 ? 1 : -1, sy = m.quadrant <= 2 ? 1 : -1;
  return {sx * static_cast<double>(m.bx) * kMicron, sy * static_cast<double>(m.by) * kMicron};
}

// The start on the other side of the axis that it is about to have crossed, if the axis rule allows it.
std::optional<Vec> startAcross(const Move3b& m) {
  const Vec s = startOf(m);
  const bool nearX = m.by < m.bx;  // near the x axis
  const double small = std::min(m.bx, m.by), large = std::max(m.bx, m.by);
  if (small == 0 || (small - 0.5) > large * std::tan(kAxisRule)) return std::nullopt;
  // Only the axis behind the start, in the sense of travel: the word already names the quadrant in front.
  const bool leavesX = (m.kind == 'N') == (m.quadrant % 2 == 1);
  if (leavesX != nearX) return std::nullopt;
  return nearX ? Vec{s.x, -s.y} : Vec{-s.x, s.y};
}

// What of an arc's block doesn't fit the stroke that it is read as.
std::string contradictionOf(const Move3b& m, const Stroke& s, double rounding) {
  const Vec toEnd = s.end - s.centre;
  const double alongAxis = std::abs(m.axis == 'X' ? toEnd.y : toEnd.x);
  const double across = std::abs(m.axis == 'X' ? toEnd.x : toEnd.y);
  if (m.bj == 0) return "the block moves nothing";
  if (std::abs(s.sweep) > 2 * kPi1 * (1 + 1e-9) + 2 * rounding / s.radius)
    return "the count length is more than a full circle";
  if (across > alongAxis + 2 * rounding + 4 * kMicron) return "the counting axis isn't that of the arc's end";
  return wordFitsAxis(m) ? "" : "the word isn't that of an arc that starts on this axis";
}

}  // namespace

ArcEnd arcEnd(const Move3b& m, Vec start) {
  const bool clockwise = m.kind == 'S';
  const double turn = clockwise ? -1 : 1, bj = static_cast<double>(m.bj) * kMicron;
  const double sweep = std::min(sweepFor(start, bj, m.axis, clockwise), 4 * kPi1);
  ArcEnd out;
  out.stroke = arcStroke(Point{0, 0} - start, {0, 0}, turn * sweep);
  const Vec end = endFrom(start, turn * sweep);
  out.stroke.end = Point{0, 0} + end;
  for (int corner = 0; corner < 8; ++corner) {
    const Vec s{start.x + (corner & 1 ? kHalfCount : -kHalfCount),
                start.y + (corner & 2 ? kHalfCount : -kHalfCount)};
    const double j = std::max(0.0, bj + (corner & 4 ? kHalfCount : -kHalfCount));
    const Vec e = endFrom(s, turn * sweepFor(s, j, m.axis, clockwise));
    out.rounding = std::max(out.rounding, std::hypot(e.x - end.x, e.y - end.y));
  }
  return out;
}

Walked walkMove(const Move3b& m) {
  if (m.kind == 'L') return walkLine(m);
  Walked w;
  if (m.bx == 0 && m.by == 0) {
    w.contradiction = "the arc has no radius";
    return w;
  }
  const ArcEnd read = arcEnd(m, startOf(m));
  w.stroke = read.stroke;
  w.endRounding = read.rounding;
  // The circle is known where the wire stands; half a turn away its centre's rounding shows twice.
  const double away = 2 * std::sin(std::min(std::abs(w.stroke.sweep), kPi1) / 2);
  w.wayRounding = std::max(w.endRounding, std::hypot(kHalfCount, kHalfCount) * away);
  w.contradiction = contradictionOf(m, w.stroke, read.rounding);
  if (const auto across = startAcross(m)) {
    const ArcEnd other = arcEnd(m, *across);
    w.otherSide = other.stroke;
    w.otherContradiction = contradictionOf(m, other.stroke, other.rounding);
  }
  return w;
}

}  // namespace tarnex::truth
