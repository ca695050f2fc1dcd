// What has changed since the last look is taken out of the order and merged into it again.
// Knows numbers and ends of paths.
#include "pathcmd/pathorder.h"

#include <algorithm>
#include <utility>

#include "pathcmd/exchangesort.h"

namespace tarnex {

namespace {

constexpr std::size_t kNoPlace = static_cast<std::size_t>(-1);

const CToolPath* pathOf(AcDbDatabase& drawing, AcDbObjectId id) {
  const auto* path = drawing.peek<CToolPath>(id);
  return path && path->ownerId() == drawing.modelSpace() ? path : nullptr;
}

}  // namespace

void PathOrder::follow(AcDbDatabase& drawing, PathState& state, Numbers numbers) {
  const auto life = drawing.life();
  const bool same = !drawing_.owner_before(life) && !life.owner_before(drawing_);
  std::vector<AcDbObjectId> changed;
  toLookAt_.clear();
  if (!exact_ || !same || !drawing.changesSince(stamp_, changed) || !takeChanges(drawing, changed))
    readWhole(drawing);
  numberPlaces(drawing, numbers);
  state.PathList = list_;
  state.nextPathNo = static_cast<int>(list_.size()) + 1;
  state.lastEnd = list_.empty() ? kNoLastEnd : pathOf(drawing, list_.back())->getEndPoint(true);
  drawing_ = life;
  stamp_ = drawing.changeStamp();
}

void PathOrder::readWhole(AcDbDatabase& drawing) {
  std::vector<Numbered> found;
  for (AcDbObjectId id : drawing.modelSpaceEntities())
    if (const auto* path = drawing.peek<CToolPath>(id)) found.push_back({path->nPathNo(), id});
  exchangeSort(found, [](const Numbered& a, const Numbered& b) { return a.number < b.number; });
  list_.clear();
  place_.clear();
  std::vector<AcDbObjectId> list;
  for (const auto& path : found) list.push_back(path.id);
  place(std::move(list));
  exact_ = true;
  toLookAt_.resize(list_.size());
  for (std::size_t i = 0; i < toLookAt_.size(); ++i) toLookAt_[i] = i;
}

// False where it isn't settled by the changes alone: two paths with one number.
bool PathOrder::takeChanges(AcDbDatabase& drawing, const std::vector<AcDbObjectId>& changed) {
  Places left;
  std::vector<Numbered> moved;
  std::vector<AcDbObjectId> paths;
  for (AcDbObjectId id : changed) {
    const auto* path = pathOf(drawing, id);
    const std::size_t at = placeOf(id);
    if (path) paths.push_back(id);
    if (path && at != kNoPlace && path->nPathNo() == static_cast<int>(at) + 1) continue;
    if (at != kNoPlace) left.push_back(at);
    if (path) moved.push_back({path->nPathNo(), id});
  }
  if ((!left.empty() || !moved.empty()) && !merge(std::move(left), std::move(moved))) return false;
  addPlacesOf(paths);
  return true;
}

bool PathOrder::merge(Places left, std::vector<Numbered> moved) {
  std::sort(left.begin(), left.end());
  std::sort(moved.begin(), moved.end(),
            [](const Numbered& a, const Numbered& b) { return a.number < b.number; });
  for (std::size_t i = 1; i < moved.size(); ++i)
    if (moved[i].number == moved[i - 1].number) return false;
  std::vector<AcDbObjectId> list;
  list.reserve(list_.size() + moved.size());
  auto gone = left.begin();
  auto next = moved.begin();
  for (std::size_t i = 0; i < list_.size(); ++i) {
    if (gone != left.end() && *gone == i) {
      ++gone;
      continue;
    }
    const int number = static_cast<int>(i) + 1;
    for (; next != moved.end() && next->number < number; ++next) list.push_back(next->id);
    if (next != moved.end() && next->number == number) return false;
    list.push_back(list_[i]);
  }
  for (; next != moved.end(); ++next) list.push_back(next->id);
  for (std::size_t i : left) place_[list_[i].index] = 0;
  place(std::move(list));
  return true;
}

// Takes a new order; the places where it differs from the old one are to be looked at.
void PathOrder::place(std::vector<AcDbObjectId> list) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (placeOf(list[i]) == i) continue;
    if (list[i].index >= place_.size()) place_.resize(list[i].index + std::size_t{1}, 0);
    place_[list[i].index] = static_cast<std::uint32_t>(i + 1);
    toLookAt_.push_back(i);
  }
  list_ = std::move(list);
}

// A change of a path is also one of where the wire stands before the next. Whoever tells a path another
// previous end changes it, too.
void PathOrder::addPlacesOf(const std::vector<AcDbObjectId>& changed) {
  for (AcDbObjectId id : changed) toLookAt_.push_back(placeOf(id));
  const std::size_t known = toLookAt_.size();
  for (std::size_t i = 0; i < known; ++i) toLookAt_.push_back(toLookAt_[i] + 1);
  std::sort(toLookAt_.begin(), toLookAt_.end());
  toLookAt_.erase(std::unique(toLookAt_.begin(), toLookAt_.end()), toLookAt_.end());
  while (!toLookAt_.empty() && toLookAt_.back() >= list_.size()) toLookAt_.pop_back();
}

void PathOrder::numberPlaces(AcDbDatabase& drawing, Numbers numbers) {
  for (std::size_t i : toLookAt_) {
    const auto* path = pathOf(drawing, list_[i]);
    const int number = static_cast<int>(i) + 1;
    path->setPrevEnd(i > 0 ? pathOf(drawing, list_[i - 1])->getEndPoint(true) : kNoLastEnd);
    if (path->nPathNo() == number) continue;
    if (numbers == Numbers::kWrite)
      if (auto opened = drawing.open<CToolPath>(list_[i], OpenMode::kForWrite)) opened->setPathNo(number);
    path = pathOf(drawing, list_[i]);
    exact_ = exact_ && path->nPathNo() == number;
  }
}

std::size_t PathOrder::placeOf(AcDbObjectId id) const {
  return id.index < place_.size() && place_[id.index] != 0 ? place_[id.index] - std::size_t{1} : kNoPlace;
}

}  // namespace tarnex
