// What a drawing shows: the primitives of its entities in the order drawn, with colour, line pattern,
// selection marker and owner resolved. Knows entities by what they draw; paper, pixels and files are the
// painters'.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "host/database/database.h"
#include "host/database/worlddraw.h"

namespace tarnex {

// Lengths in mm along the line, taken in turn: above 0 drawn, below 0 a gap, 0 a dot; none: continuous.
struct LinePattern {
  std::string name;
  std::vector<double> dashes;
};

// Shapes point into the list that they are read from, and hold until it changes.
struct DrawnPolyline {
  std::span<const AcGePoint3d> points;  // at least 1
};
struct DrawnCircle {
  AcGePoint3d centre;
  double radius = 0;  // mm
};
struct DrawnArc {
  AcGePoint3d start, point, end;  // through `point`
};
struct DrawnText {
  AcGePoint3d position;    // left end of the base line
  AcGeVector2d direction;  // of the base line, unit
  double height = 0;       // of capitals, mm
  std::string_view utf8;   // as a reader sees it: codes such as %%c are characters here
};
using DrawnShape = std::variant<DrawnPolyline, DrawnCircle, DrawnArc, DrawnText>;

enum class ShapeKind : std::uint8_t { kPolyline, kCircle, kArc, kText };

// Small, since a drawing has millions; the shape's numbers lie in the list (DisplayList::shapeOf).
struct Primitive {
  std::int32_t marker = -1;   // -1: the entity as a whole
  AcDbObjectId owner;         // entity of model space; null for one outside a drawing
  std::uint16_t pattern = 0;  // index into DisplayList::patterns
  std::uint8_t color = std::uint8_t{kForegroundColor};  // 1..255
  ShapeKind kind = ShapeKind::kPolyline;
  std::uint32_t first = 0, count = 0;  // of DisplayList::points, or of its texts
};

struct DisplayList {
  std::vector<LinePattern> patterns{{"Continuous", {}}};
  double patternScale = 1;  // LTSCALE of the drawing
  std::vector<Primitive> primitives;
  // Of everything listed, in plan; a ray counts with its start alone, text with an estimated width.
  Extents2d extents;
  std::size_t dropped = 0;  // primitives left out: a number isn't finite, or beyond kFarthestDrawn

  [[nodiscard]] DrawnShape shapeOf(const Primitive& p) const;
  // Calls `what` with the Drawn... of its kind.
  template <class What>
  decltype(auto) visit(const Primitive& p, What&& what) const;
  // Appends a primitive that looks like `look`; the list's extents are the caller's matter. A shape of this
  // very list can't be given.
  void add(Primitive look, const DrawnPolyline& s);
  void add(Primitive look, const DrawnCircle& s);
  void add(Primitive look, const DrawnArc& s);
  void add(Primitive look, const DrawnText& s);
  void add(const Primitive& look, const DrawnShape& shape);
  // Room for `times` what another list holds, so that a long one isn't moved about while it grows.
  void reserveAs(const DisplayList& other, double times = 1);

 private:
  struct Letters {
    AcGePoint3d position;
    AcGeVector2d direction;
    double height = 0;
    std::size_t at = 0, size = 0;  // in letters_
  };
  void put(Primitive& look, ShapeKind kind, std::span<const AcGePoint3d> points);
  std::vector<AcGePoint3d> points_;
  std::vector<Letters> texts_;
  std::string letters_;
};

template <class What>
decltype(auto) DisplayList::visit(const Primitive& p, What&& what) const {
  switch (p.kind) {
    case ShapeKind::kPolyline:
      return what(DrawnPolyline{std::span(points_).subspan(p.first, p.count)});
    case ShapeKind::kCircle:
      return what(DrawnCircle{points_[p.first], points_[p.first + 1].x});
    case ShapeKind::kArc:
      return what(DrawnArc{points_[p.first], points_[p.first + 1], points_[p.first + 2]});
    case ShapeKind::kText:
      break;
  }
  const Letters& text = texts_[p.first];
  return what(DrawnText{text.position, text.direction, text.height,
                        std::string_view(letters_).substr(text.at, text.size)});
}

inline constexpr double kFarthestDrawn = 1e12;  // mm

// Extents in plan. Of text: letters 0.8 heights wide, ideographs 1.4.
[[nodiscard]] Extents2d extentsOf(const DrawnPolyline& s);
[[nodiscard]] Extents2d extentsOf(const DrawnCircle& s);
[[nodiscard]] Extents2d extentsOf(const DrawnArc& s);
[[nodiscard]] Extents2d extentsOf(const DrawnText& s);
[[nodiscard]] Extents2d extentsOf(const DrawnShape& shape);

struct DisplayOptions {
  std::function<bool(const std::string& layer)> wantsLayer;  // empty: every layer
  bool plottableOnly = false;                                // leave out layers that aren't to be plotted
  const void* applicationContext = nullptr;                  // handed to the entities, see AcGiWorldDraw
};

// Whether an entity of model space is in the list of such options.
[[nodiscard]] bool isListed(const AcDbDatabase& drawing, const AcDbEntity& entity,
                            const DisplayOptions& options);
// LTSCALE; 1 when it is nothing that dashes could be scaled by.
[[nodiscard]] double patternScaleOf(const AcDbDatabase& drawing);

// For what is going to record these entities: makes room for them by what a few of a large drawing take.
void reserveFor(DisplayList& list, const AcDbDatabase& drawing, std::span<const AcDbObjectId> entities,
                const DisplayOptions& options);

// Shown entities of model space in drawing order. The drawing stays as it is: a line type that an entity asks
// for and the drawing lacks is taken from the host's own set.
[[nodiscard]] DisplayList buildDisplayList(const AcDbDatabase& drawing, const DisplayOptions& options = {});

// Records entities one by one, for views that keep their list up to date. Remembers what layers and line
// types look like: a new one is due when they change.
class DisplayRecorder final : public AcGiWorldDraw {
 public:
  // Null `drawing`: entities that are in none; "by layer" is the foreground colour then. All outlive the
  // recorder.
  DisplayRecorder(DisplayList& list, const AcDbDatabase* drawing, const void* context = nullptr);
  Extents2d record(const AcDbEntity& entity);  // the entity's part of the list's extents

  void setColor(int index) override;
  void setLineType(std::string_view name) override;  // "ByLayer" is the owner's layer's
  void setSelectionMarker(int marker) override { now_.marker = marker; }
  void polyline(std::span<const AcGePoint3d> points) override;
  void circle(const AcGePoint3d& centre, double radius) override;
  void circularArc(const AcGePoint3d& start, const AcGePoint3d& point, const AcGePoint3d& end) override;
  void text(const AcGePoint3d& position, AcGeVector3d direction, double height,
            std::string_view utf8) override;
  [[nodiscard]] const void* applicationContext() const override { return context_; }

 private:
  struct LayerLook {
    int color = kForegroundColor, pattern = 0;
  };
  template <class Shape>
  void add(const Shape& shape, bool drawable);
  [[nodiscard]] const LayerLook& layerOf(const AcDbEntity& entity);
  [[nodiscard]] int patternOf(AcDbObjectId linetype, int otherwise);
  [[nodiscard]] int lookUp(std::string_view linetypeName);
  [[nodiscard]] int patternNamed(const std::string& name, const std::vector<double>& dashes);

  DisplayList& list_;
  const AcDbDatabase* drawing_;
  const void* context_;
  const LayerLook* layer_ = nullptr;  // of the entity that is being recorded
  Primitive now_;                     // what is in force, without a shape
  Extents2d entityBox_;               // of what the entity has drawn so far
  // What has been looked up.
  std::unordered_map<std::uint32_t, LayerLook> layers_;
  std::unordered_map<std::uint32_t, int> linetypes_;
  std::vector<std::pair<std::string, int>> asked_;  // line types by the names that entities write
  std::unordered_map<std::string, int> patternNames_;
};

}  // namespace tarnex
