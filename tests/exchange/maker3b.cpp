// Closed-form offsets and 3B blocks for the tests of the judge.
// Knows nothing of the code under test but its figure type.
#include "maker3b.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tarnex::truth::test {

namespace {

const double pi = std::acos(-1.0);

long counts(double mm) {
  return std::lround(std::floor(mm * 1000 + 0.5));
}
P plus(P a, P d, double f = 1) {
  return {a.x + f * d.x, a.y + f * d.y};
}
P minus(P a, P b) {
  return {a.x - b.x, a.y - b.y};
}
double len(P a) {
  return std::hypot(a.x, a.y);
}
P turned(P p, double a) {
  return {p.x * std::cos(a) - p.y * std::sin(a), p.x * std::sin(a) + p.y * std::cos(a)};
}

std::string blockText(long bx, long by, long bj, char axis, const std::string& word) {
  char b[96];
  std::snprintf(b, sizeof b, "B %6ld B %6ld B %6ld G%c %3s ;", bx, by, bj, axis, word.c_str());
  return b;
}

// Offset of a closed polygon: each corner is where the moved neighbours meet. `d` mm to the left.
std::vector<P> mitred(const std::vector<P>& v, double d) {
  std::vector<P> out;
  const std::size_t n = v.size();
  for (std::size_t i = 0; i < n; ++i) {
    const P a = minus(v[i], v[(i + n - 1) % n]), b = minus(v[(i + 1) % n], v[i]);
    const P na{-a.y / len(a), a.x / len(a)}, nb{-b.y / len(b), b.x / len(b)};
    // The corner c solves na.(c - v) = d and nb.(c - v) = d.
    const double det = na.x * nb.y - na.y * nb.x;
    out.push_back(plus(v[i], {d * (nb.y - na.y) / det, d * (na.x - nb.x) / det}));
  }
  return out;
}

// The same wire the other way round.
void turnRound(Sample& s) {
  std::vector<Piece> back;
  std::vector<P> places{s.entry};
  for (const Piece& p : s.wire) places.push_back(p.to);
  for (std::size_t i = s.wire.size(); i-- > 0;) {
    Piece p = s.wire[i];
    p.to = places[i], p.sweep = -p.sweep;
    back.push_back(p);
  }
  s.wire = back;
  s.entry = places.back();
}

void finish(Sample& s, const Kind& kind, P outward, double room) {
  s.figure.compensation = kind.c;
  s.figure.side = kind.outside ? Side::kOutside : Side::kInside;
  s.figure.direction = kind.clockwise ? Direction::kClockwise : Direction::kCounterClockwise;
  const P t = plus(s.entry, outward, kind.outside ? 3.0 : -std::min(3.0, room));
  s.figure.threading = AcGePoint2d{t.x, t.y};
  if (kind.clockwise) turnRound(s);
}

}  // namespace

Maker::Maker(P start) : here_(start) {
  char b[128];
  std::snprintf(b, sizeof b, "//  made by hand\n//    Start Point  = %8.3f , %8.3f ;     X    ,     Y",
                start.x, start.y);
  out_ = b;
}

void Maker::block(const std::string& text) {
  char b[32];
  std::snprintf(b, sizeof b, "\nN%4d: ", ++number_);
  out_ += b + text;
}

void Maker::line(P to) {
  const long dx = counts(to.x - here_.x), dy = counts(to.y - here_.y), x = std::labs(dx), y = std::labs(dy);
  if (std::hypot(to.x - here_.x, to.y - here_.y) < 0.001) return;
  const bool alongX = x > y || (x == y && (dx > 0) != (dy > 0));
  const char* word = dx > 0 && dy >= 0 ? "L1" : dx <= 0 && dy > 0 ? "L2" : dx < 0 && dy <= 0 ? "L3" : "L4";
  const bool onAxis = dx == 0 || dy == 0;
  block(blockText(onAxis ? 0 : x, onAxis ? 0 : y, std::max(x, y), alongX ? 'X' : 'Y', word));
  here_ = to;
}

void Maker::arc(P c, double sweep) {
  const P s = minus(here_, c);
  const double r = len(s), a0 = std::atan2(s.y, s.x), a1 = a0 + sweep;
  const P e{r * std::cos(a1), r * std::sin(a1)};
  // Every axis on the way turns the counts round.
  std::vector<double> stops{a0};
  for (int k = -8; k <= 8; ++k)
    if ((k * pi / 2 - a0) * (k * pi / 2 - a1) < 0) stops.push_back(k * pi / 2);
  stops.push_back(a1);
  std::sort(stops.begin(), stops.end());
  double sx = 0, sy = 0;
  for (std::size_t i = 1; i < stops.size(); ++i) {
    sx += r * std::abs(std::cos(stops[i]) - std::cos(stops[i - 1]));
    sy += r * std::abs(std::sin(stops[i]) - std::sin(stops[i - 1]));
  }
  const bool alongX = std::abs(e.y) > std::abs(e.x);
  // A start up to 0.1 degrees before an axis has the word of the quadrant behind it.
  const double inside = a0 + (sweep > 0 ? 0.1 : -0.1) * pi / 180;
  const int quadrant = 1 + static_cast<int>(std::floor(std::fmod(inside + 4 * pi, 2 * pi) / (pi / 2))) % 4;
  block(blockText(std::labs(counts(s.x)), std::labs(counts(s.y)), counts(alongX ? sx : sy),
                  alongX ? 'X' : 'Y', (sweep > 0 ? "NR" : "SR") + std::to_string(quadrant)));
  here_ = plus(c, e);
}

std::vector<P> regular(P at, double r, int n, double turn) {
  std::vector<P> v;
  for (int i = 0; i < n; ++i)
    v.push_back(plus(at, {r * std::cos(turn + 2 * pi * i / n), r * std::sin(turn + 2 * pi * i / n)}));
  return v;
}

std::vector<P> rectangle(P at, double w, double h, double turn) {
  std::vector<P> v{{-w / 2, -h / 2}, {w / 2, -h / 2}, {w / 2, h / 2}, {-w / 2, h / 2}};
  for (P& p : v) p = plus(at, turned(p, turn));
  return v;
}

std::vector<P> notched(P at, double w, double h, double turn) {
  std::vector<P> v{{-w / 2, -h / 2}, {w / 2, -h / 2}, {w / 2, 0}, {0, 0}, {0, h / 2}, {-w / 2, h / 2}};
  for (P& p : v) p = plus(at, turned(p, turn));
  return v;
}

Sample polygonSample(std::vector<P> v, const Kind& kind, double room) {
  Sample s;
  for (const P& p : v) s.figure.contour.vertices.push_back({{p.x, p.y}, 0});
  s.figure.contour.closed = true;
  const auto wire = mitred(v, kind.outside ? -kind.c : kind.c);
  s.entry = plus(wire[0], minus(wire[1], wire[0]), 0.5);
  for (std::size_t i = 1; i <= wire.size(); ++i) s.wire.push_back({wire[i % wire.size()], false, {}, 0});
  s.wire.push_back({s.entry, false, {}, 0});
  const P along = minus(v[1], v[0]);
  finish(s, kind, {along.y / len(along), -along.x / len(along)}, room);
  return s;
}

Sample roundedSample(P at, double w, double h, double r, double turn, const Kind& kind) {
  Sample s;
  const double q = std::tan(pi / 8);  // bulge of a quarter
  const double d = kind.outside ? kind.c : -kind.c, rw = std::max(r + d, 0.0);
  const double x = w / 2, y = h / 2, wx = x + d, wy = y + d;
  auto put = [&](P p) { return plus(at, turned(p, turn)); };
  const P contour[] = {{-x + r, -y}, {x - r, -y}, {x, -y + r}, {x, y - r},
                       {x - r, y},   {-x + r, y}, {-x, y - r}, {-x, -y + r}};
  for (int i = 0; i < 8; ++i) {
    const P p = put(contour[i]);
    s.figure.contour.vertices.push_back({{p.x, p.y}, i % 2 == 1 ? q : 0});
  }
  s.figure.contour.closed = true;
  const P ends[] = {{wx - rw, -wy}, {wx, -wy + rw}, {wx, wy - rw},   {wx - rw, wy},
                    {-wx + rw, wy}, {-wx, wy - rw}, {-wx, -wy + rw}, {-wx + rw, -wy}};
  const P centres[] = {{wx - rw, -wy + rw}, {wx - rw, wy - rw}, {-wx + rw, wy - rw}, {-wx + rw, -wy + rw}};
  s.entry = put({0, -wy});
  for (int i = 0; i < 8; ++i) {
    if (i % 2 == 0) s.wire.push_back({put(ends[i]), false, {}, 0});
    if (i % 2 == 1 && rw > 0) s.wire.push_back({put(ends[i]), true, put(centres[i / 2]), pi / 2});
  }
  s.wire.push_back({s.entry, false, {}, 0});
  finish(s, kind, turned({0, -1}, turn), y / 2);
  return s;
}

Sample circleSample(P at, double r, double startAngle, const Kind& kind) {
  Sample s;
  s.figure.circle = CircleFigure{{at.x, at.y}, r};
  const double rw = kind.outside ? r + kind.c : r - kind.c;
  const P u{std::cos(startAngle), std::sin(startAngle)};
  s.entry = plus(at, u, rw);
  s.wire = {{plus(at, u, -rw), true, at, pi}, {s.entry, true, at, pi}};
  finish(s, kind, u, rw / 2);
  return s;
}

namespace {
// A sharp triangle: outside, the wire runs out to a long tip; inside, it stays far from the corner.
Sample wedgeSample(P at, double length, double angle, double turn, Kind k) {
  const double half = angle / 2, inradius = length * std::sin(half) * std::cos(half) / (1 + std::sin(half));
  k.outside = k.outside || k.c > 0.4 * inradius;
  std::vector<P> v{{length * std::cos(half), -length * std::sin(half)},
                   {length * std::cos(half), length * std::sin(half)},
                   {0, 0}};
  for (P& p : v) p = plus(at, turned(p, turn));
  return polygonSample(v, k, 0.5 * inradius);
}
}  // namespace

Sample randomSample(std::mt19937& rng, P at) {
  auto real = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(rng); };
  Kind k{rng() % 2 == 0, rng() % 2 == 0, std::pow(10, real(-2, 0.3))};  // 0.01 to 2 mm
  const double turn = rng() % 3 == 0 ? 0 : real(-3, 3), w = real(8, 40), h = real(8, 40);
  switch (rng() % 6) {
    case 5:
      return wedgeSample(at, w, real(0.1, 0.6), turn, k);
    case 0:
      return polygonSample(rectangle(at, w, h, turn), k, std::min(w, h) / 2 - k.c);
    case 1:
      return polygonSample(notched(at, w, h, turn), k, 0.9 * (std::min(w, h) / 2 - 2 * k.c));
    case 2:
      return polygonSample(regular(at, w, 3 + static_cast<int>(rng() % 30), turn), k, 2);
    case 3:
      return roundedSample(at, w, h, real(0.2, 3.9), turn, k);
    default:
      return circleSample(at, w, turn, k);
  }
}

void writePath(Maker& m, const Sample& s) {
  const P t = m.here();
  m.line(s.entry);
  for (const Piece& p : s.wire) p.arc ? m.arc(p.centre, p.sweep) : m.line(p.to);
  m.line(t);
}

std::string programOf(std::vector<Sample>& samples) {
  auto threading = [](const Sample& s) { return P{s.figure.threading->x, s.figure.threading->y}; };
  Maker m(threading(samples.front()));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    samples[i].figure.number = static_cast<int>(i) + 1;
    if (i > 0) m.pause(), m.line(threading(samples[i])), m.pause();
    writePath(m, samples[i]);
  }
  m.stop();
  return m.text();
}

std::vector<Figure> figuresOf(const std::vector<Sample>& samples) {
  std::vector<Figure> out;
  for (const Sample& s : samples) out.push_back(s.figure);
  return out;
}

}  // namespace tarnex::truth::test
