// `fx`: the direction of polylines. `WZ`: codes at vertices.
// Knows prompts and entities; no program.
#include "pathcmd/smallcommands.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

constexpr std::size_t kMostCodeBytes = 127;

// ---- fx

// Entities that stand for a moment; they go without a trace, on every way out.
class Marks {
 public:
  explicit Marks(AcDbDatabase& drawing) : drawing_(drawing) {}
  Marks(const Marks&) = delete;
  Marks& operator=(const Marks&) = delete;
  ~Marks() { wipe(); }

  void circle(AcGePoint2d centre, double radius) { add(std::make_unique<AcDbCircle>(solid(centre), radius)); }
  void line(AcGePoint2d a, AcGePoint2d b) { add(std::make_unique<AcDbLine>(solid(a), solid(b))); }
  void wipe() { drawing_.takeBack(std::exchange(ids_, {})); }

 private:
  void add(std::unique_ptr<AcDbEntity> entity) {
    ids_.push_back(appendToModelSpace(drawing_, std::move(entity), {}, kColorByLayer, ""));
  }
  AcDbDatabase& drawing_;
  std::vector<AcDbObjectId> ids_;
};

// Degrees of travel at the span's end; nothing where the span has no length.
std::optional<double> travelAtEnd(AcGePoint2d from, AcGePoint2d to, double bulge) {
  if (from == to) return std::nullopt;
  if (bulge == 0) return angleDegrees(from, to);
  return angleDegrees(bulgeToCircle(from, to, bulge).centre, to) + (bulge > 0 ? 90 : -90);
}

void markDirection(Marks& marks, const PolylineCurve& c, double h) {
  const auto& v = c.vertices;
  const AcGePoint2d start = v[0].point;
  marks.circle(start, h);
  if (!c.closed) {
    marks.line(polarDegrees(start, 45, h), polarDegrees(start, 225, h));
    marks.line(polarDegrees(start, 135, h), polarDegrees(start, 315, h));
  }
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const AcGePoint2d end = v[(i + 1) % v.size()].point;
    const auto a = travelAtEnd(v[i].point, end, v[i].bulge);
    if (!a) continue;
    marks.line(end, polarDegrees(end, *a + 150, h));
    marks.line(end, polarDegrees(end, *a - 150, h));
  }
}

void tellDirection(Module& module, const PolylineCurve& c) {
  const int turn = c.closed ? polylineOrientation(c) : 0;
  const int text = !c.closed ? 20245 : turn > 0 ? 20246 : turn < 0 ? 20247 : 20248;
  const AcGePoint2d start = c.vertices[0].point;
  module.editor.print("\n" + module.message(text, {static_cast<long long>(c.spanCount()), start.x, start.y}));
}

std::optional<PolylineCurve> pickedPolyline(AcDbDatabase& drawing, AcDbObjectId id) {
  if (const auto polyline = drawing.open<AcDbPolyline>(id)) return polyline->polyline();
  if (const auto heavy = drawing.open<AcDb2dPolyline>(id)) return convertFrom(*heavy)->polyline();
  return std::nullopt;
}

// ---- WZ

class CodesAtVertices {
 public:
  CodesAtVertices(Module& module, std::string text)
      : module_(module), editor_(module.editor), drawing_(module.drawing()), text_(std::move(text)) {}

  void run() {
    CommandSetting setting(editor_);
    setting.world();
    for (;;) {
      const auto input = getUserInput(editor_, module_.message(546), PickMode::kEntityPickBox, "C");
      switch (input.kind) {
        case InputKind::kCancel:
        case InputKind::kEnter:
          return;
        case InputKind::kEntity:
          atPick(input.entity, input.point.flat());
          break;
        case InputKind::kKeyword:
          clearing_ = true;
          editor_.print("\n    ");
          if (const auto first = editor_.acedGetPoint(module_.message(261))) window(first.value);
          break;
        case InputKind::kPoint:
          window(input.point);
          break;
        default:
          break;
      }
    }
  }

 private:
  Opened<CToolPath> openPath(AcDbObjectId id) {
    auto path = drawing_.open<CToolPath>(id, OpenMode::kForWrite);
    if (!path)
      editor_.print(path.status() == ErrorStatus::eOnLockedLayer ? module_.message(20210)
                                                                 : "\n" + module_.message(157));
    return path;
  }

  void atPick(AcDbObjectId id, AcGePoint2d pick) {
    const auto path = openPath(id);
    if (!path) return;
    const auto found = findSpanAt(path->polyline(), pick);
    if (!found || found->index < 0) {
      editor_.print("\ncan not find the pick point!");
      return;
    }
    path->setCodeAt(found->side > 0 ? found->index + 1 : found->index, text_);
  }

  void window(const AcGePoint3d& first) {
    const auto corner = editor_.acedGetCorner(first, "");
    if (!corner) return;
    if (const auto named = editor_.namedInsteadOfCorner()) {
      for (const AcDbObjectId id : *named) atVertices(id, nullptr);
      return;
    }
    const AcGePoint2d a = first.flat(), b = corner.value.flat();
    const Extents2d box{{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::max(a.x, b.x), std::max(a.y, b.y)}};
    AcEditor::SelectArgs args;
    args.first = solid(box.low);
    args.second = solid(box.high);
    for (const AcDbObjectId id : editor_.acedSSGet("C", args).value) atVertices(id, &box);
  }

  // All vertices without a box.
  void atVertices(AcDbObjectId id, const Extents2d* box) {
    const auto path = openPath(id);
    if (!path) return;
    for (int i = 0; i < path->numVerts(); ++i) {
      if (box && !box->contains(path->getPointAt(i))) continue;
      if (clearing_)
        path->removeCodeAt(i);
      else
        path->setCodeAt(i, text_);
    }
  }

  Module& module_;
  AcEditor& editor_;
  AcDbDatabase& drawing_;
  const std::string text_;
  bool clearing_ = false;
};

std::string withoutBlanksAround(const std::string& text) {
  constexpr const char* kBlanks = " \t\r\n\v\f";
  const auto first = text.find_first_not_of(kBlanks);
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

void fx(Module& module) {
  AcEditor& editor = module.editor;
  Marks marks(module.drawing());
  for (;;) {
    editor.print(module.message(142));
    const auto input = getUserInput(editor, "", PickMode::kEntityPickBox);
    marks.wipe();
    if (input.kind == InputKind::kCancel || input.kind == InputKind::kEnter) return;
    if (input.kind != InputKind::kEntity) continue;
    const auto polyline = pickedPolyline(module.drawing(), input.entity);
    if (!polyline || polyline->vertices.empty()) {
      editor.print(module.message(143));
      continue;
    }
    markDirection(marks, *polyline, viewUnit(editor));
    tellDirection(module, *polyline);
  }
}

void WZ(Module& module) {
  AcEditor& editor = module.editor;
  editor.print(module.message(547, {std::string_view(module.settings.sLastCode)}));
  const auto answer = editor.acedGetString(true, "");
  if (!answer) return;
  const std::string text =
      answer.value.empty() ? module.settings.sLastCode : withoutBlanksAround(answer.value);
  if (text.empty()) return;
  if (text.size() > kMostCodeBytes) {
    editor.print("\n" + module.message(20243, {static_cast<long long>(kMostCodeBytes)}));
    editor.commandFailed();
    return;
  }
  module.settings.sLastCode = text;
  module.saveSettings();
  CodesAtVertices(module, text).run();
}

}  // namespace tarnex
