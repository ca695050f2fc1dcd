// One entity of the file turned into an entity of the drawing: heads, simple curves, texts and what is only
// kept. Polylines, splines and references stand in files of their own.
#include "host/dxf/entity_parser.h"

#include <cmath>

namespace tarnex {
namespace {

struct KindName {
  std::string_view name;
  EntityKind kind;
};
constexpr KindName kKindNames[] = {
    {"LINE", EntityKind::kLine},
    {"ARC", EntityKind::kArc},
    {"CIRCLE", EntityKind::kCircle},
    {"LWPOLYLINE", EntityKind::kLwPolyline},
    {"POLYLINE", EntityKind::kPolyline},
    {"POINT", EntityKind::kPoint},
    {"TEXT", EntityKind::kText},
    {"MTEXT", EntityKind::kMText},
    {"INSERT", EntityKind::kInsert},
    {"ELLIPSE", EntityKind::kEllipse},
    {"SPLINE", EntityKind::kSpline},
    {"RAY", EntityKind::kRay},
    {"DIMENSION", EntityKind::kDimension},
    {"HATCH", EntityKind::kHatch},
    {"3DFACE", EntityKind::kSolid3d},
    {"3DSOLID", EntityKind::kSolid3d},
    {"BODY", EntityKind::kSolid3d},
    {"MESH", EntityKind::kSolid3d},
    {"SURFACE", EntityKind::kSolid3d},
    {"EXTRUDEDSURFACE", EntityKind::kSolid3d},
    {"LOFTEDSURFACE", EntityKind::kSolid3d},
    {"REVOLVEDSURFACE", EntityKind::kSolid3d},
    {"SWEPTSURFACE", EntityKind::kSolid3d},
    {"PLANESURFACE", EntityKind::kSolid3d},
};

constexpr double kFlatNormal = 1e-9;  // sideways part of a unit normal that is still the drawing's plane

double radians(double degrees) {
  return degrees * kPi / 180;
}

}  // namespace

EntityKind kindOfEntity(std::string_view word) {
  for (const KindName& k : kKindNames)
    if (k.name.size() == word.size() && std::memcmp(k.name.data(), word.data(), word.size()) == 0)
      return k.kind;
  return EntityKind::kOther;
}

const char* entityKindName(EntityKind kind) {
  if (kind == EntityKind::kSolid3d) return "";
  for (const KindName& k : kKindNames)
    if (k.kind == kind) return k.name.data();
  return "";
}

Plane EntityHead::plane() const {
  const double size = normal.length();
  if (!(size > 0) || !std::isfinite(size)) return Plane::kFlat;
  if (std::hypot(normal.x, normal.y) > kFlatNormal * size) return Plane::kTilted;
  return normal.z > 0 ? Plane::kFlat : Plane::kMirrored;
}

bool EntityParser::body() {
  while (tags_.next()) {
    const int code = tags_.code();
    if (code > 1000) {
      if (!head_.xdataAt) head_.xdataAt = tags_.tagOffset();
      continue;
    }
    if (inEmbedded_ && code != 0) continue;
    switch (code) {
      case 0:
        tags_.stepBack();
        return false;
      case 8:
        if (head_.layer.empty()) head_.layer = tags_.word();
        break;
      case 5:
        head_.hasHandle = true;
        head_.handle = tags_.handle();
        head_.lastHandle = std::max(head_.lastHandle, head_.handle);
        break;
      case 6:
        if (head_.lineType.empty()) head_.lineType = tags_.word();
        break;
      case 60:
        head_.invisible = tags_.integer() != 0;
        break;
      case 62:
        if (!head_.hasColor) head_.color = static_cast<int>(tags_.integer(kColorByLayer));
        head_.hasColor = true;
        break;
      case 67:
        head_.paper = tags_.integer() == 1;
        break;
      case 100:
        break;
      case 101:
        inEmbedded_ = true;
        break;
      case 102:
        bodyGroup();
        break;
      case 210:
        head_.normal.x = number();
        break;
      case 220:
        head_.normal.y = number();
        break;
      case 230:
        head_.normal.z = number();
        break;
      case 330:
        if (!head_.owner) head_.owner = tags_.handle();
        break;
      default:
        return true;
    }
  }
  head_.cut = true;
  return false;
}

// "102 {NAME" ... "102 }": reactors and the extension dictionary.
void EntityParser::bodyGroup() {
  if (tags_.word().substr(0, 1) != "{") return;
  const bool dictionary = tags_.word() == "{ACAD_XDICTIONARY";
  while (tags_.next()) {
    if (tags_.code() == 0) return tags_.stepBack();
    if (tags_.code() == 102) return;
    if (dictionary && tags_.code() == 360) head_.extensionDictionary = tags_.handle();
  }
}

double EntityParser::number() {
  bool repaired = false;
  const std::optional<double> v = tags_.real(&repaired);
  if (repaired) head_.remark = "decimal comma in a number, read as a point";
  if (v && std::abs(*v) < kLargestNumber) return *v;
  head_.notUsable = true;
  head_.remark = "a number that is none or too large: \"" + tags_.valueText().substr(0, 40) + "\"";
  return 0;
}

// Takes the present tag if it is one of the point's three; x and y set the bits `bit` and twice that.
bool EntityParser::point(AcGePoint3d& p, int code, unsigned bit) {
  if (tags_.code() == code) {
    p.x = length();
    seen_ |= bit;
  } else if (tags_.code() == code + 10) {
    p.y = length();
    seen_ |= bit << 1;
  } else if (tags_.code() == code + 20) {
    p.z = length();
  } else {
    return false;
  }
  return true;
}

std::unique_ptr<AcDbEntity> EntityParser::missing(std::string_view what) {
  head_.missing = what;
  return nullptr;
}

std::unique_ptr<AcDbEntity> EntityParser::kept() {
  const bool whole = !head_.notUsable;
  auto e = std::make_unique<AcDbKeptEntity>(std::string(head_.type), whole ? keptExtents_ : Extents2d());
  return e;
}

// The entity isn't worked on: tilted, 3D or damaged.
std::unique_ptr<AcDbEntity> EntityParser::keptFlat(std::string remark) {
  if (!remark.empty()) head_.remark = std::move(remark);
  while (body()) addKeptPoint();
  auto e = std::make_unique<AcDbKeptEntity>(std::string(head_.type), keptExtents_);
  e->setThreeDimensional(head_.plane() == Plane::kTilted);
  return e;
}

std::unique_ptr<AcDbEntity> EntityParser::parse() {
  head_ = {};
  head_.type = tags_.word();
  seen_ = 0;
  inEmbedded_ = false;
  keptExtents_ = {};
  kind_ = kindOfEntity(head_.type);
  std::unique_ptr<AcDbEntity> e = make();
  if (head_.cut) return nullptr;
  if (head_.notUsable && head_.missing.empty()) return kept();
  return e;
}

std::unique_ptr<AcDbEntity> EntityParser::make() {
  switch (kind_) {
    case EntityKind::kLine:
      return line();
    case EntityKind::kArc:
      return arc();
    case EntityKind::kCircle:
      return circle();
    case EntityKind::kEllipse:
      return ellipse();
    case EntityKind::kRay:
      return ray();
    case EntityKind::kPoint:
      return pointEntity();
    case EntityKind::kText:
      return text();
    case EntityKind::kMText:
      return mtext();
    case EntityKind::kLwPolyline:
      return lwPolyline();
    case EntityKind::kPolyline:
      return polyline();
    case EntityKind::kInsert:
      return insert();
    case EntityKind::kSpline:
      return spline();
    default:
      return other();
  }
}

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

// Corner points of anything stand in the codes 10 to 18 with their y in 20 to 28.
void EntityParser::addKeptPoint() {
  const int code = tags_.code();
  if (code >= 10 && code <= 18) {
    keptPoint_.x = tags_.real().value_or(HUGE_VAL) * factor_;
  } else if (code >= 20 && code <= 28) {
    keptPoint_.y = tags_.real().value_or(HUGE_VAL) * factor_;
    if (std::abs(keptPoint_.x) < kLargestNumber && std::abs(keptPoint_.y) < kLargestNumber)
      keptExtents_.add(keptPoint_);
  }
}

std::unique_ptr<AcDbEntity> EntityParser::other() {
  std::string_view name;
  bool attributes = false;
  while (body()) {
    addKeptPoint();
    if (tags_.code() == 2 && name.empty())
      name = tags_.word();
    else if (tags_.code() == 66)
      attributes = tags_.integer() != 0;
  }
  const std::string type(head_.type);
  if (attributes) skipChildren();
  if (kind_ == EntityKind::kDimension) {
    auto e = std::make_unique<AcDbDimension>(type, keptExtents_);
    if (!name.empty()) e->setPictureBlock(blockOf_(name));
    return e;
  }
  if (kind_ == EntityKind::kHatch) return std::make_unique<AcDbHatch>(type, keptExtents_);
  auto e = std::make_unique<AcDbKeptEntity>(type, keptExtents_);
  e->setThreeDimensional(kind_ == EntityKind::kSolid3d);
  return e;
}

}  // namespace tarnex
