// The judge's reader of 3B programs: lines, numbers, counts and words.
// Knows the format only; what a move does to the wire is walked elsewhere.
#include "exchange/reader3b.h"

#include <charconv>

namespace tarnex::truth {

namespace {

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
bool digit(char c) {
  return c >= '0' && c <= '9';
}
bool blank(char c) {
  return c == ' ' || c == '\t';
}

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && blank(s.back())) s.remove_suffix(1);
  return s;
}

// Walks over one line from the left; every step says whether it found what it was asked for.
class Scan {
 public:
  explicit Scan(std::string_view s) : s_(s) {}
  [[nodiscard]] char peek() {
    skipBlanks();
    return s_.empty() ? '\0' : upper(s_.front());
  }
  [[nodiscard]] std::string_view rest() const { return s_; }
  bool take(char c) {
    if (peek() != c || s_.empty()) return false;
    s_.remove_prefix(1);
    return true;
  }
  // Digits with or without blanks before them; no digits are 0. Nothing beyond kLargestCount.
  std::optional<std::int64_t> count() {
    skipBlanks();
    std::int64_t v = 0;
    while (!s_.empty() && digit(s_.front())) {
      v = v * 10 + (s_.front() - '0');
      if (v > kLargestCount) return std::nullopt;
      s_.remove_prefix(1);
    }
    return v;
  }
  std::optional<double> real() {
    skipBlanks();
    double v = 0;
    const auto end = std::from_chars(s_.data(), s_.data() + s_.size(), v);
    if (end.ec != std::errc() || !std::isfinite(v)) return std::nullopt;
    s_.remove_prefix(static_cast<std::size_t>(end.ptr - s_.data()));
    return v;
  }

 private:
  void skipBlanks() {
    while (!s_.empty() && blank(s_.front())) s_.remove_prefix(1);
  }
  std::string_view s_;
};

// Numbers "x , y"; nothing when either is missing.
std::optional<Point> pair(Scan& in) {
  const auto x = in.real();
  if (!x || !in.take(',')) return std::nullopt;
  const auto y = in.real();
  if (!y) return std::nullopt;
  return Point{*x, *y};
}

const char* readCounts(Scan& in, Move3b& m) {
  std::int64_t* const counts[] = {&m.bx, &m.by, &m.bj};
  for (std::int64_t* count : counts) {
    if (!in.take('B')) return "a count with its B is missing";
    const auto v = in.count();
    if (!v) return "a count is larger than any machine counts";
    *count = *v;
  }
  if (!in.take('B')) return nullptr;
  m.taperCount = in.count();
  return m.taperCount ? nullptr : "the taper count is larger than any machine counts";
}

const char* readWords(Scan& in, Move3b& m) {
  if (!in.take('G') || (in.peek() != 'X' && in.peek() != 'Y')) return "the counting axis GX or GY is missing";
  m.axis = in.peek();
  in.take(m.axis);
  while (m.taperWord < 2 && in.take('D')) ++m.taperWord;
  m.kind = in.peek();
  if (m.kind != 'L' && m.kind != 'N' && m.kind != 'S') return "the word L, NR or SR is missing";
  in.take(m.kind);
  if (m.kind != 'L' && !in.take('R')) return "the word L, NR or SR is missing";
  const char q = in.peek();
  if (q < '1' || q > '4') return "the quadrant of the word isn't 1 to 4";
  in.take(q);
  m.quadrant = q - '0';
  return nullptr;
}

// What is wrong with the text of a block, or nothing; fills the move.
const char* readMove(std::string_view text, Move3b& m) {
  Scan in(text);
  if (const char* fault = readCounts(in, m)) return fault;
  if (const char* fault = readWords(in, m)) return fault;
  if (in.take(';')) {
    m.printed = pair(in);
    return nullptr;
  }
  return in.peek() == '\0' && in.rest().empty() ? nullptr : "text stands behind the word without a ;";
}

bool holds(const std::vector<std::string>& codes, std::string_view text) {
  return std::any_of(codes.begin(), codes.end(), [&](const std::string& c) { return trimmed(c) == text; });
}

// "N   12: text" is a block, "N    : text" a pause or stop.
Line3b readLine(std::string_view text, const std::vector<std::string>& codes) {
  Line3b out;
  out.kind = LineKind::kUnreadable;
  Scan in(text);
  if (!in.take('N')) {
    out.text = "the line doesn't begin with N";
    return out;
  }
  const bool numbered = digit(in.peek());
  const auto number = in.count();
  if (!number || !in.take(':')) {
    out.text = "the block number or the : behind it is missing";
    return out;
  }
  out.number = *number;
  const std::string_view body = trimmed(in.rest());
  const char* fault = numbered ? readMove(body, out.move) : nullptr;
  const bool code = numbered && holds(codes, body);
  if (!numbered) {
    out.kind = LineKind::kPause;
    out.text = body.substr(0, 128);
  } else if (fault && !code) {
    out.text = fault;
  } else {
    out.kind = fault ? LineKind::kCode : LineKind::kMove;
    if (code) out.text = body;
  }
  return out;
}

std::optional<Point> startPointOf(std::string_view comment) {
  const auto word = comment.find("Start Point");
  if (word == std::string_view::npos) return std::nullopt;
  const auto equals = comment.find('=', word);
  if (equals == std::string_view::npos) return std::nullopt;
  Scan in(comment.substr(equals + 1));
  return pair(in);
}

}  // namespace

ProgramLines readProgram(std::string_view text, const std::vector<std::string>& codes) {
  ProgramLines program;
  for (int line = 1; !text.empty(); ++line) {
    const auto end = text.find('\n');
    std::string_view row = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!row.empty() && row.back() == '\r') row.remove_suffix(1);
    row = trimmed(row);
    if (row.empty()) continue;
    if (row.substr(0, 2) == "//") {
      if (!program.startPoint) program.startPoint = startPointOf(row);
      continue;
    }
    program.lines.push_back(readLine(row, codes));
    program.lines.back().line = line;
  }
  return program;
}

}  // namespace tarnex::truth
