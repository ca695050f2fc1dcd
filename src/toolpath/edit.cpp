// A path's fields and the operations that change them together.
// Knows the path alone; messages about a refusal are the caller's.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "host/database/database.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

std::unique_ptr<AcDbObject> makeToolPath() {
  return std::make_unique<CToolPath>();
}

// A stored contour through the host's polyline, so that a mirror also turns its bulges.
void transformContour(PathContour& c, const AcGeMatrix3d& m) {
  if (c.bCircle) {
    c.ptCenter = m.apply(c.ptCenter);
    constexpr double kScaled = 1e-9;  // of the factor; a move or turn leaves the radius as it is
    if (const auto scale = m.uniformScale(); scale && std::abs(*scale - 1) > kScaled) c.dRadius *= *scale;
    return;
  }
  PolylineCurve polyline;
  for (const auto& v : c.aContour) polyline.vertices.push_back({{v.x, v.y}, v.z});
  const auto moved = transformed(polyline, m);
  if (!moved) return;
  const auto& vertices = std::get<PolylineCurve>(*moved).vertices;
  for (std::size_t i = 0; i < vertices.size(); ++i)
    c.aContour[i] = {vertices[i].point.x, vertices[i].point.y, vertices[i].bulge};
}

void transformCurve(PathCurve& c, const AcGeMatrix3d& m) {
  PolylineCurve polyline;
  for (std::size_t i = 0; i < c.vertices.size(); ++i)
    polyline.vertices.push_back({c.vertices[i], c.bulges[i]});
  const auto moved = transformed(polyline, m);
  if (!moved) return;
  const auto& vertices = std::get<PolylineCurve>(*moved).vertices;
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    c.vertices[i] = vertices[i].point;
    c.bulges[i] = vertices[i].bulge;
  }
}

}  // namespace

const AcRxClass& CToolPathBase::desc() {
  static const AcRxClass description{
      "CToolPathBase", &AcDbPolyline::desc(), "CToolPathBase", "WireCut", 25, 0, 0, nullptr};
  return description;
}

std::unique_ptr<AcDbObject> CToolPathBase::clone() const {
  return std::unique_ptr<AcDbObject>(new CToolPathBase(*this));
}

const AcRxClass& CToolPath::desc() {
  static const AcRxClass description{"CToolPath", &CToolPathBase::desc(), "CToolPath", "WireCut", 25, 0,
                                     0,           &makeToolPath};
  return description;
}

void CToolPath::setPathNo(int number) {
  change(nPathNo_, number);
}

void CToolPath::setPrevEnd(AcGePoint2d p) const {
  if (ptPrevEnd_ == p) return;
  ptPrevEnd_ = p;
  if (database()) database()->noteChange(objectId());
}

void CToolPath::setProcessStyle(const ProcessStyle& style) {
  assertWriteEnabled();
  bHasStyle_ = true;
  nCode_ = style.nCode;
  ProcessStyle held = style;
  held.nCode = style_->nCode;
  style_.set(held);
  nColor_ = style.nCode / 100;
}

ProcessStyle CToolPath::getProcessStyle() const {
  ProcessStyle style = *style_;
  style.nCode = nCode_;
  return style;
}

void CToolPath::setColor(int color) {
  assertWriteEnabled();
  nColor_ = color;
  nCode_ = nCode_ % 100 + color * 100;
}

void CToolPath::setFlag(int mask, bool on) {
  assertWriteEnabled();
  nFlags_ = on ? nFlags_ | mask : nFlags_ & ~mask;
}

void CToolPath::setOffset(double mm) {
  assertWriteEnabled();
  dOffset_ = mm;
}

bool CToolPath::setClearance(double mm) {
  if (!contour_.bClosed && !contour_.bCircle) return false;
  assertWriteEnabled();
  dClearance_ = mm;
  return true;
}

void CToolPath::setHeight(double mm) {
  assertWriteEnabled();
  dHeight_ = mm;
}

void CToolPath::setTaper(double degrees) {
  assertWriteEnabled();
  dTaper_ = degrees;
  std::fill(aSegTaper_.begin(), aSegTaper_.end(), 0.0);
}

bool CToolPath::setSegmentTaper(AcGePoint2d pick, double degrees) {
  const auto& v = polyline().vertices;
  for (std::size_t i = 0; i + 1 < v.size(); ++i) {
    if (v[i].point == v[i + 1].point || !isPointOnSpan(v[i].point, v[i + 1].point, v[i].bulge, pick))
      continue;
    assertWriteEnabled();
    aSegTaper_.resize(v.size(), 0.0);
    aSegTaper_[i] = degrees;
    dTaper_ = 0;
    return true;
  }
  return false;
}

bool CToolPath::hasSegTaper() const {
  return std::any_of(aSegTaper_.begin(), aSegTaper_.end(), [](double t) { return t != 0.0; });
}

AcGePoint2d CToolPath::getEndPoint(bool bTool) const {
  if (numVerts() == 0) return {};
  if (!hasFlag(kOpenPath)) return getPointAt(0);
  if (bTool) {
    if (bHasStyle_) return ptBreakExit_;
    const auto tool = wireCentrePath();
    if (!tool.vertices.empty()) return tool.vertices.back();
  }
  return getPointAt(numVerts() - 1);
}

double CToolPath::contourLength() const {
  if (contour_.bCircle) return 2 * kPi * contour_.dRadius;
  const auto& c = contour_.aContour;
  double sum = 0;
  for (std::size_t i = 0; i + (contour_.bClosed ? 0 : 1) < c.size(); ++i) {
    const AcGePoint2d a = c[i].flat(), b = c[(i + 1) % c.size()].flat();
    if (a != b) sum += spanLength(a, b, c[i].z);
  }
  return sum;
}

std::string CToolPath::getCodeAt(int vertex) const {
  const auto found = std::find(aCodeVertex_.begin(), aCodeVertex_.end(), vertex);
  return found == aCodeVertex_.end() ? std::string()
                                     : aCodeText_[static_cast<std::size_t>(found - aCodeVertex_.begin())];
}

void CToolPath::setCodeAt(int vertex, std::string text) {
  assertWriteEnabled();
  const auto found = std::find(aCodeVertex_.begin(), aCodeVertex_.end(), vertex);
  if (found != aCodeVertex_.end()) {
    aCodeText_[static_cast<std::size_t>(found - aCodeVertex_.begin())] = std::move(text);
    return;
  }
  aCodeVertex_.push_back(vertex);
  aCodeText_.push_back(std::move(text));
}

void CToolPath::removeCodeAt(int vertex) {
  const auto found = std::find(aCodeVertex_.begin(), aCodeVertex_.end(), vertex);
  if (found == aCodeVertex_.end()) return;
  assertWriteEnabled();
  const auto at = found - aCodeVertex_.begin();
  aCodeVertex_.erase(aCodeVertex_.begin() + at);
  aCodeText_.erase(aCodeText_.begin() + at);
}

std::vector<std::unique_ptr<AcDbEntity>> CToolPath::restoredContour() const {
  std::vector<std::unique_ptr<AcDbEntity>> sources;
  const auto add = [&](const PathContour& c, double z) {
    std::unique_ptr<AcDbEntity> source;
    if (c.bCircle) {
      source = std::make_unique<AcDbCircle>(solid(c.ptCenter, z), c.dRadius);
    } else if (c.aContour.size() >= 2) {
      PolylineCurve polyline;
      for (const auto& v : c.aContour) polyline.vertices.push_back({{v.x, v.y}, v.z});
      polyline.closed = c.bClosed;
      source = std::make_unique<AcDbPolyline>(std::move(polyline));
    } else {
      return;
    }
    source->setLayer(layerId());
    source->setColorIndex(kColorByLayer);
    sources.push_back(std::move(source));
  };
  add(contour_, 0);
  if (hasFlag(kFourAxis)) add(upperContour_, 0);
  return sources;
}

void CToolPath::setGuide(const PolylineCurve& guide) {
  assertWriteEnabled();
  upper_ = {};
  for (const auto& v : guide.vertices) {
    upper_.vertices.push_back(v.point);
    upper_.bulges.push_back(v.bulge);
  }
  nFlags_ = kGuideCurve;
}

ErrorStatus CToolPath::transformBy(const AcGeMatrix3d& m) {
  if (const auto status = AcDbPolyline::transformBy(m); status != ErrorStatus::eOk) return status;
  for (int i = 0; i < numVerts(); ++i)
    if (const double bulge = getBulgeAt(i); bulge == -kMarkedBulge) setBulgeAt(i, kMarkedBulge);
  // An open path may run against what its orientation would be closed, or have none at all: its wire stays
  // on its side.
  const int orientation = hasFlag(kOpenPath) ? 0 : polylineOrientation(polyline());
  if (orientation != 0)
    nDirection_ = orientation;
  else if (m.determinant2d() < 0)
    nDirection_ = -nDirection_;
  for (AcGePoint2d* p : {&ptBreakExit_, &ptBreak_, &ptBreakUpperExit_, &ptBreakUpper_}) *p = m.apply(*p);
  transformContour(contour_, m);
  if (hasFlag(kFourAxis) || hasFlag(kGuideCurve)) transformCurve(upper_, m);
  if (hasFlag(kFourAxis)) {
    if (!upperContour_.bCircle)
      for (AcGePoint2d& p : aSyncVert_) p = m.apply(p);
    transformContour(upperContour_, m);
  }
  return ErrorStatus::eOk;
}

}  // namespace tarnex
