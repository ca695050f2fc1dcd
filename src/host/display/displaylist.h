// What a drawing shows: the primitives of its entities in the order drawn, with colour, line pattern,
// selection marker and owner resolved. Knows entities by what they draw; paper, pixels and files are the
// painters'.
#pragma once

#include <functional>
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

struct DrawnPolyline {
  std::vector<AcGePoint3d> points;  // at least 1
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
  std::string utf8;        // as a reader sees it: codes such as %%c are characters here
};

struct Primitive {
  std::variant<DrawnPolyline, DrawnCircle, DrawnArc, DrawnText> shape;
  int color = kForegroundColor;  // 1..255
  int pattern = 0;               // index into DisplayList::patterns
  int marker = -1;               // -1: the entity as a whole
  AcDbObjectId owner;            // entity of model space; null for one outside a drawing
};

struct DisplayList {
  std::vector<LinePattern> patterns{{"Continuous", {}}};
  double patternScale = 1;  // LTSCALE of the drawing
  std::vector<Primitive> primitives;
  // Of everything listed, in plan; a ray counts with its start alone, text with an estimated width.
  Extents2d extents;
  std::size_t dropped = 0;  // primitives left out: a number isn't finite, or beyond kFarthestDrawn
};

inline constexpr double kFarthestDrawn = 1e12;  // mm

// Extents in plan. Of text: letters 0.8 heights wide, ideographs 1.4.
[[nodiscard]] Extents2d extentsOf(const Primitive& p);

struct DisplayOptions {
  std::function<bool(const std::string& layer)> wantsLayer;  // empty: every layer
  bool plottableOnly = false;                                // leave out layers that aren't to be plotted
  const void* applicationContext = nullptr;                  // handed to the entities, see AcGiWorldDraw
};

// Shown entities of model space in drawing order. The drawing stays as it is: a line type that an entity asks
// for and the drawing lacks is taken from the host's own set.
[[nodiscard]] DisplayList buildDisplayList(const AcDbDatabase& drawing, const DisplayOptions& options = {});

// Records entities one by one, for views that keep their list up to date.
class DisplayRecorder final : public AcGiWorldDraw {
 public:
  // Null `drawing`: entities that are in none; "by layer" is the foreground colour then. All outlive the
  // recorder.
  DisplayRecorder(DisplayList& list, const AcDbDatabase* drawing, const void* context = nullptr)
      : list_(list), drawing_(drawing), context_(context) {}
  void record(const AcDbEntity& entity);

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
  template <class Shape>
  void add(Shape shape, bool drawable);
  [[nodiscard]] const AcDbLayerTableRecord* layerOf(const AcDbEntity& entity) const;
  [[nodiscard]] const AcDbLinetypeTableRecord* linetypeOf(const AcDbEntity& entity) const;
  [[nodiscard]] int patternOf(const AcDbLinetypeTableRecord* linetype);
  [[nodiscard]] int patternNamed(const std::string& name, const std::vector<double>& dashes);

  DisplayList& list_;
  const AcDbDatabase* drawing_;
  const void* context_;
  const AcDbEntity* entity_ = nullptr;
  Primitive now_;                               // what is in force, without a shape
  Extents2d entityBox_;                         // of what the entity has drawn so far
  std::unordered_map<std::string, int> known_;  // patterns by name
};

}  // namespace tarnex
