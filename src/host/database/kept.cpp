// Entities that are kept as they were read.
// Knows their name and extents; their content lies with the file's source.
#include "host/database/entities.h"
#include "host/database/entitytools.h"

namespace tarnex {

const AcRxClass& AcDbKeptEntity::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbKeptEntity", &AcDbEntity::desc(), {}, makeObject<AcDbKeptEntity>);
  return kClass;
}
const AcRxClass& AcDbDimension::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbDimension", &AcDbKeptEntity::desc(), "DIMENSION", makeObject<AcDbDimension>);
  return kClass;
}
const AcRxClass& AcDbHatch::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbHatch", &AcDbKeptEntity::desc(), "HATCH", makeObject<AcDbHatch>);
  return kClass;
}
const AcRxClass& AcDbProxyEntity::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbProxyEntity", &AcDbKeptEntity::desc(), "ACAD_PROXY_ENTITY", makeObject<AcDbProxyEntity>);
  return kClass;
}

std::unique_ptr<AcDbObject> AcDbKeptEntity::clone() const {
  return std::make_unique<AcDbKeptEntity>(*this);
}
std::unique_ptr<AcDbObject> AcDbDimension::clone() const {
  return std::make_unique<AcDbDimension>(*this);
}
std::unique_ptr<AcDbObject> AcDbHatch::clone() const {
  return std::make_unique<AcDbHatch>(*this);
}
std::unique_ptr<AcDbObject> AcDbProxyEntity::clone() const {
  return std::make_unique<AcDbProxyEntity>(*this);
}

const char* AcDbKeptEntity::dxfName() const {
  return dxfName_.c_str();
}
ErrorStatus AcDbKeptEntity::transformBy(const AcGeMatrix3d&) {
  return ErrorStatus::eNotApplicable;
}
void AcDbKeptEntity::worldDraw(AcGiWorldDraw&) const {}

void AcDbKeptEntity::list(std::vector<std::string>& lines) const {
  AcDbEntity::list(lines);
  if (!extents_.empty())
    lines.push_back("  From " + pointText(solid(extents_.low)) + " to " + pointText(solid(extents_.high)));
  lines.push_back("  Kept as it was read");
}

}  // namespace tarnex
