// Corner relief by name: a closed polyline with an out-and-back step, or an arc, at each corner that would
// keep a fillet. Knows polylines; how far a step goes stands with the corner in toolpath.
#include "toolpath/cornerrelief.h"

#include "contour/geometrylibrary.h"
#include "host/database/database.h"
#include "quillet/quillet.h"
#include "quillet/reliefarcs.h"
#include "toolpath/toolpath.h"

namespace {

using namespace tarnex;

struct Relief {
  double straightRadius, arcRadius;  // mm
  int turn;                          // direction times side
};

using Vertices = std::vector<BulgeVertex>;

const BulgeVertex& at(const Vertices& v, std::size_t i) {
  return v[i % v.size()];
}

double straightened(double bulge) {
  return bulge == kMarkedBulge ? 0 : bulge;
}

// Vertex i is the root of a step, or its tip, or the root again.
bool inStep(const Vertices& v, std::size_t i) {
  for (std::size_t root : {i, i + v.size() - 1, i + v.size() - 2})
    if (at(v, root).bulge == kMarkedBulge && at(v, root + 1).bulge == kMarkedBulge &&
        at(v, root + 2).point.distanceTo(at(v, root).point) <= kSamePoint)
      return true;
  return false;
}

std::optional<AcGePoint2d> stepAt(const Vertices& v, std::size_t i, const Relief& relief) {
  if (i == 0 || inStep(v, i)) return std::nullopt;
  const double in = straightened(at(v, i - 1).bulge), out = straightened(v[i].bulge);
  const WireCorner corner{{at(v, i - 1).point, in}, {v[i].point, out}, at(v, i + 1).point};
  const auto step =
      cornerStep(corner, relief.turn, in == 0 && out == 0 ? relief.straightRadius : relief.arcRadius);
  if (!step || !(step->length > kSamePoint)) return std::nullopt;
  return step->tip;
}

PolylineCurve relieved(const PolylineCurve& contour, const Relief& relief, std::vector<int>& flags) {
  PolylineCurve result;
  result.closed = true;
  const auto add = [&](AcGePoint2d p, double bulge, int flag) {
    result.vertices.push_back({p, bulge});
    flags.push_back(flag);
  };
  const Vertices& v = contour.vertices;
  for (std::size_t i = 0; i < v.size(); ++i) {
    const auto tip = stepAt(v, i, relief);
    if (!tip) {
      add(v[i].point, v[i].bulge, 0);
      continue;
    }
    add(v[i].point, kMarkedBulge, 0);
    add(*tip, kMarkedBulge, 1);
    add(v[i].point, v[i].bulge, 1);
  }
  return result;
}

// What `make` makes of the closed polyline `id` becomes the newest entity.
template <class Make>
int leaveRelieved(AcDbDatabase* drawing, unsigned id, int nSide, std::vector<int>* flags, const Make& make) {
  if (!drawing || !flags) return 0;
  const auto* source = drawing->peek<AcDbPolyline>(AcDbObjectId{id});
  if (!source || !source->isClosed() || source->numVerts() < 2) return 0;
  const PolylineCurve contour = source->polyline();
  const int direction = polylineOrientation(contour);
  if (direction == 0) return 0;
  flags->clear();
  auto result = std::make_unique<AcDbPolyline>(make(contour, direction * nSide));
  result->setLayer(source->layerId());
  result->setColorIndex(source->colorIndex());
  result->setElevation(source->elevation());
  return drawing->appendAcDbEntity(drawing->modelSpace(), std::move(result)).isNull() ? 0 : 1;
}

}  // namespace

int lxcorner1(AcDbDatabase* drawing, unsigned id, double straightRadius, double arcRadius, int nSide,
              std::vector<int>* flags) {
  return leaveRelieved(drawing, id, nSide, flags, [&](const PolylineCurve& contour, int turn) {
    return relieved(contour, {straightRadius, arcRadius, turn}, *flags);
  });
}

int lxcorner2(AcDbDatabase* drawing, unsigned id, double straightRadius, double arcRadius, int nSide,
              std::vector<int>* flags) {
  return leaveRelieved(drawing, id, nSide, flags, [&](const PolylineCurve& contour, int turn) {
    return withReliefArcs(contour, turn, {straightRadius, arcRadius}, *flags);
  });
}
