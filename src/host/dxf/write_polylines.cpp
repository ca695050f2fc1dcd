// Vertex lists of changed polylines: vertices that stand as they stood keep their tags.
// Knows LWPOLYLINE and POLYLINE; nothing of other entities.
#include <algorithm>
#include <cmath>

#include "host/dxf/writer.h"

namespace tarnex {
namespace {

constexpr int kClosed = 1, kFitFlags = 2 | 4;

// A vertex in the file: its tags, and the places of what can change.
struct VertexTags {
  std::size_t begin = 0, end = 0;
  std::size_t x = 0, y = 0, bulge = 0;  // 0: none
};

std::vector<VertexTags> lightVertices(const TagPatch& patch) {
  std::vector<VertexTags> all;
  for (std::size_t i = 0; i < patch.ownEnd(); ++i) {
    if (!patch.isGeometry(i)) continue;
    const int code = patch.tag(i).code;
    if (code == 10) {
      if (!all.empty()) all.back().end = i;
      all.push_back({i, patch.ownEnd(), i, 0, 0});
    } else if (!all.empty()) {
      if (code == 20) all.back().y = i;
      if (code == 42) all.back().bulge = i;
      if (code == 210 && all.back().end == patch.ownEnd()) all.back().end = i;  // the normal may stand behind
    }
  }
  if (!all.empty() && all.back().y == 0) all.pop_back();  // as the reader does
  return all;
}

std::vector<VertexTags> heavyVertices(TagPatch& patch) {
  std::vector<VertexTags> all;
  for (std::size_t i = patch.extendedEnd(); i < patch.size(); ++i) {
    const int code = patch.tag(i).code;
    if (code == 0) {
      if (!all.empty() && all.back().end == 0) all.back().end = i;
      if (patch.at(i).is("VERTEX")) all.push_back({i, 0, 0, 0, 0});
    } else if (!all.empty() && all.back().end == 0) {
      if (code == 10) all.back().x = i;
      if (code == 20) all.back().y = i;
      if (code == 42) all.back().bulge = i;
    }
  }
  if (!all.empty() && all.back().end == 0) all.back().end = patch.size();
  return all;
}

constexpr long long kFrameVertex = 16;

bool isSimplified(const AcDb2dPolyline& before, const AcDb2dPolyline& now) {
  return before.polyType() != now.polyType() && now.polyType() == Poly2dType::k2dSimplePoly;
}

// The affine map of the plane that takes some points to others.
struct PlaneMap {
  AcGePoint2d from, to;
  double xx = 1, xy = 0, yx = 0, yy = 1;
  [[nodiscard]] AcGePoint2d apply(AcGePoint2d p) const {
    const AcGeVector2d d = p - from;
    return {to.x + xx * d.x + xy * d.y, to.y + yx * d.x + yy * d.y};
  }
};

// By the first point, the one farthest from it, and the one farthest beside both; a similarity when all lie
// on a line.
PlaneMap mapOf(const std::vector<BulgeVertex>& old, const std::vector<BulgeVertex>& fresh) {
  PlaneMap m{old[0].point, fresh[0].point, 1, 0, 0, 1};
  std::size_t far = 0, wide = 0;
  for (std::size_t k = 1; k < old.size(); ++k)
    if ((old[k].point - m.from).length() > (old[far].point - m.from).length()) far = k;
  const AcGeVector2d a = old[far].point - m.from, b = fresh[far].point - m.to;
  const auto beside = [&](std::size_t k) { return std::abs(a.crossProduct(old[k].point - m.from)); };
  for (std::size_t k = 1; k < old.size(); ++k)
    if (beside(k) > beside(wide)) wide = k;
  constexpr double kOnALine = 1e-6;  // of the square of the longest distance
  const bool line = beside(wide) <= kOnALine * a.dotProduct(a);
  const AcGeVector2d c = line ? a.perpVector() : old[wide].point - m.from;
  const AcGeVector2d d = line ? b.perpVector() : fresh[wide].point - m.to;
  const double det = a.crossProduct(c);
  if (det == 0) return m;
  m.xx = (b.x * c.y - d.x * a.y) / det;
  m.xy = (d.x * a.x - b.x * c.x) / det;
  m.yx = (b.y * c.y - d.y * a.y) / det;
  m.yy = (d.y * a.x - b.y * c.x) / det;
  return m;
}

}  // namespace

// The file's values of one vertex changed to those of the drawing.
void DxfWriter::patchVertex(TagPatch& patch, const VertexPlace& p, const BulgeVertex& before,
                            const BulgeVertex& now, const FileSpace& space) {
  const double side = space.mirrored ? -1 : 1;
  if (before.point.x != now.point.x) patch.replace(p.x, style().one(10, space.length(side * now.point.x)));
  if (before.point.y != now.point.y) patch.replace(p.y, style().one(20, space.length(now.point.y)));
  if (before.bulge == now.bulge) return;
  if (p.bulge)
    patch.replace(p.bulge, style().one(42, side * now.bulge));
  else
    patch.insertBehind(p.last, style().one(42, side * now.bulge));
}

void DxfWriter::patchLight(TagPatch& patch, const AcDbPolyline& before, const AcDbPolyline& now,
                           const FileSpace& space) {
  const double side = space.mirrored ? -1 : 1;
  const auto put = [&](int code, const std::variant<double, long long, std::string>& value,
                       std::size_t behind) {
    if (const auto at = patch.find(code))
      patch.replace(*at, style().one(code, value));
    else
      patch.insertBehind(behind, style().one(code, value));
  };
  const auto flagsAt = patch.find(70);
  const std::size_t head = flagsAt.value_or(patch.find(90).value_or(patch.find(8).value_or(0)));
  if (before.isClosed() != now.isClosed()) {
    const long long flags = flagsAt ? patch.at(*flagsAt).integer() : 0;
    put(70, (flags & ~static_cast<long long>(kClosed)) | (now.isClosed() ? kClosed : 0), head);
  }
  if (before.elevation() != now.elevation()) put(38, space.length(side * now.elevation()), head);
  const auto& old = before.polyline().vertices;
  const auto& fresh = now.polyline().vertices;
  if (old == fresh) return;
  const std::vector<VertexTags> places = lightVertices(patch);
  if (places.size() != old.size()) return;  // can't be: both come from the same tags
  if (old.size() != fresh.size()) put(90, static_cast<long long>(fresh.size()), head);
  // Vertices at the front and at the back that are the same keep their tags; those between are matched in
  // order.
  const std::size_t most = std::min(old.size(), fresh.size());
  std::size_t front = 0, back = 0;
  while (front < most && old[front] == fresh[front]) ++front;
  while (back < most - front && old[old.size() - 1 - back] == fresh[fresh.size() - 1 - back]) ++back;
  const std::size_t oldMiddle = old.size() - front - back, freshMiddle = fresh.size() - front - back;
  for (std::size_t k = 0; k < oldMiddle; ++k) {
    const VertexTags& v = places[front + k];
    if (k < freshMiddle)
      patchVertex(patch, {v.x, v.y, v.bulge, v.y}, old[front + k], fresh[front + k], space);
    else
      for (std::size_t i = v.begin; i < v.end; ++i) patch.drop(i);
  }
  std::string added;
  TagWriter w = tags(added);
  for (std::size_t k = oldMiddle; k < freshMiddle; ++k) {
    const BulgeVertex& v = fresh[front + k];
    w.real(10, space.length(side * v.point.x));
    w.real(20, space.length(v.point.y));
    if (v.bulge != 0) w.real(42, side * v.bulge);
  }
  if (added.empty()) return;
  const std::size_t at = front + oldMiddle;  // the vertex in front of which the new ones go
  if (at < places.size())
    patch.insertInFront(places[at].begin, added);
  else
    patch.insertBehind(places.back().end - 1, added);
}

// The polyline's own tags: height, and the kind when it has been made simple.
void DxfWriter::patchHeavyHead(TagPatch& patch, const AcDb2dPolyline& before, const AcDb2dPolyline& now,
                               const FileSpace& space) {
  if (before.elevation() != now.elevation()) {
    const std::string tag = style().one(30, space.length((space.mirrored ? -1 : 1) * now.elevation()));
    if (const auto at = patch.find(30))
      patch.replace(*at, tag);
    else
      patch.insertBehind(patch.find(8).value_or(0), tag);
  }
  const auto flagsAt = patch.find(70);
  if (!isSimplified(before, now) || !flagsAt) return;
  patch.replace(*flagsAt, style().one(70, patch.at(*flagsAt).integer() & ~static_cast<long long>(kFitFlags)));
  if (const auto type = patch.find(75)) patch.drop(*type);
}

void DxfWriter::patchHeavy(TagPatch& patch, const AcDb2dPolyline& before, const AcDb2dPolyline& now,
                           const FileSpace& space) {
  patchHeavyHead(patch, before, now, space);
  const bool simplified = isSimplified(before, now);
  std::vector<VertexTags> drawn, frame;
  for (const VertexTags& v : heavyVertices(patch)) {
    long long flags = 0;
    std::size_t flagsAt = 0;
    for (std::size_t i = v.begin; i < v.end; ++i)
      if (patch.tag(i).code == 70) flags = patch.at(flagsAt = i).integer();
    (flags & kFrameVertex ? frame : drawn).push_back(v);
    if (simplified && flagsAt) patch.drop(flagsAt);
    if (simplified && (flags & kFrameVertex))  // the frame goes when the polyline is simple now
      for (std::size_t i = v.begin; i < v.end; ++i) patch.drop(i);
  }
  const auto& old = before.drawn().vertices;
  const auto& fresh = now.drawn().vertices;
  if (drawn.size() != old.size() || old.size() != fresh.size() || old == fresh)
    return;  // their number never changes
  for (std::size_t k = 0; k < fresh.size(); ++k)
    if (drawn[k].x && drawn[k].y)
      patchVertex(patch, {drawn[k].x, drawn[k].y, drawn[k].bulge, drawn[k].y}, old[k], fresh[k], space);
  if (simplified) return;
  const PlaneMap map = mapOf(old, fresh);
  const double side = space.mirrored ? -1 : 1;
  for (const VertexTags& v : frame) {
    if (!v.x || !v.y) continue;
    const AcGePoint2d p{side * patch.at(v.x).real().value_or(0) * space.factor,
                        patch.at(v.y).real().value_or(0) * space.factor};
    const AcGePoint2d q = map.apply(p);
    patchVertex(patch, {v.x, v.y, 0, v.y}, {p, 0}, {q, 0}, space);
  }
}

}  // namespace tarnex
