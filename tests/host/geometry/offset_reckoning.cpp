// Polygons, distances and outlines for the tests of the offset.
// Knows nothing of how the offset is made.
#include "host/geometry/offset_reckoning.h"

#include <array>
#include <polyclipping/clipper.hpp>

namespace tarnex::reckoning {

namespace {

using ClipperLib::Path;
using ClipperLib::Paths;
using Points = std::vector<AcGePoint2d>;

// Centre, radius, first angle and sweep of a bulged span. In long double, since a flat span has a radius of
// many times its length.
struct Circle {
  long double x, y, radius, from, sweep;
  [[nodiscard]] AcGePoint2d centre() const { return {double(x), double(y)}; }
  [[nodiscard]] long double distanceTo(AcGePoint2d p) const { return std::hypot(p.x - x, p.y - y); }
};

Circle circleOf(AcGePoint2d a, AcGePoint2d b, double bulge) {
  const long double dx = (long double)b.x - a.x, dy = (long double)b.y - a.y, chord = std::hypot(dx, dy);
  const long double sweep = 4 * std::atan((long double)bulge);
  const long double radius = chord / 2 / std::sin(std::abs(sweep) / 2);
  const long double rise = radius * std::cos(sweep / 2) * (bulge > 0 ? 1 : -1) / chord;
  const long double x = ((long double)a.x + b.x) / 2 - dy * rise,
                    y = ((long double)a.y + b.y) / 2 + dx * rise;
  return {x, y, radius, std::atan2(a.y - y, a.x - x), sweep};
}

AcGePoint2d onCircle(const Circle& c, long double radius, double part) {
  const long double w = c.from + part * c.sweep;
  return {double(c.x + radius * std::cos(w)), double(c.y + radius * std::sin(w))};
}

int stepsFor(double radius, double sweep, double sagitta) {
  const double step = std::sqrt(8 * sagitta / std::max(radius, sagitta));
  return std::max(4, static_cast<int>(std::ceil(std::abs(sweep) / step)));
}

AcGePoint2d along(AcGePoint2d a, AcGePoint2d b, double bulge, double part) {
  if (bulge == 0) return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part};
  const Circle c = circleOf(a, b, bulge);
  return onCircle(c, c.radius, part);
}

double spanDistance(AcGePoint2d a, AcGePoint2d b, double bulge, AcGePoint2d p) {
  const double ends = std::min(a.distanceTo(p), b.distanceTo(p));
  if (bulge == 0) {
    const double l2 = (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
    const double t = ((p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y)) / l2;
    if (t <= 0 || t >= 1) return ends;
    return std::abs((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / std::sqrt(l2);
  }
  const Circle c = circleOf(a, b, bulge);
  const long double whole = 2 * std::acos(-1.0L);
  long double turn = (std::atan2(p.y - c.y, p.x - c.x) - c.from) * (bulge > 0 ? 1 : -1);
  while (turn < 0) turn += whole;
  while (turn > whole) turn -= whole;
  return turn <= std::abs(c.sweep) ? std::min(ends, double(std::abs(c.distanceTo(p) - c.radius))) : ends;
}

Points flat(const Outline& path, double sagitta) {
  Points out;
  for (std::size_t i = 0; i + 1 < path.size(); ++i) {
    const double b = path[i].bulge;
    int steps = 1;
    if (b != 0) {
      const Circle c = circleOf(path[i].point, path[i + 1].point, b);
      steps = stepsFor(double(c.radius), double(c.sweep), sagitta);
    }
    for (int k = 0; k < steps; ++k)
      out.push_back(along(path[i].point, path[i + 1].point, b, double(k) / steps));
  }
  return out;
}

struct Ray {  // the extension of a moved span beyond an end: a line, or round a circle
  AcGePoint2d at;
  AcGeVector2d along;
  bool line = true;
  AcGePoint2d centre;
  double radius = 0, turn = 0;                       // turn: +1 counter-clockwise
  [[nodiscard]] AcGePoint2d point(double s) const {  // s in mm
    if (line) return at + along * s;
    const double w = std::atan2(at.y - centre.y, at.x - centre.x) + turn * s / radius;
    return {centre.x + radius * std::cos(w), centre.y + radius * std::sin(w)};
  }
  // Above 0 left of the extension's own line or inside a circle that turns left; 0 on it.
  [[nodiscard]] double side(AcGePoint2d p) const {
    return line ? along.crossProduct(p - at) : turn * (radius - centre.distanceTo(p));
  }
};

// Extension of span a-b moved by d, forward beyond b or backward beyond a.
Ray extension(AcGePoint2d a, AcGePoint2d b, double bulge, double d, bool forward) {
  Ray r;
  if (bulge == 0) {
    const AcGeVector2d t = (b - a).normal();
    r.at = (forward ? b : a) + t.perpVector() * d;
    r.along = forward ? t : -t;
    return r;
  }
  const Circle c = circleOf(a, b, bulge);
  r.line = false;
  r.centre = c.centre();
  r.radius = double(c.radius) - (bulge > 0 ? d : -d);
  r.turn = (bulge > 0) == forward ? 1 : -1;
  r.at = onCircle(c, r.radius, forward ? 1 : 0);
  return r;
}

// mm along `a` to where it first reaches b's line or circle; below 0 when it never does within `far`.
double firstReach(const Ray& a, const Ray& b, double far) {
  const int steps = 4000;
  double before = b.side(a.point(0)), low = 0;
  for (int k = 1; k <= steps; ++k) {
    const double s = far * std::pow(double(k) / steps, 3);
    const double now = b.side(a.point(s));
    if ((now > 0) != (before > 0)) {
      double high = s;
      for (int i = 0; i < 100; ++i) {
        const double mid = (low + high) / 2;
        ((b.side(a.point(mid)) > 0) == (before > 0) ? low : high) = mid;
      }
      return (low + high) / 2;
    }
    before = now, low = s;
  }
  return -1;
}

AcGeVector2d tangentOf(AcGePoint2d a, AcGePoint2d b, double bulge, bool atEnd) {
  const double half = 2 * std::atan(bulge) * (atEnd ? 1 : -1);
  const AcGeVector2d c = (b - a).normal();
  return {c.x * std::cos(half) - c.y * std::sin(half), c.x * std::sin(half) + c.y * std::cos(half)};
}

Points stripOf(AcGePoint2d a, AcGePoint2d b, double bulge, double d, double sagitta) {
  if (bulge == 0) {
    const AcGeVector2d n = (b - a).normal().perpVector() * d;
    return {a, b, b + n, a + n};
  }
  const Circle c = circleOf(a, b, bulge);
  const double radius = double(c.radius), other = std::max(0.0, radius - (bulge > 0 ? d : -d));
  const int steps = stepsFor(std::max(radius, other), double(c.sweep), sagitta);
  Points p;
  for (int k = 0; k <= steps; ++k) p.push_back(onCircle(c, c.radius, double(k) / steps));
  for (int k = steps; k >= 0; --k) p.push_back(onCircle(c, other, double(k) / steps));
  return p;
}

// The ground between the strips of two spans that turn away from the offset's side: their extensions up to
// where they meet, or a sector of radius d.
Points mitreOf(const BulgeVertex& u, const BulgeVertex& v, AcGePoint2d w, double d, double far,
               double sagitta) {
  const AcGeVector2d t = tangentOf(u.point, v.point, u.bulge, true);
  const AcGeVector2d s = tangentOf(v.point, w, v.bulge, false);
  const double sine = t.crossProduct(s);
  if (sine * d >= 0 || std::abs(sine) < 1e-6) return {};
  const Ray a = extension(u.point, v.point, u.bulge, d, true), b = extension(v.point, w, v.bulge, d, false);
  Points p{v.point};
  const bool vanished = (!a.line && a.radius <= 0) || (!b.line && b.radius <= 0);
  const double onA = vanished ? -1 : firstReach(a, b, a.line ? far : std::min(far, 6 * a.radius));
  const double onB = vanished ? -1 : firstReach(b, a, b.line ? far : std::min(far, 6 * b.radius));
  if (onA >= 0 && onB >= 0) {
    const int na = a.line ? 1 : stepsFor(a.radius, onA / a.radius, sagitta);
    const int nb = b.line ? 1 : stepsFor(b.radius, onB / b.radius, sagitta);
    for (int k = 0; k <= na; ++k) p.push_back(a.point(onA * k / na));
    for (int k = nb - 1; k >= 0; --k) p.push_back(b.point(onB * k / nb));
    return p;
  }
  const AcGeVector2d n = t.perpVector() * d;
  const double from = std::atan2(n.y, n.x);
  const double sweep = std::atan2(sine, t.dotProduct(s));
  const int steps = stepsFor(std::abs(d), sweep, sagitta);
  for (int k = 0; k <= steps; ++k)
    p.push_back({v.point.x + std::abs(d) * std::cos(from + sweep * k / steps),
                 v.point.y + std::abs(d) * std::sin(from + sweep * k / steps)});
  return p;
}

Path onGrid(const Points& p, double unit) {
  Path out;
  for (const AcGePoint2d q : p) out.emplace_back(std::llround(q.x / unit), std::llround(q.y / unit));
  if (!ClipperLib::Orientation(out)) ClipperLib::ReversePath(out);
  return out;
}

}  // namespace

double distanceTo(const Outline& path, AcGePoint2d p) {
  double best = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i + 1 < path.size(); ++i) {
    const AcGePoint2d a = path[i].point, b = path[i + 1].point;
    const double reach = 2 * a.distanceTo(b) * std::max(1.0, std::abs(path[i].bulge));
    if (a.distanceTo(p) - reach > best) continue;  // the whole span is farther
    best = std::min(best, spanDistance(a, b, path[i].bulge, p));
  }
  return best;
}

std::vector<AcGePoint2d> samples(const PolylineCurve& c, int perSpan) {
  Points out;
  const std::size_t n = c.vertices.size();
  for (std::size_t i = 0; i < c.spanCount(); ++i)
    for (int k = 0; k < perSpan; ++k)
      out.push_back(along(c.vertices[i].point, c.vertices[(i + 1) % n].point, c.vertices[i].bulge,
                          double(k) / perSpan));
  return out;
}

double signedArea(const PolylineCurve& c) {
  double twice = 0;
  const std::size_t n = c.vertices.size();
  const AcGePoint2d o = n ? c.vertices[0].point : AcGePoint2d{};
  for (std::size_t i = 0; i < n; ++i) {
    const AcGeVector2d a = c.vertices[i].point - o, b = c.vertices[(i + 1) % n].point - o;
    twice += a.crossProduct(b);
    if (c.vertices[i].bulge == 0 || (b - a).length() == 0) continue;
    const double sweep = 4 * std::atan(c.vertices[i].bulge);
    const double radius = (b - a).length() / 2 / std::sin(std::abs(sweep) / 2);
    twice += radius * radius * (sweep - std::sin(sweep));
  }
  return twice / 2;
}

bool isSimple(const Outline& path) {
  const std::size_t n = path.size() - 1;
  std::vector<Curve> spans;
  for (std::size_t i = 0; i < n; ++i)
    spans.push_back(spanCurve(path[i].point, path[i + 1].point, path[i].bulge));
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t j = i + 1; j < n; ++j)
      for (const AcGePoint2d p : intersect(spans[i], spans[j], Extend::kOnBothOperands)) {
        const bool shared = (j == i + 1 && p.distanceTo(path[j].point) < 1e-9) ||
                            (i == 0 && j == n - 1 && p.distanceTo(path[0].point) < 1e-9);
        if (!shared) return false;
      }
  return true;
}

Expected expectedOffset(const Outline& closed, double distance) {
  double size = 0;
  for (const BulgeVertex& v : closed) size = std::max({size, std::abs(v.point.x), std::abs(v.point.y)});
  const double sagitta = 1.5e-6 * size, unit = 1e-9 * size, far = 1e4 * size;
  Expected e;
  const std::size_t n = closed.size() - 1;
  Paths cover;
  double rim = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const BulgeVertex &u = closed[i], &v = closed[i + 1];
    const AcGePoint2d w = closed[(i + 1) % n + 1].point;
    cover.push_back(onGrid(stripOf(u.point, v.point, u.bulge, distance, sagitta), unit));
    const BulgeVertex next{v.point, closed[(i + 1) % n].bulge};
    Points m = mitreOf(u, next, w, distance, far, sagitta);
    if (m.size() > 2) cover.push_back(onGrid(m, unit)), e.mitres.push_back(std::move(m));
    rim += u.point.distanceTo(v.point) * 2 + std::abs(distance) * 4;
  }
  const Path inside = onGrid(flat(closed, sagitta), unit);
  const bool ccw = signedArea({Outline(closed.begin(), closed.end() - 1), true}) > 0;
  ClipperLib::Clipper clipper;
  clipper.AddPath(inside, ClipperLib::ptSubject, true);
  const bool outwards = ccw == (distance < 0);
  clipper.AddPaths(cover, outwards ? ClipperLib::ptSubject : ClipperLib::ptClip, true);
  Paths left;
  clipper.Execute(outwards ? ClipperLib::ctUnion : ClipperLib::ctDifference, left, ClipperLib::pftNonZero,
                  ClipperLib::pftNonZero);
  e.tolerance = rim * sagitta * 4 + size * size * 1e-9;
  for (const Path& p : left) {
    const double a = ClipperLib::Area(p) * unit * unit;
    e.area += a;
    if (std::abs(a) > e.tolerance) ++(a > 0 ? e.outer : e.holes);
  }
  return e;
}

namespace {

// Corner i of the closed polygon gets a tangent arc of radius r, if there is room.
void appendRounded(Outline& out, AcGePoint2d a, AcGePoint2d b, AcGePoint2d c, double r) {
  const AcGeVector2d u = (a - b).normal(), v = (c - b).normal();
  const double angle = std::acos(std::clamp(u.dotProduct(v), -1.0, 1.0));
  const double back = r / std::tan(angle / 2);
  if (back > 0.4 * std::min(a.distanceTo(b), c.distanceTo(b)) || angle > 3.1) {
    out.push_back({b, 0});
    return;
  }
  const double sign = u.crossProduct(v) < 0 ? 1 : -1;
  out.push_back({b + u * back, sign * std::tan((kPi - angle) / 4)});
  out.push_back({b + v * back, 0});
}

}  // namespace

Outline randomOutline(std::mt19937& random) {
  const auto number = [&random](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  for (;;) {
    const int n = std::uniform_int_distribution<int>(3, 16)(random);
    const double rough = number(0, 0.9), rounded = number(0, 1), bulged = number(0, 1);
    Points p;
    for (int i = 0; i < n; ++i) {
      const double w = 2 * kPi * (i + number(-0.3, 0.3)) / n, r = 5 * (1 - rough * number(0, 1));
      p.push_back({r * std::cos(w), r * std::sin(w)});
    }
    Outline o;
    for (std::size_t i = 0; i < p.size(); ++i) {
      const AcGePoint2d a = p[(i + p.size() - 1) % p.size()], c = p[(i + 1) % p.size()];
      if (number(0, 1) < rounded)
        appendRounded(o, a, p[i], c, number(0.05, 1.5));
      else
        o.push_back({p[i], 0});
    }
    for (BulgeVertex& v : o)
      if (v.bulge == 0 && number(0, 1) < bulged * 0.5) v.bulge = number(-0.5, 0.5);
    o.push_back({o[0].point, 0});
    if (!isSimple(o)) continue;
    return number(0, 1) < 0.5 ? o : reversedOutline(o);
  }
}

Outline comb(int slots, double d, int bottom, bool clockwise) {
  Outline o;  // counter-clockwise from the lower left corner; the slots open upwards
  const double pitch = 6 * d, depth = 8 * d, height = 12 * d, w = 2 * d;
  const double width = pitch * slots + 4 * d;
  o.push_back({{0, 0}, 0});
  o.push_back({{width, 0}, 0});
  o.push_back({{width, height}, 0});
  for (int i = slots - 1; i >= 0; --i) {
    const double right = pitch * i + 4 * d + w, left = right - w, low = height - depth;
    const double quarter = -(std::sqrt(2.0) - 1);  // tan(90°/4), clockwise
    o.push_back({{right, height}, 0});
    if (bottom == 0) o.push_back({{right, low}, 0}), o.push_back({{left, low}, 0});
    if (bottom == 1) {
      o.push_back({{right, low + d}, quarter});
      o.push_back({{left + d, low}, quarter});
      o.push_back({{left, low + d}, 0});
    }
    if (bottom == 2) o.push_back({{right, low + d}, -1}), o.push_back({{left, low + d}, 0});
    o.push_back({{left, height}, 0});
  }
  o.push_back({{0, height}, 0});
  o.push_back({{0, 0}, 0});
  return clockwise ? reversedOutline(o) : o;
}

namespace {

constexpr int kCells = 7;
using Cells = std::array<std::array<bool, kCells + 2>, kCells + 2>;  // with an empty rim

// Filling the cell keeps the area in one piece, without holes and without cells that touch by a corner only.
bool mayFill(const Cells& c, int x, int y) {
  if (c[x][y]) return false;
  const bool ring[8] = {c[x + 1][y], c[x + 1][y + 1], c[x][y + 1], c[x - 1][y + 1],
                        c[x - 1][y], c[x - 1][y - 1], c[x][y - 1], c[x + 1][y - 1]};
  int changes = 0;
  for (int i = 0; i < 8; ++i) changes += ring[i] != ring[(i + 1) % 8];
  for (int i = 1; i < 8; i += 2)
    if (ring[i] && !ring[i - 1] && !ring[(i + 1) % 8]) return false;
  return changes == 2 && (ring[0] || ring[2] || ring[4] || ring[6]);
}

Points around(const Cells& c) {
  int x = 0, y = 0;
  while (!c[x][y]) {
    if (++x == kCells + 2) x = 0, ++y;
  }
  Points p;
  int px = x, py = y, dx = 1, dy = 0;  // along the lower edge of the first cell, the filled side on the left
  const int startX = px, startY = py;
  do {
    p.push_back({double(px), double(py)});
    do {
      px += dx, py += dy;
      const auto filled = [&](int side) {  // the cell ahead, on the left (1) or right (-1)
        const double cx = px + 0.5 * dx - 0.5 * side * dy, cy = py + 0.5 * dy + 0.5 * side * dx;
        return c[static_cast<std::size_t>(std::floor(cx))][static_cast<std::size_t>(std::floor(cy))];
      };
      const bool left = filled(1), right = filled(-1);
      if (left && !right) continue;
      const int turn = left ? -1 : 1;
      const int nx = -turn * dy, ny = turn * dx;
      dx = nx, dy = ny;
      break;
    } while (true);
  } while (px != startX || py != startY);
  return p;
}

}  // namespace

Outline gridOutline(std::mt19937& random) {
  const auto below = [&random](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
  Cells c{};
  c[4][4] = true;
  const int wanted = 3 + below(25);
  for (int filled = 1, tries = 0; filled < wanted && tries < 2000; ++tries) {
    const int x = 1 + below(kCells), y = 1 + below(kCells);
    if (!mayFill(c, x, y)) continue;
    c[static_cast<std::size_t>(x)][static_cast<std::size_t>(y)] = true;
    ++filled;
  }
  const Points p = around(c);
  const double radius = 0.25 * below(3);
  const double roundedShare = below(3) * 0.5;
  Outline o;
  const auto add = [&o](AcGePoint2d at, double bulge) {
    if (!o.empty() && o.back().point == at)
      o.back().bulge = bulge;
    else
      o.push_back({at, bulge});
  };
  for (std::size_t i = 0; i < p.size(); ++i) {
    const AcGePoint2d b = p[i];
    const AcGeVector2d u = (p[(i + p.size() - 1) % p.size()] - b).normal(),
                       v = (p[(i + 1) % p.size()] - b).normal();
    if (radius == 0 || below(1000) >= 1000 * roundedShare) {
      add(b, 0);
      continue;
    }
    const double side = u.crossProduct(v) < 0 ? 1 : -1;
    add(b + u * radius, side * (std::sqrt(2.0) - 1));
    add(b + v * radius, 0);
  }
  if (o.back().point == o.front().point) o.pop_back();
  o.push_back({o.front().point, 0});
  return below(2) == 0 ? o : reversedOutline(o);
}

Outline arcSlot(double d, double from, bool clockwise) {
  const double inner = 10 * d, to = from + 1, end = from + 1.4;
  const auto at = [](double r, double w) { return AcGePoint2d{r * std::cos(w), r * std::sin(w)}; };
  const double slot = std::tan((to - from) / 4), rim = std::tan((end - from) / 4);
  Outline o{{at(inner - 5 * d, from), 0},   {at(inner, from), slot},        {at(inner, to), -1},
            {at(inner + 2 * d, to), -slot}, {at(inner + 2 * d, from), 0},   {at(inner + 7 * d, from), rim},
            {at(inner + 7 * d, end), 0},    {at(inner - 5 * d, end), -rim}, {at(inner - 5 * d, from), 0}};
  return clockwise ? reversedOutline(o) : o;
}

Outline changed(const Outline& path, double scale, AcGeVector2d shift) {
  Outline o = path;
  for (BulgeVertex& v : o) v.point = {v.point.x * scale + shift.x, v.point.y * scale + shift.y};
  return o;
}

Outline turned(const Outline& path, double radians) {
  Outline o = path;
  const double c = std::cos(radians), s = std::sin(radians);
  for (BulgeVertex& v : o) v.point = {v.point.x * c - v.point.y * s, v.point.x * s + v.point.y * c};
  return o;
}

Outline roundedTo(const Outline& path, double step) {
  Outline o = path;
  const auto even = [step](double x) { return std::round(x / step) * step; };
  for (BulgeVertex& v : o) v = {{even(v.point.x), even(v.point.y)}, even(v.bulge)};
  return o;
}

Outline reversedOutline(const Outline& path) {
  Outline o;
  for (std::size_t i = path.size(); i-- > 0;) o.push_back({path[i].point, i > 0 ? -path[i - 1].bulge : 0.0});
  return o;
}

}  // namespace tarnex::reckoning
