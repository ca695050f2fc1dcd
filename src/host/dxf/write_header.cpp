// The HEADER section written: variables that the program changed, the current layer and colour, the user
// coordinate system, the next handle. Knows header variables; no entities.
#include <algorithm>
#include <array>
#include <cmath>

#include "host/dxf/reader.h"
#include "host/dxf/writer.h"

namespace tarnex {
namespace {

// These say how the file itself is written, or are written by their own rules.
constexpr std::array<std::string_view, 9> kOwnRules = {"$ACADVER",  "$DWGCODEPAGE", "$HANDSEED",
                                                       "$INSUNITS", "$CLAYER",      "$CECOLOR",
                                                       "$UCSORG",   "$UCSXDIR",     "$UCSYDIR"};

ResBuf pointItem(const AcGePoint3d& p) {
  ResBuf item;
  item.code = 10;
  item.value = p;
  return item;
}

}  // namespace

const DxfHeaderVariable* DxfWriter::variable(std::string_view name) const {
  const auto it = headerPlace_.find(name);
  return it == headerPlace_.end() ? nullptr : it->second;
}

// As the file has it now; a text decoded.
ResBuf DxfWriter::variableValue(const DxfHeaderVariable& v) const {
  TagReader r = doc_.reader(v.begin);
  ResBuf item;
  if (!r.next() || !r.next() || r.offset() > v.end) return item;
  item = readItem(r, doc_.codec);
  if (item.code == 10 && r.next() && r.code() == 20 && r.offset() <= v.end) {
    auto p = std::get<AcGePoint3d>(item.value);
    p.y = r.real().value_or(0);
    item.value = p;
  }
  return item;
}

std::string DxfWriter::variableTags(const std::string& name, const ResBuf& value) const {
  std::string out;
  TagWriter w = tags(out);
  w.text(9, name);
  item(w, value);
  return out;
}

void DxfWriter::planVariable(const std::string& name, const ResBuf& value) {
  const DxfHeaderVariable* there = variable(name);
  if (!there) {
    if (const DxfSection* s = section("HEADER")) edit(s->end, 0, variableTags(name, value));
    return;
  }
  if (variableValue(*there) == value) return;
  edit(there->begin, there->end - there->begin, variableTags(name, value));
}

void DxfWriter::planHeader() {
  if (!section("HEADER")) return;
  for (const auto& [name, value] : db_.headerVariables)
    if (value.code != 0 && name.size() > 1 && name.front() == '$' &&
        std::find(kOwnRules.begin(), kOwnRules.end(), name) == kOwnRules.end())
      planVariable(name, value);
  if (doc_.insUnits) {
    ResBuf unit;
    unit.code = 70;
    unit.value = static_cast<long long>(*doc_.insUnits);
    planVariable("$INSUNITS", unit);
  }
  planUcs();
  planCurrent();
  if (usesHandles() && newHandles_) planSeed();
}

// Above every handle, those of vertices that come later in the stream included.
void DxfWriter::planSeed() {
  const std::uint64_t seed = nextHandle_ + handlesToCome_;
  const DxfHeaderVariable* there = variable("$HANDSEED");
  std::string out;
  TagWriter w = tags(out);
  w.text(9, "$HANDSEED");
  w.handle(5, seed);
  if (there)
    edit(there->begin, there->end - there->begin, std::move(out));
  else
    edit(section("HEADER")->end, 0, std::move(out));
}

void DxfWriter::planUcs() {
  const DxfHeaderVariable* there = variable("$UCSORG");
  AcGePoint3d before;
  if (there)
    if (const ResBuf value = variableValue(*there); const auto* p = std::get_if<AcGePoint3d>(&value.value))
      before = *p;
  const double f = doc_.factor;
  if (!(db_.ucsorg == AcGePoint3d{before.x * f, before.y * f, before.z * f})) {
    const FileSpace space{f, false};
    planVariable("$UCSORG", pointItem({space.length(db_.ucsorg.x), space.length(db_.ucsorg.y),
                                       space.length(db_.ucsorg.z)}));
  }
  const auto axis = [this](const char* name, const AcGeVector3d& now, AcGeVector3d standing) {
    if (const DxfHeaderVariable* v = variable(name))
      if (const ResBuf value = variableValue(*v); const auto* p = std::get_if<AcGePoint3d>(&value.value))
        standing = AcGeVector3d{p->x, p->y, p->z}.normal();
    if (!(now == standing)) planVariable(name, pointItem({now.x, now.y, now.z}));
  };
  axis("$UCSXDIR", db_.ucsXDir, {1, 0, 0});
  axis("$UCSYDIR", db_.ucsYDir, {0, 1, 0});
}

void DxfWriter::planCurrent() {
  const DxfHeaderVariable* layer = variable("$CLAYER");
  std::string before = "0";
  if (layer) {
    TagReader r = doc_.reader(layer->begin);
    if (r.next() && r.next()) before = doc_.codec.decode(r.word());
  }
  const std::string now = db_.layerName(db_.currentLayer);
  ResBuf value;
  value.code = 8;
  value.value = now;
  const bool unknown = layer && db_.layer(before).isNull();  // the drawing has no current layer then
  if (capitals(now) != capitals(before) && !(unknown && db_.currentLayer.isNull()))
    planVariable("$CLAYER", value);

  const DxfHeaderVariable* color = variable("$CECOLOR");
  long long standing = kColorByLayer;
  if (color) {
    TagReader r = doc_.reader(color->begin);
    if (r.next() && r.next()) standing = r.integer(kColorByLayer);
  }
  value.code = 62;
  value.value = static_cast<long long>(db_.currentColor);
  if (standing != db_.currentColor && standing >= 0 && standing <= 256) planVariable("$CECOLOR", value);
}

}  // namespace tarnex
