// The second run over a slow-wire program: line numbers, texts ahead of and behind every line, and what the
// family of signed units says twice or leaves open. Knows lines of text and the post; a stream of any length
// goes through without standing in memory.
#pragma once

#include <string>
#include <string_view>

#include "outputiso/isopost.h"

namespace tarnex {

// A printf format of one number that is looked at once; one that isn't plain is printed as it stands.
class LineNumberFormat {
 public:
  explicit LineNumberFormat(const std::string& format);
  [[nodiscard]] bool empty() const { return format_.empty(); }
  void append(std::string& to, long number);

 private:
  [[nodiscard]] std::string textOf(long number) const;
  // Makes the text shown last that of the number behind it, for which mostly one digit changes; false where
  // that takes more.
  bool countOn();

  std::string format_, before_, after_;
  std::string shown_;  // of number last_
  long last_ = -2;
  bool plain_ = false;  // before_, the number in at least width_ digits, after_
  char fill_ = ' ';
  std::size_t width_ = 0;
};

class SecondRun {
 public:
  // A longer line of the first run is parted, so that each part is a line of its own; bytes of UTF-8, and no
  // character is cut in two.
  static constexpr std::size_t kLongestLine = 254;

  explicit SecondRun(const IsoPost& iso);

  // Takes the next piece of the first run, of any length; what is finished of the program is put behind
  // `out`.
  void feed(std::string_view piece, std::string& out);
  // A last line without a line end.
  void finish(std::string& out);
  [[nodiscard]] long lines() const { return lines_; }

 private:
  void opening(std::string& out);
  void line(std::string_view text, std::string& out);
  enum class LineEnd { kThere, kMissing };
  void body(std::string_view text, LineEnd end, std::string& out);
  // The line as the family of signed units wants it; valid until the next one.
  std::string_view inSignedUnits(std::string_view text);
  void addVector();  // to line_
  void remember(std::string_view text);

  const IsoPost& iso_;
  LineNumberFormat number_;
  const bool numbered_, signedUnits_;
  std::string_view ahead_, behind_;
  std::string rest_;  // of a line whose end hasn't come yet
  std::string line_;
  long counter_ = 1, lines_ = 0;
  bool begun_ = false;
  std::string lastMove_;  // the last line with a coordinate
  int lastG_ = 0;         // of the last arc that said its code
};

// The same over a whole program.
[[nodiscard]] std::string finishProgram(const IsoPost& iso, std::string_view firstRun);

}  // namespace tarnex
