// Lines of the first run, one after another.
// Knows no figure.
#include "outputiso/secondrun.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

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

// The leading whole number of at most `most` characters.
double numberAt(const std::string& text, std::size_t at, std::size_t most) {
  return std::atoi(text.substr(std::min(at, text.size()), most).c_str());
}

// Where a line that is too long is parted.
std::size_t partedAt(std::string_view line) {
  std::size_t at = SecondRun::kLongestLine;
  while (at > SecondRun::kLongestLine - 4 && (static_cast<unsigned char>(line[at]) & 0xC0) == 0x80) --at;
  return at;
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

void LineNumberFormat::append(std::string& to, long number) const {
  if (!plain_) {
    to += formatChecked(format_, {static_cast<long long>(number)});
    return;
  }
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  const auto count = static_cast<std::size_t>(end - digits);
  to += before_;
  if (count < width_) to.append(width_ - count, fill_);
  to.append(digits, count);
  to += after_;
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
  out += ahead_;
  if (numbered_) {
    if (!text.empty() && text.front() == '/') {
      out += '/';
      text.remove_prefix(std::min(text.find_first_not_of('/'), text.size()));
    }
    if (!number_.empty()) number_.append(out, counter_++);
  }
  if (signedUnits_) {
    line_ = text;
    if (line_.find(kOpenFirstBlock) != std::string::npos)
      addVector();
    else
      removeZeroWords();
    remember();
    text = line_;
  }
  out += text;
  out += behind_;
  out += '\n';
}

// A first block that doesn't move says where the wire comes from: a unit vector along the last move, square
// to the radius behind an arc.
void SecondRun::addVector() {
  const auto put = [this](double x, double y) {
    replaceAll(line_, kPlusX, "X" + iso_.formatNumber(x));
    replaceAll(line_, kPlusY, "Y" + iso_.formatNumber(y));
  };
  if (lastI_ != 0 || lastJ_ != 0) {
    const AcGePoint2d last{lastX_, lastY_};
    const double a = acutAngle(last, {lastI_, lastJ_}) + (lastG_ == 2 ? -kPi / 2 : kPi / 2);
    const AcGePoint2d q = acutPolar(last, a, 1.0);
    return put(q.x - last.x, q.y - last.y);
  }
  if (lastX_ == 0) return replaceAll(line_, kPlusY, lastY_ > 0 ? "Y+001000" : "Y-001000");
  if (lastY_ == 0) return replaceAll(line_, kPlusX, lastX_ > 0 ? "X+001000" : "X-001000");
  const double a = std::atan(lastY_ / lastX_);
  put(std::cos(a), std::sin(a));
}

// A zero word at the line's start stays; of the others the plus form goes, and behind a start that stays the
// minus form.
void SecondRun::removeZeroWords() {
  replaceAll(line_, line_.starts_with(kPlusX) ? kMinusX : kPlusX, "");
  replaceAll(line_, line_.starts_with(kPlusY) ? kMinusY : kPlusY, "");
}

void SecondRun::remember() {
  if (line_.find_first_of("XYIJ") == std::string::npos) return;
  lastX_ = lastY_ = lastI_ = lastJ_ = 0;
  for (std::size_t i = 0; i < line_.size(); ++i) switch (line_[i]) {
      case 'G':
        if (const int g = static_cast<int>(numberAt(line_, i + 1, 2)); g == 2 || g == 3) lastG_ = g;
        break;
      case 'X':
        lastX_ = numberAt(line_, i + 1, kCoordinate);
        break;
      case 'Y':
        lastY_ = numberAt(line_, i + 1, kCoordinate);
        break;
      case 'I':
        lastI_ = numberAt(line_, i + 1, kCoordinate);
        break;
      case 'J':
        lastJ_ = numberAt(line_, i + 1, kCoordinate);
        break;
      default:
        break;
    }
}

std::string finishProgram(const IsoPost& iso, std::string_view firstRun) {
  std::string out;
  SecondRun run(iso);
  run.feed(firstRun, out);
  run.finish(out);
  return out;
}

}  // namespace tarnex
