// Splines.
// Knows their own geometry; the kernel does the rest.
#include "host/database/entities.h"
#include "host/database/entitytools.h"

namespace tarnex {

const AcRxClass& AcDbSpline::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbSpline", &AcDbCurve::desc(), "SPLINE", makeObject<AcDbSpline>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbSpline::clone() const {
  return std::make_unique<AcDbSpline>(*this);
}
const char* AcDbSpline::dxfName() const {
  return "SPLINE";
}

AcGePoint3d AcDbSpline::getStartPoint() const {
  return solid(startPoint(curve_), elevation_);
}
AcGePoint3d AcDbSpline::getEndPoint() const {
  return solid(endPoint(curve_), elevation_);
}

std::optional<AcGePoint3d> AcDbSpline::getFitPointAt(int i) const {
  if (i < 0 || i >= numFitPoints()) return {};
  return solid(fit_[static_cast<std::size_t>(i)], elevation_);
}
std::optional<AcGePoint3d> AcDbSpline::getControlPointAt(int i) const {
  if (i < 0 || i >= numControlPoints()) return {};
  return solid(curve_.control[static_cast<std::size_t>(i)], elevation_);
}

// A rational spline follows any affine matrix point by point.
ErrorStatus AcDbSpline::transformBy(const AcGeMatrix3d& m) {
  if (const ErrorStatus s = checkPlaneMatrix(m); s != ErrorStatus::eOk) return s;
  assertWriteEnabled();
  for (AcGePoint2d& p : curve_.control) p = m.apply(p);
  for (AcGePoint2d& p : fit_) p = m.apply(p);
  elevation_ = m.apply(AcGePoint3d{0, 0, elevation_}).z;
  return ErrorStatus::eOk;
}

void AcDbSpline::worldDraw(AcGiWorldDraw& draw) const {
  drawCurve(draw, curve_, elevation_);
}

void AcDbSpline::list(std::vector<std::string>& lines) const {
  AcDbCurve::list(lines);
  lines.push_back("  Degree: " + std::to_string(curve_.degree) + "  Control points: " +
                  std::to_string(numControlPoints()) + "  Fit points: " + std::to_string(numFitPoints()));
  if (!isValid(geometry())) return;
  lines.push_back("  From: " + pointText(getStartPoint()));
  lines.push_back("  To: " + pointText(getEndPoint()));
  lines.push_back("  Length: " + numberText(length()));
}

}  // namespace tarnex
