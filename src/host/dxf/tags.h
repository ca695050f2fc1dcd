// The tag stream: group codes with their values, in ASCII and in both binary kinds, read in place and
// written. Knows the kinds of values by group code; knows no sections and no entities.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace tarnex {

enum class TagForm {
  kAscii,
  kBinaryOld,
  kBinaryNew
};  // binary: one-byte codes (escape 255) or two-byte codes

enum class TagKind { kText, kReal, kInt16, kInt32, kInt64, kBool, kChunk };
[[nodiscard]] TagKind kindOfCode(int code);

// How a file is encoded. `start` is where the first tag stands (behind a signature or byte order mark).
struct TagEncoding {
  TagForm form = TagForm::kAscii;
  std::size_t start = 0;
  bool looseEnds = false;     // ASCII with single CRs as line ends (too)
  bool utf8Mark = false;      // a byte order mark stands in front
  bool badSignature = false;  // binary whose signature had its line end changed
  std::string_view lineEnd = "\r\n";
};
[[nodiscard]] TagEncoding encodingOf(std::string_view bytes);

// Reads over bytes that stay where they are and are followed by a zero (those of a std::string). After next()
// the accessors speak of the present tag. Never throws, never copies.
class TagReader {
 public:
  TagReader(std::string_view bytes, const TagEncoding& encoding);

  // False at the end and at a place that is no tag; damaged() tells which.
  bool next() {
    tagAt_ = p_;
    if (!plain_) return nextSlow();
    const char* p = p_;
    while (*p == ' ') ++p;
    unsigned code = 0;
    const char* digits = p;
    while (static_cast<unsigned char>(*p - '0') < 10) code = code * 10 + static_cast<unsigned>(*p++ - '0');
    const auto count = p - digits;
    if (*p == '\r') ++p;
    if (*p != '\n' || count == 0 || count > 4) return nextSlow();
    code_ = static_cast<int>(code);
    takeLine(p + 1);
    return true;
  }
  [[nodiscard]] bool damaged() const { return damaged_; }
  // From the damaged place (or the present tag) to the next line "0" before a type word; false when there is
  // none.
  bool resynchronise();
  void seek(std::size_t offset) {
    p_ = begin_ + offset;
    damaged_ = false;
  }
  void seekTo(const char* tag) { seek(static_cast<std::size_t>(tag - begin_)); }
  void stepBack() { p_ = tagAt_; }  // the present tag comes again

  [[nodiscard]] int code() const { return code_; }
  [[nodiscard]] std::size_t tagOffset() const { return static_cast<std::size_t>(tagAt_ - begin_); }
  [[nodiscard]] std::size_t offset() const {
    return static_cast<std::size_t>(p_ - begin_);
  }  // behind the tag
  [[nodiscard]] std::string_view tagBytes() const { return {tagAt_, static_cast<std::size_t>(p_ - tagAt_)}; }
  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(end_ - begin_); }
  [[nodiscard]] const TagEncoding& encoding() const { return encoding_; }

  // The value as it stands (ASCII without line end, binary without length or final zero).
  [[nodiscard]] std::string_view raw() const {
    return {value_, static_cast<std::size_t>(valueEnd_ - value_)};
  }
  [[nodiscard]] std::string_view word() const;  // without blanks around
  [[nodiscard]] bool is(std::string_view w) const { return word() == w; }
  // Numbers: nothing that is no number gives nothing; a decimal comma is read and `repaired` set.
  [[nodiscard]] std::optional<double> real(bool* repaired = nullptr) const;
  [[nodiscard]] long long integer(long long fallback = 0) const;
  [[nodiscard]] std::uint64_t handle() const;   // hexadecimal; 0 when it is none
  [[nodiscard]] std::string chunk() const;      // of 310 and 1004: the bytes themselves
  [[nodiscard]] std::string valueText() const;  // any kind as the text that an ASCII file would have

 private:
  bool nextSlow();
  bool nextBinary();
  bool nextLoose();
  bool fail(bool damage);
  const char* looseLineEnd(const char* p, const char*& following) const;
  void takeLine(const char* p) {
    value_ = p;
    const auto* e = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end_ - p)));
    if (!e) {
      e = end_;
      p_ = end_;
    } else {
      p_ = e + 1;
    }
    valueEnd_ = e > p && e[-1] == '\r' ? e - 1 : e;
  }

  const char *begin_, *end_, *p_, *tagAt_, *value_, *valueEnd_;
  TagEncoding encoding_;
  bool plain_ = true, damaged_ = false;
  int code_ = 0;
};

// The value of a text as a number, as TagReader::real() reads it.
[[nodiscard]] std::optional<double> tagReal(std::string_view text, bool* repaired = nullptr);

// Appends tags to a text in a file's encoding.
class TagWriter {
 public:
  TagWriter(std::string& out, TagForm form, std::string_view lineEnd)
      : out_(out), form_(form), lineEnd_(lineEnd) {}
  void text(int code, std::string_view value);  // in the file's code page; line ends in it become blanks
  void real(int code, double value);            // the shortest that reads back the same
  void integer(int code, long long value);
  void handle(int code, std::uint64_t value);
  void chunk(int code, std::string_view bytes);  // at most 127 bytes
  void point(int code, double x, double y, double z) {
    real(code, x);
    real(code + 10, y);
    real(code + 20, z);
  }
  void raw(std::string_view tags) { out_ += tags; }  // tags that stand encoded already
  [[nodiscard]] std::string& out() { return out_; }

 private:
  void code(int code);
  void number(int code, long long value, double real);
  std::string& out_;
  TagForm form_;
  std::string_view lineEnd_;
};

}  // namespace tarnex
