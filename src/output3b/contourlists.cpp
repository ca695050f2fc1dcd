// The working lists of one path for a 3B program.
// Knows compensation, relief and settings; nothing of blocks.
#include "output3b/contourlists.h"

#include "contour/geometrylibrary.h"
#include "host/platform/format.h"
#include "toolpath/cornerrelief.h"
#include "toolpath/offsetspans.h"

namespace tarnex {

void ContourLists::insert(int i, AcGePoint2d point, double b, double t) {
  p.insert(p.begin() + i, point);
  bulge.insert(bulge.begin() + i, b);
  taper.insert(taper.begin() + i, t);
  sources.insert(sources.begin() + i, Sources{});
}

namespace {

constexpr std::size_t kInsertedAtEnd = 4;  // vertices: of a pause and an overcut, mostly

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

// Tapers and sources of the wire path's vertices. Where the offset dropped or added a vertex, what hangs on
// the others stays with the spans and corners that it belongs to.
struct Hanging {
  std::vector<double> taper;
  std::vector<ContourLists::Sources> sources;
};

Hanging hangingOf(const CToolPath& path, const OffsetPath& tool) {
  std::vector<int> spans;
  if (path.hasSegTaper() || !path.aCodeVertex().empty())
    spans = spansBeside(path.polyline().vertices, tool, path.wireOffsetToTheLeft());
  Hanging out;
  out.taper.reserve(tool.vertices.size());
  out.sources.reserve(tool.vertices.size());
  int previous = -1;
  for (std::size_t i = 0; i < tool.vertices.size(); ++i) {
    const int span = spans.empty() ? static_cast<int>(i) : spans[i];
    out.taper.push_back(at(span) < path.aSegTaper().size() ? path.aSegTaper()[at(span)] : 0.0);
    out.sources.push_back({previous + 1, span});
    previous = span;
  }
  return out;
}

// The first vertices of the tool path as they are, one list entry each.
void copyVertices(const OffsetPath& tool, const Hanging& hanging, std::size_t count, ContourLists& l) {
  const std::size_t room = count + kInsertedAtEnd;
  l.p.reserve(room);
  l.bulge.reserve(room);
  l.taper.reserve(room);
  l.sources.reserve(room);
  for (std::size_t i = 0; i < count; ++i) {
    l.p.push_back(tool.vertices[i]);
    l.bulge.push_back(tool.bulges[i]);
    l.taper.push_back(hanging.taper[i]);
    l.sources.push_back(hanging.sources[i]);
  }
}

// Takes the relieved contour into the lists, behind the threading point. Code texts stay with the vertices
// that were there before; tapers are counted from the threading point's on, so that each falls to the vertex
// behind its own: the truth test notes it.
void takeRelieved(const RelievedContour& relieved, const Hanging& hanging, ContourLists& l) {
  const auto& vertices = relieved.vertices;
  const auto sourcesAt = [&](std::size_t original) {
    return original < hanging.sources.size() ? hanging.sources[original] : ContourLists::Sources{};
  };
  std::size_t running = 0;
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const bool added = i < relieved.flags.size() && relieved.flags[i] != 0;
    const double taper = !added && running < hanging.taper.size() ? hanging.taper[running] : 0.0;
    if (!added) ++running;
    if (vertices[i].bulge == kMarkedBulge && i + 1 < vertices.size() &&
        vertices[i].point.distanceTo(vertices[i + 1].point) <= kSamePoint)
      continue;
    l.p.push_back(vertices[i].point);
    l.bulge.push_back(vertices[i].bulge);
    l.taper.push_back(taper);
    l.sources.push_back(added ? ContourLists::Sources{} : sourcesAt(running));
  }
  if (l.p.size() < 2) return;
  l.append(l.p[1], 0, 0);
  l.sources.back() = sourcesAt(running + 1);
}

// The routine gets the path that the wire's centre walks, so that what it leaves is a wire path too. An open
// path has no contour for it: closing one would lead the wire through the part.
std::optional<RelievedContour> relieve(const CToolPath& path, const Contour3bContext& context,
                                       const OffsetPath& tool, double dFix) {
  if (!(dFix > 0) || !context.relief || !path.database() || !(path.bClosed() || path.bCircle()))
    return std::nullopt;
  PolylineCurve contour{{}, true};
  for (std::size_t i = 1; i + 1 < tool.vertices.size(); ++i)
    contour.vertices.push_back({tool.vertices[i], tool.bulges[i]});
  return relieveContour(*path.database(), context.relief, contour, {dFix, dFix, path.nSide()});
}

double arcLength(double bulge, double radius) {
  return 4 * std::atan(std::abs(bulge)) * radius;
}

double signedBy(double bulge, double angle) {
  return bulge < 0 ? -angle : angle;
}

double bulgeAbout(AcGePoint2d centre, AcGePoint2d from, AcGePoint2d to, double bulge) {
  return std::tan(sweepAngle(centre, from, to, bulge > 0 ? 1 : -1) / 4);
}

// A pause shortly before the part falls out: the last segment is split there when it is long enough.
void placePause(const WireCutSettings& settings, ContourLists& l) {
  const double length = settings.dCutoffLen;
  if (!settings.bCutoffPause || !(length > 0)) return;
  const int n = l.size();
  const AcGePoint2d a = l.p[at(n - 2)], e = l.p[at(n - 1)];
  const double b = l.bulge[at(n - 2)], t = l.taper[at(n - 2)];
  bool split = false;
  if (b == 0.0) {
    if (a.distanceTo(e) > length) {
      l.insert(n - 1, acutPolar(e, acutAngle(e, a), length), 0.0, t);
      split = true;
    }
  } else if (a != e) {
    const auto circle = bulgeToCircle(a, e, b);
    if (arcLength(b, circle.radius) > length) {
      const double theta = signedBy(b, length / circle.radius);
      const AcGePoint2d x = acutPolar(circle.centre, acutAngle(circle.centre, e) - theta, circle.radius);
      l.bulge[at(n - 2)] = bulgeAbout(circle.centre, a, x, b);
      l.insert(n - 1, x, std::tan(theta / 4), t);
      split = true;
    }
  }
  if (split) ++l.nSeg;
  l.nPauseAt = l.size() - 2;
}

// ---- overcut

constexpr double kInLine = 0.001;  // rad between the last segment and the first

bool leavesInLine(const ContourLists& l) {
  const int n = l.size();
  const AcGePoint2d g = l.p[at(n - 2)], a = l.p[at(n - 1)];
  if (l.bulge[at(n - 2)] != 0.0 || g == a) return false;
  return (a - g).angleTo(l.p[2] - l.p[1]) <= kInLine;
}

// Runs on from the entry point to X as a segment of its own, and with mode 1 back again.
void runOnTo(AcGePoint2d x, double bulge, double taper, const WireCutSettings& settings, ContourLists& l) {
  const AcGePoint2d a = l.p.back();
  l.bulge.back() = bulge;
  l.append(x, 0.0, taper);
  ++l.nSeg;
  if (settings.nOvercutMode == 1) {
    l.bulge.back() = -bulge;
    l.append(a, 0.0, taper);
    ++l.nSeg;
  }
  l.overcutDone = true;
}

void overcutLine(const WireCutSettings& settings, ContourLists& l) {
  const AcGePoint2d a = l.p[1], f = l.p[2];
  if (a.distanceTo(f) <= settings.dOvercutLen) return;
  const AcGePoint2d x = acutPolar(a, acutAngle(a, f), settings.dOvercutLen);
  const double t = l.taper[1];
  const int z = l.size() - 1;
  if (!leavesInLine(l)) {
    // Drawing the last segment out to X would cut the corner at the entry point off.
    runOnTo(x, 0.0, t, settings, l);
    return;
  }
  if (settings.nOvercutMode == 1) {
    l.insert(z, x, 0.0, t);
    ++l.nSeg;
  } else {
    l.p[at(z)] = x;
  }
  l.overcutDone = true;
}

void overcutArc(const WireCutSettings& settings, ContourLists& l) {
  const AcGePoint2d a = l.p[1], f = l.p[2];
  const double b = l.bulge[1], t = l.taper[1];
  const auto first = bulgeToCircle(a, f, b);
  if (arcLength(b, first.radius) <= settings.dOvercutLen) return;
  const double theta = signedBy(b, settings.dOvercutLen / first.radius);
  const AcGePoint2d x = acutPolar(first.centre, acutAngle(first.centre, a) + theta, first.radius);
  const int z = l.size() - 1;
  const AcGePoint2d g = l.p[at(z - 1)];
  const double last = l.bulge[at(z - 1)];
  const bool sameCircle = last != 0.0 && g != l.p[at(z)] && [&] {
    const auto circle = bulgeToCircle(g, l.p[at(z)], last);
    return std::abs(circle.radius - first.radius) < kSamePoint &&
           circle.centre.distanceTo(first.centre) <= kSamePoint;
  }();
  if (!sameCircle) {
    runOnTo(x, std::tan(theta / 4), t, settings, l);
    return;
  }
  l.bulge[at(z - 1)] = bulgeAbout(first.centre, g, x, b);
  if (settings.nOvercutMode == 1) {
    l.insert(z, x, -std::tan(theta / 4), t);
    ++l.nSeg;
  } else {
    l.p[at(z)] = x;
  }
  l.overcutDone = true;
}

// Leaves the contour on the tangent of the last segment; the length isn't tested.
void overcutTangent(const WireCutSettings& settings, ContourLists& l) {
  const int n = l.size();
  const AcGePoint2d g = l.p[at(n - 2)], a = l.p[at(n - 1)];
  if (g == a) return;
  const double b = l.bulge[at(n - 2)];
  const double heading =
      b == 0.0 ? acutAngle(g, a) : acutAngle(bulgeToCircle(g, a, b).centre, a) + (b > 0 ? kPi / 2 : -kPi / 2);
  runOnTo(acutPolar(a, heading, settings.dOvercutLen), 0.0, 0.0, settings, l);
}

// An outer shape gets no overcut.
void placeOvercut(const CToolPath& path, const WireCutSettings& settings, ContourLists& l) {
  if (!settings.bOvercut || path.nSide() != kInnerHole || !(settings.dOvercutLen > 0) || l.p[1] == l.p[2])
    return;
  if (l.bulge[1] == 0.0)
    overcutLine(settings, l);
  else if (settings.bOvercutTangent)
    overcutTangent(settings, l);
  else
    overcutArc(settings, l);
}

}  // namespace

ContourLists contourLists(const CToolPath& path, const Contour3bContext& context) {
  OffsetPath own;
  const OffsetPath& tool = context.wires ? context.wires->of(path) : own = path.wireCentrePath();
  if (tool.ownMethod)
    context.report(formatChecked(context.message(134), {static_cast<long long>(path.nPathNo())}));
  ContourLists l;
  l.dFix = context.settings.bAutoFix ? context.settings.dAutoFixLen : 0.0;
  const Hanging hanging = hangingOf(path, tool);
  if (const auto relieved = relieve(path, context, tool, l.dFix)) {
    copyVertices(tool, hanging, 1, l);
    takeRelieved(*relieved, hanging, l);
  } else {
    copyVertices(tool, hanging, tool.vertices.size(), l);
  }
  l.nSeg = l.size() - 1;
  return l;
}

void placeEnd(const CToolPath& path, const WireCutSettings& settings, ContourLists& l) {
  if (l.size() < 4 || !(l.p[1].distanceTo(l.p.back()) <= kSamePoint)) return;
  placePause(settings, l);
  placeOvercut(path, settings, l);
}

}  // namespace tarnex
