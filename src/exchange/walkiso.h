// The way of the wire through an ISO program: each block's motion as a stroke, with the words that hold then.
// Knows what a control does with blocks; no figures.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "exchange/plane.h"
#include "exchange/readeriso.h"

namespace tarnex::truth {

// Taper as the control has it.
struct IsoTaperNow {
  bool on = false;
  int side = 0;                 // of the direction word: 1 left, -1 right, 0 none was said
  std::optional<double> angle;  // as printed, degrees
  bool operator==(const IsoTaperNow&) const = default;
};

// What holds while a block moves the wire.
struct IsoState {
  int compensation = 0;               // 1 left (G41), -1 right (G42), 0 off
  std::optional<std::string> offset;  // number or value, as the block has it
  int offsetLine = 0, conditionLine = 0;
  std::optional<std::string> condition;
  IsoTaperNow taper;
  bool threaded = false;
  bool operator==(const IsoState&) const = default;
};

struct IsoMove {
  int line = 0;
  bool rapid = false;
  std::string fault;    // of the block itself, its arc's way isn't known then; empty: none
  bool corner = false;  // the rounding of a corner, which the block of the line ahead of it asks for
  Stroke stroke;        // mm, drawing; begins where the wire stands
  double slack = 0;     // mm that the stroke may be off beside the rounding of its end
  std::shared_ptr<const IsoState> state;  // many moves share one
};

// Events between the moves.
struct IsoEvent {
  enum class Kind { kThread, kCut, kCompensationOff } kind = Kind::kThread;
  int line = 0;
  std::size_t before = 0;  // this move
  int compensation = 0;    // kCut: what still held
};

struct IsoWalk {
  std::optional<AcGePoint2d> start;  // as the program says it; the moves begin there, else at `from`
  std::vector<IsoMove> moves;        // those that move nothing are left out
  std::vector<IsoEvent> events;
  std::vector<IsoComplaint> complaints;
  bool threads = false, cuts = false;  // the words stand in the program
  bool saysOffset = false, saysCondition = false, saysTaper = false;
  double worstRadius = 0;  // mm between the radii of an arc's ends, largest
  int worstRadiusLine = 0;
};

struct IsoWalkFrom {
  AcGePoint2d origin;                       // of the program in the drawing
  AcGePoint2d from;                         // where the wire stands if the program doesn't say; mm, drawing
  std::string thread = "M60", cut = "M50";  // words that thread and cut the wire
};
[[nodiscard]] IsoWalk walkIso(const IsoText& text, const IsoDialect& dialect, const IsoWalkFrom& from);

// How far the radii of an arc's two ends may differ, mm: the printed centre and the printed ends are each off
// by up to `unit` in x and y, and the centre is counted from a start that is off itself.
[[nodiscard]] inline double radiusRounding(double unit) {
  return 4 * std::hypot(unit, unit);
}

}  // namespace tarnex::truth
