// The paths of a drawing in the order of their numbers, kept from one look to the next, so that a look costs
// what has changed since and not the drawing. Knows numbers and ends; what orders paths is above it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "pathcmd/paths.h"

namespace tarnex {

class PathOrder {
 public:
  // kWrite: the paths get the numbers of their places, from 1. kKeep: what stands in the drawing stays, gaps
  // too.
  enum class Numbers { kWrite, kKeep };

  // Fills the state with the drawing's paths as sorted by their numbers, and gives each path where the wire
  // stood before it. Only what differs is written; a path on a locked layer keeps its number. The outcome is
  // always that of reading the whole drawing.
  void follow(AcDbDatabase& drawing, PathState& state, Numbers numbers);
  void forget() { exact_ = false; }  // the next look reads the whole drawing

 private:
  struct Numbered {
    int number;
    AcDbObjectId id;
  };
  using Places = std::vector<std::size_t>;  // from 0

  void readWhole(AcDbDatabase& drawing);
  [[nodiscard]] bool takeChanges(AcDbDatabase& drawing, const std::vector<AcDbObjectId>& changed);
  [[nodiscard]] bool merge(Places left, std::vector<Numbered> moved);
  void place(std::vector<AcDbObjectId> list);
  void addPlacesOf(const std::vector<AcDbObjectId>& changed);
  void numberPlaces(AcDbDatabase& drawing, Numbers numbers);
  [[nodiscard]] std::size_t placeOf(AcDbObjectId id) const;

  std::weak_ptr<const void> drawing_;
  std::uint64_t stamp_ = 0;
  bool exact_ = false;                // every path has the number of its place
  std::vector<AcDbObjectId> list_;    // by place
  std::vector<std::uint32_t> place_;  // by id: place + 1, or 0
  Places toLookAt_;                   // whose number or previous end may be another
};

}  // namespace tarnex
