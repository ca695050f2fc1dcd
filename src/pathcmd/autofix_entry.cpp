// Auto fix at the entry: a pocket past the contour, round or rectangular, in which the path starts and ends.
// Knows the path's first and last span; prompts and messages are the command's.
#include "contour/geometrylibrary.h"
#include "pathcmd/autofix.h"

namespace tarnex {

namespace {

constexpr double kFlattest = 0.001;    // rad; an arc of which the pocket takes less is too flat for it
constexpr double kHalfCircle = 0.001;  // mm; a rise this near to the radius makes half a circle

// How the pocket meets the contour on one side of the entry.
struct Flank {
  AcGePoint2d tip, corner, meets;  // corner: beside the tip, of a rectangular pocket
  double bulge = 0;                // of the span between `meets` and its other end
  double toLeft = 1;               // 1: seen along the lead-in the flank lies to the left, else -1
};

struct Entry {
  AcGePoint2d thread, entry;
  double depth = 0, width = 0;  // mm
};

// A span that leaves the entry or, `arrives`, comes back to it.
struct EntrySpan {
  AcGePoint2d other;
  double bulge = 0;
  bool arrives = false;
};

std::optional<Flank> straightFlank(const Entry& e, const EntrySpan& span) {
  const double half = e.width / 2;
  if (!(e.entry.distanceTo(span.other) - half > kSamePoint)) return std::nullopt;
  const AcGeVector2d along = (span.other - e.entry).normal() * half;
  Flank flank;
  flank.tip = e.entry + (e.entry - e.thread).normal() * e.depth;
  flank.corner = flank.tip + along;
  flank.meets = e.entry + along;
  flank.toLeft = triangleArea(e.thread, e.entry, span.other) >= 0 ? 1 : -1;
  return flank;
}

// The pocket lies on the radius through the entry, on the arc's far side from the wire.
std::optional<Flank> arcFlank(const Entry& e, const EntrySpan& span) {
  const auto [start, end] = span.arrives ? std::pair(span.other, e.entry) : std::pair(e.entry, span.other);
  const auto [centre, radius] = bulgeToCircle(start, end, span.bulge);
  const double half = e.width / 2, turn = span.bulge > 0 ? 1 : -1;
  if (!(half < radius)) return std::nullopt;
  const double taken = std::asin(half / radius);  // radians of the arc
  const double left = 4 * std::atan(std::abs(span.bulge)) - taken;
  if (taken <= kFlattest || !(left * radius > kSamePoint)) return std::nullopt;
  const double away = span.arrives ? -turn : turn;  // 1: from the entry the flank runs counter-clockwise
  const bool outwards = (e.entry - e.thread).dotProduct(e.entry - centre) >= 0;
  const double rise = std::sqrt(radius * radius - half * half);
  if (!outwards && !(rise > e.depth)) return std::nullopt;
  const double at = acutAngle(centre, e.entry);
  Flank flank;
  flank.tip = acutPolar(centre, at, outwards ? rise + e.depth : rise - e.depth);
  flank.corner = acutPolar(flank.tip, at + away * kPi / 2, half);
  flank.meets = acutPolar(centre, at + away * taken, radius);
  flank.bulge = std::tan((span.arrives ? sweepAngle(centre, span.other, flank.meets, turn)
                                       : sweepAngle(centre, flank.meets, span.other, turn)) /
                         4);
  flank.toLeft = outwards ? away : -away;
  return flank;
}

std::optional<Flank> flankOf(const Entry& e, const EntrySpan& span) {
  return span.bulge == 0 || span.bulge == kMarkedBulge ? straightFlank(e, span) : arcFlank(e, span);
}

// Radius of the arc of the pocket's width and depth.
double pocketRadius(const AutoFixSettings& sizes) {
  return sizes.dEntryDepth / 2 + sizes.dEntryWidth * sizes.dEntryWidth / (8 * sizes.dEntryDepth);
}

// Of each of the round pocket's two arcs, as if it ran to the left.
double halfArcBulge(const AutoFixSettings& sizes) {
  const double beyond = std::abs(pocketRadius(sizes) - sizes.dEntryDepth);
  const double angle = beyond < kHalfCircle ? kPi / 2 : std::atan(sizes.dEntryWidth / 2 / beyond);
  return std::tan(angle / 4);
}

double taperOf(const CToolPath& path, int vertex) {
  const auto& tapers = path.aSegTaper();
  return vertex < static_cast<int>(tapers.size()) ? tapers[static_cast<std::size_t>(vertex)] : 0;
}

}  // namespace

bool isPocket(const AutoFixSettings& sizes) {
  if (!(sizes.dEntryDepth > 0) || !(sizes.dEntryWidth > 0)) return false;
  const double radius = pocketRadius(sizes);
  return std::isfinite(radius) && radius >= sizes.dEntryDepth - roundoff(radius);
}

bool fixEntry(CToolPath& path, const AutoFixSettings& sizes) {
  int n = path.numVerts();
  if (path.hasFlag(kOpenPath) || n < 4) return false;
  const Entry entry{path.getPointAt(0), path.getPointAt(1), sizes.dEntryDepth, sizes.dEntryWidth};
  if (!(path.getPointAt(n - 1).distanceTo(entry.entry) <= kSamePoint)) return false;
  const auto leaving = flankOf(entry, {path.getPointAt(2), path.getBulgeAt(1), false});
  const auto arriving = flankOf(entry, {path.getPointAt(n - 2), path.getBulgeAt(n - 2), true});
  if (!leaving || !arriving) return false;
  const bool round = sizes.nKind == static_cast<int>(FixKind::kRoundPocket);
  const double half = round ? leaving->toLeft * halfArcBulge(sizes) : 0;
  // One tip, so that the path closes: where a line and an arc meet at the entry theirs would differ.
  const AcGePoint2d tip = leaving->tip;
  const AcGePoint2d arrivingCorner = tip + (arriving->corner - arriving->tip);
  const double taper = taperOf(path, 1);  // goes with what is left of the first span
  path.addVertexAt(n - 1, arriving->meets, half);
  if (!round) path.addVertexAt(n, arrivingCorner, 0);
  path.setBulgeAt(n - 2, arriving->bulge);
  path.addVertexAt(2, leaving->meets, leaving->bulge);
  if (!round) path.addVertexAt(2, leaving->corner, 0);
  path.setBulgeAt(1, half);
  path.setPointAt(1, tip);
  n = path.numVerts();
  path.setPointAt(n - 1, tip);
  if (taper != 0) {
    path.setSegmentTaperAt(1, 0);
    path.setSegmentTaperAt(round ? 2 : 3, taper);
  }
  path.setFlag(kAutoFixed, true);
  path.settleBreak();
  return true;
}

}  // namespace tarnex
