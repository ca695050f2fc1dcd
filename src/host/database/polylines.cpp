// Light and heavy polylines.
// Knows vertices with bulges; chaining and offsets are elsewhere.
#include <algorithm>

#include "host/database/entities.h"
#include "host/database/entitytools.h"
#include "host/geometry/offset.h"

namespace tarnex {

namespace {

constexpr std::size_t kVertexBytes = 24;  // in a filer: point and bulge

AcGePoint3d firstVertex(const PolylineCurve& c, double z) {
  return c.vertices.empty() ? AcGePoint3d{0, 0, z} : solid(c.vertices.front().point, z);
}
AcGePoint3d lastVertex(const PolylineCurve& c, double z) {
  if (c.vertices.empty() || c.closed) return firstVertex(c, z);
  return solid(c.vertices.back().point, z);
}

bool hasArcs(const PolylineCurve& c) {
  return std::any_of(c.vertices.begin(), c.vertices.end(), [](const BulgeVertex& v) { return v.bulge != 0; });
}

ErrorStatus canTransform(const PolylineCurve& c, const AcGeMatrix3d& m) {
  if (const ErrorStatus s = checkPlaneMatrix(m); s != ErrorStatus::eOk) return s;
  return hasArcs(c) && !m.uniformScale() ? ErrorStatus::eCannotScaleNonUniformly : ErrorStatus::eOk;
}

// A mirrored plane turns the bulges round.
void transformVertices(PolylineCurve& c, const AcGeMatrix3d& m) {
  const bool mirrored = m.determinant2d() < 0;
  for (BulgeVertex& v : c.vertices) {
    v.point = m.apply(v.point);
    if (mirrored && v.bulge != 0) v.bulge = -v.bulge;
  }
}

ErrorStatus explodeSpans(const AcDbCurve& of, double z, std::vector<std::unique_ptr<AcDbEntity>>& parts) {
  const Curve c = of.geometry();
  if (!isValid(c) || std::get<PolylineCurve>(c).spanCount() == 0) return ErrorStatus::eNotApplicable;
  for (const Curve& span : exploded(c)) {
    auto part = makeCurveEntity(span);
    part->setPropertiesFrom(of);
    if (z != 0) part->transformBy(AcGeMatrix3d::translation({0, 0, z}));
    parts.push_back(std::move(part));
  }
  return ErrorStatus::eOk;
}

// The offset goes along the vertices; a closed walk comes back to its first.
ErrorStatus offsetWalk(const AcDbCurve& of, const PolylineCurve& c, double distance,
                       std::vector<std::unique_ptr<AcDbCurve>>& curves) {
  std::vector<BulgeVertex> ring;
  if (c.closed && !c.vertices.empty()) {
    ring = c.vertices;
    ring.push_back({c.vertices.front().point, 0});
  }
  auto moved = offsetCurves(ring.empty() ? c.vertices : ring, -distance);
  if (!moved) return ErrorStatus::eNotApplicable;
  for (PolylineCurve& piece : *moved) {
    auto beside = std::make_unique<AcDbPolyline>(std::move(piece));
    beside->setPropertiesFrom(of);
    beside->setElevation(of.getStartPoint().z);
    curves.push_back(std::move(beside));
  }
  return ErrorStatus::eOk;
}

void listPolyline(const PolylineCurve& c, double z, std::vector<std::string>& lines) {
  lines.push_back(std::string("  ") + (c.closed ? "Closed" : "Open") +
                  "  Vertices: " + std::to_string(c.vertices.size()) + "  Elevation: " + numberText(z));
  const Curve curve = c;
  if (isValid(curve)) {
    std::string sizes = "  Length: " + numberText(length(curve));
    if (c.closed) sizes += "  Area: " + numberText(std::abs(signedArea(c.vertices)));
    lines.push_back(sizes);
  }
  for (const BulgeVertex& v : c.vertices) {
    lines.push_back("  At: " + pointText(solid(v.point, z)));
    if (v.bulge != 0) lines.back() += "  Bulge: " + numberText(v.bulge);
  }
}

}  // namespace

// ---- AcDbPolyline

const AcRxClass& AcDbPolyline::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbPolyline", &AcDbCurve::desc(), "LWPOLYLINE", makeObject<AcDbPolyline>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbPolyline::clone() const {
  return std::unique_ptr<AcDbPolyline>(new AcDbPolyline(*this));
}
const char* AcDbPolyline::dxfName() const {
  return "LWPOLYLINE";
}

AcGePoint3d AcDbPolyline::getStartPoint() const {
  return firstVertex(curve_, elevation_);
}
AcGePoint3d AcDbPolyline::getEndPoint() const {
  return lastVertex(curve_, elevation_);
}

// Asked for by views, selections and the index, several times between changes.
Extents2d AcDbPolyline::getGeomExtents() const {
  if (extents_.empty()) extents_ = AcDbCurve::getGeomExtents();
  return extents_;
}

void AcDbPolyline::setPolyline(PolylineCurve c) {
  if (!(curve_ == c)) curveToChange() = std::move(c);
}
void AcDbPolyline::setClosed(bool closed) {
  if (curve_.closed != closed) curveToChange().closed = closed;
}
void AcDbPolyline::addVertexAt(int i, AcGePoint2d p, double bulge, double, double) {
  auto& vertices = curveToChange().vertices;
  const auto at = std::clamp<std::ptrdiff_t>(i, 0, numVerts());
  vertices.insert(vertices.begin() + at, {p, bulge});
}
void AcDbPolyline::setPointAt(int i, AcGePoint2d p) {
  if (i >= 0 && i < numVerts() && getPointAt(i) != p)
    curveToChange().vertices[static_cast<std::size_t>(i)].point = p;
}
void AcDbPolyline::setBulgeAt(int i, double bulge) {
  if (i >= 0 && i < numVerts() && getBulgeAt(i) != bulge)
    curveToChange().vertices[static_cast<std::size_t>(i)].bulge = bulge;
}
void AcDbPolyline::removeVertexAt(int i) {
  if (i < 0 || i >= numVerts()) return;
  auto& vertices = curveToChange().vertices;
  vertices.erase(vertices.begin() + i);
}

ErrorStatus AcDbPolyline::transformBy(const AcGeMatrix3d& m) {
  if (const ErrorStatus s = canTransform(curve_, m); s != ErrorStatus::eOk) return s;
  transformVertices(curveToChange(), m);
  elevation_ = m.apply(AcGePoint3d{0, 0, elevation_}).z;
  return ErrorStatus::eOk;
}

ErrorStatus AcDbPolyline::getOffsetCurves(double distance,
                                          std::vector<std::unique_ptr<AcDbCurve>>& curves) const {
  return offsetWalk(*this, curve_, distance, curves);
}

ErrorStatus AcDbPolyline::explode(std::vector<std::unique_ptr<AcDbEntity>>& parts) const {
  return explodeSpans(*this, elevation_, parts);
}

void AcDbPolyline::getGripPoints(std::vector<AcGePoint3d>& out) const {
  for (const BulgeVertex& v : curve_.vertices) out.push_back(solid(v.point, elevation_));
}

ErrorStatus AcDbPolyline::moveGripPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) {
  const auto there = [&](int i) { return i >= 0 && i < numVerts(); };
  if (!std::all_of(indices.begin(), indices.end(), there)) return ErrorStatus::eInvalidInput;
  if (indices.empty()) return ErrorStatus::eOk;
  auto& vertices = curveToChange().vertices;
  for (const int i : indices) {
    AcGePoint2d& p = vertices[static_cast<std::size_t>(i)].point;
    p = p + AcGeVector2d{offset.x, offset.y};
  }
  return ErrorStatus::eOk;
}

ErrorStatus AcDbPolyline::dwgOutFields(AcDbDwgFiler& filer) const {
  filer.writeBoolean(curve_.closed);
  filer.writeDouble(elevation_);
  filer.writeInt32(numVerts());
  for (const BulgeVertex& v : curve_.vertices) {
    filer.writePoint2d(v.point);
    filer.writeDouble(v.bulge);
  }
  return filer.filerStatus();
}

ErrorStatus AcDbPolyline::dwgInFields(AcDbDwgFiler& filer) {
  PolylineCurve read;
  read.closed = filer.readBoolean();
  const double elevation = filer.readDouble();
  const std::int32_t count = filer.readInt32();
  if (count < 0 || static_cast<std::size_t>(count) > filer.remaining() / kVertexBytes)
    filer.setFilerStatus(ErrorStatus::eEndOfFile);
  if (filer.filerStatus() != ErrorStatus::eOk) return filer.filerStatus();
  read.vertices.reserve(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
    const AcGePoint2d p = filer.readPoint2d();
    read.vertices.push_back({p, filer.readDouble()});
  }
  curveToChange() = std::move(read);
  elevation_ = elevation;
  return filer.filerStatus();
}

void AcDbPolyline::worldDraw(AcGiWorldDraw& draw) const {
  drawCurve(draw, curve_, elevation_);
}

void AcDbPolyline::list(std::vector<std::string>& lines) const {
  AcDbCurve::list(lines);
  listPolyline(curve_, elevation_, lines);
}

// ---- AcDb2dPolyline

const AcRxClass& AcDb2dPolyline::desc() {
  static const AcRxClass kClass =
      hostClass("AcDb2dPolyline", &AcDbCurve::desc(), "POLYLINE", makeObject<AcDb2dPolyline>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDb2dPolyline::clone() const {
  return std::make_unique<AcDb2dPolyline>(*this);
}
const char* AcDb2dPolyline::dxfName() const {
  return "POLYLINE";
}

AcGePoint3d AcDb2dPolyline::getStartPoint() const {
  return firstVertex(drawn_, elevation_);
}
AcGePoint3d AcDb2dPolyline::getEndPoint() const {
  return lastVertex(drawn_, elevation_);
}

void AcDb2dPolyline::setPolyType(Poly2dType type) {
  if (type == type_) return;
  assertWriteEnabled();
  type_ = type;
  if (type == Poly2dType::k2dSimplePoly) frame_ = {};
}

ErrorStatus AcDb2dPolyline::transformBy(const AcGeMatrix3d& m) {
  for (const PolylineCurve* c : {&drawn_, &frame_})
    if (const ErrorStatus s = canTransform(*c, m); s != ErrorStatus::eOk) return s;
  assertWriteEnabled();
  transformVertices(drawn_, m);
  transformVertices(frame_, m);
  elevation_ = m.apply(AcGePoint3d{0, 0, elevation_}).z;
  return ErrorStatus::eOk;
}

ErrorStatus AcDb2dPolyline::getOffsetCurves(double distance,
                                            std::vector<std::unique_ptr<AcDbCurve>>& curves) const {
  return offsetWalk(*this, drawn_, distance, curves);
}

ErrorStatus AcDb2dPolyline::explode(std::vector<std::unique_ptr<AcDbEntity>>& parts) const {
  return explodeSpans(*this, elevation_, parts);
}

void AcDb2dPolyline::worldDraw(AcGiWorldDraw& draw) const {
  drawCurve(draw, drawn_, elevation_);
}

void AcDb2dPolyline::list(std::vector<std::string>& lines) const {
  AcDbCurve::list(lines);
  static constexpr const char* kTypes[] = {"Simple", "Curve fit", "Quadratic spline fit", "Cubic spline fit"};
  lines.push_back(std::string("  Type: ") + kTypes[static_cast<int>(type_)]);
  listPolyline(drawn_, elevation_, lines);
}

std::unique_ptr<AcDbPolyline> convertFrom(const AcDb2dPolyline& heavy) {
  auto light = std::make_unique<AcDbPolyline>(heavy.drawn());
  light->setElevation(heavy.elevation());
  return light;
}

}  // namespace tarnex
