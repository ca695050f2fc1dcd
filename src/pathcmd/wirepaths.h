// Wire paths that more than one step of a job asks for, each worked out once and kept until its path changes.
// Knows paths of one drawing; what they are asked for is the callers'.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "host/database/database.h"
#include "toolpath/toolpath.h"

namespace tarnex {

class WirePaths {
 public:
  // Takes up the drawing, or forgets what has changed in it. Before the first of many questions; until they
  // are over no path changes.
  void follow(const AcDbDatabase& drawing);
  // What the path's wireCentrePath tells; the path is one of the drawing.
  [[nodiscard]] const OffsetPath& of(const CToolPath& path);
  // The same for the last that asks: it is no longer kept.
  [[nodiscard]] OffsetPath take(const CToolPath& path);

 private:
  std::weak_ptr<const void> drawing_;  // its life
  std::uint64_t stamp_ = 0;
  std::unordered_map<std::uint32_t, OffsetPath> kept_;  // by the path's id
};

}  // namespace tarnex
