// What all entities share.
// Knows properties and outlines; the shape is the derived class's.
#include "host/database/entity.h"

#include <algorithm>

#include "host/database/database.h"
#include "host/database/entitytools.h"

namespace tarnex {

const AcRxClass& AcDbEntity::desc() {
  static const AcRxClass kClass = hostClass("AcDbEntity", &AcDbObject::desc());
  return kClass;
}

// A copy is neither lit up nor hidden.
AcDbEntity::AcDbEntity(const AcDbEntity& other)
    : AcDbObject(other),
      color_(other.color_),
      layer_(other.layer_),
      linetype_(other.linetype_),
      invisible_(other.invisible_) {}

void AcDbEntity::setPropertiesFrom(const AcDbEntity& other) {
  const bool sameDrawing = !database() || !other.database() || database() == other.database();
  if (sameDrawing) {
    setLayer(other.layerId());
    setLinetype(other.linetypeId());
  }
  setColorIndex(other.colorIndex());
  setInvisible(other.isInvisible());
}

ErrorStatus AcDbEntity::explode(std::vector<std::unique_ptr<AcDbEntity>>&) const {
  return ErrorStatus::eNotApplicable;
}

void AcDbEntity::list(std::vector<std::string>& lines) const {
  const bool paper = database() && ownerId() == database()->paperSpace();
  lines.push_back(std::string(dxfName()) + "  Layer: \"" +
                  (database() ? database()->layerName(layerId()) : "0") +
                  "\"  Space: " + (paper ? "Paper" : "Model"));
  std::string look = "  Color: ";
  look += color_ == kColorByLayer ? "BYLAYER" : color_ == kColorByBlock ? "BYBLOCK" : std::to_string(color_);
  const auto* linetype = database() ? database()->peek<AcDbLinetypeTableRecord>(linetype_) : nullptr;
  look += "  Linetype: " + (linetype ? linetype->getName() : std::string("BYLAYER"));
  if (invisible_) look += "  Invisible";
  lines.push_back(look);
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string hex;
  for (std::uint64_t h = handle(); h != 0; h >>= 4) hex.insert(hex.begin(), kDigits[h & 15]);
  lines.push_back("  Handle: " + (hex.empty() ? "none" : hex));
}

void AcDbEntity::getGripPoints(std::vector<AcGePoint3d>&) const {}
ErrorStatus AcDbEntity::moveGripPointsAt(const std::vector<int>&, const AcGeVector3d&) {
  return ErrorStatus::eNotApplicable;
}
ErrorStatus AcDbEntity::moveStretchPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) {
  return moveGripPointsAt(indices, offset);
}

ErrorStatus AcDbEntity::intersectWith(const AcDbEntity& other, Extend mode,
                                      std::vector<AcGePoint3d>& points) const {
  const std::vector<Curve> mine = outline(), theirs = other.outline();
  if (mine.empty() || theirs.empty()) return ErrorStatus::eNotApplicable;
  for (const Curve& a : mine)
    for (const Curve& b : theirs) {
      if (!isValid(a) || !isValid(b)) continue;
      for (const AcGePoint2d p : intersect(a, b, mode))
        if (std::none_of(points.begin(), points.end(), [&](const AcGePoint3d& q) { return q.flat() == p; }))
          points.push_back(solid(p));
    }
  return ErrorStatus::eOk;
}

}  // namespace tarnex
