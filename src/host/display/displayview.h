// The display list of a drawing, kept up to date: after an edit only what has changed is drawn again.
// Knows the drawing's feed of changes; windows and paper are above it.
#pragma once

#include <cstdint>
#include <vector>

#include "host/display/displaylist.h"

namespace tarnex {

class DisplayView {
 public:
  // `drawing`, and what the options point to, outlive the view.
  explicit DisplayView(const AcDbDatabase& drawing, DisplayOptions options = {});

  // Brings the list up to what buildDisplayList would give. Layers, line types and LTSCALE are watched too;
  // values behind the application's context and the visibility that an entity has for a while are not: their
  // owner tells. How many entities were drawn.
  std::size_t update();
  void redraw(AcDbObjectId entity);           // at the next update
  void redrawAll() { reachesBack_ = false; }  // at the next update: the context's values have changed
  void setOptions(DisplayOptions options);    // redraws all

  // What one entity of model space draws: none of it when it isn't shown.
  struct Piece {
    AcDbObjectId entity;
    std::uint32_t first = 0, count = 0;  // of shapes().primitives
    Extents2d extents;
    std::size_t dropped = 0;
  };
  [[nodiscard]] const std::vector<Piece>& pieces() const { return pieces_; }  // in drawing order
  // Holds the primitives of the pieces, in any order, and some that no piece has any more.
  [[nodiscard]] const DisplayList& shapes() const { return shapes_; }
  // The list for painters, in drawing order, as buildDisplayList gives it.
  [[nodiscard]] DisplayList list() const;
  [[nodiscard]] Extents2d extents() const;

 private:
  void rebuild();
  void redraw(DisplayRecorder& recorder, AcDbObjectId id);
  void copyInto(DisplayList& list, std::vector<Piece>* moved) const;
  void tidyUp();

  const AcDbDatabase& drawing_;
  DisplayOptions options_;
  DisplayList shapes_;
  std::vector<Piece> pieces_;
  std::size_t standing_ = 0;  // primitives that pieces have
  bool reachesBack_ = false;  // false: all is to be drawn
  std::uint64_t stamp_ = 0, looks_ = 0;
  std::vector<AcDbObjectId> asked_;
};

}  // namespace tarnex
