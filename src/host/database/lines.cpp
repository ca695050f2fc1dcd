// Lines, rays and points.
// Knows their own geometry; the kernel does the rest.
#include "host/database/entities.h"
#include "host/database/entitytools.h"

namespace tarnex {

// ---- AcDbLine

const AcRxClass& AcDbLine::desc() {
  static const AcRxClass kClass = hostClass("AcDbLine", &AcDbCurve::desc(), "LINE", makeObject<AcDbLine>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbLine::clone() const {
  return std::make_unique<AcDbLine>(*this);
}
const char* AcDbLine::dxfName() const {
  return "LINE";
}

ErrorStatus AcDbLine::transformBy(const AcGeMatrix3d& m) {
  if (checkPlaneMatrix(m) == ErrorStatus::eInvalidInput) return ErrorStatus::eInvalidInput;
  assertWriteEnabled();
  start_ = m.apply(start_);
  end_ = m.apply(end_);
  return ErrorStatus::eOk;
}

void AcDbLine::worldDraw(AcGiWorldDraw& draw) const {
  const AcGePoint3d ends[] = {start_, end_};
  draw.polyline(ends);
}

void AcDbLine::list(std::vector<std::string>& lines) const {
  AcDbCurve::list(lines);
  lines.push_back("  From: " + pointText(start_));
  lines.push_back("  To: " + pointText(end_));
  lines.push_back("  Length: " + numberText(length()) +
                  "  Angle: " + degreesText(acutAngle(start_.flat(), end_.flat())));
}

// ---- AcDbRay

const AcRxClass& AcDbRay::desc() {
  static const AcRxClass kClass = hostClass("AcDbRay", &AcDbCurve::desc(), "RAY", makeObject<AcDbRay>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbRay::clone() const {
  return std::make_unique<AcDbRay>(*this);
}
const char* AcDbRay::dxfName() const {
  return "RAY";
}

ErrorStatus AcDbRay::transformBy(const AcGeMatrix3d& m) {
  if (const ErrorStatus s = checkPlaneMatrix(m); s != ErrorStatus::eOk) return s;
  assertWriteEnabled();
  base_ = m.apply(base_);
  direction_ = m.apply(direction_).normal();
  return ErrorStatus::eOk;
}

void AcDbRay::worldDraw(AcGiWorldDraw& draw) const {
  drawCurve(draw, geometry(), base_.z);
}

void AcDbRay::list(std::vector<std::string>& lines) const {
  AcDbCurve::list(lines);
  lines.push_back("  From: " + pointText(base_));
  lines.push_back("  Angle: " + degreesText(direction_.angle()));
}

// ---- AcDbPoint

const AcRxClass& AcDbPoint::desc() {
  static const AcRxClass kClass = hostClass("AcDbPoint", &AcDbEntity::desc(), "POINT", makeObject<AcDbPoint>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbPoint::clone() const {
  return std::make_unique<AcDbPoint>(*this);
}
const char* AcDbPoint::dxfName() const {
  return "POINT";
}

Extents2d AcDbPoint::getGeomExtents() const {
  Extents2d box;
  box.add(position_.flat());
  return box;
}

ErrorStatus AcDbPoint::transformBy(const AcGeMatrix3d& m) {
  if (checkPlaneMatrix(m) == ErrorStatus::eInvalidInput) return ErrorStatus::eInvalidInput;
  assertWriteEnabled();
  position_ = m.apply(position_);
  return ErrorStatus::eOk;
}

void AcDbPoint::worldDraw(AcGiWorldDraw& draw) const {
  const AcGePoint3d dot[] = {position_, position_};
  draw.polyline(dot);
}

void AcDbPoint::list(std::vector<std::string>& lines) const {
  AcDbEntity::list(lines);
  lines.push_back("  At: " + pointText(position_));
}

}  // namespace tarnex
