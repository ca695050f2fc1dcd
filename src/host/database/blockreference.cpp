// References to blocks: where their content lands, and taking them apart.
// Knows one level; what is nested is asked of BlockContents.
#include <algorithm>

#include "host/database/blockcontents.h"
#include "host/database/database.h"
#include "host/database/entitytools.h"

namespace tarnex {

namespace {

constexpr std::uint64_t kMostDrawn = 200'000;  // parts of one reference

using Parts = std::vector<std::unique_ptr<AcDbEntity>>;

void dress(AcDbEntity& entity, const PartLook& look) {
  entity.setLayer(look.layer);
  entity.setLinetype(look.linetype);
  entity.setColorIndex(look.color);
}

std::unique_ptr<AcDbEntity> copyOf(const AcDbEntity& entity) {
  return std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(entity.clone().release()));
}

void addCurves(const AcDbCurve& curve, const AcGeMatrix3d& m, const PartLook& look, Parts& parts) {
  const double z = m.apply(curve.getStartPoint()).z;
  for (const Curve& image : imageOf(curve.geometry(), m)) {
    auto part = makeCurveEntity(image);
    if (z != 0) part->transformBy(AcGeMatrix3d::translation({0, 0, z}));
    dress(*part, look);
    parts.push_back(std::move(part));
  }
}

// One entity of a block, brought to the world; false when it can't be.
bool addPart(const AcDbEntity& entity, const AcGeMatrix3d& m, const PartLook& look, Parts& parts) {
  auto copy = copyOf(entity);
  const ErrorStatus status = copy->transformBy(m);
  if (status == ErrorStatus::eOk) {
    dress(*copy, look);
    parts.push_back(std::move(copy));
    return true;
  }
  if (status != ErrorStatus::eCannotScaleNonUniformly || !entity.isKindOf(AcDbCurve::desc())) return false;
  addCurves(static_cast<const AcDbCurve&>(entity), m, look, parts);
  return true;
}

// A nested reference that would become skewed: its parts one by one.
void addUnfolded(const AcDbDatabase& database, const AcDbBlockReference& nested, const AcGeMatrix3d& m,
                 const PartLook& look, Parts& parts) {
  BlockContents::of(database).unfold(
      nested, AcDbBlockReference::kMostParts, [&](const BlockContents::Part& part) {
        addPart(*part.entity, m * part.toWorld, lookWithin(database, *part.entity, look), parts);
      });
}

void addCell(const AcDbDatabase& database, const AcDbBlockReference& reference, const AcGeMatrix3d& m,
             Parts& parts) {
  const PartLook outer{reference.layerId(), reference.linetypeId(), reference.colorIndex()};
  const auto* block = database.peek<AcDbBlockTableRecord>(reference.blockTableRecord());
  for (const AcDbObjectId id : block->entities()) {
    const auto* entity = database.peek<AcDbEntity>(id);
    if (!entity) continue;
    const PartLook look = lookWithin(database, *entity, outer);
    if (!addPart(*entity, m, look, parts) && entity->isKindOf(AcDbBlockReference::desc()))
      addUnfolded(database, static_cast<const AcDbBlockReference&>(*entity), m, look, parts);
  }
}

void drawPart(AcGiWorldDraw& draw, const AcDbDatabase& database, const BlockContents::Part& part) {
  Parts images;
  if (!addPart(*part.entity, part.toWorld, part.look, images)) return;
  for (const auto& image : images) {
    if (!database.isShown(*image)) continue;
    draw.setColor(database.effectiveColor(*image));
    if (const auto* linetype = database.peek<AcDbLinetypeTableRecord>(part.look.linetype))
      draw.setLineType(linetype->getName());
    image->worldDraw(draw);
  }
}

}  // namespace

const AcRxClass& AcDbBlockReference::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbBlockReference", &AcDbEntity::desc(), "INSERT", makeObject<AcDbBlockReference>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbBlockReference::clone() const {
  return std::make_unique<AcDbBlockReference>(*this);
}
const char* AcDbBlockReference::dxfName() const {
  return "INSERT";
}

AcGeMatrix3d AcDbBlockReference::blockTransform(int row, int column) const {
  AcGePoint3d origin;
  const auto* block = database() ? database()->peek<AcDbBlockTableRecord>(block_) : nullptr;
  if (block) origin = block->origin;
  // Seen from below, x runs the other way, and up is down.
  const AcGeMatrix3d plane = mirroredPlane ? AcGeMatrix3d::scaling(-1, 1, -1) : AcGeMatrix3d();
  const AcGeMatrix3d turned = rotation != 0 ? AcGeMatrix3d::rotation(rotation, {0, 0}) : AcGeMatrix3d();
  return AcGeMatrix3d::translation({position_.x, position_.y, position_.z}) * plane * turned *
         AcGeMatrix3d::translation({column * columnSpacing, row * rowSpacing, 0}) *
         AcGeMatrix3d::scaling(scaleX, scaleY, scaleZ) *
         AcGeMatrix3d::translation({-origin.x, -origin.y, -origin.z});
}

ErrorStatus AcDbBlockReference::transformBy(const AcGeMatrix3d& m) {
  if (const ErrorStatus s = checkPlaneMatrix(m); s != ErrorStatus::eOk) return s;
  // With a mirrored plane: turning by a and then looking from below is looking from below and turning by -a.
  const double angle = mirroredPlane ? -rotation : rotation;
  const double flip = mirroredPlane ? -1 : 1;
  const AcGeVector2d x = m.apply(AcGeVector2d{std::cos(angle), std::sin(angle)});
  const AcGeVector2d y = m.apply(AcGeVector2d{-std::sin(angle), std::cos(angle)});
  const double grownX = x.length(), grownY = y.length();
  if (std::abs(x.dotProduct(y)) > 1e-9 * grownX * grownY) return ErrorStatus::eCannotScaleNonUniformly;
  assertWriteEnabled();
  const double side = x.crossProduct(y) < 0 ? -1 : 1;
  position_ = m.apply(position_);
  if (m.apply(AcGeVector2d{1, 0}) != AcGeVector2d{1, 0} || mirroredPlane) rotation = x.angle();
  scaleX *= flip * grownX;
  columnSpacing *= flip * grownX;
  scaleY *= side * grownY;
  rowSpacing *= side * grownY;
  scaleZ *= flip * m(2, 2);
  mirroredPlane = false;
  return ErrorStatus::eOk;
}

Extents2d AcDbBlockReference::getGeomExtents() const {
  return database() ? BlockContents::of(*database()).extentsOf(*this) : Extents2d{};
}

std::vector<Curve> AcDbBlockReference::outline() const {
  std::vector<Curve> curves;
  if (!database()) return curves;
  BlockContents::of(*database()).unfold(*this, kMostParts, [&](const BlockContents::Part& part) {
    for (const Curve& c : part.entity->outline())
      for (Curve& image : imageOf(c, part.toWorld)) curves.push_back(std::move(image));
  });
  return curves;
}

ErrorStatus AcDbBlockReference::explode(std::vector<std::unique_ptr<AcDbEntity>>& parts) const {
  const auto* block = database() ? database()->peek<AcDbBlockTableRecord>(block_) : nullptr;
  if (!block) return ErrorStatus::eNotApplicable;
  if (BlockContents::of(*database()).info(block_).withinItself) return ErrorStatus::eInvalidInput;
  const std::uint64_t perCell = std::max<std::uint64_t>(1, block->entities().size());
  if (cellsOf(*this) > kMostParts / perCell) return ErrorStatus::eInvalidInput;
  for (int row = 0; row < std::max(rows, 1); ++row)
    for (int column = 0; column < std::max(columns, 1); ++column)
      addCell(*database(), *this, blockTransform(row, column), parts);
  return ErrorStatus::eOk;
}

void AcDbBlockReference::worldDraw(AcGiWorldDraw& draw) const {
  if (!database()) return;
  BlockContents::of(*database()).unfold(*this, kMostDrawn, [&](const BlockContents::Part& part) {
    drawPart(draw, *database(), part);
  });
}

void AcDbBlockReference::list(std::vector<std::string>& lines) const {
  AcDbEntity::list(lines);
  const auto* block = database() ? database()->peek<AcDbBlockTableRecord>(block_) : nullptr;
  lines.push_back("  Block: " + (block ? "\"" + block->getName() + "\"" : std::string("missing")));
  lines.push_back("  At: " + pointText(position_) + "  Rotation: " + degreesText(rotation));
  lines.push_back("  Scale: " + pointText({scaleX, scaleY, scaleZ}) +
                  (mirroredPlane ? "  Mirrored plane" : ""));
  if (cellsOf(*this) > 1)
    lines.push_back("  Array: " + std::to_string(rows) + " rows by " + std::to_string(columns) +
                    " columns  Spacing: " + numberText(rowSpacing) + " by " + numberText(columnSpacing));
  if (!block) return;
  const BlockContents::Info content = BlockContents::of(*database()).info(block_);
  if (content.withinItself) lines.push_back("  The block contains itself; nothing of it is drawn");
  if (content.parts > kMostDrawn / cellsOf(*this))
    lines.push_back("  More than " + std::to_string(kMostDrawn) + " parts; the rest is not drawn");
}

// ---- dimensions, which show a block

void AcDbDimension::worldDraw(AcGiWorldDraw& draw) const {
  if (!database() || picture_.isNull()) return;
  AcDbBlockReference shown(picture_, {});
  shown.setPropertiesFrom(*this);
  BlockContents::of(*database()).unfold(shown, kMostDrawn, [&](const BlockContents::Part& part) {
    drawPart(draw, *database(), part);
  });
}

}  // namespace tarnex
