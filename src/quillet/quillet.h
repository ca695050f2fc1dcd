// The routine of the corner relief module, as it is found by name.
// Knows polylines of a drawing; what a program makes of the result, the program's writers know.
#pragma once

#include <vector>

namespace tarnex {
class AcDbDatabase;
}

extern "C" {

// Relieves the corners of a closed polyline of the drawing: where a wire that walks it leaves a fillet in the
// part, an out-and-back step along the outer bisector is added. `straightRadius` (mm) is the fillet's radius
// at corners between two straight spans, `arcRadius` that at corners of an arc; 0 leaves the corners of that
// kind alone. nSide: 1 the polyline is an inner hole, -1 an outer shape; its own orientation is the cutting
// direction.
//
// Leaves one new closed polyline as the newest entity of model space, on the layer and in the colour of the
// given one, which stays. A step at V is V, Q, V: both its spans carry the bulge 0.000001, the second V the
// bulge that V had. `flags` gets one entry per vertex: 1 for the added ones, which are Q and the second V, so
// that what belongs to vertex V stays at the place where the wire comes to it. Everything else is copied.
//
// Left alone: the first vertex, where the wire comes from its lead-in and leaves again; steps that stand in
// the polyline already; steps of at most 0.001 mm. 1: done. 0: no closed polyline of that id, or one without
// a direction; nothing has changed then.
[[gnu::visibility("default")]] int lxcorner1(tarnex::AcDbDatabase* drawing, unsigned id,
                                             double straightRadius, double arcRadius, int nSide,
                                             std::vector<int>* flags);
}
