// Path data of SVG.
// Knows numbers and path commands.
#include "host/display/svgpath.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace tarnex {

namespace {

constexpr double kMostSteps = 4e15;  // exact in a double and in a count
// A longer arc is written in pieces: near half a turn the centre hangs on the last digit of the radius, near
// a full one on that of the end point.
const double kLongestPiece = 2 * kPi / 3;  // radians
const double kLongestFlatPiece = kPi / 3;  // of an ellipse, whose narrow ends make more of a rounded end
// Below it a viewer that counts with seven digits loses the arc's centre; a parabola through the same
// tangents is nearer than a millionth of its height.
constexpr double kShallow = 1e-3;  // radians

constexpr double kLeastHeight = 0.5;  // of an arc, steps: what is flatter is a line

constexpr int kTurnDecimals = 6;  // of a degree
constexpr double kTurnSteps = 1e6;

constexpr double kSteps[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};  // by decimals
constexpr unsigned long long kUnits[] = {1,       10,        100,        1'000,       10'000,
                                         100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};

// Halves away from zero. Every caller's numbers lie far inside of what a double counts exactly.
long long held(double steps) {
  const double kept = std::clamp(steps, -kMostSteps, kMostSteps);
  return static_cast<long long>(kept + std::copysign(0.5, kept));
}

constexpr std::size_t kLongestNumber = 28;
constexpr std::size_t kLongestPlain = 100, kMostNumbers = 4;  // of a command

// The numbers below a thousand in letters: as they are, and as three digits without the zeros at their end.
struct Letters {
  char text[3] = {'0', '0', '0'};
  unsigned char size = 0;
};
struct Thousand {
  Letters whole[1000], fraction[1000];
};
constexpr Thousand thousand() {
  Thousand all;
  for (int i = 0; i < 1000; ++i) {
    const char digits[] = {static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                           static_cast<char>('0' + i % 10)};
    const int zeros = i >= 100 ? 0 : i >= 10 ? 1 : 2;
    for (int k = zeros; k < 3; ++k) all.whole[i].text[k - zeros] = digits[k];
    all.whole[i].size = static_cast<unsigned char>(3 - zeros);
    for (int k = 0; k < 3; ++k) all.fraction[i].text[k] = digits[k];
    all.fraction[i].size = i % 10 != 0 ? 3 : i % 100 != 0 ? 2 : i != 0 ? 1 : 0;
  }
  return all;
}
constexpr Thousand kThousand = thousand();

// The letters behind the last one are overwritten by what comes next.
char* put(char* at, const Letters& letters) {
  std::memcpy(at, &letters, sizeof letters);
  return at + letters.size;
}

// What nearly all numbers are: three decimals and below 1000. Signs and zeros come as they like, so nothing
// here is asked that a processor would have to guess.
char* writeSmall(char* at, unsigned size) {
  const unsigned whole = size / 1000, rest = size % 1000;
  char* const begin = at;
  at = put(at, kThousand.whole[whole]);
  at = whole == 0 && rest != 0 ? begin : at;
  *at = '.';
  at += rest != 0;
  return put(at, kThousand.fraction[rest]);
}

char* writeLarge(char* at, unsigned long long size, int decimals) {
  const unsigned long long whole = size / kUnits[decimals];
  unsigned long long rest = size % kUnits[decimals];
  if (whole != 0 || rest == 0) at = std::to_chars(at, at + kLongestNumber, whole).ptr;
  if (rest == 0) return at;
  *at++ = '.';
  char* const end = at + decimals;
  for (char* digit = end; digit != at; rest /= 10) *--digit = static_cast<char>('0' + rest % 10);
  for (at = end; at[-1] == '0'; --at) {
  }
  return at;
}

char* writeCount(char* at, long long count, int decimals) {
  *at = '-';
  at += count < 0;
  const auto size = static_cast<unsigned long long>(count < 0 ? -count : count);
  return decimals == 3 && size < 1'000'000 ? writeSmall(at, static_cast<unsigned>(size))
                                           : writeLarge(at, size, decimals);
}

// One command of a path: letter, numbers, in as few letters as can be. `at` has room for the longest.
class Command {
 public:
  Command(char* at, char letter, const Grid& grid) : at_(at), decimals_(grid.decimals) { *at_++ = letter; }
  Command& number(long long count) {
    *at_ = ' ';
    at_ += count >= 0 && afterNumber_;
    at_ = writeCount(at_, count, decimals_);
    afterNumber_ = true;
    return *this;
  }
  Command& plain(std::string_view numbers) {
    at_ += numbers.copy(at_, kLongestPlain);
    afterNumber_ = true;
    return *this;
  }
  [[nodiscard]] const char* end() const { return at_; }

 private:
  char* at_;
  int decimals_;
  bool afterNumber_ = false;
};

static_assert(SvgPath::kLongestCommand >= 1 + kLongestPlain + kMostNumbers * (kLongestNumber + 1));

}  // namespace

double Grid::steps() const {
  return kSteps[decimals];
}
long long Grid::count(double mm) const {
  return held(mm * steps());
}

void appendCount(std::string& out, long long count, int decimals) {
  char room[kLongestNumber];
  out.append(room, static_cast<std::size_t>(writeCount(room, count, decimals) - room));
}

void SvgPath::moveTo(AcGePoint2d p) {
  exactAt_ = p;
  const GridPoint to = grid_.at(p);
  if (open_ && to == at_) return;
  const GridPoint from = used_ == 0 ? GridPoint{} : at_;
  Command move(roomForCommand(), used_ == 0 ? 'M' : 'm', grid_);
  endCommand(move.number(to.x - from.x).number(to.y - from.y).end());
  start_ = at_ = to;
  steps_ = 0;
  open_ = true;
}

void SvgPath::stepTo(GridPoint p) {
  at_ = p;
  ++steps_;
}

void SvgPath::lineTo(AcGePoint2d p) {
  exactAt_ = p;
  const GridPoint to = grid_.at(p);
  if (to == at_) return;
  Command line(roomForCommand(), to.y == at_.y ? 'h' : to.x == at_.x ? 'v' : 'l', grid_);
  if (to.x != at_.x) line.number(to.x - at_.x);
  if (to.y != at_.y) line.number(to.y - at_.y);
  endCommand(line.end());
  stepTo(to);
}

// Counter-clockwise in the drawing is so on the page too, which SVG, with y downward, calls the negative
// direction.
void SvgPath::arcStep(double radius, bool clockwise, GridPoint to) {
  const long long r = grid_.count(radius);
  Command arc(roomForCommand(), 'a', grid_);
  arc.number(r).number(r).plain(clockwise ? " 0 0 1" : " 0 0 0").number(to.x - at_.x).number(to.y - at_.y);
  endCommand(arc.end());
  stepTo(to);
}

bool SvgPath::shortArcTo(double radius, AcGeVector2d half, AcGePoint2d end) {
  static const double kLongest = std::tan(kLongestPiece / 2);
  const double bend = std::abs(half.y);
  if (!(half.x > 0 && bend <= kLongest * half.x && bend > kShallow * half.x)) return false;
  const GridPoint p = grid_.at(end);
  if (p == at_) return false;
  // An arc is higher than an eighth of its chord's square over its radius: that is mostly enough.
  const AcGeVector2d chord = end - exactAt_;
  if (chord.dotProduct(chord) * grid_.steps() < 8 * kLeastHeight * radius &&
      radius * (1 - half.x / half.length()) * grid_.steps() < kLeastHeight)
    return false;
  arcStep(radius, half.y < 0, p);
  exactAt_ = end;
  return true;
}

void SvgPath::arcTo(const ArcCurve& arc, AcGePoint2d end) {
  const double pieces = std::max(1.0, std::ceil(std::abs(arc.sweep) / kLongestPiece - 1e-9));
  for (double i = 1; i <= pieces; ++i) {
    const ArcCurve piece{arc.centre, arc.radius, arc.startAngle, arc.sweep / pieces};
    const bool last = i >= pieces;
    arcPiece(piece, exactAt_,
             last ? end : acutPolar(arc.centre, arc.startAngle + i * piece.sweep, arc.radius));
  }
}

void SvgPath::arcPiece(const ArcCurve& piece, AcGePoint2d from, AcGePoint2d to) {
  const GridPoint p = grid_.at(to);
  const double height = 2 * piece.radius * std::pow(std::sin(piece.sweep / 4), 2);
  if (p == at_ || height * grid_.steps() < kLeastHeight) {
    lineTo(to);
    return;
  }
  exactAt_ = to;
  if (std::abs(piece.sweep) >= kShallow) {
    arcStep(piece.radius, piece.sweep < 0, p);
    return;
  }
  const AcGeVector2d bow = (to - from).perpVector() * (std::tan(piece.sweep / 2) / 2);
  const GridPoint tip = grid_.at(midpoint(from, to) - bow);
  Command curve(roomForCommand(), 'q', grid_);
  curve.number(tip.x - at_.x).number(tip.y - at_.y).number(p.x - at_.x).number(p.y - at_.y);
  endCommand(curve.end());
  stepTo(p);
}

void SvgPath::circle(AcGePoint2d centre, double radius) {
  const long long r = grid_.count(radius);
  moveTo({centre.x - radius, centre.y});
  if (r != 0)
    for (const long long across : {2 * r, -2 * r}) arcStep(radius, false, {at_.x + across, at_.y});
  finishShape();
}

void SvgPath::ellipse(const EllipseCurve& curve) {
  const Curve whole{curve};
  const double radius = curve.major.length();
  const double pieces = std::max(1.0, std::ceil(std::abs(curve.sweep) / kLongestFlatPiece - 1e-9));
  const auto turn = std::llround(-std::atan2(curve.major.y, curve.major.x) * 180 / kPi * kTurnSteps);
  std::string axes;  // of the ellipse: half axes, turn, flags
  appendCount(axes, std::max(1LL, grid_.count(radius)), grid_.decimals);
  appendCount(axes += ' ', std::max(1LL, grid_.count(radius * curve.ratio)), grid_.decimals);
  appendCount(axes += ' ', turn, kTurnDecimals);
  axes += curve.sweep < 0 ? " 0 1" : " 0 0";
  moveTo(pointAtParam(whole, curve.startParam));
  for (double i = 1; i <= pieces; ++i) {
    const AcGePoint2d end = pointAtParam(whole, curve.startParam + curve.sweep * i / pieces);
    const GridPoint p = grid_.at(end);
    if (p == at_) continue;
    Command arc(roomForCommand(), 'a', grid_);
    endCommand(arc.plain(axes).number(p.x - at_.x).number(p.y - at_.y).end());
    exactAt_ = end;
    stepTo(p);
  }
  finishShape();
}

void SvgPath::finishShape() {
  if (!open_) return;
  char* at = roomForCommand();
  if (steps_ == 0) {
    *at++ = 'h';
    *at++ = '0';
    open_ = false;
  } else if (steps_ > 1 && at_ == start_) {
    *at++ = 'z';
    open_ = false;
  }
  endCommand(at);
}

void SvgPath::clear() {
  used_ = 0;
  open_ = false;
}

}  // namespace tarnex
