// `GY`: the process report as a table in the drawing.
// Knows the job's keys in the drawing and the styles of paths.
#include <algorithm>

#include "contour/hosthelpers.h"
#include "contour/tableblock.h"
#include "frame/drawingvars.h"
#include "host/platform/format.h"
#include "machining/joblayout.h"
#include "outputiso/programtools.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

constexpr int kColumns = 6, kFirstHead = 447, kPathsOfPass = 454, kNoJob = 500;
constexpr int kHeadColour = 6, kRowColour = 2;
// In text heights: where a rule lies under its row, and how far down the next row stands.
constexpr double kRule = 0.2, kRow = 1.6;

using Row = std::array<std::string, kColumns>;

// "N3-N9", "N1": the first and the last path of the choice that have the style. Empty: none has it.
std::string pathsOf(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& chosen,
                    const ProcessStyle& style) {
  int first = -1, last = -1;
  for (AcDbObjectId id : chosen) {
    const auto* path = drawing.peek<CToolPath>(id);
    if (!path || !sameStyle(path->getProcessStyle(), style)) continue;
    (first < 0 ? first : last) = path->nPathNo();
  }
  if (first < 0) return {};
  return last < 1 ? formatted("N%d", first) : formatted("N%d-N%d", first, last);
}

// What follows a "-" in a style's name is the user's own mark.
std::string shownName(const std::string& name) {
  const auto dash = name.find('-');
  return dash != std::string::npos && dash >= 2 ? name.substr(0, dash) : name;
}

class ProcessReport {
 public:
  explicit ProcessReport(Module& module)
      : module_(module), drawing_(module.drawing()), height_(module.settings.dTextHeight) {}

  void heads() {
    double x = 0;
    for (int i = 0; i < kColumns; ++i) {
      columns_[static_cast<std::size_t>(i)] = x;
      const std::string head = module_.message(kFirstHead + i);
      x = AcDbText({x, 0, 0}, head + "|", height_).getGeomExtents().high.x;
      text(i, head, kHeadColour);
    }
    width_ = x;
    endRow(kHeadColour);
  }

  void row(const Row& texts) {
    for (int i = 0; i < kColumns; ++i)
      if (!texts[static_cast<std::size_t>(i)].empty())
        text(i, texts[static_cast<std::size_t>(i)], kRowColour);
    endRow(kRowColour);
  }

  void place() { placeAsBlock(module_, entities_); }

 private:
  void text(int column, const std::string& words, int colour) {
    add(std::make_unique<AcDbText>(AcGePoint3d{columns_[static_cast<std::size_t>(column)], y_, 0}, words,
                                   height_),
        colour);
  }

  void endRow(int colour) {
    const double y = y_ - kRule * height_;
    add(std::make_unique<AcDbLine>(AcGePoint3d{width_, y, 0}, AcGePoint3d{0, y, 0}), colour);
    y_ -= kRow * height_;
  }

  void add(std::unique_ptr<AcDbEntity> entity, int colour) {
    entities_.push_back(appendToModelSpace(drawing_, std::move(entity), {}, colour, ""));
  }

  Module& module_;
  AcDbDatabase& drawing_;
  const double height_;
  double y_ = 0, width_ = 0;
  std::array<double, kColumns> columns_{};
  SelectionSet entities_;
};

void addStyle(Module& module, int index, const std::vector<AcDbObjectId>& chosen, ProcessReport& report) {
  const DrawingVars vars(module.drawing());
  const auto key = vars.getString(formatted("ISO_STYLE%d", index));
  if (!key) return;
  ProcessStyle style;
  readStyleKey(*key, style);
  const std::string paths = pathsOf(module.drawing(), chosen, style);
  if (paths.empty()) return;
  for (int g = 0; g < passesOf(style); ++g) {
    const auto passKey = vars.getString(formatted("ISO_STYLEGROUP%d%d", index, g));
    if (!passKey) continue;
    readPassKey(*passKey, style, g);
    const PassRecord& pass = style.passes[static_cast<std::size_t>(g)];
    Row row{paths, shownName(style.sName), formatted("%.3f", style.dValueC),
            formatted("%.3f", style.dValueA)};
    if (g > 0) row = {"", "", module.message(kPathsOfPass, {std::string_view(paths)}), ""};
    row[4] = formatted("%.3f", pass.dValue1);
    row[5] = "H" + pass.sCode;
    report.row(row);
  }
}

}  // namespace

void GY(Module& module) {
  const auto chosen = selectProgramPaths(module);
  if (!chosen) return;
  const int styles = DrawingVars(module.drawing()).getInt("ISO_STYLENUM").value_or(0);
  if (styles == 0) return module.editor.messageBox(module.message(kNoJob));
  module.loadSettings();
  CommandSetting setting(module.editor);
  setting.world();
  ProcessReport report(module);
  report.heads();
  for (int i = 0; i < std::min(styles, kMostStyles); ++i) addStyle(module, i, *chosen, report);
  report.place();
}

}  // namespace tarnex
