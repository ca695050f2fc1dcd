// The offset of a contour: the quick road where nothing collapses, trimming where something does.
// Knows spans and bulges only; lead-ins, sides and passes are above it.
#include "host/geometry/offset.h"

#include <algorithm>

#include "host/geometry/offset_plain.h"
#include "host/geometry/offset_trim.h"

namespace tarnex {

namespace {

void moveTo(PolylineCurve& c, AcGeVector2d origin) {
  for (BulgeVertex& v : c.vertices) v.point = v.point + origin;
  // Far from the drawing's zero two vertices may round to one.
  const auto last =
      std::unique(c.vertices.rbegin(), c.vertices.rend(),
                  [](const BulgeVertex& kept, const BulgeVertex& v) { return kept.point == v.point; });
  c.vertices.erase(c.vertices.begin(), last.base());
  if (c.closed && c.vertices.size() > 1 && c.vertices.front().point == c.vertices.back().point)
    c.vertices.pop_back();
}

}  // namespace

std::optional<std::vector<PolylineCurve>> offsetCurves(std::span<const BulgeVertex> path, double distance) {
  const auto source = offsets::readSource(path, distance);
  if (!source) return std::nullopt;
  const auto joints = offsets::solveJoints(*source, distance);
  std::optional<std::vector<PolylineCurve>> curves;
  if (auto plain = offsets::plainOffset(*source, joints, distance)) {
    curves.emplace().push_back(std::move(*plain));
  } else {
    curves = offsets::trimmedOffset(*source, joints, distance);
  }
  if (!curves) return curves;
  for (PolylineCurve& c : *curves) moveTo(c, source->origin);
  std::erase_if(*curves, [](const PolylineCurve& c) { return c.vertices.size() < 2; });
  return curves;
}

}  // namespace tarnex
