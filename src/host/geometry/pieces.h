// A curve taken apart into the pieces that intersections are computed on: elements, arcs of ellipses, Bézier
// pieces. Internal to the kernel.
#pragma once

#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "host/geometry/element.h"
#include "host/geometry/smooth.h"

namespace tarnex::kernel {

// The arc of an ellipse over at most a quarter turn; `bezier` is the same arc.
struct EllipseArc {
  EllipseCurve ellipse;
  Bezier bezier;
};

using Piece = std::variant<Element, EllipseArc, Bezier>;

[[nodiscard]] AcGePoint2d pointAt(const Piece& piece, double fraction);
// Fraction of a point of the piece, held to the piece's ends; nothing for a point more than `tolerance` mm
// off it.
[[nodiscard]] std::optional<double> fractionOn(const Piece& piece, AcGePoint2d p, double tolerance);
// Whether fraction 0 (start) or 1 (end) bounds the piece: neither of a whole circle or an endless line.
[[nodiscard]] bool isBound(const Piece& piece, int fraction);
// What fractions grow by in one turn of a whole circle; 0 for all else.
[[nodiscard]] double turnOf(const Piece& piece);

// The pieces of one curve, in order. Looks at the curve that it was made from, which must outlive it.
class Pieces {
 public:
  Pieces(const Curve& curve, bool extend);
  [[nodiscard]] std::size_t count() const;
  [[nodiscard]] bool closed() const { return closed_; }
  // What keys grow by once round a closed curve or an arc extended to its circle; 0 for all else.
  [[nodiscard]] double turn() const;
  [[nodiscard]] double size() const;  // largest coordinate, mm
  [[nodiscard]] Extents2d box(
      std::size_t i) const;  // holds the piece, not always tight; unbounded where it is open
  // A span of a polyline is made in `place`; the pieces of other curves stand already.
  [[nodiscard]] const Piece& piece(std::size_t i, Piece& place) const;

 private:
  const PolylineCurve* polyline_ = nullptr;  // its spans become elements when they are asked for
  std::vector<Piece> pieces_;                // of any other curve
  bool extend_ = false, closed_ = false;
};

// Isolated points that two pieces may share; those of coinciding curves are left out. May hold points beyond
// the ends of either.
[[nodiscard]] std::vector<AcGePoint2d> crossings(const Element& a, const Element& b, double tolerance);
[[nodiscard]] std::vector<AcGePoint2d> crossings(const Bezier& a, const Element& b, double tolerance);
[[nodiscard]] std::vector<AcGePoint2d> crossings(const Bezier& a, const EllipseCurve& b, double tolerance);
[[nodiscard]] std::vector<AcGePoint2d> crossings(const Bezier& a, const Bezier& b, double tolerance);

// A place where a meets b; `key` is the index of a's piece and the fraction on it.
struct Touch {
  double key = 0;
  AcGePoint2d point;
};
struct Stretch {
  Touch from, to;
};
struct Meetings {
  std::vector<Touch> touches;
  std::vector<Stretch> stretches;  // along which a and b coincide
};
void meet(const Piece& a, const Piece& b, double tolerance, double firstKey, Meetings& out);

}  // namespace tarnex::kernel
