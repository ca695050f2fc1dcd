// The tag stream read: plain ASCII stands in the header, everything less usual here.
// Knows the kinds of values by group code; knows no sections and no entities.
#include "host/dxf/tags.h"

#include <bit>
#include <charconv>
#include <cmath>

namespace tarnex {
namespace {

constexpr std::string_view kSignature = "AutoCAD Binary DXF";

struct CodeRange {
  int last;
  TagKind kind;
};
// Up to and including `last`, in order.
constexpr CodeRange kKinds[] = {
    {9, TagKind::kText},    {59, TagKind::kReal},    {79, TagKind::kInt16},   {99, TagKind::kInt32},
    {109, TagKind::kText},  {149, TagKind::kReal},   {159, TagKind::kText},   {169, TagKind::kInt64},
    {179, TagKind::kInt16}, {209, TagKind::kText},   {239, TagKind::kReal},   {269, TagKind::kText},
    {289, TagKind::kInt16}, {299, TagKind::kBool},   {309, TagKind::kText},   {319, TagKind::kChunk},
    {369, TagKind::kText},  {389, TagKind::kInt16},  {399, TagKind::kText},   {409, TagKind::kInt16},
    {419, TagKind::kText},  {429, TagKind::kInt32},  {439, TagKind::kText},   {459, TagKind::kInt32},
    {469, TagKind::kReal},  {1003, TagKind::kText},  {1004, TagKind::kChunk}, {1009, TagKind::kText},
    {1059, TagKind::kReal}, {1070, TagKind::kInt16}, {1071, TagKind::kInt32}, {32767, TagKind::kText},
};

bool blank(char c) {
  return c == ' ' || c == '\t';
}
bool digit(char c) {
  return c >= '0' && c <= '9';
}

template <class T>
T littleEndian(const char* p) {
  T value = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i)
    value = static_cast<T>(value | static_cast<T>(static_cast<unsigned char>(p[i])) << (8 * i));
  return value;
}

// A byte count of a value without text, or nothing.
std::size_t fixedSize(TagKind kind) {
  switch (kind) {
    case TagKind::kReal:
    case TagKind::kInt64:
      return 8;
    case TagKind::kInt32:
      return 4;
    case TagKind::kInt16:
      return 2;
    case TagKind::kBool:
      return 1;
    default:
      return 0;
  }
}

int hexDigit(char c) {
  if (digit(c)) return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && (blank(s.front()) || s.front() == '\r')) s.remove_prefix(1);
  while (!s.empty() && (blank(s.back()) || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

bool hasSingleReturns(std::string_view bytes) {
  const char* p = bytes.data();
  const char* end = p + bytes.size();
  while ((p = static_cast<const char*>(std::memchr(p, '\r', static_cast<std::size_t>(end - p)))) != nullptr) {
    if (p + 1 < end && p[1] != '\n') return true;
    ++p;
  }
  return false;
}

TagEncoding binaryEncoding(std::string_view bytes) {
  TagEncoding e;
  std::size_t at = kSignature.size();
  while (at < bytes.size() && (bytes[at] == '\r' || bytes[at] == '\n')) ++at;
  e.badSignature = bytes.substr(kSignature.size(), at - kSignature.size()) != "\r\n";
  const bool mark = at < bytes.size() && bytes[at] == '\x1a';
  if (mark) ++at;
  // Without its mark the signature's zero is known only before the two zeros of a first tag.
  const bool zero = at < bytes.size() && bytes[at] == '\0';
  if (zero && (mark || bytes.substr(at, 3) == std::string_view("\0\0\0", 3))) ++at;
  e.start = at;
  // The first tag is 0 SECTION: its code is one zero byte or two.
  e.form = at + 1 < bytes.size() && bytes[at + 1] == '\0' ? TagForm::kBinaryNew : TagForm::kBinaryOld;
  return e;
}

}  // namespace

TagKind kindOfCode(int code) {
  for (const CodeRange& r : kKinds)
    if (code <= r.last) return r.kind;
  return TagKind::kText;
}

TagEncoding encodingOf(std::string_view bytes) {
  if (bytes.substr(0, kSignature.size()) == kSignature) return binaryEncoding(bytes);
  TagEncoding e;
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") {
    e.start = 3;
    e.utf8Mark = true;
  }
  e.looseEnds = hasSingleReturns(bytes);
  const std::size_t at = bytes.find_first_of("\r\n");
  if (at != std::string_view::npos) {
    if (bytes[at] == '\n')
      e.lineEnd = "\n";
    else if (e.looseEnds && at + 1 < bytes.size() && bytes[at + 1] != '\n' && bytes[at + 1] != '\r')
      e.lineEnd = "\r";
  }
  return e;
}

TagReader::TagReader(std::string_view bytes, const TagEncoding& encoding)
    : begin_(bytes.data()),
      end_(bytes.data() + bytes.size()),
      p_(begin_ + encoding.start),
      tagAt_(p_),
      value_(p_),
      valueEnd_(p_),
      encoding_(encoding) {
  plain_ = encoding.form == TagForm::kAscii && !encoding.looseEnds;
}

bool TagReader::fail(bool damage) {
  damaged_ = damage;
  if (!damage) p_ = tagAt_ = end_;
  value_ = valueEnd_ = p_;
  return false;
}

// Line end at or behind p; `following` is where the next line starts. CRs before an LF belong to the one line
// end.
const char* TagReader::looseLineEnd(const char* p, const char*& following) const {
  while (p < end_ && *p != '\n' && *p != '\r') ++p;
  const char* q = p;
  if (encoding_.looseEnds) {
    while (q < end_ && *q == '\r') ++q;
    following = q < end_ && *q == '\n' ? q + 1 : p < end_ ? p + 1 : p;
    return p;
  }
  while (p < end_ && *p != '\n') ++p;
  following = p < end_ ? p + 1 : p;
  return p > begin_ && p[-1] == '\r' ? p - 1 : p;
}

bool TagReader::nextLoose() {
  const char* following = nullptr;
  const char* p = p_;
  const char* e = looseLineEnd(p, following);
  std::string_view line = trimmed({p, static_cast<std::size_t>(e > p ? e - p : 0)});
  int code = 0;
  const auto [stop, error] = std::from_chars(line.data(), line.data() + line.size(), code);
  if (error != std::errc() || stop != line.data() + line.size() || code > 9999 || code < -5) {
    for (const char* q = p; q < end_; ++q)  // only blanks and control characters left: the end
      if (static_cast<unsigned char>(*q) > 0x20) return fail(true);
    return fail(false);
  }
  if (following >= end_) return fail(false);  // a code without its value
  code_ = code;
  value_ = following;
  valueEnd_ = looseLineEnd(value_, p_);
  if (valueEnd_ < value_) valueEnd_ = value_;
  return true;
}

bool TagReader::nextBinary() {
  const char* p = p_;
  const auto left = [&] { return static_cast<std::size_t>(end_ - p); };
  if (encoding_.form == TagForm::kBinaryOld) {
    if (left() < 1) return fail(false);
    code_ = static_cast<unsigned char>(*p++);
    if (code_ == 255) {
      if (left() < 2) return fail(false);
      code_ = littleEndian<std::uint16_t>(p);
      p += 2;
    }
  } else {
    if (left() < 2) return fail(false);
    code_ = static_cast<std::int16_t>(littleEndian<std::uint16_t>(p));
    p += 2;
  }
  if (code_ > 1071 || code_ < -5) return fail(true);
  const TagKind kind = kindOfCode(code_);
  if (kind == TagKind::kText) {
    const auto* zero = static_cast<const char*>(std::memchr(p, 0, left()));
    if (!zero) return fail(false);
    value_ = p;
    valueEnd_ = zero;
    p_ = zero + 1;
    return true;
  }
  std::size_t size = fixedSize(kind);
  if (kind == TagKind::kChunk) {
    if (left() < 1) return fail(false);
    size = static_cast<unsigned char>(*p++);
  }
  if (left() < size) return fail(false);
  value_ = p;
  valueEnd_ = p_ = p + size;
  return true;
}

bool TagReader::nextSlow() {
  damaged_ = false;
  if (p_ >= end_) return fail(false);
  return encoding_.form == TagForm::kAscii ? nextLoose() : nextBinary();
}

namespace {

// A word that can stand behind code 0: at least two letters, digits, '_' or such, no blanks.
bool isTypeWord(std::string_view w) {
  w = trimmed(w);
  if (w.size() < 2 || w.size() > 64 || !((w[0] >= 'A' && w[0] <= 'Z') || w[0] == '_' || w[0] == '$'))
    return false;
  for (const char c : w)
    if (static_cast<unsigned char>(c) <= 0x20 || static_cast<unsigned char>(c) >= 0x7f) return false;
  return true;
}

}  // namespace

bool TagReader::resynchronise() {
  damaged_ = false;
  if (encoding_.form != TagForm::kAscii) {  // zero code before a capital and a zero-ended word
    const std::size_t zeros = encoding_.form == TagForm::kBinaryNew ? 2 : 1;
    for (const char* p = tagAt_ + 1; p + zeros + 3 < end_; ++p) {
      if (*p != 0 || p[zeros - 1] != 0 || p[zeros] == 0) continue;
      const auto* zero =
          static_cast<const char*>(std::memchr(p + zeros, 0, static_cast<std::size_t>(end_ - p) - zeros));
      if (!zero) break;
      if (zero - p < 66 && isTypeWord({p + zeros, static_cast<std::size_t>(zero - p) - zeros})) {
        p_ = p;
        return true;
      }
    }
    fail(false);
    return false;
  }
  const char* p = tagAt_;
  const char* following = nullptr;
  looseLineEnd(p, following);
  while ((p = following) < end_) {
    const char* e = looseLineEnd(p, following);
    if (e < p || trimmed({p, static_cast<std::size_t>(e - p)}) != "0" || following >= end_) continue;
    const char* after = nullptr;
    const char* wordEnd = looseLineEnd(following, after);
    if (wordEnd > following && isTypeWord({following, static_cast<std::size_t>(wordEnd - following)})) {
      p_ = p;
      return true;
    }
  }
  fail(false);
  return false;
}

std::string_view TagReader::word() const {
  return trimmed(raw());
}

std::optional<double> tagReal(std::string_view text, bool* repaired) {
  const char* p = text.data();
  const char* end = p + text.size();
  while (p < end && blank(*p)) ++p;
  double value = 0;
  auto [stop, error] = std::from_chars(p, end, value);
  if (stop == end && error == std::errc() && p < end) return value;
  std::string_view rest = trimmed(text);
  if (!rest.empty() && rest.front() == '+') rest.remove_prefix(1);
  const auto whole = [&value](std::string_view s) {
    const auto r = std::from_chars(s.data(), s.data() + s.size(), value);
    if (r.ec == std::errc::result_out_of_range && r.ptr == s.data() + s.size()) value = HUGE_VAL;
    return r.ptr == s.data() + s.size() && r.ec != std::errc::invalid_argument;
  };
  if (rest.empty()) return std::nullopt;
  if (whole(rest)) return value;
  if (rest.find(',') == std::string_view::npos || rest.size() > 64) return std::nullopt;
  std::string mended(rest);
  mended[mended.find(',')] = '.';
  if (!whole(mended)) return std::nullopt;
  if (repaired) *repaired = true;
  return value;
}

std::optional<double> TagReader::real(bool* repaired) const {
  if (encoding_.form == TagForm::kAscii) return tagReal(raw(), repaired);
  const TagKind kind = kindOfCode(code_);
  if (kind == TagKind::kReal) return std::bit_cast<double>(littleEndian<std::uint64_t>(value_));
  if (kind == TagKind::kText) return tagReal(raw(), repaired);
  return static_cast<double>(integer());
}

long long TagReader::integer(long long fallback) const {
  if (encoding_.form != TagForm::kAscii) {
    switch (kindOfCode(code_)) {
      case TagKind::kInt16:
        return static_cast<std::int16_t>(littleEndian<std::uint16_t>(value_));
      case TagKind::kInt32:
        return static_cast<std::int32_t>(littleEndian<std::uint32_t>(value_));
      case TagKind::kInt64:
        return static_cast<std::int64_t>(littleEndian<std::uint64_t>(value_));
      case TagKind::kBool:
        return static_cast<unsigned char>(*value_);
      case TagKind::kChunk:
        return fallback;
      default:
        break;
    }
  }
  const std::string_view w = word();
  long long value = 0;
  const char* from = w.data() + (!w.empty() && w.front() == '+');
  const auto [stop, error] = std::from_chars(from, w.data() + w.size(), value);
  if (error == std::errc() && stop == w.data() + w.size()) return value;
  const std::optional<double> r = real();  // "1.0" is met in the wild
  return r && std::abs(*r) < 1e15 ? static_cast<long long>(*r) : fallback;
}

std::uint64_t TagReader::handle() const {
  const std::string_view w = word();
  std::uint64_t value = 0;
  const auto [stop, error] = std::from_chars(w.data(), w.data() + w.size(), value, 16);
  return error == std::errc() && stop == w.data() + w.size() ? value : 0;
}

std::string TagReader::chunk() const {
  if (encoding_.form != TagForm::kAscii) return std::string(raw());
  const std::string_view w = word();
  std::string bytes;
  bytes.reserve(w.size() / 2);
  for (std::size_t i = 0; i + 1 < w.size(); i += 2) {
    const int high = hexDigit(w[i]), low = hexDigit(w[i + 1]);
    if (high < 0 || low < 0) break;
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

}  // namespace tarnex
