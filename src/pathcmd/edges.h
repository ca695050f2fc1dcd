// Single edges of finished paths and polylines: one shifted parallel to itself, one given a step.
// Knows paths and polylines as geometry; notes and prompts are the commands'.
#pragma once

#include <optional>
#include <vector>

#include "frame/module.h"
#include "toolpath/toolpath.h"

namespace tarnex {

enum class EdgeShift { kDone, kNothing, kArc, kParallel, kFull };

struct ShiftedEdge {
  EdgeShift outcome = EdgeShift::kNothing;
  AcGePoint2d from, to;  // the edge as it stood
};
// Shifts the straight edge under `pick` by `distance` mm (its size counts) to the side of `towards`; its ends
// slide along the neighbouring lines, an arc between goes along. Lead-in and lead-out are out of reach. A
// neighbour that runs exactly along x lets its end slide by the plain distance. The path stays closed: where
// its entry or its last vertex would leave the other, a vertex more makes the step. kNothing: no such edge,
// or nothing that could slide; kParallel: a neighbour runs in the edge's direction.
ShiftedEdge shiftEdge(CToolPath& path, AcGePoint2d pick, AcGePoint2d towards, double distance);

// A rectangular step in one span, between two points that lie on it (0.001 mm).
struct Step {
  AcGePoint2d a, b;     // in any order
  AcGePoint2d towards;  // a point on the side that the step goes to
  double height = 0;    // mm, above 0
};
enum class StepCut { kDone, kOnNoSpan, kNoStep, kFull };
// The vertices that come in behind `vertex`, and the new bulge there. On an arc the step is radial.
struct StepVertices {
  int vertex = 0;
  double bulge = 0;
  std::vector<BulgeVertex> inserted;
  bool rest = true;  // something of the span is left behind the step; the last one inserted begins it
  StepCut outcome = StepCut::kOnNoSpan;
};
// `first`, `last`: the spans that may be cut. kOnNoSpan: none of them holds both points. kNoStep: no width, a
// side that can't be told, or an arc whose radius isn't larger than the height of an inward step.
[[nodiscard]] StepVertices stepIn(const PolylineCurve& polyline, const Step& step, int first, int last);
// The same done to a polyline; of a path lead-in and lead-out are out of reach, and what is left of the span
// keeps its taper.
StepCut cutStep(AcDbPolyline& polyline, const Step& step);

void DB(Module& module);  // shifts picked edges
void AC(Module& module);  // cuts steps into picked polylines

}  // namespace tarnex
