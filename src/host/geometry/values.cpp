// Operations on points, vectors, transformations and boxes.
// Plain arithmetic; knows no curves and no entities.
#include "host/geometry/values.h"

#include <algorithm>

namespace tarnex {

double AcGeVector2d::angle() const {
  return normalizedAngle(std::atan2(y, x));
}

double AcGeVector2d::angleTo(AcGeVector2d v) const {
  return std::abs(std::atan2(crossProduct(v), dotProduct(v)));
}

AcGeVector2d AcGeVector2d::normal() const {
  const double size = length();
  return size > 0 ? AcGeVector2d{x / size, y / size} : AcGeVector2d{};
}

AcGeVector3d AcGeVector3d::normal() const {
  const double size = std::hypot(x, y, z);
  return size > 0 ? AcGeVector3d{x / size, y / size, z / size} : AcGeVector3d{};
}

double AcGePoint3d::distanceTo(const AcGePoint3d& p) const {
  return std::hypot(p.x - x, p.y - y, p.z - z);
}

AcGeMatrix3d::AcGeMatrix3d() : m_{} {
  for (int i = 0; i < 4; ++i) m_[i][i] = 1;
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d& by) {
  AcGeMatrix3d m;
  m.m_[0][3] = by.x;
  m.m_[1][3] = by.y;
  m.m_[2][3] = by.z;
  return m;
}

AcGeMatrix3d AcGeMatrix3d::rotation(double radians, AcGePoint2d about) {
  const double c = std::cos(radians), s = std::sin(radians);
  AcGeMatrix3d m;
  m.m_[0] = {c, -s, 0, about.x - c * about.x + s * about.y};
  m.m_[1] = {s, c, 0, about.y - s * about.x - c * about.y};
  return m;
}

AcGeMatrix3d AcGeMatrix3d::scaling(double factor, AcGePoint2d about) {
  AcGeMatrix3d m = scaling(factor, factor, factor);
  m.m_[0][3] = about.x - factor * about.x;
  m.m_[1][3] = about.y - factor * about.y;
  return m;
}

AcGeMatrix3d AcGeMatrix3d::scaling(double fx, double fy, double fz) {
  AcGeMatrix3d m;
  m.m_[0][0] = fx;
  m.m_[1][1] = fy;
  m.m_[2][2] = fz;
  return m;
}

AcGeMatrix3d AcGeMatrix3d::mirroring(AcGePoint2d lineFrom, AcGePoint2d lineTo) {
  const AcGeVector2d d = (lineTo - lineFrom).normal();
  const double c = d.x * d.x - d.y * d.y, s = 2 * d.x * d.y;  // of twice the line's angle
  AcGeMatrix3d m;
  if (d == AcGeVector2d{}) return m;
  m.m_[0] = {c, s, 0, lineFrom.x - c * lineFrom.x - s * lineFrom.y};
  m.m_[1] = {s, -c, 0, lineFrom.y - s * lineFrom.x + c * lineFrom.y};
  return m;
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d& normal) {
  const AcGeVector3d n = normal.normal();
  if (n == AcGeVector3d{}) return {};
  constexpr double kNearZ = 1.0 / 64;  // fixed by the DXF format
  const bool nearZ = std::abs(n.x) < kNearZ && std::abs(n.y) < kNearZ;
  const AcGeVector3d helper = nearZ ? AcGeVector3d{0, 1, 0} : AcGeVector3d{0, 0, 1};
  const AcGeVector3d ax = helper.crossProduct(n).normal();
  const AcGeVector3d ay = n.crossProduct(ax).normal();
  AcGeMatrix3d m;
  m.m_[0] = {ax.x, ay.x, n.x, 0};
  m.m_[1] = {ax.y, ay.y, n.y, 0};
  m.m_[2] = {ax.z, ay.z, n.z, 0};
  return m;
}

AcGePoint3d AcGeMatrix3d::apply(const AcGePoint3d& p) const {
  const AcGeVector3d turned = apply(AcGeVector3d{p.x, p.y, p.z});
  return {turned.x + m_[0][3], turned.y + m_[1][3], turned.z + m_[2][3]};
}

AcGePoint2d AcGeMatrix3d::apply(AcGePoint2d p) const {
  return {m_[0][0] * p.x + m_[0][1] * p.y + m_[0][3], m_[1][0] * p.x + m_[1][1] * p.y + m_[1][3]};
}

AcGeVector3d AcGeMatrix3d::apply(const AcGeVector3d& v) const {
  const auto row = [&](int i) { return m_[i][0] * v.x + m_[i][1] * v.y + m_[i][2] * v.z; };
  return {row(0), row(1), row(2)};
}

AcGeVector2d AcGeMatrix3d::apply(AcGeVector2d v) const {
  return {m_[0][0] * v.x + m_[0][1] * v.y, m_[1][0] * v.x + m_[1][1] * v.y};
}

double AcGeMatrix3d::determinant2d() const {
  return m_[0][0] * m_[1][1] - m_[0][1] * m_[1][0];
}

std::optional<double> AcGeMatrix3d::uniformScale() const {
  constexpr double kSameFactor = 1e-9;  // of the factor itself
  const AcGeVector2d ex{m_[0][0], m_[1][0]}, ey{m_[0][1], m_[1][1]};
  const double fx = ex.length(), fy = ey.length();
  if (!(std::abs(fx - fy) <= kSameFactor * fx)) return std::nullopt;
  if (!(std::abs(ex.dotProduct(ey)) <= kSameFactor * fx * fy)) return std::nullopt;
  return std::sqrt(fx * fy);
}

AcGeMatrix3d operator*(const AcGeMatrix3d& a, const AcGeMatrix3d& b) {
  AcGeMatrix3d product;
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      double sum = 0;
      for (int k = 0; k < 4; ++k) sum += a(row, k) * b(k, column);
      product.entry(row, column) = sum;
    }
  }
  return product;
}

void Extents2d::add(AcGePoint2d p) {
  low = {std::min(low.x, p.x), std::min(low.y, p.y)};
  high = {std::max(high.x, p.x), std::max(high.y, p.y)};
}

void Extents2d::add(const Extents2d& e) {
  if (e.empty()) return;
  add(e.low);
  add(e.high);
}

Extents2d Extents2d::grown(double by) const {
  if (empty()) return *this;
  return {{low.x - by, low.y - by}, {high.x + by, high.y + by}};
}

bool Extents2d::contains(AcGePoint2d p) const {
  return low.x <= p.x && p.x <= high.x && low.y <= p.y && p.y <= high.y;
}

bool Extents2d::contains(const Extents2d& e) const {
  return !e.empty() && contains(e.low) && contains(e.high);
}

bool Extents2d::overlaps(const Extents2d& e) const {
  return low.x <= e.high.x && e.low.x <= high.x && low.y <= e.high.y && e.low.y <= high.y;
}

double acutAngle(AcGePoint2d a, AcGePoint2d b) {
  return (b - a).angle();
}

AcGePoint2d acutPolar(AcGePoint2d p, double angle, double distance) {
  return {p.x + distance * std::cos(angle), p.y + distance * std::sin(angle)};
}

double acutDistance(const AcGePoint3d& a, const AcGePoint3d& b) {
  return a.distanceTo(b);
}

double normalizedAngle(double radians) {
  const double turn = 2 * kPi;
  double angle = std::fmod(radians, turn);
  if (angle < 0) angle += turn;
  return angle < turn ? angle + 0.0 : 0.0;  // -1e-20 + 2π is 2π; -0 becomes 0
}

}  // namespace tarnex
