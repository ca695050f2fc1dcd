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
// Below it a viewer that counts with seven digits loses the arc's centre; a parabola through the same
// tangents is nearer than a millionth of its height.
constexpr double kShallow = 1e-3;  // radians

long long held(double steps) {
  return std::llround(std::clamp(steps, -kMostSteps, kMostSteps));
}

}  // namespace

double Grid::steps() const {
  return std::pow(10.0, decimals);
}
long long Grid::count(double mm) const {
  return held(mm * steps());
}

void appendCount(std::string& out, long long count, int decimals) {
  if (count < 0) out += '-';
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, count < 0 ? -count : count).ptr;
  std::string text(digits, end);
  const auto places = static_cast<std::size_t>(decimals);
  if (text.size() <= places) text.insert(0, places + 1 - text.size(), '0');
  const std::string fraction = text.substr(text.size() - places);
  text.resize(text.size() - places);
  const std::size_t last = fraction.find_last_not_of('0');
  if (last != std::string::npos) {
    if (text != "0") out += text;
    out += '.';
    out.append(fraction, 0, last + 1);
  } else {
    out += text;
  }
}

void SvgPath::command(char letter) {
  data_ += letter;
}

void SvgPath::number(long long count) {
  const char before = data_.back();
  if (count >= 0 && ((before >= '0' && before <= '9') || before == '.')) data_ += ' ';
  appendCount(data_, count, grid_.decimals);
}

void SvgPath::moveTo(AcGePoint2d p) {
  exactAt_ = p;
  const GridPoint to = grid_.at(p);
  if (open_ && to == at_) return;
  command(data_.empty() ? 'M' : 'm');
  const GridPoint from = data_.size() == 1 ? GridPoint{} : at_;
  number(to.x - from.x);
  number(to.y - from.y);
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
  if (to.y == at_.y) {
    command('h');
    number(to.x - at_.x);
  } else if (to.x == at_.x) {
    command('v');
    number(to.y - at_.y);
  } else {
    command('l');
    number(to.x - at_.x);
    number(to.y - at_.y);
  }
  stepTo(to);
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

// Counter-clockwise in the drawing is so on the page too, which SVG, with y downward, calls the negative
// direction.
void SvgPath::arcPiece(const ArcCurve& piece, AcGePoint2d from, AcGePoint2d to) {
  const GridPoint p = grid_.at(to);
  const double height = 2 * piece.radius * std::pow(std::sin(piece.sweep / 4), 2);
  if (p == at_ || height * grid_.steps() < 0.5) {
    lineTo(to);
    return;
  }
  if (std::abs(piece.sweep) < kShallow) {
    const AcGeVector2d bow = (to - from).perpVector() * (std::tan(piece.sweep / 2) / 2);
    const GridPoint tip = grid_.at(midpoint(from, to) - bow);
    command('q');
    number(tip.x - at_.x);
    number(tip.y - at_.y);
  } else {
    const long long radius = grid_.count(piece.radius);
    command('a');
    number(radius);
    number(radius);
    data_ += " 0";
    flag(std::abs(piece.sweep) > kPi);
    flag(piece.sweep < 0);
  }
  number(p.x - at_.x);
  number(p.y - at_.y);
  exactAt_ = to;
  stepTo(p);
}

void SvgPath::circle(AcGePoint2d centre, double radius) {
  const long long r = grid_.count(radius);
  moveTo({centre.x - radius, centre.y});
  if (r == 0) {
    finishShape();
    return;
  }
  for (const long long across : {2 * r, -2 * r}) {
    command('a');
    number(r);
    number(r);
    data_ += " 0 0 0";
    number(across);
    number(0);
  }
  steps_ += 2;
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
