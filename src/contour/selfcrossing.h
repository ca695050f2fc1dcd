// Where contours cross, touch or run along themselves or each other: places that no wire can cut as drawn.
// Knows polylines as values; no entity and no path.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/geometry/curves.h"

namespace tarnex {

// Places where spans of the polyline meet other than at the vertex that they share, in order along it, each
// once (places within a few kSamePoint are one). Tangent contact, a vertex on another span and a span that
// folds back on its neighbour count, all within kSamePoint; of a stretch that lies over another its ends and
// the vertices on it. What is less than four kSamePoint apart along the polyline never counts, nor a lens
// between neighbours thinner than a hundredth of kSamePoint. Nothing for a polyline that isn't valid. One
// that meets itself a hundred thousand times gives only the first places.
[[nodiscard]] std::vector<AcGePoint2d> selfCrossings(const PolylineCurve& c);

struct ContourContact {
  std::uint32_t first = 0, second = 0;  // indices of the contours, first <= second; equal: with itself
  AcGePoint2d at;
};
struct ContactSurvey {
  std::vector<ContourContact> contacts;  // by first, second, then along the first; each place once a pair
  bool complete = true;                  // false: so many spans meet that the search was ended
};
// The same of many contours, with themselves and with each other. Contours that aren't valid meet nothing.
[[nodiscard]] ContactSurvey contourContacts(std::span<const PolylineCurve> contours);

}  // namespace tarnex
