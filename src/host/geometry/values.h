// Points, vectors and transformations of the drawing, and the angle operations on them.
// Plain values; knows no curves and no entities.
#pragma once

#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace tarnex {

inline const double kPi = std::acos(-1.0);

// Rounding that arithmetic on coordinates of this size (mm) can add up to, mm.
[[nodiscard]] inline double roundoff(double extent) {
  return 8 * std::abs(extent) * std::numeric_limits<double>::epsilon();
}

// Length of (x, y). The plain root is as good as hypot and several times as quick where no square leaves the
// range.
[[nodiscard]] inline double planeLength(double x, double y) {
  const double square = x * x + y * y;
  return square > 1e-280 && square < 1e280 ? std::sqrt(square) : std::hypot(x, y);
}

struct AcGeVector2d {
  double x = 0, y = 0;
  [[nodiscard]] double length() const { return planeLength(x, y); }
  [[nodiscard]] double dotProduct(AcGeVector2d v) const { return x * v.x + y * v.y; }
  [[nodiscard]] double crossProduct(AcGeVector2d v) const { return x * v.y - y * v.x; }
  [[nodiscard]] AcGeVector2d perpVector() const { return {-y, x}; }  // turned left by 90 degrees
  [[nodiscard]] double angle() const;                                // from +x, in [0, 2π)
  [[nodiscard]] double angleTo(AcGeVector2d v) const;                // unsigned, in [0, π]
  [[nodiscard]] AcGeVector2d normal() const;                         // unit vector; (0,0) stays (0,0)
  bool operator==(const AcGeVector2d&) const = default;
};

struct AcGePoint2d {
  double x = 0, y = 0;
  [[nodiscard]] double distanceTo(AcGePoint2d p) const { return planeLength(p.x - x, p.y - y); }
  bool operator==(const AcGePoint2d&) const = default;
};

struct AcGeVector3d {
  double x = 0, y = 0, z = 0;
  [[nodiscard]] double length() const { return std::sqrt(x * x + y * y + z * z); }
  [[nodiscard]] AcGeVector3d crossProduct(const AcGeVector3d& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  [[nodiscard]] AcGeVector3d normal() const;  // unit vector; zero stays zero
  bool operator==(const AcGeVector3d&) const = default;
};

struct AcGePoint3d {
  double x = 0, y = 0, z = 0;
  [[nodiscard]] double distanceTo(const AcGePoint3d& p) const;
  [[nodiscard]] AcGePoint2d flat() const { return {x, y}; }
  bool operator==(const AcGePoint3d&) const = default;
};

inline AcGeVector2d operator-(AcGePoint2d a, AcGePoint2d b) {
  return {a.x - b.x, a.y - b.y};
}
inline AcGePoint2d operator+(AcGePoint2d p, AcGeVector2d v) {
  return {p.x + v.x, p.y + v.y};
}
inline AcGePoint2d operator-(AcGePoint2d p, AcGeVector2d v) {
  return {p.x - v.x, p.y - v.y};
}
inline AcGeVector2d operator+(AcGeVector2d a, AcGeVector2d b) {
  return {a.x + b.x, a.y + b.y};
}
inline AcGeVector2d operator-(AcGeVector2d a, AcGeVector2d b) {
  return {a.x - b.x, a.y - b.y};
}
inline AcGeVector2d operator-(AcGeVector2d v) {
  return {-v.x, -v.y};
}
inline AcGeVector2d operator*(AcGeVector2d v, double f) {
  return {v.x * f, v.y * f};
}
inline AcGeVector2d operator*(double f, AcGeVector2d v) {
  return v * f;
}
inline AcGeVector3d operator-(const AcGePoint3d& a, const AcGePoint3d& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline AcGePoint3d operator+(const AcGePoint3d& p, const AcGeVector3d& v) {
  return {p.x + v.x, p.y + v.y, p.z + v.z};
}
inline AcGePoint3d solid(AcGePoint2d p, double z = 0) {
  return {p.x, p.y, z};
}
inline AcGePoint2d midpoint(AcGePoint2d a, AcGePoint2d b) {
  return {(a.x + b.x) / 2, (a.y + b.y) / 2};
}

// Affine transformation, rows by columns; the last row is 0 0 0 1. Points are columns: p' = M p.
class AcGeMatrix3d {
 public:
  AcGeMatrix3d();  // identity
  static AcGeMatrix3d translation(const AcGeVector3d& by);
  static AcGeMatrix3d rotation(double radians, AcGePoint2d about);  // counter-clockwise about +z
  static AcGeMatrix3d scaling(double factor, AcGePoint2d about);
  static AcGeMatrix3d scaling(double fx, double fy, double fz);
  static AcGeMatrix3d mirroring(AcGePoint2d lineFrom, AcGePoint2d lineTo);
  // From the object coordinates of a normal (arbitrary axis rule of the DXF format) to world.
  static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal);

  [[nodiscard]] double operator()(int row, int column) const { return m_[row][column]; }
  double& entry(int row, int column) { return m_[row][column]; }
  [[nodiscard]] AcGePoint3d apply(const AcGePoint3d& p) const;
  [[nodiscard]] AcGePoint2d apply(AcGePoint2d p) const;  // z 0, result dropped to x, y
  [[nodiscard]] AcGeVector3d apply(const AcGeVector3d& v) const;
  [[nodiscard]] AcGeVector2d apply(AcGeVector2d v) const;
  [[nodiscard]] double determinant2d() const;  // below 0: the drawing plane is mirrored
  // The one factor by which lengths in the drawing plane grow, or nothing when x and y differ (1e-9
  // relative).
  [[nodiscard]] std::optional<double> uniformScale() const;
  bool operator==(const AcGeMatrix3d&) const = default;

 private:
  std::array<std::array<double, 4>, 4> m_;
};
AcGeMatrix3d operator*(const AcGeMatrix3d& a, const AcGeMatrix3d& b);  // a after b

// Box parallel to the axes; empty until something is added.
struct Extents2d {
  AcGePoint2d low{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
  AcGePoint2d high{-std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
  [[nodiscard]] bool empty() const { return !(low.x <= high.x && low.y <= high.y); }
  void add(AcGePoint2d p);
  void add(const Extents2d& e);
  [[nodiscard]] Extents2d grown(double by) const;
  [[nodiscard]] bool contains(AcGePoint2d p) const;
  [[nodiscard]] bool contains(const Extents2d& e) const;
  [[nodiscard]] bool overlaps(const Extents2d& e) const;
  bool operator==(const Extents2d&) const = default;
};

// Direction from a to b, radians in [0, 2π); 0 when a and b are the same point.
[[nodiscard]] double acutAngle(AcGePoint2d a, AcGePoint2d b);
// The point at `distance` mm (may be negative) from p in the direction `angle`, radians.
[[nodiscard]] AcGePoint2d acutPolar(AcGePoint2d p, double angle, double distance);
[[nodiscard]] double acutDistance(const AcGePoint3d& a, const AcGePoint3d& b);
// Radians brought into [0, 2π).
[[nodiscard]] double normalizedAngle(double radians);

}  // namespace tarnex
