// Path data of SVG.
// Knows numbers and path commands.
#include "host/display/svgpath.h"

#include <algorithm>
#include <charconv>
#include <cmath>

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

constexpr int kTurnDecimals = 6;  // of a degree
constexpr double kTurnSteps = 1e6;

constexpr double kSteps[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};  // by decimals

// Halves away from zero. Every caller's numbers lie far inside of what a double counts exactly.
long long held(double steps) {
  const double kept = std::clamp(steps, -kMostSteps, kMostSteps);
  return static_cast<long long>(kept + (kept < 0 ? -0.5 : 0.5));
}

constexpr std::size_t kLongestNumber = 28;

// A short number of whole digits.
char* writeDigits(char* at, unsigned long long v) {
  return std::to_chars(at, at + kLongestNumber, v).ptr;
}

// The digits behind the point without the zeros at their end; v is below 10^decimals.
char* writeFraction(char* at, unsigned long long v, int decimals) {
  char* const end = at + decimals;
  for (char* digit = end; digit != at; v /= 10) *--digit = static_cast<char>('0' + v % 10);
  char* last = end;
  while (last[-1] == '0') --last;
  return last;
}

char* writeCount(char* at, long long count, int decimals) {
  if (count < 0) *at++ = '-';
  const auto size = static_cast<unsigned long long>(count < 0 ? -count : count);
  // Nearly all pages have three or four decimals, and a division by a constant is a multiplication.
  const auto unit = static_cast<unsigned long long>(kSteps[decimals]);
  const unsigned long long whole = decimals == 3 ? size / 1000 : decimals == 4 ? size / 10000 : size / unit;
  const unsigned long long rest = size - whole * unit;
  if (whole != 0 || rest == 0) at = writeDigits(at, whole);
  if (rest == 0) return at;
  *at++ = '.';
  return writeFraction(at, rest, decimals);
}

// One command of a path: letter, numbers, in as few letters as can be.
class Command {
 public:
  Command(char letter, const Grid& grid) : decimals_(grid.decimals) { *at_++ = letter; }
  Command& number(long long count) {
    if (count >= 0 && ((at_[-1] >= '0' && at_[-1] <= '9') || at_[-1] == '.')) *at_++ = ' ';
    at_ = writeCount(at_, count, decimals_);
    return *this;
  }
  Command& plain(std::string_view text) {
    at_ += text.copy(at_, kLongestPlain);
    return *this;
  }
  void appendTo(std::string& data) const { data.append(room_, static_cast<std::size_t>(at_ - room_)); }

 private:
  static constexpr std::size_t kLongestPlain = 100, kMostNumbers = 4;
  char room_[1 + kLongestPlain + kMostNumbers * (kLongestNumber + 1)];
  char* at_ = room_;
  int decimals_;
};

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
  const GridPoint from = data_.empty() ? GridPoint{} : at_;
  Command move(data_.empty() ? 'M' : 'm', grid_);
  move.number(to.x - from.x).number(to.y - from.y).appendTo(data_);
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
  if (to.y == at_.y)
    Command('h', grid_).number(to.x - at_.x).appendTo(data_);
  else if (to.x == at_.x)
    Command('v', grid_).number(to.y - at_.y).appendTo(data_);
  else
    Command('l', grid_).number(to.x - at_.x).number(to.y - at_.y).appendTo(data_);
  stepTo(to);
}

// Counter-clockwise in the drawing is so on the page too, which SVG, with y downward, calls the negative
// direction.
void SvgPath::arcStep(double radius, bool clockwise, GridPoint to) {
  const long long r = grid_.count(radius);
  Command arc('a', grid_);
  arc.number(r).number(r).plain(clockwise ? " 0 0 1" : " 0 0 0").number(to.x - at_.x).number(to.y - at_.y);
  arc.appendTo(data_);
  stepTo(to);
}

bool SvgPath::shortArcTo(double radius, AcGeVector2d half, AcGePoint2d end) {
  static const double kLongest = std::tan(kLongestPiece / 2);
  const double bend = std::abs(half.y);
  if (!(half.x > 0 && bend <= kLongest * half.x && bend > kShallow * half.x)) return false;
  const GridPoint p = grid_.at(end);
  const double height = radius * (1 - half.x / half.length());
  if (p == at_ || height * grid_.steps() < 0.5) return false;
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
  if (p == at_ || height * grid_.steps() < 0.5) {
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
  Command curve('q', grid_);
  curve.number(tip.x - at_.x).number(tip.y - at_.y).number(p.x - at_.x).number(p.y - at_.y).appendTo(data_);
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
    Command('a', grid_).plain(axes).number(p.x - at_.x).number(p.y - at_.y).appendTo(data_);
    exactAt_ = end;
    stepTo(p);
  }
  finishShape();
}

void SvgPath::finishShape() {
  if (open_ && steps_ == 0) {
    data_ += "h0";
    open_ = false;
  } else if (open_ && steps_ > 1 && at_ == start_) {
    data_ += 'z';
    open_ = false;
  }
}

void SvgPath::clear() {
  data_.clear();
  open_ = false;
}

}  // namespace tarnex
