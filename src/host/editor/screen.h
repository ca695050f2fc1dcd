// What is shown over the drawing for a while: temporary vectors, and who follows them.
// Knows no display; a recorder, a terminal or a window does the showing.
#pragma once

#include "host/database/object.h"
#include "host/geometry/values.h"

namespace tarnex {

struct TemporaryVector {
  AcGePoint3d from, to;    // world, mm
  int color = 7;           // 1 to 255
  bool highlight = false;  // as selected entities are shown
  bool operator==(const TemporaryVector&) const = default;
};

// Told what happens on the screen, at the moment when it happens. A watcher neither draws nor waits through
// the editor itself.
class ScreenWatcher {
 public:
  virtual ~ScreenWatcher() = default;
  virtual void vectorDrawn(const TemporaryVector& vector) { (void)vector; }
  // A wait begins: so long as the command asked for (0 and more), also where nobody really waits.
  virtual void waits(int milliseconds) { (void)milliseconds; }
  virtual void wiped() {}  // no temporary vector stands any more
  virtual void visibilityChanged(AcDbObjectId entity, bool visible) { (void)entity, (void)visible; }
};

}  // namespace tarnex
