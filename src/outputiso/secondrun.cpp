// Lines of the first run, one after another.
// Knows no figure.
#include "outputiso/secondrun.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/geometry/values.h"
#include "host/platform/format.h"
#include "outputiso/postslots.h"

namespace tarnex {

namespace {

constexpr std::string_view kPlusX = "X+000000", kMinusX = "X-000000", kPlusY = "Y+000000",
                           kMinusY = "Y-000000";
constexpr std::string_view kOpenFirstBlock = "X+000000Y+000000G44";
constexpr std::size_t kCoordinate = 7;  // characters of one behind its letter

void replaceAll(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
}

// The whole number that at most `most` characters begin with, blanks aside.
int numberAt(std::string_view text, std::size_t at, std::size_t most) {
  text = text.substr(std::min(at, text.size()), most);
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  int n = 0;
  std::from_chars(text.data(), text.data() + text.size(), n);
  return n;
}

constexpr bool isCoordinate(char c) {
  return c == 'X' || c == 'Y' || c == 'I' || c == 'J';
}

// Where a line that is too long is parted.
std::size_t partedAt(std::string_view line) {
  std::size_t at = SecondRun::kLongestLine;
  while (at > SecondRun::kLongestLine - 4 && (static_cast<unsigned char>(line[at]) & 0xC0) == 0x80) --at;
  return at;
}

// A zero word at the line's start stays; of the others the plus form goes, and behind a start that stays the
// minus form.
std::string_view zeroWordOf(std::string_view line, std::string_view plus, std::string_view minus) {
  return line.starts_with(plus) ? minus : plus;
}

struct MoveWords {
  AcGePoint2d to, centre;  // micrometres; 0 where there is no word
};

MoveWords wordsOf(std::string_view line) {
  MoveWords words;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const double n = isCoordinate(line[i]) ? numberAt(line, i + 1, kCoordinate) : 0;
    if (line[i] == 'X') words.to.x = n;
    if (line[i] == 'Y') words.to.y = n;
    if (line[i] == 'I') words.centre.x = n;
    if (line[i] == 'J') words.centre.y = n;
  }
  return words;
}

}  // namespace

LineNumberFormat::LineNumberFormat(const std::string& format) : format_(format) {
  const auto percent = format.find('%');
  if (percent == std::string::npos || format.find('%', percent + 1) != std::string::npos) return;
  std::size_t at = percent + 1;
  if (at < format.size() && format[at] == '0') fill_ = format[at++];
  while (at < format.size() && format[at] >= '0' && format[at] <= '9' && width_ < 1000)
    width_ = 10 * width_ + static_cast<std::size_t>(format[at++] - '0');
  if (at >= format.size() || format[at] != 'd' || width_ > 20) return;
  plain_ = true;
  before_ = format.substr(0, percent);
  after_ = format.substr(at + 1);
}

void LineNumberFormat::append(std::string& to, long number) {
  if (!plain_)
    shown_ = formatChecked(format_, {static_cast<long long>(number)});
  else if (number != last_ + 1 || !countOn())
    shown_ = textOf(number);
  last_ = number;
  to += shown_;
}

std::string LineNumberFormat::textOf(long number) const {
  const std::string digits = std::to_string(number);
  std::string text = before_;
  if (digits.size() < width_) text.append(width_ - digits.size(), fill_);
  return text + digits + after_;
}

bool LineNumberFormat::countOn() {
  std::size_t at = shown_.size() - after_.size();
  for (; at > before_.size() && shown_[at - 1] == '9'; --at) shown_[at - 1] = '0';
  if (at == before_.size() || shown_[at - 1] < '0') return false;  // a digit more
  ++shown_[at - 1];
  return true;
}

SecondRun::SecondRun(const IsoPost& iso)
    : iso_(iso),
      number_(iso.post.lineFormat),
      numbered_(iso.post.paramOn[PostParam::kLineNumbers] == 1),
      signedUnits_(iso.post.nFamily == kFamilySignedUnits) {
  if (iso.post.paramOn[PostParam::kAheadOfLines]) ahead_ = iso.post.param[PostParam::kAheadOfLines];
  if (iso.post.paramOn[PostParam::kBehindLines]) behind_ = iso.post.param[PostParam::kBehindLines];
}

void SecondRun::opening(std::string& out) {
  begun_ = true;
  if (!signedUnits_) return;
  out += ahead_;
  out += formatted("%%N%03dM63", 1);
  out += behind_;
  out += '\n';
  counter_ = 2;
  ++lines_;
}

void SecondRun::feed(std::string_view piece, std::string& out) {
  if (!begun_) opening(out);
  for (;;) {
    const auto end = piece.find('\n');
    if (end == std::string_view::npos) break;
    if (rest_.empty()) {
      body(piece.substr(0, end), LineEnd::kThere, out);
    } else {
      rest_ += piece.substr(0, end);
      const std::string whole = std::move(rest_);
      rest_.clear();
      body(whole, LineEnd::kThere, out);
    }
    piece.remove_prefix(end + 1);
  }
  rest_ += piece;
}

void SecondRun::finish(std::string& out) {
  if (!begun_) opening(out);
  if (!rest_.empty()) body(rest_, LineEnd::kMissing, out);
  rest_.clear();
}

// A line without its end. One that is read to the last character of its part has its line end read as a
// line of its own.
void SecondRun::body(std::string_view text, LineEnd end, std::string& out) {
  while (text.size() > kLongestLine) {
    const std::size_t at = partedAt(text);
    line(text.substr(0, at), out);
    text.remove_prefix(at);
  }
  line(text, out);
  if (text.size() == kLongestLine && end == LineEnd::kThere) line({}, out);
}

void SecondRun::line(std::string_view text, std::string& out) {
  ++lines_;
  if (!ahead_.empty()) out += ahead_;
  if (numbered_) {
    if (!text.empty() && text.front() == '/') {
      out += '/';
      text.remove_prefix(std::min(text.find_first_not_of('/'), text.size()));
    }
    if (!number_.empty()) number_.append(out, counter_++);
  }
  out += signedUnits_ ? inSignedUnits(text) : text;
  if (!behind_.empty()) out += behind_;
  out += '\n';
}

// Where nothing is to be changed, which is so of most lines, the text isn't copied.
std::string_view SecondRun::inSignedUnits(std::string_view text) {
  const auto has = [&](std::string_view what) { return text.find(what) != std::string_view::npos; };
  // An open first block has its Y behind its start, so it is among these.
  if (has(zeroWordOf(text, kPlusX, kMinusX)) || has(zeroWordOf(text, kPlusY, kMinusY))) {
    line_ = text;
    if (has(kOpenFirstBlock)) {
      addVector();
    } else {
      replaceAll(line_, zeroWordOf(line_, kPlusX, kMinusX), "");
      replaceAll(line_, zeroWordOf(line_, kPlusY, kMinusY), "");
    }
    text = line_;
  }
  remember(text);
  return text;
}

// A first block that doesn't move says where the wire comes from: a unit vector along the last move, square
// to the radius behind an arc.
void SecondRun::addVector() {
  const auto put = [this](double x, double y) {
    replaceAll(line_, kPlusX, "X" + iso_.formatNumber(x));
    replaceAll(line_, kPlusY, "Y" + iso_.formatNumber(y));
  };
  const auto [to, centre] = wordsOf(lastMove_);
  if (centre.x != 0 || centre.y != 0) {
    const double a = acutAngle(to, centre) + (lastG_ == 2 ? -kPi / 2 : kPi / 2);
    const AcGePoint2d q = acutPolar(to, a, 1.0);
    return put(q.x - to.x, q.y - to.y);
  }
  if (to.x == 0) return replaceAll(line_, kPlusY, to.y > 0 ? "Y+001000" : "Y-001000");
  if (to.y == 0) return replaceAll(line_, kPlusX, to.x > 0 ? "X+001000" : "X-001000");
  const double a = std::atan(to.y / to.x);
  put(std::cos(a), std::sin(a));
}

void SecondRun::remember(std::string_view text) {
  if (std::ranges::none_of(text, isCoordinate)) return;
  lastMove_ = text;
  for (std::size_t at = text.find('G'); at != std::string_view::npos; at = text.find('G', at + 1))
    if (const int g = numberAt(text, at + 1, 2); g == 2 || g == 3) lastG_ = g;
}

std::string finishProgram(const IsoPost& iso, std::string_view firstRun) {
  std::string out;
  SecondRun run(iso);
  run.feed(firstRun, out);
  run.finish(out);
  return out;
}

}  // namespace tarnex
