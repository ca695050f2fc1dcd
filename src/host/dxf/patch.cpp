// New values brought into the tags that a file had.
// Knows group codes and their order; no entity classes.
#include <algorithm>
#include <cmath>

#include "host/dxf/fields.h"

namespace tarnex {
namespace {

constexpr double kSameNumber =
    1e-6;  // relative; a tag farther off was repaired or put in another form when read

}  // namespace

TagPatch::TagPatch(TagReader tags, std::size_t begin, std::size_t end) : reader_(tags) {
  tags.seek(begin);
  bool group = false, embedded = false;
  ownEnd_ = extendedEnd_ = kOpen;
  while (tags.next() && tags.tagOffset() < end) {
    const std::size_t i = tags_.size();
    const int code = tags.code();
    const bool child = code == 0 && i > 0;
    if (ownEnd_ == kOpen && (child || code >= 1000)) ownEnd_ = i;
    if (extendedEnd_ == kOpen && child) extendedEnd_ = i;
    const bool opens = code == 102 && tags.word().substr(0, 1) == "{";
    if (code == 101) embedded = true;
    inGroup_.push_back(group || opens || embedded || (code == 102));
    if (code == 102) group = opens;
    tags_.push_back({code, tags.tagBytes()});
  }
  ownEnd_ = std::min(ownEnd_, tags_.size());
  extendedEnd_ = std::min(extendedEnd_, tags_.size());
  changed_.resize(tags_.size());
  replaced_.resize(tags_.size());
  behind_.resize(tags_.size());
  inFront_.resize(tags_.size());
}

std::optional<std::size_t> TagPatch::find(int code, std::size_t from) const {
  for (std::size_t i = from; i < ownEnd_; ++i)
    if (tags_[i].code == code && !inGroup_[i]) return i;
  return std::nullopt;
}

const TagReader& TagPatch::at(std::size_t i) {
  reader_.seekTo(tags_[i].bytes.data());
  static_cast<void>(reader_.next());
  return reader_;
}

void TagPatch::replace(std::size_t i, std::string bytes) {
  changed_[i] = 1;
  replaced_[i] = std::move(bytes);
}

void TagPatch::appendTo(std::string& out) const {
  for (std::size_t i = 0; i < tags_.size(); ++i) {
    out += inFront_[i];
    if (changed_[i])
      out += replaced_[i];
    else
      out += tags_[i].bytes;
    out += behind_[i];
  }
}

std::string TagStyle::one(int code, const std::variant<double, long long, std::string>& value) const {
  std::string out;
  TagWriter w(out, form, lineEnd);
  if (const auto* r = std::get_if<double>(&value))
    w.real(code, *r);
  else if (const auto* n = std::get_if<long long>(&value))
    w.integer(code, *n);
  else
    w.text(code, codec->encode(std::get<std::string>(value)));
  return out;
}

namespace {

// For each field the tag that holds it: the k-th field of a code is the k-th tag of that code. Tags without a
// field go.
std::vector<std::optional<std::size_t>> align(TagPatch& patch, const FieldList& fields) {
  std::vector<std::optional<std::size_t>> places(fields.size());
  std::vector<int> codes;
  for (const Field& f : fields)
    if (std::find(codes.begin(), codes.end(), f.code) == codes.end()) codes.push_back(f.code);
  for (const int code : codes) {
    std::size_t i = 0;
    for (std::size_t k = 0; k < fields.size(); ++k) {
      if (fields[k].code != code) continue;
      const auto at = patch.find(code, i);
      if (!at) break;
      places[k] = *at;
      i = *at + 1;
    }
    for (auto at = patch.find(code, i); at; at = patch.find(code, *at + 1)) patch.drop(*at);
  }
  return places;
}

bool isPlainValue(const TagReader& tag, const Field& f) {
  if (std::holds_alternative<std::string>(f.value)) return true;
  const double expected = std::holds_alternative<double>(f.value)
                              ? std::get<double>(f.value)
                              : static_cast<double>(std::get<long long>(f.value));
  const double there = tag.real().value_or(HUGE_VAL);
  return std::abs(there - expected) <= kSameNumber * std::max({1.0, std::abs(there), std::abs(expected)});
}

bool omitted(const Field& f) {
  const auto* real = std::get_if<double>(&f.value);
  const auto* whole = std::get_if<long long>(&f.value);
  return f.omit && ((real && *real == *f.omit) || (whole && static_cast<double>(*whole) == *f.omit));
}

bool sameValues(const FieldList& a, const FieldList& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const Field& x, const Field& y) { return x.code == y.code && x.value == y.value; });
}

}  // namespace

void patchFields(TagPatch& patch, const FieldList& before, const FieldList& now, const TagStyle& style) {
  if (sameValues(before, now)) return;
  const auto places = align(patch, now);
  std::size_t last = patch.ownEnd() - 1;  // new tags go behind their predecessor
  for (std::size_t k = 0; k < now.size(); ++k)
    if (places[k]) {
      last = *places[k];
      break;
    }
  for (std::size_t k = 0; k < now.size(); ++k) {
    if (!places[k]) {
      if (!omitted(now[k])) patch.insertBehind(last, style.one(now[k].code, now[k].value));
      continue;
    }
    last = *places[k];
    const bool same = before.size() == now.size() && before[k].value == now[k].value;
    if (!same || !isPlainValue(patch.at(last), now[k]))
      patch.replace(last, style.one(now[k].code, now[k].value));
  }
}

}  // namespace tarnex
