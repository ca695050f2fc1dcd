// The table of system variables and its use.
// Knows no prompt.
#include "host/editor/sysvars.h"

#include <algorithm>
#include <cmath>

#include "host/editor/answers.h"
#include "host/editor/ucs.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr double kMost = 1e12;

SysVar headerReal(const EditorState& s, const char* name, double otherwise) {
  const auto& header = s.drawing->headerVariables;
  const auto it = header.find(name);
  if (it == header.end()) return otherwise;
  const auto* v = std::get_if<double>(&it->second.value);
  return v ? *v : otherwise;
}

SysVar getInsUnits(const EditorState& s) {
  const auto& header = s.drawing->headerVariables;
  const auto it = header.find("$INSUNITS");
  const auto* v = it == header.end() ? nullptr : std::get_if<long long>(&it->second.value);
  return v ? *v : 0LL;
}

bool setLtScale(EditorState& s, const SysVar& v) {
  s.drawing->headerVariables["$LTSCALE"] = ResBuf{40, std::get<double>(v)};
  return true;
}

bool setCurrentLayer(EditorState& s, const SysVar& v) {
  const auto layer = s.drawing->layer(std::get<std::string>(v));
  if (layer.isNull()) return false;
  s.drawing->currentLayer = layer;
  return true;
}

SysVar getCurrentColor(const EditorState& s) {
  const int color = s.drawing->currentColor;
  if (color == kColorByLayer) return std::string("BYLAYER");
  if (color == kColorByBlock) return std::string("BYBLOCK");
  return std::to_string(color);
}

bool setCurrentColor(EditorState& s, const SysVar& v) {
  const auto& text = std::get<std::string>(v);
  auto color = parseInt(text);
  if (equalIgnoringCase(text, "BYLAYER")) color = kColorByLayer;
  if (equalIgnoringCase(text, "BYBLOCK")) color = kColorByBlock;
  if (!color || *color < 0 || *color > 256) return false;
  s.drawing->currentColor = *color;
  return true;
}

bool setViewHeight(EditorState& s, const SysVar& v) {
  s.view.height = std::get<double>(v);
  return true;
}

bool setViewCentre(EditorState& s, const SysVar& v) {
  s.view.centre = ucsToWorld(*s.drawing, std::get<AcGePoint3d>(v)).flat();
  return true;
}

bool setLastPoint(EditorState& s, const SysVar& v) {
  s.lastPoint = std::get<AcGePoint3d>(v);
  return true;
}

SysVar headerText(const EditorState& s, const char* name, const std::string& otherwise) {
  const auto& header = s.drawing->headerVariables;
  const auto it = header.find(name);
  const auto* v = it == header.end() ? nullptr : std::get_if<std::string>(&it->second.value);
  return v ? *v : otherwise;
}

AcGePoint3d corner(const EditorState& s, bool high) {
  const Extents2d box = s.drawing->drawingExtents();
  if (box.empty()) return {};
  return solid(high ? box.high : box.low);
}

// Sorted by name. A row without `get` is kept by the editor; with `get` alone it is read-only.
std::vector<SysVarRow> makeRows() {
  const AcGePoint3d origin;
  return {
      {"ACADVER", std::string("TARNEX"), 0, 0,
       [](const EditorState&) -> SysVar { return std::string("TARNEX"); }, nullptr, "the host's name"},
      {"APERTURE", 10LL, 1, 50, nullptr, nullptr, "size of the object snap target, pixels"},
      {"CECOLOR", std::string(), 0, 0, getCurrentColor, setCurrentColor, "colour of new entities"},
      {"CLAYER", std::string(), 0, 0,
       [](const EditorState& s) -> SysVar { return s.drawing->layerName(s.drawing->currentLayer); },
       setCurrentLayer, "layer of new entities"},
      {"CMDDIA", 1LL, 0, 1, nullptr, nullptr, "1: forms ask for every value, 0: they take what stands"},
      {"CMDECHO", 1LL, 0, 1, nullptr, nullptr, "1: commands run by commands print their prompts"},
      {"DWGNAME", std::string(), 0, 0, [](const EditorState& s) -> SysVar { return s.drawing->dwgName; },
       nullptr, "name of the drawing file"},
      {"DWGPREFIX", std::string(), 0, 0, [](const EditorState& s) -> SysVar { return s.drawing->dwgPrefix; },
       nullptr, "folder of the drawing file"},
      {"EXTMAX", origin, 0, 0, [](const EditorState& s) -> SysVar { return corner(s, true); }, nullptr,
       "upper right corner of what is drawn"},
      {"EXTMIN", origin, 0, 0, [](const EditorState& s) -> SysVar { return corner(s, false); }, nullptr,
       "lower left corner of what is drawn"},
      {"FILEDIA", 1LL, 0, 1, nullptr, nullptr, "kept for scripts; file names are always asked for as text"},
      {"HANDSEED", std::string(), 0, 0,
       [](const EditorState& s) -> SysVar { return handleText(s.drawing->nextHandle()).substr(1); }, nullptr,
       "the next free handle"},
      {"HIGHLIGHT", 1LL, 0, 1, nullptr, nullptr, "1: selected entities are shown as such"},
      {"INSUNITS", 0LL, 0, 0, getInsUnits, nullptr, "unit of the drawing file, 4 is millimetres"},
      {"LASTPOINT", origin, 0, 0, [](const EditorState& s) -> SysVar { return s.lastPoint; }, setLastPoint,
       "the point before, from which @ counts"},
      {"LTSCALE", 1.0, 1e-9, kMost, [](const EditorState& s) { return headerReal(s, "$LTSCALE", 1); },
       setLtScale, "scale of line types"},
      {"OPENUNITS", 0.0, 0, kMost, nullptr, nullptr,
       "mm per unit of drawings that are opened next; 0: what the file says"},
      {"OSMODE", 0LL, 0, 32767, nullptr, nullptr,
       "running object snap: 1 end, 2 mid, 4 cen, 16 quad, 32 int, "
       "128 perp, 512 near"},
      {"PELLIPSE", 0LL, 0, 1, nullptr, nullptr, "1: ellipse draws a polyline of arcs"},
      {"PICKBOX", 3LL, 0, 50, nullptr, nullptr, "size of the pick box, pixels"},
      {"TEXTSIZE", 2.5, 1e-9, kMost, nullptr, nullptr, "height of new text, mm"},
      {"TEXTSTYLE", std::string(), 0, 0,
       [](const EditorState& s) { return headerText(s, "$TEXTSTYLE", "Standard"); }, nullptr,
       "style of new text"},
      {"UCSORG", origin, 0, 0, [](const EditorState& s) -> SysVar { return s.drawing->ucsorg; }, nullptr,
       "origin of the user coordinate system, world"},
      {"VIEWCTR", origin, 0, 0,
       [](const EditorState& s) -> SysVar { return worldToUcs(*s.drawing, solid(s.view.centre)); },
       setViewCentre, "middle of the view"},
      {"VIEWDIR", origin, 0, 0, [](const EditorState& s) -> SysVar { return s.view.direction; }, nullptr,
       "from where the view looks"},
      {"VIEWSIZE", 0.0, 1e-6, kMost, [](const EditorState& s) -> SysVar { return s.view.height; },
       setViewHeight, "height of the view, mm"},
  };
}

bool inRange(const SysVarRow& row, double v) {
  return v >= row.low && v <= row.high;
}

}  // namespace

const std::vector<SysVarRow>& sysVarRows() {
  static const std::vector<SysVarRow> rows = makeRows();
  return rows;
}

const SysVarRow* findSysVar(std::string_view name) {
  for (const auto& row : sysVarRows())
    if (equalIgnoringCase(row.name, name)) return &row;
  return nullptr;
}

SysVar sysVarValue(const EditorState& state, const SysVarRow& row) {
  if (row.get) return row.get(state);
  const auto it = state.variables.find(std::string(row.name));
  return it == state.variables.end() ? row.initial : it->second;
}

bool isReadOnly(const SysVarRow& row) {
  return row.get && !row.set;
}

bool setSysVar(EditorState& state, const SysVarRow& row, const SysVar& given) {
  SysVar value = given;
  if (std::holds_alternative<double>(row.initial))
    if (const auto* whole = std::get_if<long long>(&given)) value = static_cast<double>(*whole);
  if (isReadOnly(row) || value.index() != row.initial.index()) return false;
  if (const auto* n = std::get_if<long long>(&value); n && !inRange(row, static_cast<double>(*n)))
    return false;
  if (const auto* r = std::get_if<double>(&value); r && !inRange(row, *r)) return false;
  if (row.set) return row.set(state, value);
  state.variables[std::string(row.name)] = value;
  return true;
}

std::optional<SysVar> parseSysVar(const SysVarRow& row, std::string_view text) {
  text = trimmed(text);
  if (std::holds_alternative<long long>(row.initial)) {
    const auto v = parseInt(text);
    return v ? std::optional<SysVar>(static_cast<long long>(*v)) : std::nullopt;
  }
  if (std::holds_alternative<double>(row.initial)) {
    const auto v = parseReal(text);
    return v ? std::optional<SysVar>(*v) : std::nullopt;
  }
  if (std::holds_alternative<AcGePoint3d>(row.initial)) {
    const auto p = parsePoint(text);
    return p && p->frame == PointText::Frame::kUser ? std::optional<SysVar>(p->value) : std::nullopt;
  }
  return SysVar(std::string(text));
}

std::string sysVarText(const SysVar& value) {
  if (const auto* n = std::get_if<long long>(&value)) return std::to_string(*n);
  if (const auto* r = std::get_if<double>(&value)) return shortestNumber(*r);
  if (const auto* p = std::get_if<AcGePoint3d>(&value))
    return shortestNumber(p->x) + "," + shortestNumber(p->y) + "," + shortestNumber(p->z);
  return std::get<std::string>(value);
}

}  // namespace tarnex
