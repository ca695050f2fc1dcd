// The peer of a program's writer: the same bytes put into a file by a program that is nothing but its numbers
// and the letters between them. Knows text; no post, no path.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnex::bench {

class PlainProgram {
 public:
  // Takes a finished program apart, ahead of all measuring: coordinates and line numbers become numbers
  // again.
  explicit PlainProgram(const std::string& program);
  // Formats them with fmt and writes the file; seconds of the processor.
  [[nodiscard]] double write(const std::string& path) const;

 private:
  enum class Kind : unsigned char { kText, kDecimal, kSigned, kLineNumber };
  struct Piece {
    double number = 0;
    unsigned at = 0, size = 0;  // of the text ahead of the number
    Kind kind = Kind::kText;
  };
  void addLine(std::string_view line);
  Piece pieceOf(std::string_view text);

  std::string texts_;
  std::vector<Piece> pieces_;
  int lineDigits_ = 0;
};

}  // namespace tarnex::bench
