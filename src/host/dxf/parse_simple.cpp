// Lines, arcs, circles, ellipses, rays, points and texts of the file.
// Knows the tags of one entity; what becomes of it is for the reader.
#include <cmath>

#include "host/dxf/entity_parser.h"

namespace tarnex {
namespace {

double radians(double degrees) {
  return degrees * kPi / 180;
}

}  // namespace

std::unique_ptr<AcDbEntity> EntityParser::line() {
  AcGePoint3d a, b;
  while (body()) {
    if (!point(a, 10, 1)) point(b, 11, 4);
  }
  if (!has(15)) return missing("an end point");
  return std::make_unique<AcDbLine>(a, b);
}

std::unique_ptr<AcDbEntity> EntityParser::arc() {
  AcGePoint3d c;
  double r = 0, start = 0, end = 0;
  while (body()) {
    if (point(c, 10, 1)) continue;
    if (tags_.code() == 40)
      r = length(), seen_ |= 4;
    else if (tags_.code() == 50)
      start = radians(number()), seen_ |= 8;
    else if (tags_.code() == 51)
      end = radians(number()), seen_ |= 16;
  }
  if (!has(31)) return missing("its centre, radius or angles");
  keptExtents_.add(c.flat());
  if (head_.plane() == Plane::kTilted) return keptFlat({});
  if (!(r > 0)) return keptFlat("radius of zero or less, the arc isn't used");
  if (head_.plane() == Plane::kMirrored) {
    c = {-c.x, c.y, -c.z};
    std::swap(start, end);
    start = kPi - start;
    end = kPi - end;
  }
  return std::make_unique<AcDbArc>(c, r, normalizedAngle(start), normalizedAngle(end));
}

std::unique_ptr<AcDbEntity> EntityParser::circle() {
  AcGePoint3d c;
  double r = 0;
  while (body()) {
    if (point(c, 10, 1)) continue;
    if (tags_.code() == 40) r = length(), seen_ |= 4;
  }
  if (!has(7)) return missing("its centre or radius");
  keptExtents_.add(c.flat());
  if (head_.plane() == Plane::kTilted) return keptFlat({});
  if (!(r > 0)) return keptFlat("radius of zero or less, the circle isn't used");
  if (head_.plane() == Plane::kMirrored) c = {-c.x, c.y, -c.z};
  return std::make_unique<AcDbCircle>(c, r);
}

// Centre and axis stand in world coordinates whatever the normal is; it only turns the way round.
std::unique_ptr<AcDbEntity> EntityParser::ellipse() {
  AcGePoint3d c, major;
  double ratio = 1, start = 0, end = 2 * kPi;
  while (body()) {
    if (point(c, 10, 1) || point(major, 11, 4)) continue;
    if (tags_.code() == 40)
      ratio = number(), seen_ |= 16;
    else if (tags_.code() == 41)
      start = number();
    else if (tags_.code() == 42)
      end = number();
  }
  if (!has(31)) return missing("its centre, axis or ratio");
  keptExtents_.add(c.flat());
  if (head_.plane() == Plane::kTilted) return keptFlat({});
  AcGeVector2d axis{major.x, major.y};
  if (ratio > 1) {  // the minor axis was given as the major one
    axis = axis.perpVector() * (head_.plane() == Plane::kMirrored ? -ratio : ratio);
    ratio = 1 / ratio;
    start -= kPi / 2;
    end -= kPi / 2;
    head_.remark = "ellipse with a ratio above 1, axes exchanged";
  }
  if (!(axis.length() > 0) || !(ratio > 0)) return keptFlat("ellipse without width, it isn't used");
  const bool whole = std::abs(std::abs(end - start) - 2 * kPi) < 1e-9;
  if (head_.plane() == Plane::kMirrored) {
    std::swap(start, end);
    start = -start;
    end = -end;
  }
  if (whole) return std::make_unique<AcDbEllipse>(c, axis, ratio, 0, 2 * kPi);
  return std::make_unique<AcDbEllipse>(c, axis, ratio, normalizedAngle(start), normalizedAngle(end));
}

std::unique_ptr<AcDbEntity> EntityParser::ray() {
  AcGePoint3d p;
  AcGeVector3d d;
  while (body()) {
    if (point(p, 10, 1)) continue;
    if (tags_.code() == 11)
      d.x = number(), seen_ |= 4;
    else if (tags_.code() == 21)
      d.y = number(), seen_ |= 8;
    else if (tags_.code() == 31)
      d.z = number();
  }
  if (!has(15)) return missing("its point or direction");
  keptExtents_.add(p.flat());
  const double flat = std::hypot(d.x, d.y);
  if (!(flat > 0) || std::abs(d.z) > kFlatNormal * flat) return keptFlat({});
  return std::make_unique<AcDbRay>(p, AcGeVector2d{d.x, d.y}.normal());
}

std::unique_ptr<AcDbEntity> EntityParser::pointEntity() {
  AcGePoint3d p;
  while (body()) point(p, 10, 1);
  if (!has(3)) return missing("its coordinates");
  return std::make_unique<AcDbPoint>(p);
}

std::unique_ptr<AcDbEntity> EntityParser::text() {
  AcGePoint3d p;
  double height = 0, rotation = 0;
  std::string_view words;
  while (body()) {
    if (point(p, 10, 1)) continue;
    if (tags_.code() == 40)
      height = length();
    else if (tags_.code() == 50)
      rotation = radians(number());
    else if (tags_.code() == 1)
      words = tags_.raw();
  }
  if (!has(3)) return missing("its position");
  keptExtents_.add(p.flat());
  if (head_.plane() == Plane::kTilted) return keptFlat({});
  if (head_.plane() == Plane::kMirrored) {
    p = {-p.x, p.y, -p.z};
    rotation = kPi - rotation;
  }
  return std::make_unique<AcDbText>(p, codec_.decode(words), height, normalizedAngle(rotation));
}

std::unique_ptr<AcDbEntity> EntityParser::mtext() {
  AcGePoint3d p;
  double height = 0, rotation = 0;
  AcGeVector2d direction;
  std::string words;
  while (body()) {
    if (point(p, 10, 1)) continue;
    switch (tags_.code()) {
      case 40:
        height = length();
        break;
      case 50:
        rotation = radians(number());
        break;
      case 11:
        direction.x = number();
        break;
      case 21:
        direction.y = number();
        break;
      case 1:
      case 3:
        words += tags_.raw();
        break;
      default:
        break;
    }
  }
  if (!has(3)) return missing("its position");
  keptExtents_.add(p.flat());
  if (head_.plane() == Plane::kTilted) return keptFlat({});
  if (direction.length() > 0) rotation = direction.angle();
  return std::make_unique<AcDbMText>(p, codec_.decode(words), height, normalizedAngle(rotation));
}

}  // namespace tarnex
