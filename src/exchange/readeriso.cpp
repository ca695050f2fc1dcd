// Lines, comments, line numbers and words of an ISO program.
// Knows one line at a time.
#include "exchange/readeriso.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "host/platform/format.h"

namespace tarnex::truth {

namespace {

constexpr int kFamilyWithCellList = 0, kFamilyWithFirstCell = 1, kFamilySigned = 5;
constexpr double kHalfMicron = 0.0005;    // mm
constexpr int kDigitsThatRound = 3;       // any other count of decimals is cut
constexpr std::size_t kSignedDigits = 6;  // at least, behind the sign
constexpr int kMostStepsShown = 60;       // characters of a line in a message

bool letter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool digit(char c) {
  return c >= '0' && c <= '9';
}
bool numeric(char c) {
  return digit(c) || c == '.' || c == '+' || c == '-';
}

std::string upper(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

// A number without leading noughts, sign and a lone point, so that G1 is G01.
std::string bare(std::string_view number) {
  if (!number.empty() && number.front() == '+') number.remove_prefix(1);
  while (number.size() > 1 && number.front() == '0' && digit(number[1])) number.remove_prefix(1);
  if (!number.empty() && number.back() == '.') number.remove_suffix(1);
  return std::string(number);
}

std::string_view trimmed(std::string_view s) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (!s.empty() && blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && blank(s.back())) s.remove_suffix(1);
  return s;
}

// The letters of a printf pattern in front of its conversion.
std::string lettersAhead(std::string_view format) {
  const auto percent = format.find('%');
  if (percent == std::string_view::npos) return {};
  std::string ahead(trimmed(format.substr(0, percent)));
  return !ahead.empty() && std::ranges::all_of(ahead, letter) ? ahead : std::string();
}

// Decimals that a pattern of one real number prints.
int decimalsOf(std::string_view format) {
  const auto point = format.find('.', std::min(format.find('%'), format.size()));
  if (point == std::string_view::npos) return 6;
  return point + 1 < format.size() && digit(format[point + 1]) ? format[point + 1] - '0' : 0;
}

std::string shown(std::string_view line) {
  return std::string(line.substr(0, kMostStepsShown));
}

// Without what stands in brackets; false: a bracket stays open.
bool withoutComments(std::string_view line, std::string& out) {
  int depth = 0;
  for (char c : line) {
    if (c == '(') ++depth;
    if (depth == 0) out += c;
    if (c == ')' && depth > 0) --depth;
  }
  return depth == 0;
}

// Numbers of lines: each is to be the one behind the last.
class LineNumbers {
 public:
  LineNumbers(const IsoDialect& dialect, IsoText& to) : dialect_(dialect), to_(to) {
    const auto percent = dialect.lineFormat.find('%');
    on_ = dialect.lineNumbers && percent != std::string::npos;
    if (on_) before_ = dialect.lineFormat.substr(0, percent);
  }
  // Takes the number off the line.
  void take(std::string_view& line, int number) {
    if (!on_) return;
    const std::string due = formatChecked(dialect_.lineFormat, {static_cast<long long>(next_)});
    if (line.starts_with(due)) {
      line.remove_prefix(due.size());
      ++next_;
      return;
    }
    const auto found = read(line);
    if (!found) {
      to_.complaints.push_back(
          {number, true,
           formatted("the line has no number where %s is due: \"%s\"", due.c_str(), shown(line).c_str())});
      return;
    }
    to_.complaints.push_back(
        {number, true, formatted("the line's number is %lld where %lld is due", *found, next_)});
    next_ = *found + 1;
  }

 private:
  // A number of this format with whatever value.
  std::optional<long long> read(std::string_view& line) const {
    if (!line.starts_with(before_)) return std::nullopt;
    std::size_t end = before_.size();
    while (end < line.size() && digit(line[end])) ++end;
    long long value = 0;
    if (end == before_.size() || !parseInteger(line.substr(before_.size(), end - before_.size()), value))
      return std::nullopt;
    line.remove_prefix(end);
    return value;
  }
  const IsoDialect& dialect_;
  IsoText& to_;
  bool on_ = false;
  std::string before_;
  long long next_ = 1;
};

class Reader {
 public:
  explicit Reader(const IsoDialect& dialect) : dialect_(dialect), numbers_(dialect, out_) {}

  IsoText read(std::string_view text) {
    while (!text.empty()) {
      const auto end = text.find('\n');
      line(text.substr(0, end));
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return std::move(out_);
  }

 private:
  void line(std::string_view text) {
    ++out_.lines;
    if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
    if (text.starts_with(dialect_.lineFront)) text.remove_prefix(dialect_.lineFront.size());
    if (text.ends_with(dialect_.lineEnd)) text.remove_suffix(dialect_.lineEnd.size());
    while (!text.empty() && (text.front() == '/' || text.front() == '%')) text.remove_prefix(1);
    numbers_.take(text, out_.lines);
    std::string body;
    if (!withoutComments(text, body)) complain("a comment isn't closed", text);
    if (std::ranges::any_of(body, [](char c) { return static_cast<signed char>(c) < 0 || c == '?'; }))
      return complain("is a text, no block", body);
    if (const auto equals = body.find('='); equals != std::string::npos && equals > 0) {
      out_.definitions.push_back({out_.lines, std::string(trimmed(std::string_view(body).substr(0, equals))),
                                  std::string(trimmed(std::string_view(body).substr(equals + 1)))});
      return;
    }
    if (auto words = isoWords(body); !words.empty()) out_.blocks.push_back({out_.lines, std::move(words)});
  }

  void complain(const char* what, std::string_view text) {
    out_.complaints.push_back({out_.lines, false, formatted("%s: \"%s\"", what, shown(text).c_str())});
  }

  const IsoDialect& dialect_;
  IsoText out_;
  LineNumbers numbers_;
};

}  // namespace

std::string isoKey(std::string_view word) {
  const auto words = isoWords(word);
  return words.size() == 1 ? words[0].key : std::string(word);
}

std::vector<IsoWord> isoWords(std::string_view text) {
  std::vector<IsoWord> words;
  for (std::size_t i = 0; i < text.size();) {
    if (!letter(text[i])) {
      ++i;
      while (i < text.size() && numeric(text[i])) ++i;
      continue;
    }
    IsoWord word;
    while (i < text.size() && letter(text[i])) word.letters += text[i++];
    while (i < text.size() && numeric(text[i])) word.number += text[i++];
    word.key = upper(word.letters) + bare(word.number);
    words.push_back(std::move(word));
  }
  return words;
}

IsoDialect::IsoDialect(const MachinePost& post, int family) {
  if (family == kFamilySigned) {
    numbers = Numbers::kSigned;
  } else if (post.paramInt(4) == 1) {
    numbers = Numbers::kMicrometres;
  } else if (const int decimals = post.paramInt(10); decimals != kDigitsThatRound) {
    unit = std::pow(10.0, -decimals);
  }
  if (unit < 1e-9) unit = 1e-9;
  absolute = post.word[0] == "G90";
  modal = post.paramInt(5) != 0;
  // Absolute modal output leaves out what has changed by less than this.
  if (modal && absolute) unit = std::max(unit, kHalfMicron) + 0.0001;
  absoluteCentre = post.paramInt(29) != 0;
  spanAhead = family == kFamilySigned;
  offsetByNumber = post.paramInt(6) == 1;
  offset = upper(post.word[2]);
  condition = upper(post.word[3]);
  rapid = isoWords(post.param[9]);
  taperLeft = isoWords(post.param[23]);
  taperRight = isoWords(post.param[24]);
  taperCancel = isoWords(post.word[7]);
  taperSigned = post.param[23].empty();
  angle = upper(lettersAhead(post.word[6]));
  angleUnit = 0.6 * std::pow(10.0, -decimalsOf(post.word[6]));
  lineNumbers = post.paramOn[8] == 1 && !post.lineFormat.empty();
  lineFormat = post.lineFormat;
  if (post.paramOn[2] != 0) lineFront = post.param[2];
  if (post.paramOn[3] != 0) lineEnd = post.param[3];
  headTable = post.paramOn[0] != 0 && post.headerText.find("SPRK") != std::string::npos;
  headConditions = headTable && (family == kFamilyWithCellList || family == kFamilyWithFirstCell);
  overcutRule = post.paramInt(28);
  returnsEachPass = post.paramInt(12) != 0;
  tabRecord = post.paramInt(22);
  oneTaper = post.paramInt(37) == 1;
}

IsoNumber isoNumber(const IsoDialect& dialect, std::string_view text) {
  IsoNumber out;
  std::string_view digits = text;
  const bool sign = !digits.empty() && (digits.front() == '-' || digits.front() == '+');
  if (sign) digits.remove_prefix(1);
  if (digits.empty() || !std::ranges::all_of(digits, [](char c) { return digit(c) || c == '.'; })) return out;
  const auto points = std::ranges::count(digits, '.');
  if (!parseNumber(sign && text.front() == '+' ? digits : text, out.mm)) return out;
  switch (dialect.numbers) {
    case IsoDialect::Numbers::kDecimal:
      out.ok = points == 1;
      break;
    case IsoDialect::Numbers::kMicrometres:
      out.ok = points == 0;
      out.mm /= 1000;
      break;
    case IsoDialect::Numbers::kSigned:
      out.ok = points == 0 && sign && digits.size() >= kSignedDigits;
      out.mm /= 1000;
      break;
  }
  return out;
}

IsoText readIso(std::string_view text, const IsoDialect& dialect) {
  return Reader(dialect).read(text);
}

}  // namespace tarnex::truth
