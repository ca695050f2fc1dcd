// Polylines, light and heavy, and block references of the file: the entities with a list of vertices or with
// children. Knows the tags of one entity; what becomes of it is for the reader.
#include <cmath>

#include "host/dxf/entity_parser.h"

namespace tarnex {
namespace {

// Flags of POLYLINE and VERTEX.
constexpr int kClosed = 1, kCurveFit = 2, kSplineFit = 4, k3dPolyline = 8, kMesh = 16, kPolyface = 64;
constexpr int kFitVertex = 1, kFrameVertex = 16;

void mirror(std::vector<BulgeVertex>& vertices) {
  for (BulgeVertex& v : vertices) {
    v.point.x = -v.point.x;
    v.bulge = -v.bulge;
  }
}

}  // namespace

std::unique_ptr<AcDbEntity> EntityParser::lwPolyline() {
  long long claimed = -1;
  int flags = 0;
  double elevation = 0;
  vertices_.clear();
  bool open = false;  // the last vertex still lacks its y
  while (body()) {
    switch (tags_.code()) {
      case 10:
        vertices_.push_back({{length(), 0}, 0});
        open = true;
        break;
      case 20:
        if (open) vertices_.back().point.y = length();
        open = false;
        break;
      case 42:
        if (!vertices_.empty()) vertices_.back().bulge = number();
        break;
      case 90:
        claimed = tags_.integer();
        break;
      case 70:
        flags = static_cast<int>(tags_.integer());
        break;
      case 38:
        elevation = length();
        break;
      default:
        break;
    }
  }
  if (open && !vertices_.empty()) vertices_.pop_back();
  if (vertices_.empty()) return missing("vertices");
  if (claimed >= 0 && claimed != static_cast<long long>(vertices_.size()))
    head_.remark =
        std::to_string(claimed) + " vertices claimed, " + std::to_string(vertices_.size()) + " read";
  for (const BulgeVertex& v : vertices_) keptExtents_.add(v.point);
  if (head_.plane() == Plane::kTilted) return keptFlat({});
  if (head_.plane() == Plane::kMirrored) {
    mirror(vertices_);
    elevation = -elevation;
  }
  auto e = std::make_unique<AcDbPolyline>(
      PolylineCurve{std::vector<BulgeVertex>(vertices_.begin(), vertices_.end()), (flags & kClosed) != 0});
  if (elevation != 0) e->setElevation(elevation);
  return e;
}

bool EntityParser::childBody() {
  while (tags_.next()) {
    switch (tags_.code()) {
      case 0:
        tags_.stepBack();
        return false;
      case 5:
        head_.lastHandle = std::max(head_.lastHandle, tags_.handle());
        break;
      case 102:
        bodyGroup();
        break;
      default:
        if (tags_.code() < 1000) return true;
    }
  }
  head_.cut = true;
  return false;
}

// The entities of one type that follow, up to and with their SEQEND.
template <class Each>
void EntityParser::children(std::string_view childType, Each each) {
  while (tags_.next()) {
    const std::string_view type = tags_.word();
    if (type == childType) {
      each();
      if (head_.cut) return;
      continue;
    }
    if (type == "SEQEND") {
      while (childBody()) {
      }
      head_.cut = false;  // at the very end of a file without EOF
    } else {
      tags_.stepBack();
      if (head_.remark.empty()) head_.remark = "its SEQEND is missing";
    }
    return;
  }
  head_.cut = true;
}

// ATTRIB or VERTEX behind an entity that is only kept; none is right too.
void EntityParser::skipChildren() {
  const std::string remark = head_.remark;
  if (!tags_.next()) return;
  const std::string type(tags_.word());
  tags_.stepBack();
  if (type == "ATTRIB" || type == "VERTEX" || type == "SEQEND")
    children(type == "VERTEX" ? "VERTEX" : "ATTRIB", [this] {
      while (childBody()) {
      }
    });
  head_.remark = remark;
}

EntityParser::HeavyVertex EntityParser::heavyVertex() {
  HeavyVertex v;
  while (childBody()) {
    switch (tags_.code()) {
      case 10:
        v.vertex.point.x = length();
        break;
      case 20:
        v.vertex.point.y = length();
        break;
      case 42:
        v.vertex.bulge = number();
        break;
      case 70:
        v.flags = static_cast<int>(tags_.integer());
        break;
      default:
        break;
    }
  }
  return v;
}

std::unique_ptr<AcDbEntity> EntityParser::polyline() {
  int flags = 0, fit = 0;
  double elevation = 0;
  while (body()) {
    switch (tags_.code()) {
      case 70:
        flags = static_cast<int>(tags_.integer());
        break;
      case 75:
        fit = static_cast<int>(tags_.integer());
        break;
      case 30:
        elevation = length();
        break;
      default:
        break;
    }
  }
  if (head_.cut) return nullptr;
  std::vector<HeavyVertex> all;
  children("VERTEX", [&] { all.push_back(heavyVertex()); });
  if (head_.cut) return nullptr;
  const bool solid = (flags & (k3dPolyline | kMesh | kPolyface)) != 0;
  if (solid || head_.plane() == Plane::kTilted) {
    if (head_.plane() != Plane::kTilted)
      for (const HeavyVertex& v : all) keptExtents_.add(v.vertex.point);
    auto e = std::make_unique<AcDbKeptEntity>(std::string(head_.type), keptExtents_);
    e->setThreeDimensional(true);
    return e;
  }
  return heavyOf(all, flags, fit, elevation);
}

std::unique_ptr<AcDbEntity> EntityParser::heavyOf(const std::vector<HeavyVertex>& all, int flags, int fit,
                                                  double elevation) {
  PolylineCurve drawn, frame;
  drawn.closed = frame.closed = (flags & kClosed) != 0;
  for (const HeavyVertex& v : all) {
    if (!(v.flags & kFrameVertex)) drawn.vertices.push_back(v.vertex);
    if ((v.flags & kFrameVertex) || ((flags & kCurveFit) && !(v.flags & kFitVertex)))
      frame.vertices.push_back(v.vertex);
  }
  if (drawn.vertices.empty()) return missing("vertices");
  for (const BulgeVertex& v : drawn.vertices) keptExtents_.add(v.point);
  if (head_.plane() == Plane::kMirrored) {
    mirror(drawn.vertices);
    mirror(frame.vertices);
    elevation = -elevation;
  }
  Poly2dType type = Poly2dType::k2dSimplePoly;
  if (flags & kCurveFit) type = Poly2dType::k2dFitCurvePoly;
  if (flags & kSplineFit) type = fit == 5 ? Poly2dType::k2dQuadSplinePoly : Poly2dType::k2dCubicSplinePoly;
  auto e = std::make_unique<AcDb2dPolyline>(std::move(drawn), std::move(frame), type);
  if (elevation != 0) e->setElevation(elevation);
  return e;
}

// A reference with the normal (0,0,-1) is the one with (0,0,1) that mirrors x: its own x axis and the turn
// change sign.
std::unique_ptr<AcDbEntity> EntityParser::insert() {
  AcGePoint3d p;
  std::string_view name;
  double rotation = 0, scale[3] = {1, 1, 1}, spacing[2] = {0, 0};
  int columns = 1, rows = 1;
  bool attributes = false;
  while (body()) {
    if (point(p, 10, 1)) continue;
    const int code = tags_.code();
    switch (code) {
      case 2:
        name = tags_.word();
        break;
      case 41:
      case 42:
      case 43:
        scale[code - 41] = number();
        break;
      case 44:
      case 45:
        spacing[code - 44] = length();
        break;
      case 50:
        rotation = number() * kPi / 180;
        break;
      case 66:
        attributes = tags_.integer() != 0;
        break;
      case 70:
        columns = static_cast<int>(std::clamp(tags_.integer(1), 1LL, 32767LL));
        break;
      case 71:
        rows = static_cast<int>(std::clamp(tags_.integer(1), 1LL, 32767LL));
        break;
      default:
        break;
    }
  }
  if (head_.cut) return nullptr;
  if (attributes) skipChildren();
  if (head_.cut) return nullptr;
  if (name.empty() || !has(3)) return missing("its block or position");
  if (head_.plane() != Plane::kTilted) keptExtents_.add(p.flat());
  if (head_.plane() == Plane::kTilted || scale[0] == 0 || scale[1] == 0) {
    if (scale[0] == 0 || scale[1] == 0) head_.remark = "block reference with a scale of zero, it isn't used";
    auto e = std::make_unique<AcDbKeptEntity>(std::string(head_.type), keptExtents_);
    e->setThreeDimensional(head_.plane() == Plane::kTilted);
    return e;
  }
  const AcDbObjectId block = blockOf_(name);
  if (block.isNull()) {  // refused: the caller has said why
    return std::make_unique<AcDbKeptEntity>(std::string(head_.type), keptExtents_);
  }
  const double turn = head_.plane() == Plane::kMirrored ? -1 : 1;
  auto e = std::make_unique<AcDbBlockReference>(block, AcGePoint3d{turn * p.x, p.y, turn * p.z});
  e->scaleX = turn * scale[0];
  e->scaleY = scale[1];
  e->scaleZ = turn * scale[2];
  e->rotation = normalizedAngle(turn * rotation);
  e->columns = columns;
  e->rows = rows;
  e->columnSpacing = turn * spacing[0];
  e->rowSpacing = spacing[1];
  return e;
}

}  // namespace tarnex
