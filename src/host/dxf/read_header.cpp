// The HEADER section: variables, and what of them decides how the rest is read: version, code page, units,
// handles. Knows header variables; no entities.
#include <cmath>

#include "host/dxf/reader.h"
#include "host/dxf/units.h"
#include "host/platform/codepage.h"

namespace tarnex {

void DxfReader::header() {
  while (nextOrResync()) {
    if (tags_.code() == 0) {
      tags_.stepBack();
      break;
    }
    if (tags_.code() != 9) continue;
    headerVariable(std::string(tags_.word()));
  }
  applyHeader();
}

// With the variable's 9 as the present tag. Texts stay in the file's encoding until the code page is known.
void DxfReader::headerVariable(const std::string& name) {
  DxfHeaderVariable place{name, tags_.tagOffset(), 0};
  ResBuf value;
  AcGePoint3d p;
  bool first = true;
  while (tags_.next()) {
    const int code = tags_.code();
    if (code == 0 || code == 9) {
      tags_.stepBack();
      break;
    }
    if (first) value.code = code;
    if (code == 10)
      p.x = tags_.real().value_or(0);
    else if (code == 20)
      p.y = tags_.real().value_or(0);
    else if (code == 30)
      p.z = tags_.real().value_or(0);
    else if (first && kindOfCode(code) == TagKind::kReal)
      value.value = tags_.real().value_or(0);
    else if (first && kindOfCode(code) == TagKind::kText)
      value.value = std::string(tags_.raw());
    else if (first)
      value.value = tags_.integer();
    if (code == 10)
      value.value = p;
    else if (value.code == 10)
      value.value = p;
    first = false;
  }
  place.end = tags_.offset();
  doc_.header.push_back(place);
  if (value.code) db_.headerVariables[name] = std::move(value);
}

std::optional<long long> DxfReader::headerInteger(const std::string& name) const {
  const auto it = db_.headerVariables.find(name);
  if (it == db_.headerVariables.end()) return std::nullopt;
  if (const auto* i = std::get_if<long long>(&it->second.value)) return *i;
  return std::nullopt;
}

std::string DxfReader::headerText(const std::string& name) const {
  const auto it = db_.headerVariables.find(name);
  if (it == db_.headerVariables.end()) return {};
  const auto* s = std::get_if<std::string>(&it->second.value);
  if (!s) return {};
  const std::size_t from = s->find_first_not_of(" \t");
  return from == std::string::npos ? std::string() : s->substr(from, s->find_last_not_of(" \t\r") - from + 1);
}

void DxfReader::applyHeader() {
  applyVersionAndPage();
  applyUnits();
  applyUcs();
  for (; headerDecoded_ < doc_.header.size(); ++headerDecoded_) {
    const auto it = db_.headerVariables.find(doc_.header[headerDecoded_].name);
    if (it == db_.headerVariables.end()) continue;
    if (auto* text = std::get_if<std::string>(&it->second.value)) *text = doc_.codec.decode(*text);
  }
  std::uint64_t seed = 0;
  const std::string word = headerText("$HANDSEED");
  for (const char c : word.substr(0, 17)) {
    const int digit = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                             : -1;
    seed =
        digit < 0 || seed > kLargestHandle ? kLargestHandle : seed * 16 + static_cast<std::uint64_t>(digit);
  }
  if (seed > 0 && seed < kLargestHandle) {
    db_.reserveHandlesTo(seed - 1);
    seedKnown_ = true;
  } else if (!word.empty()) {
    note(doc_.header.front().begin, "$HANDSEED \"" + word.substr(0, 20) + "\" is no handle");
  }
}

void DxfReader::applyVersionAndPage() {
  report_.version = headerText("$ACADVER");
  if (report_.version.size() == 6 && report_.version.compare(0, 2, "AC") == 0)
    doc_.version = std::atoi(report_.version.c_str() + 2);
  if (doc_.version >= 1021) doc_.codec.setPage("UTF-8");
  if (doc_.version >= 1021 || doc_.encoding.utf8Mark) return;
  const std::string word = headerText("$DWGCODEPAGE");
  if (word.empty()) return;
  const std::string page = codePageName(word);
  if (page.empty())
    note(doc_.header.front().begin, "code page \"" + word + "\" isn't known, CP1252 is taken");
  else
    doc_.codec.setPage(page);
}

void DxfReader::applyUnits() {
  const long long code = headerInteger("$INSUNITS").value_or(0);
  const std::optional<long long> metric = headerInteger("$MEASUREMENT");
  std::size_t at = 0;
  for (const DxfHeaderVariable& v : doc_.header)
    if (v.name == "$INSUNITS") at = v.begin;
  const std::optional<DrawingUnit> unit = drawingUnit(code);
  if (!unit) note(at, "$INSUNITS " + std::to_string(code) + " isn't a unit, millimetres are taken");
  report_.units = unit ? std::string(unit->name) : "unitless";
  if (unit && code != 0 && metric && unit->imperial != (*metric == 0))
    note(at, "$INSUNITS says " + report_.units + ", $MEASUREMENT says " +
                 (*metric == 0 ? "imperial" : "metric") + "; $INSUNITS is taken");
  const double factor = unit ? unit->millimetres : 1;
  if (options_.unitFactor && factor != doc_.factor)
    if (const auto asked = drawingUnitOf(doc_.factor)) doc_.insUnits = asked->code;
  if (options_.unitFactor || factor == doc_.factor) return;
  const bool late = std::any_of(doc_.sections.begin(), doc_.sections.end(), [](const DxfSection& s) {
    return s.name == "ENTITIES" || s.name == "BLOCKS";
  });
  if (late) return note(at, "the header stands behind the entities: they are taken as millimetres");
  doc_.factor = factor;
  parser_.setFactor(factor);
}

void DxfReader::applyUcs() {
  const auto point = [this](const char* name) -> const AcGePoint3d* {
    const auto it = db_.headerVariables.find(name);
    return it == db_.headerVariables.end() ? nullptr : std::get_if<AcGePoint3d>(&it->second.value);
  };
  const auto usable = [](const AcGePoint3d* p) {
    return p && std::abs(p->x) + std::abs(p->y) + std::abs(p->z) < kLargestNumber;
  };
  const AcGePoint3d* origin = point("$UCSORG");
  if (usable(origin))
    db_.ucsorg = {origin->x * doc_.factor, origin->y * doc_.factor, origin->z * doc_.factor};
  const AcGePoint3d *x = point("$UCSXDIR"), *y = point("$UCSYDIR");
  if (!usable(x) || !usable(y)) return;
  const AcGeVector3d xd{x->x, x->y, x->z}, yd{y->x, y->y, y->z};
  if (!(xd.crossProduct(yd).length() > 1e-9)) return;  // no axes at all
  db_.ucsXDir = xd.normal();
  db_.ucsYDir = yd.normal();
}

}  // namespace tarnex
