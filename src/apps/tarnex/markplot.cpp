// Marks as rings and numbers over a drawing's display list.
// Knows primitives and a page; what is wrong, it doesn't.
#include "apps/tarnex/markplot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace tarnex {

namespace {

constexpr double kRing = 2, kDigits = 2.6;  // mm on paper: radius, height of the numbers
constexpr std::size_t kMostRings = 60;      // of one mark
constexpr std::uint8_t kColors[] = {6, 1, 30, 5, 3, 4};

// Red and magenta catch the eye; a drawing that uses all of these gets the first.
std::uint8_t freeColor(const DisplayList& list) {
  std::array<bool, 256> used{};
  for (const Primitive& p : list.primitives) used[p.color] = true;
  for (std::uint8_t color : kColors)
    if (!used[color]) return color;
  return kColors[0];
}

// Also so that a place counted in rings stays a whole number.
bool drawable(AcGePoint2d p) {
  return std::abs(p.x) <= kFarthestDrawn && std::abs(p.y) <= kFarthestDrawn;
}

class MarkDrawing {
 public:
  MarkDrawing(DisplayList& list, double scale) : list_(list), scale_(scale) { look_.color = freeColor(list); }

  void add(const Mark& mark) {
    std::vector<AcGePoint2d> places = mark.places;
    std::erase_if(places, [](AcGePoint2d p) { return !drawable(p); });
    if (places.empty()) return;
    const double ring = std::max(kRing / scale_, 1e-6);
    AcGePoint2d corner = places.front() + AcGeVector2d{0.75 * ring, 0.75 * ring};
    if (places.size() > kMostRings)
      corner = frame(places, ring);
    else
      for (AcGePoint2d p : places) addShape(DrawnCircle{solid(p), ring});
    const auto cell = [ring](double v) { return static_cast<std::int64_t>(std::floor(v / (2 * ring))); };
    Label& label = labels_[{cell(corner.x), cell(corner.y)}];
    if (label.text.empty()) label.at = corner;
    label.text += (label.text.empty() ? "" : ",") + std::to_string(mark.number);
    label.number = mark.number;
  }

  // After all marks: numbers of one place stand in one text, so that no two of them read as one number.
  void addNumbers() {
    for (const auto& [cell, label] : labels_) {
      look_.marker = label.number;
      addShape(DrawnText{solid(label.at), {1, 0}, kDigits / scale_, label.text});
    }
    look_.marker = -1;
  }

 private:
  AcGePoint2d frame(const std::vector<AcGePoint2d>& places, double around) {
    Extents2d box;
    for (AcGePoint2d p : places) box.add(p);
    box = box.grown(around);
    const std::array<AcGePoint3d, 5> walk{solid(box.low), solid({box.high.x, box.low.y}), solid(box.high),
                                          solid({box.low.x, box.high.y}), solid(box.low)};
    addShape(DrawnPolyline{walk});
    return box.high;
  }

  template <class Shape>
  void addShape(const Shape& shape) {
    list_.add(look_, shape);
    list_.extents.add(extentsOf(shape));
  }

  struct Label {
    AcGePoint2d at;
    std::string text;
    int number = 0;
  };
  DisplayList& list_;
  double scale_;
  Primitive look_;
  std::map<std::pair<std::int64_t, std::int64_t>, Label> labels_;  // by place, about a ring apart
};

}  // namespace

void addMarks(DisplayList& list, std::span<const Mark> marks, const PageOptions& page) {
  const double scale = layoutPage(list, page).scale;
  MarkDrawing drawing(list, scale > 0 ? scale : 1);
  for (const Mark& mark : marks) drawing.add(mark);
  drawing.addNumbers();
}

}  // namespace tarnex
