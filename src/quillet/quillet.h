// The routines of the module, as they are found by name: corner relief and roughing.
// Knows polylines of a drawing; what a program makes of the result, the program's writers know.
#pragma once

#include <vector>

namespace tarnex {
class AcDbDatabase;
}

extern "C" {

// Relieves the corners of a closed polyline that the wire's centre walks: where it leaves a fillet in the
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

// Relieves the corners of a drawn contour, beside which a control moves its wire: a step would be a slit that
// no wire enters, so a corner becomes an arc of the given radius that passes through it, out into the part by
// radius * (1 - sin(half the corner's angle)) beside each of its spans. A mating part's sharp corner fits in
// then. The wire follows the arc if its offset is no larger. Arguments, result and what is left alone as
// above, but a corner at V is now P, V, Q: flags 1, 0, 1, P and Q where the arc leaves the spans; it stays as
// it is where that would be beyond a span's middle.
[[gnu::visibility("default")]] int lxcorner2(tarnex::AcDbDatabase* drawing, unsigned id,
                                             double straightRadius, double arcRadius, int nSide,
                                             std::vector<int>* flags);

// Roughing: draws the guide on which the wire clears the inside of a circle or a closed polyline, as the
// newest entity of model space, on the contour's layer and in its colour. It runs from the inside out, turn
// by turn, and ends on the outermost turn, beside the contour; no turn is closed before what lies inside it
// is cut, so that no core drops. It never leaves the contour.
//
// circleArcs: arcs that make up a turn in a circle, 2 to 1000. sharpest (degrees): a turn goes out to the one
// around it and back at corners sharper than this; 180 at all, 0 at none. step (mm, above 0): the distance
// between turns, half of it where a whole one would leave something standing; the outermost lies a step
// inside the contour, whose first pass clears so much, or half of that through necks. No place
// deeper than the outermost turn is farther than 0.8 of a step from the guide.
// direction: 1 counter-clockwise, -1 clockwise. allowance (mm): the outermost turn lies so much deeper; at
// most half a step counts, since more would stand free as a ring. startHole (mm): radius of a hole that is
// there already; turns within it are left out. alternate: not 0 lets every other turn run the other way.
//
// Nothing is drawn for anything else, a contour that crosses itself, one with no room for a turn or a neck
// that no turn passes, or a guide of more than 32765 vertices.
[[gnu::visibility("default")]] void lxquillet1(tarnex::AcDbDatabase* drawing, unsigned id, int circleArcs,
                                               double sharpest, double step, int direction, double allowance,
                                               double startHole, int alternate);
}
