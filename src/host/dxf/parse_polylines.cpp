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

}  // namespace tarnex
