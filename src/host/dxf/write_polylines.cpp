// Vertex lists of changed polylines: vertices that stand as they stood keep their tags.
// Knows LWPOLYLINE and POLYLINE; nothing of other entities.
#include <algorithm>

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

void DxfWriter::patchHeavy(TagPatch& patch, const AcDb2dPolyline& before, const AcDb2dPolyline& now,
                           const FileSpace& space) {
  const double side = space.mirrored ? -1 : 1;
  const auto flagsAt = patch.find(70);
  const long long flags = flagsAt ? patch.at(*flagsAt).integer() : 0;
  if (before.elevation() != now.elevation()) {
    const auto at = patch.find(30);
    if (at)
      patch.replace(*at, style().one(30, space.length(side * now.elevation())));
    else
      patch.insertBehind(patch.find(8).value_or(0), style().one(30, space.length(side * now.elevation())));
  }
  std::vector<VertexTags> places = heavyVertices(patch);
  const bool simplified = before.polyType() != now.polyType() && now.polyType() == Poly2dType::k2dSimplePoly;
  if (simplified && flagsAt) {
    patch.replace(*flagsAt, style().one(70, flags & ~static_cast<long long>(kFitFlags)));
    if (const auto type = patch.find(75)) patch.drop(*type);
  }
  // Places of the drawn vertices; the frame's go when the polyline is simple now.
  constexpr long long kFrameVertex = 16;
  std::vector<VertexTags> drawn;
  for (const VertexTags& v : places) {
    long long vertexFlags = 0;
    std::size_t vertexFlagsAt = 0;
    for (std::size_t i = v.begin; i < v.end; ++i)
      if (patch.tag(i).code == 70) vertexFlags = patch.at(vertexFlagsAt = i).integer();
    if (!(vertexFlags & kFrameVertex)) {
      drawn.push_back(v);
      if (simplified && vertexFlagsAt) patch.drop(vertexFlagsAt);
    } else if (simplified) {
      for (std::size_t i = v.begin; i < v.end; ++i) patch.drop(i);
    }
  }
  const auto& old = before.drawn().vertices;
  const auto& fresh = now.drawn().vertices;
  if (drawn.size() != old.size() || old.size() != fresh.size()) return;  // no operation changes their number
  for (std::size_t k = 0; k < fresh.size(); ++k)
    if (drawn[k].x && drawn[k].y)
      patchVertex(patch, {drawn[k].x, drawn[k].y, drawn[k].bulge, drawn[k].y}, old[k], fresh[k], space);
}

}  // namespace tarnex
