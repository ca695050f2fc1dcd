// Temporary vectors, waits and what is hidden for a while.
// Knows no command; watchers do the showing.
#include "host/editor/screen.h"

#include <algorithm>
#include <cmath>

#include "host/display/displaylist.h"
#include "host/editor/state.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

// An interrupt that comes between two looks is seen after so long at the latest.
constexpr int kLongestNap = 100;  // ms

bool finite(const AcGePoint3d& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

}  // namespace

DisplayList AcEditor::shown() const {
  return shown(DisplayOptions());
}

DisplayList AcEditor::shown(const DisplayOptions& options) const {
  const std::shared_ptr<const void> context = displayContext ? displayContext() : nullptr;
  DisplayOptions own = options;
  own.applicationContext = context.get();
  return buildDisplayList(*state_->drawing, own);
}

Reply AcEditor::acedGrDraw(const AcGePoint3d& from, const AcGePoint3d& to, int color, bool highlight) {
  if (!finite(from) || !finite(to)) return Reply::RTERROR;
  const TemporaryVector& drawn = state_->vectors.emplace_back(TemporaryVector{from, to, color, highlight});
  for (const auto& watcher : screenWatchers) watcher->vectorDrawn(drawn);
  return Reply::RTNORM;
}

void AcEditor::acedRedraw() {
  if (state_->vectors.empty()) return;
  state_->vectors.clear();
  for (const auto& watcher : screenWatchers) watcher->wiped();
}

const std::vector<TemporaryVector>& AcEditor::temporaryVectors() const {
  return state_->vectors;
}

void AcEditor::setPaced(bool paced) {
  state_->paced = paced;
}

void AcEditor::Sleep(int milliseconds) {
  milliseconds = std::max(milliseconds, 0);
  for (const auto& watcher : screenWatchers) watcher->waits(milliseconds);
  checkInterrupt();
  if (!state_->paced) return;
  const double end = steadySeconds() + milliseconds / 1000.0;
  for (double left = milliseconds; left > 0; left = (end - steadySeconds()) * 1000) {
    sleepMilliseconds(static_cast<int>(std::ceil(std::min<double>(left, kLongestNap))));
    checkInterrupt();
  }
}

bool AcEditor::setVisibility(AcDbObjectId id, bool visible) {
  {
    auto entity = database().open<AcDbEntity>(id, OpenMode::kForWrite);
    if (!entity) return false;
    entity->setVisibility(visible ? Visibility::kVisible : Visibility::kInvisible);
  }
  for (const auto& watcher : screenWatchers) watcher->visibilityChanged(id, visible);
  return true;
}

}  // namespace tarnex
