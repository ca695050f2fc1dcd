// The tag stream written, and numbers as an ASCII file has them.
// Knows the kinds of values by group code; knows no sections and no entities.
#include <bit>
#include <charconv>
#include <cmath>

#include "host/dxf/tags.h"

namespace tarnex {
namespace {

constexpr char kHex[] = "0123456789ABCDEF";

void appendLittleEndian(std::string& out, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i) & 0xff);
}

void appendReal(std::string& out, double value) {
  char text[32];
  const auto r = std::to_chars(text, text + sizeof text, value);
  out.append(text, r.ptr);
}

void appendHex(std::string& out, std::string_view bytes) {
  for (const char c : bytes) {
    out += kHex[static_cast<unsigned char>(c) >> 4];
    out += kHex[static_cast<unsigned char>(c) & 15];
  }
}

}  // namespace

std::string TagReader::valueText() const {
  if (encoding_.form == TagForm::kAscii) return std::string(word());
  std::string out;
  switch (kindOfCode(code_)) {
    case TagKind::kText:
      return std::string(raw());
    case TagKind::kReal:
      appendReal(out, real().value_or(0));
      return out;
    case TagKind::kChunk:
      appendHex(out, raw());
      return out;
    default:
      return std::to_string(integer());
  }
}

void TagWriter::code(int code) {
  if (form_ == TagForm::kAscii) {
    char text[8];
    const auto r = std::to_chars(text, text + sizeof text, code);
    for (auto width = r.ptr - text; width < 3; ++width) out_ += ' ';
    out_.append(text, r.ptr);
    out_ += lineEnd_;
  } else if (form_ == TagForm::kBinaryNew) {
    appendLittleEndian(out_, static_cast<std::uint16_t>(code), 2);
  } else if (code < 255) {
    out_ += static_cast<char>(code);
  } else {
    out_ += '\xff';
    appendLittleEndian(out_, static_cast<std::uint16_t>(code), 2);
  }
}

void TagWriter::text(int c, std::string_view value) {
  code(c);
  for (const char v : value) out_ += v == '\n' || v == '\r' || v == '\0' ? ' ' : v;
  if (form_ == TagForm::kAscii)
    out_ += lineEnd_;
  else
    out_ += '\0';
}

void TagWriter::number(int c, long long value, double real) {
  switch (kindOfCode(c)) {
    case TagKind::kReal:
      appendLittleEndian(out_, std::bit_cast<std::uint64_t>(real), 8);
      break;
    case TagKind::kInt64:
      appendLittleEndian(out_, static_cast<std::uint64_t>(value), 8);
      break;
    case TagKind::kInt32:
      appendLittleEndian(out_, static_cast<std::uint32_t>(value), 4);
      break;
    case TagKind::kInt16:
      appendLittleEndian(out_, static_cast<std::uint16_t>(value), 2);
      break;
    case TagKind::kBool:
      out_ += value != 0 ? '\1' : '\0';
      break;
    default:
      out_ += std::to_string(value) + '\0';
      break;
  }
}

void TagWriter::real(int c, double value) {
  if (value == 0) value = 0;  // no "-0"
  code(c);
  if (form_ != TagForm::kAscii) return number(c, static_cast<long long>(value), value);
  appendReal(out_, value);
  out_ += lineEnd_;
}

void TagWriter::integer(int c, long long value) {
  code(c);
  if (form_ != TagForm::kAscii) return number(c, value, static_cast<double>(value));
  char text[24];
  const auto r = std::to_chars(text, text + sizeof text, value);
  out_.append(text, r.ptr);
  out_ += lineEnd_;
}

void TagWriter::handle(int c, std::uint64_t value) {
  char digits[24];
  const auto r = std::to_chars(digits, digits + sizeof digits, value, 16);
  for (char* p = digits; p < r.ptr; ++p)
    if (*p >= 'a') *p = static_cast<char>(*p - 'a' + 'A');
  text(c, {digits, static_cast<std::size_t>(r.ptr - digits)});
}

void TagWriter::chunk(int c, std::string_view bytes) {
  code(c);
  if (form_ != TagForm::kAscii) {
    out_ += static_cast<char>(bytes.size());
    out_ += bytes;
    return;
  }
  appendHex(out_, bytes);
  out_ += lineEnd_;
}

}  // namespace tarnex
