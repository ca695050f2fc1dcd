// When one curve lies over another.
// Knows values alone.
#include "aids/foldrules.h"

#include <cmath>
#include <utility>

namespace tarnex {

namespace {

bool within(double a, double b) {
  return std::abs(a - b) <= kFoldTolerance;
}

bool sameCircle(AcGePoint2d c0, double r0, AcGePoint2d c1, double r1) {
  return within(c0.x, c1.x) && within(c0.y, c1.y) && within(r0, r1);
}

bool sameAngle(double a, double b) {
  const double limit = 5.555555555555556e-06 * kPi;  // 0.001 degrees
  const double d = std::abs(a - b);
  return d < limit || std::abs(d - 2 * kPi) <= limit;
}

bool inAngles(double x, double s, double e) {
  if (e > s) return s <= x && x <= e;
  if (e < s) return x >= s || x <= e;
  return false;
}

bool between(AcGePoint2d p, AcGePoint2d a, AcGePoint2d b) {
  return std::abs(p.distanceTo(a) + p.distanceTo(b) - a.distanceTo(b)) <= kFoldTolerance;
}

FoldOutcome foldLines(FoldBase& base, FoldLine& s, const FoldLine& t) {
  if (!within(s.k, t.k) || !within(s.b, t.b)) return FoldOutcome::kKeep;
  const bool in0 = between(t.s0, s.s0, s.s1), in1 = between(t.s1, s.s0, s.s1);
  if (in0 && in1) return FoldOutcome::kAbsorb;
  const bool over0 = between(s.s0, t.s0, t.s1), over1 = between(s.s1, t.s0, t.s1);
  if (in0) {
    s.s1 = t.s1;
  } else if (in1) {
    s.s0 = t.s0;
  } else if (over0 || over1) {
    if (over0) s.s0 = t.s0;
    if (over1) s.s1 = t.s1;
  } else {
    return FoldOutcome::kKeep;
  }
  base.merged = true;
  return FoldOutcome::kAbsorb;
}

FoldOutcome foldArcs(FoldBase& base, FoldArc& a, const FoldArc& b) {
  if (!sameCircle(a.centre, a.radius, b.centre, b.radius)) return FoldOutcome::kKeep;
  if (sameAngle(a.a0, b.a1) && sameAngle(a.a1, b.a0)) return FoldOutcome::kDrop;
  const bool in0 = inAngles(b.a0, a.a0, a.a1), in1 = inAngles(b.a1, a.a0, a.a1);
  // Both ends of b in a, but b runs the other way round from end to end: they cover the whole circle.
  if (in0 && in1 && normalizedAngle(b.a1 - a.a0) < normalizedAngle(b.a0 - a.a0)) return FoldOutcome::kDrop;
  if (in0 || in1) {
    if (!in1) a.a1 = b.a1;
    if (!in0) a.a0 = b.a0;
  } else {
    if (!inAngles(a.a0, b.a0, b.a1)) return FoldOutcome::kKeep;
    if (!inAngles(a.a1, b.a0, b.a1)) return FoldOutcome::kDrop;
    a.a0 = b.a0;
    a.a1 = b.a1;
  }
  base.merged = true;
  return FoldOutcome::kAbsorb;
}

}  // namespace

FoldLine foldLine(AcGePoint2d start, AcGePoint2d end) {
  const bool vertical = !(std::abs(start.x - end.x) > kFoldTolerance);
  const bool swapped = vertical ? end.y < start.y : end.x < start.x;
  FoldLine line{swapped ? end : start, swapped ? start : end};
  const AcGePoint2d p0 = line.s0, p1 = line.s1;
  if (vertical) {
    line.k = p0.x;
    line.b = 99999.0;
  } else {
    line.k = (p0.y - p1.y) / (p0.x - p1.x);
    line.b = (p1.y * p0.x - p0.y * p1.x) / (p0.x - p1.x);
  }
  return line;
}

FoldArc foldArc(AcGePoint2d centre, double radius, double startAngle, double endAngle) {
  const auto nearZero = [](double a) { return a <= 0.001 || a >= 2 * kPi - 0.001; };
  return {centre, radius, nearZero(startAngle) ? 2 * kPi : startAngle, nearZero(endAngle) ? 0 : endAngle};
}

FoldOutcome fold(FoldBase& base, const FoldShape& other) {
  if (auto* s = std::get_if<FoldLine>(&base.shape)) {
    const auto* t = std::get_if<FoldLine>(&other);
    return t ? foldLines(base, *s, *t) : FoldOutcome::kKeep;
  }
  if (auto* a = std::get_if<FoldArc>(&base.shape)) {
    if (const auto* b = std::get_if<FoldArc>(&other)) return foldArcs(base, *a, *b);
    const auto* c = std::get_if<FoldCircle>(&other);
    if (!c || !sameCircle(a->centre, a->radius, c->centre, c->radius)) return FoldOutcome::kKeep;
    base.gaveWay = true;
    base.shape = FoldCircle{a->centre, a->radius};
    return FoldOutcome::kDrop;
  }
  const auto& c = std::get<FoldCircle>(base.shape);
  if (const auto* b = std::get_if<FoldArc>(&other))
    return sameCircle(c.centre, c.radius, b->centre, b->radius) ? FoldOutcome::kAbsorb : FoldOutcome::kKeep;
  if (const auto* d = std::get_if<FoldCircle>(&other))
    return sameCircle(c.centre, c.radius, d->centre, d->radius) ? FoldOutcome::kAbsorb : FoldOutcome::kKeep;
  return FoldOutcome::kKeep;
}

}  // namespace tarnex
