// What commands that change a path's vertices have in common.
// What meets what is the survey's answer; here stands which contours it is asked about, and what is said.
#include "pathcmd/pathchange.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "contour/selfcrossing.h"

namespace tarnex {

namespace {

constexpr double kSamePlace = 2 * kSamePoint;  // mm; places come out of different pairs of spans

bool isStepSpan(const std::vector<BulgeVertex>& v, std::size_t i) {
  return i < v.size() && v[i].bulge == kMarkedBulge;
}

// The contour, then each out-and-back step as a line from its foot.
std::vector<PolylineCurve> cutContour(const PolylineCurve& path) {
  std::vector<PolylineCurve> cut(1);
  const auto& v = path.vertices;
  for (std::size_t i = 1; i < v.size(); ++i) {
    if (isStepSpan(v, i) && isStepSpan(v, i + 1) && i + 2 < v.size()) {
      cut.push_back({{{v[i].point, 0}, {v[i + 1].point, 0}}, false});
      ++i;
      continue;
    }
    cut.front().vertices.push_back(v[i]);
  }
  auto& body = cut.front();
  if (body.vertices.size() > 2 &&
      body.vertices.front().point.distanceTo(body.vertices.back().point) <= kSamePoint) {
    body.vertices.pop_back();
    body.closed = true;
  }
  return cut;
}

}  // namespace

std::vector<AcGePoint2d> pathContacts(const PolylineCurve& path) {
  const auto cut = cutContour(path);
  std::vector<AcGePoint2d> places;
  for (const auto& contact : contourContacts(cut).contacts) {
    const auto standsAt = [&](std::uint32_t i) {  // a step's foot lies on the contour
      return i > 0 && cut[i].vertices.front().point.distanceTo(contact.at) <= kSamePlace;
    };
    if (!standsAt(contact.first) && !standsAt(contact.second)) places.push_back(contact.at);
  }
  return places;
}

std::vector<AcGePoint2d> newContacts(std::vector<AcGePoint2d> before, const std::vector<AcGePoint2d>& now) {
  const auto byX = [](AcGePoint2d a, AcGePoint2d b) { return a.x < b.x; };
  std::sort(before.begin(), before.end(), byX);
  std::vector<AcGePoint2d> added;
  for (AcGePoint2d p : now) {
    auto old = std::lower_bound(before.begin(), before.end(), AcGePoint2d{p.x - kSamePlace, 0}, byX);
    while (old != before.end() && old->x <= p.x + kSamePlace && !(old->distanceTo(p) <= kSamePlace)) ++old;
    if (old == before.end() || old->x > p.x + kSamePlace) added.push_back(p);
  }
  return added;
}

void tellContacts(Module& module, int pathNo, const std::vector<AcGePoint2d>& contacts) {
  constexpr std::size_t kShown = 5;
  const auto number = static_cast<long long>(pathNo);
  for (std::size_t i = 0; i < std::min(kShown, contacts.size()); ++i)
    module.editor.print(module.message(20220, {number, contacts[i].x, contacts[i].y}));
  if (contacts.size() > kShown)
    module.editor.print(module.message(20221, {number, static_cast<long long>(contacts.size() - kShown)}));
}

void tellFull(Module& module, int pathNo) {
  module.editor.print(
      module.message(20226, {static_cast<long long>(pathNo), static_cast<long long>(kMostPathVertices)}));
}

bool refusesFourAxis(Module& module, const CToolPath& path) {
  if (!path.hasFlag(kFourAxis)) return false;
  module.editor.print(module.message(20225, {static_cast<long long>(path.nPathNo())}));
  return true;
}

}  // namespace tarnex
