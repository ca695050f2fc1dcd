// Small named values inside the drawing.
// Knows dictionaries and xrecords; which keys there are, their users know.
#include "frame/drawingvars.h"

#include <cstdint>

#include "host/platform/format.h"

namespace tarnex {

namespace {

const std::string kDictionary = "MY_INFO_DICT";

enum Code { kText = 1, kPoint = 10, kReal = 40, kShort = 70 };

std::string upper(std::string_view key) {
  std::string s(key);
  for (char& c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return s;
}

std::string shown(const ResBuf& item) {
  if (auto* i = std::get_if<long long>(&item.value)) return formatted(" %lld", *i);
  if (auto* d = std::get_if<double>(&item.value)) return formatted(" %g", *d);
  if (auto* s = std::get_if<std::string>(&item.value)) return formatted(" %s", s->c_str());
  const auto& p = std::get<AcGePoint3d>(item.value);
  return formatted(" (%g %g %g)", p.x, p.y, p.z);
}

}  // namespace

AcDbObjectId DrawingVars::dictionary() const {
  AcDbObjectId id;
  if (const auto* named = drawing_.peek<AcDbDictionary>(drawing_.namedObjectsDictionary()))
    if (named->getAt(kDictionary, id) != ErrorStatus::eOk) return {};
  return id;
}

bool DrawingVars::write(std::string_view key, ResBuf item) {
  if (key.empty()) return false;
  AcDbObjectId id = dictionary();
  if (id.isNull()) {
    auto named = drawing_.open<AcDbDictionary>(drawing_.namedObjectsDictionary(), OpenMode::kForWrite);
    if (!named || named->setAt(kDictionary, std::make_unique<AcDbDictionary>(), id) != ErrorStatus::eOk)
      return false;
  }
  auto values = drawing_.open<AcDbDictionary>(id, OpenMode::kForWrite);
  if (!values) return false;
  const std::string name = upper(key);
  const bool existed = values->has(name);
  auto record = std::make_unique<AcDbXrecord>();
  record->setFromRbChain({std::move(item)});
  AcDbObjectId added;
  values->setAt(name, std::move(record), added);
  return existed;
}

std::optional<ResBuf> DrawingVars::read(std::string_view key) const {
  if (key.empty()) return std::nullopt;
  const auto* values = drawing_.peek<AcDbDictionary>(dictionary());
  AcDbObjectId id;
  if (!values || values->getAt(upper(key), id) != ErrorStatus::eOk) return std::nullopt;
  const auto* record = drawing_.peek<AcDbXrecord>(id);
  if (!record || record->rbChain().empty()) return std::nullopt;
  return record->rbChain().front();
}

bool DrawingVars::setInt(std::string_view key, int value) {
  return write(key, {kShort, static_cast<long long>(static_cast<std::int16_t>(value))});
}

bool DrawingVars::setDouble(std::string_view key, double value) {
  return write(key, {kReal, value});
}

bool DrawingVars::setString(std::string_view key, std::string_view text) {
  return write(key, {kText, std::string(text)});
}

bool DrawingVars::setPoint(std::string_view key, const AcGePoint3d& p) {
  return write(key, {kPoint, p});
}

std::optional<int> DrawingVars::getInt(std::string_view key) const {
  const auto item = read(key);
  if (!item || item->code != kShort || !std::holds_alternative<long long>(item->value)) return std::nullopt;
  return static_cast<std::int16_t>(std::get<long long>(item->value));
}

std::optional<double> DrawingVars::getDouble(std::string_view key) const {
  const auto item = read(key);
  if (!item || item->code != kReal || !std::holds_alternative<double>(item->value)) return std::nullopt;
  return std::get<double>(item->value);
}

std::optional<std::string> DrawingVars::getString(std::string_view key) const {
  const auto item = read(key);
  if (!item || item->code != kText || !std::holds_alternative<std::string>(item->value)) return std::nullopt;
  return std::get<std::string>(item->value);
}

std::optional<AcGePoint3d> DrawingVars::getPoint(std::string_view key) const {
  const auto item = read(key);
  if (!item || item->code != kPoint || !std::holds_alternative<AcGePoint3d>(item->value)) return std::nullopt;
  return std::get<AcGePoint3d>(item->value);
}

bool DrawingVars::exists(std::string_view key) const {
  const auto* values = key.empty() ? nullptr : drawing_.peek<AcDbDictionary>(dictionary());
  return values && values->has(upper(key));
}

void DrawingVars::remove(std::string_view key) {
  if (auto values = drawing_.open<AcDbDictionary>(dictionary(), OpenMode::kForWrite))
    values->remove(upper(key));
}

std::vector<std::string> DrawingVars::listAll() const {
  std::vector<std::string> lines;
  const auto* values = drawing_.peek<AcDbDictionary>(dictionary());
  if (!values) return lines;
  for (const auto& entry : values->entries()) {
    const auto* record = drawing_.peek<AcDbXrecord>(entry.id);
    if (!record) continue;
    std::string line = formatted("\n名称：%12s\t当前值：", entry.key.c_str());
    for (const auto& item : record->rbChain()) line += shown(item);
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace tarnex
