// Block references of the file.
// Knows the tags of one entity; blocks are found by name through the caller.
#include <algorithm>

#include "host/dxf/entity_parser.h"

namespace tarnex {

// What the tags say: values in the reference's own plane.
struct EntityParser::InsertTags {
  AcGePoint3d position;
  std::string_view name;
  double rotation = 0, scale[3] = {1, 1, 1}, spacing[2] = {0, 0};
  int columns = 1, rows = 1;
  bool attributes = false;
};

void EntityParser::insertTag(InsertTags& i) {
  const int code = tags_.code();
  switch (code) {
    case 2:
      i.name = tags_.word();
      break;
    case 41:
    case 42:
    case 43:
      i.scale[code - 41] = number();
      break;
    case 44:
    case 45:
      i.spacing[code - 44] = length();
      break;
    case 50:
      i.rotation = number() * kPi / 180;
      break;
    case 66:
      i.attributes = tags_.integer() != 0;
      break;
    case 70:
      i.columns = static_cast<int>(std::clamp(tags_.integer(1), 1LL, kMostCopies));
      break;
    case 71:
      i.rows = static_cast<int>(std::clamp(tags_.integer(1), 1LL, kMostCopies));
      break;
    default:
      break;
  }
}

std::unique_ptr<AcDbEntity> EntityParser::insert() {
  InsertTags i;
  while (body())
    if (!point(i.position, 10, 1)) insertTag(i);
  if (head_.cut) return nullptr;
  if (i.attributes) skipChildren();
  if (head_.cut) return nullptr;
  if (i.name.empty() || !has(3)) return missing("its block or position");
  const bool tilted = head_.plane() == Plane::kTilted;
  if (!tilted) keptExtents_.add(i.position.flat());
  const bool flat = i.scale[0] != 0 && i.scale[1] != 0;
  if (!flat) head_.remark = "block reference with a scale of zero, it isn't used";
  const AcDbObjectId block = tilted || !flat ? AcDbObjectId{} : blockOf_(i.name);
  if (!block.isNull()) return reference(i, block);
  auto e = std::make_unique<AcDbKeptEntity>(std::string(head_.type), keptExtents_);  // a refused one too
  e->setThreeDimensional(tilted);
  return e;
}

// A reference with the normal (0,0,-1) is the one with (0,0,1) that mirrors x: its own x axis and the turn
// change sign.
std::unique_ptr<AcDbEntity> EntityParser::reference(const InsertTags& i, AcDbObjectId block) const {
  const double side = head_.plane() == Plane::kMirrored ? -1 : 1;
  auto e = std::make_unique<AcDbBlockReference>(
      block, AcGePoint3d{side * i.position.x, i.position.y, side * i.position.z});
  e->scaleX = side * i.scale[0];
  e->scaleY = i.scale[1];
  e->scaleZ = side * i.scale[2];
  e->rotation = normalizedAngle(side * i.rotation);
  e->columns = i.columns;
  e->rows = i.rows;
  e->columnSpacing = side * i.spacing[0];
  e->rowSpacing = i.spacing[1];
  return e;
}

}  // namespace tarnex
