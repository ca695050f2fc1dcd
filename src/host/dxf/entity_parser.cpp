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
