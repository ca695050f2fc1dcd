// What block definitions add up to: their extents, how many parts they unfold to, and whether one contains
// itself. Walks the graph of blocks with a stack of its own, so that no nesting is too deep. Knows no
// display.
#pragma once

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

#include "host/database/entities.h"

namespace tarnex {

struct PartLook {
  AcDbObjectId layer, linetype;
  int color = kColorByLayer;
};

class BlockContents {
 public:
  struct Info {
    Extents2d box;              // in the block's own coordinates
    std::uint64_t parts = 0;    // entities when everything nested is unfolded; saturates
    bool tight = true;          // no box of a turned box in `box`
    bool withinItself = false;  // reaches a block that contains itself
  };
  explicit BlockContents(const AcDbDatabase& database) : database_(database) {}
  [[nodiscard]] const Info& info(AcDbObjectId block);
  void invalidate() { known_.clear(); }

  // A part of a reference that is no reference itself: the entity of the block, its matrix to world, and the
  // properties that are in force there.
  struct Part {
    const AcDbEntity* entity;
    AcGeMatrix3d toWorld;
    PartLook look;
  };
  // Visits the visible parts in drawing order. Nothing for a block within itself. False when more remain than
  // `limit` parts, or than four times as many levels had to be entered.
  bool unfold(const AcDbBlockReference& reference, std::uint64_t limit,
              const std::function<void(const Part&)>& visit);
  [[nodiscard]] Extents2d extentsOf(const AcDbBlockReference& reference);
  [[nodiscard]] static BlockContents& of(const AcDbDatabase& database);

 private:
  [[nodiscard]] std::vector<AcDbObjectId> children(AcDbObjectId block) const;
  [[nodiscard]] Info summed(AcDbObjectId block) const;

  const AcDbDatabase& database_;
  std::unordered_map<std::uint32_t, Info> known_;
};

// A curve's image as curves; of a polyline with arcs under unequal scales its spans' images.
[[nodiscard]] std::vector<Curve> imageOf(const Curve& c, const AcGeMatrix3d& m);
// Cells of a reference's array, at least 1.
[[nodiscard]] std::uint64_t cellsOf(const AcDbBlockReference& reference);
// The look of a part of a block inserted by something that has the second one.
[[nodiscard]] PartLook lookWithin(const AcDbDatabase& database, const AcDbEntity& part,
                                  const PartLook& reference);

}  // namespace tarnex
