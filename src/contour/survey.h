// What a drawing holds to cut: closed contours and how they lie in each other, chains that stay open, places
// where a chain has a choice, curves drawn twice. It only looks; nothing is changed. Knows entities as
// curves; no path.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/database/database.h"

namespace tarnex {

struct SurveyedContour {
  AcDbObjectId id;
  PolylineCurve shape;  // closed; a circle as two arcs
  bool circle = false;
  double radius = 0;  // of a circle, mm
  Extents2d box;
  double area = 0;    // mm², above 0
  double length = 0;  // mm
  int depth = 0;      // how many contours it lies in: even outer shapes, odd holes
  int parent = -1;    // index of the one right around it
};

struct OpenChain {
  AcDbObjectId id;
  AcGePoint2d from, to;
  double length = 0, gap = 0;  // mm; gap between its ends
};

struct BranchPoint {
  AcGePoint2d at;
  int ends = 0;     // curve ends that meet there, three or more
  AcDbObjectId id;  // one of the curves
};

struct DoubledCurve {
  AcDbObjectId first, second;
  AcGePoint2d at;  // the middle of what lies over each other
};

// Curves that are not joined yet: branch points and doubled curves among the given entities, and which of
// them can be part of a closed contour at all.
struct LooseSurvey {
  std::vector<BranchPoint> branches;
  std::vector<DoubledCurve> doubled;
  std::vector<AcDbObjectId> joinable;   // in drawing order: all but the curves of plain open chains
  std::vector<AcDbObjectId> notJoined;  // those
  std::vector<OpenChain> open;  // plain open chains: two free ends, no branches; `id` is one of its curves
};
// Ends up to `gap` mm apart count as joined.
[[nodiscard]] LooseSurvey surveyLoose(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& entities,
                                      double gap = 0.001);

// Contours and chains as they stand, in drawing order. Curves that cross each other count as they lie.
struct ContourSurvey {
  std::vector<SurveyedContour> contours;
  std::vector<OpenChain> open;
};
[[nodiscard]] ContourSurvey surveyContours(const AcDbDatabase& drawing,
                                           const std::vector<AcDbObjectId>& entities);

// Sets depth and parent of every contour from how they lie in each other.
void nestContours(std::vector<SurveyedContour>& contours);
// A contour that can be nested, from its shape; nothing when it isn't closed or holds no shape. `box`: the
// shape's extents, where somebody knows them.
[[nodiscard]] std::optional<SurveyedContour> surveyedContour(AcDbObjectId id, PolylineCurve shape,
                                                             const std::optional<Extents2d>& box = {});

}  // namespace tarnex
