// Figures into strokes, blocks into steps, and the roles that steps play.
// Knows no order of paths.
#include "exchange/outline.h"

#include <cstdarg>
#include <cstdio>

namespace tarnex::truth {

namespace {

constexpr double kNoLength = 1e-9;       // mm; shorter spans have no direction
constexpr double kFarthest = 1e9;        // mm; coordinates beyond can't be told to a micrometre
constexpr double kOneCount = 0.0015;     // mm; a count in x and in y, with what the sum rounds to
constexpr double kSameMove = 0.002;      // mm; two counts: both ends of a computed spike are rounded
constexpr double kClearlyBetter = 1e-4;  // mm; by which the other reading of a start must fit better

bool sane(Point p) {
  return std::abs(p.x) <= kFarthest && std::abs(p.y) <= kFarthest;
}

std::vector<Stroke> circleStrokes(const CircleFigure& c) {
  std::vector<Stroke> out;
  const double half = std::acos(-1.0);
  out.push_back(arcStroke(c.centre, {c.centre.x + c.radius, c.centre.y}, half));
  out.push_back(arcStroke(c.centre, {c.centre.x - c.radius, c.centre.y}, half));
  out.back().end = out.front().start;
  out.front().end = out.back().start;
  return out;
}

std::vector<Stroke> polylineStrokes(const PolylineCurve& c, std::vector<std::size_t>& spans) {
  std::vector<Stroke> out;
  for (std::size_t i = 0; i < c.spanCount(); ++i) {
    const BulgeVertex& a = c.vertices[i];
    const BulgeVertex& b = c.vertices[(i + 1) % c.vertices.size()];
    if (dist(a.point, b.point) <= kNoLength) continue;
    out.push_back(spanStroke(a.point, b.point, a.bulge));
    spans.push_back(i);
  }
  return out;
}

std::string whyRefused(const Figure& f) {
  if (!std::isfinite(f.compensation) || f.compensation < 0 || f.compensation > kFarthest)
    return "its compensation isn't a length";
  if (f.threading && !sane(*f.threading)) return "its threading point isn't a place in a drawing";
  if (f.circle) {
    const bool good = sane(f.circle->centre) && f.circle->radius > kNoLength && f.circle->radius <= kFarthest;
    return good ? "" : "its circle isn't one";
  }
  for (const BulgeVertex& v : f.contour.vertices)
    if (!sane(v.point) || !std::isfinite(v.bulge)) return "a vertex or bulge isn't a number in reach";
  return f.contour.spanCount() == 0 ? "it has fewer than two points" : "";
}

// How far the stroke leaves the way beside what its middle runs beside. Measured from its own start, so that
// what the wire has drifted before doesn't count.
double misfit(const Outline& o, const Stroke& s) {
  const auto hit = o.spans.nearestTo(at(s, 0.5));
  const bool aboutVertex = hit.foot.t <= 0 || hit.foot.t >= 1;
  auto off = [&](Point p) { return aboutVertex ? dist(p, hit.foot.point) : beside(o.span(hit.stroke), p); };
  const double start = off(s.start);
  return std::max(std::abs(off(at(s, 0.5)) - start), std::abs(off(s.end) - start));
}

void tellBlock(const WalkFrom& from, const Step& s, const Walked& w) {
  if (!from.findings) return;
  const auto block = static_cast<long long>(s.line->number);
  const Findings::Place place{from.figure, s.line, s.stroke.start};
  if (!w.contradiction.empty())
    from.findings->fault(FindingKind::kContradiction, place,
                         formatted("block %lld: %s", block, w.contradiction.c_str()));
  if (!s.line->move.printed) return;
  const Point printed = *s.line->move.printed + (from.origin - Point{0, 0});
  const double off = dist(printed, s.stroke.start);
  if (off > kAllowance + s.before)
    from.findings->fault(
        FindingKind::kCoordinates, place,
        formatted("block %lld: the printed place (%.4f, %.4f) is %.4f mm from where the wire stands", block,
                  printed.x, printed.y, off));
}

void chooseSide(const WalkFrom& from, Step& s, Walked& w) {
  if (!w.otherSide || !from.outline) return;
  const Stroke other = moved(*w.otherSide, s.stroke.start - Point{0, 0});
  if (misfit(*from.outline, other) + kClearlyBetter > misfit(*from.outline, s.stroke)) return;
  const double off = dist(other.end, s.stroke.end) + dist(other.centre, s.stroke.centre);
  if (from.findings)
    from.findings->note(
        FindingKind::kAxisWord, {from.figure, s.line, s.stroke.start},
        formatted("block %lld: the arc starts just before an axis and has the word of the quadrant behind "
                  "it; a controller that takes the word as it stands runs up to %.4f mm off",
                  static_cast<long long>(s.line->number), off));
  s.stroke = other;
  w.contradiction = w.otherContradiction;
}

// The way along the outer bisector and back that the corner compensation calls for between two headings.
Vec wantedSpike(Vec in, Vec out, double dFix) {
  const double angle = std::acos(std::clamp(dot(-in, out), -1.0, 1.0));
  const Vec inward = out - in;
  if (angle < 1e-6 || std::hypot(inward.x, inward.y) < 1e-9) return {0, 0};
  return unit(-inward) * (dFix / std::sin(angle / 2) - dFix);
}

void giveSpikes(Measuring& m) {
  auto& steps = m.path.steps;
  for (std::size_t i = 1; i + 2 < steps.size(); ++i) {
    if (!outAndBack(steps[i], steps[i + 1])) continue;
    const Vec way = steps[i].stroke.end - steps[i].stroke.start;
    const Vec wanted =
        wantedSpike(heading(steps[i - 1].stroke, 1), heading(steps[i + 2].stroke, 0), m.expected.dFix);
    const bool corner = m.expected.dFix > 0 && std::hypot(way.x - wanted.x, way.y - wanted.y) <= kSameMove;
    const bool marked = way.length() <= m.expected.markedStep + kAllowance && m.expected.markedStep > 0;
    if (corner || marked) {
      steps[i].role = steps[i + 1].role = Role::kSpike;
    } else if (m.outline.spans.nearestTo(steps[i].stroke.end).foot.distance + steps[i].allowedTowards() <
               m.outline.compensation) {
      m.findings.fault(
          FindingKind::kUnexplained, m.at(steps[i], steps[i].stroke.end),
          formatted("block %lld: a step of %.4f mm out to (%.4f, %.4f) and back that no option explains",
                    static_cast<long long>(steps[i].line->number), way.length(), steps[i].stroke.end.x,
                    steps[i].stroke.end.y));
      steps[i].role = steps[i + 1].role = Role::kSpike;
    }
    ++i;
  }
}

}  // namespace

// Halves of a count are rounded upward both ways: the way back may be a count shorter.
bool outAndBack(const Step& a, const Step& b) {
  if (a.stroke.arc || b.stroke.arc) return false;
  const double length = lengthOf(a.stroke), apart = dist(a.stroke.start, b.stroke.end);
  return length > kNoLength && (apart < kNoLength || (apart < kOneCount && length > 2 * kOneCount));
}

void Findings::add(FindingKind kind, Grade grade, const Place& where, std::string sentence) {
  ++(grade == Grade::kFault ? report_.faults : report_.notes);
  if (report_.findings.size() >= kFindingsKept) return;
  Finding f{kind, grade, where.figure, 0, 0, where.at, std::move(sentence)};
  if (where.line) f.block = where.line->number, f.line = where.line->line;
  report_.findings.push_back(std::move(f));
}

std::pair<std::size_t, std::size_t> Outline::meeting(std::size_t i, bool atEnd) const {
  const std::size_t n = count();
  if (atEnd) return {i, i + 1 < n ? i + 1 : closed ? 0 : i};
  return {i > 0 ? i - 1 : closed ? n - 1 : i, i};
}

std::optional<Outline> outlineOf(const Figure& figure, std::string& refusal) {
  refusal = whyRefused(figure);
  if (!refusal.empty()) return std::nullopt;
  Outline o;
  auto strokes =
      figure.circle ? circleStrokes(*figure.circle) : polylineStrokes(figure.contour, o.figureSpans);
  if (strokes.empty()) {
    refusal = "all its points are one";
    return std::nullopt;
  }
  o.closed =
      figure.circle || figure.contour.closed || dist(strokes.front().start, strokes.back().end) <= kAllowance;
  o.insideIsLeft = areaOf(strokes) >= 0 ? 1 : -1;
  o.compensation = figure.compensation;
  for (const Stroke& s : strokes) o.perimeter += lengthOf(s);
  o.spans = Nearby(std::move(strokes));
  return o;
}

WirePath walkLines(const Line3b* first, const Line3b* last, const WalkFrom& from) {
  WirePath path;
  path.rounding = from.unsure;
  Point here = from.start;
  for (const Line3b* line = first; line != last; ++line) {
    if (line->kind == LineKind::kPause && !path.steps.empty()) ++path.steps.back().pauses;
    if (line->kind == LineKind::kPause) continue;
    if (!path.first) path.first = line;
    path.last = line;
    ++path.blocks;
    if (!line->text.empty() || line->kind == LineKind::kCode) path.codes.push_back({path.steps.size(), line});
    if (line->kind != LineKind::kMove) continue;
    Walked w = walkMove(line->move);
    Step s;
    s.line = line;
    s.stroke = moved(w.stroke, here - Point{0, 0});
    s.before = path.rounding;
    s.away = s.towards = s.spread = path.rounding + w.wayRounding;
    if (!line->text.empty()) s.role = Role::kCode;
    chooseSide(from, s, w);
    tellBlock(from, s, w);
    path.rounding += w.endRounding;
    if (s.stroke.arc) path.worstArc = std::max(path.worstArc, w.endRounding);
    here = s.stroke.end;
    path.steps.push_back(std::move(s));
  }
  return path;
}

void giveRoles(Measuring& m) {
  auto& steps = m.path.steps;
  Step& first = steps.front();
  Step& last = steps.back();
  if (!first.stroke.arc) first.role = Role::kLead;
  // A wire that ended on the contour would be nearer to its entry than to the threading point.
  const Point entry = first.role == Role::kLead ? first.stroke.end : first.stroke.start;
  const bool returned = dist(last.stroke.end, m.path.start()) <= kAllowance + m.path.rounding ||
                        dist(last.stroke.end, m.path.start()) < dist(last.stroke.end, entry);
  if (m.outline.closed && steps.size() > 1 && returned && !last.stroke.arc) last.role = Role::kReturn;
  if (m.figure.marks) return;  // each step, and the overcut, is looked at on its own
  giveSpikes(m);
  if (!m.expected.overcutTangent || m.expected.overcut <= 0) return;
  for (std::size_t i = steps.size() > 3 ? steps.size() - 3 : 1; i + 1 < steps.size(); ++i) {
    const bool long_ = std::abs(lengthOf(steps[i].stroke) - m.expected.overcut) <= kSameMove;
    if (!steps[i].stroke.arc && long_ && steps[i].role == Role::kCut) steps[i].role = Role::kTangent;
  }
}

}  // namespace tarnex::truth
