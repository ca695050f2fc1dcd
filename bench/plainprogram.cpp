// A program as texts and numbers, and its bytes made of them again.
// Knows the words X, Y, I, J and N.
#include "plainprogram.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <charconv>
#include <cstdio>

#include "figures.h"

namespace tarnex::bench {

namespace {

constexpr std::size_t kPieceOfFile = 1 << 16;

bool isCoordinate(char c) {
  return c == 'X' || c == 'Y' || c == 'I' || c == 'J';
}

// As the decimal posts write: "12.", "1.5".
void putDecimal(fmt::memory_buffer& out, double v) {
  auto to = std::back_inserter(out);
  if (v == static_cast<double>(static_cast<long long>(v)))
    fmt::format_to(to, FMT_COMPILE("{}."), static_cast<long long>(v));
  else
    fmt::format_to(to, FMT_COMPILE("{}"), v);
}

}  // namespace

PlainProgram::PlainProgram(const std::string& program) {
  texts_.reserve(program.size());
  std::string_view rest = program;
  while (!rest.empty()) {
    const auto end = std::min(rest.find('\n'), rest.size() - 1) + 1;
    addLine(rest.substr(0, end));
    rest.remove_prefix(end);
  }
}

void PlainProgram::addLine(std::string_view line) {
  std::size_t from = 0;
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (!isCoordinate(line[at]) && (line[at] != 'N' || at != 0)) continue;
    const auto end = std::min(line.find_first_not_of("+-.0123456789", at + 1), line.size());
    std::string_view digits = line.substr(at + 1, end - at - 1);
    if (digits.empty() || digits == "-000000") continue;  // no whole number prints so
    Piece piece = pieceOf(line.substr(from, at + 1 - from));
    piece.kind = at == 0 && line[at] == 'N'                   ? Kind::kLineNumber
                 : digits.find('.') == std::string_view::npos ? Kind::kSigned
                                                              : Kind::kDecimal;
    if (piece.kind == Kind::kLineNumber && lineDigits_ == 0) lineDigits_ = static_cast<int>(digits.size());
    if (digits[0] == '+') digits.remove_prefix(1);
    std::from_chars(digits.data(), digits.data() + digits.size(), piece.number);
    pieces_.push_back(piece);
    from = end;
    at = end - 1;
  }
  pieces_.push_back(pieceOf(line.substr(from)));
}

PlainProgram::Piece PlainProgram::pieceOf(std::string_view text) {
  const auto at = static_cast<unsigned>(texts_.size());
  texts_ += text;
  return {0, at, static_cast<unsigned>(text.size()), Kind::kText};
}

double PlainProgram::write(const std::string& path) const {
  return secondsOf([&] {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return;
    fmt::memory_buffer out;
    const auto flush = [&] {
      std::fwrite(out.data(), 1, out.size(), file);
      out.clear();
    };
    for (const Piece& p : pieces_) {
      out.append(texts_.data() + p.at, texts_.data() + p.at + p.size);
      auto to = std::back_inserter(out);
      switch (p.kind) {
        case Kind::kText:
          break;
        case Kind::kDecimal:
          putDecimal(out, p.number);
          break;
        case Kind::kSigned:
          fmt::format_to(to, FMT_COMPILE("{:+07d}"), static_cast<int>(p.number));
          break;
        case Kind::kLineNumber:
          fmt::format_to(to, FMT_COMPILE("{:0{}d}"), static_cast<int>(p.number), lineDigits_);
          break;
      }
      if (out.size() >= kPieceOfFile) flush();
    }
    flush();
    (void)std::fclose(file);
  });
}

}  // namespace tarnex::bench
