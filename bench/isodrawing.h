// A drawing of slow-wire figures with their styles, in a session of its own.
// Knows how figures are made; what is measured on them, the benchmarks know.
#pragma once

#include <string>
#include <vector>

#include "apps/tarnex/session.h"
#include "machining/joblayout.h"
#include "outputiso/isopost.h"

namespace tarnex::bench {

// By turns a hole and an outer shape with a tab, 12 drawn spans each, every other one an arc.
class IsoDrawing {
 public:
  explicit IsoDrawing(int figures);

  // The machine of a shipped post "NAME", which lies in a folder of that name; lines are numbered.
  void choose(const std::string& machine, int cutType);
  void passes(int count);  // of every figure, from the drawing's next program on
  // The time of writeIsoFile, seconds of the processor; 0 when it failed.
  double write(const std::string& path);
  [[nodiscard]] IsoPost& iso() { return session_.module().state<IsoPost>(); }
  [[nodiscard]] Module& module() { return session_.module(); }

 private:
  void addFigure(int number);

  JobFolder install_;
  Session session_;
  JobLayout job_;
  std::vector<AcDbObjectId> ids_;
};

}  // namespace tarnex::bench
