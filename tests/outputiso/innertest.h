// What the tests of inner figures and open cuts share: a figure, its settings and a tracing post, and the
// program of each writer as one line, blocks parted by "|".
// Knows the writers' declarations.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "frame/settings.h"
#include "outputiso/figurewriter.h"
#include "tracingpost.h"

namespace tarnex {

inline constexpr int kOtherFamily = 2;                   // one without behaviour of its own
inline constexpr double kQuarter = 0.41421356237309503;  // bulge of 90 degrees, counter-clockwise

class InnerFigure {
 public:
  explicit InnerFigure(int family = kOtherFamily) : iso(tracingPost(family)), settings("") {
    path->setProcessStyle(tracedStyle(0));
    settings.dIsoOvercut = 0.5;
    settings.dCutoffLen = 3;
    settings.dOvercutLen = 2;
    settings.dOvercutExit = 1;
    settings.dIsoAngle = 90;
    settings.nIsoOption792 = settings.nIsoOption796 = 0;
  }

  InnerFigure& passes(int later) {
    path->setProcessStyle(tracedStyle(later));
    return *this;
  }
  InnerFigure& byPass() {
    nCutType = CutType::kByPass;
    return *this;
  }
  InnerFigure& returning() {
    bReturn = true;
    return *this;
  }
  InnerFigure& param(std::size_t slot, const std::string& text) {
    iso.post.param[slot] = text;
    return *this;
  }
  InnerFigure& incremental() {
    iso.post.word[0] = "G91";
    return *this;
  }

  std::string first(int figureIndex = 0) {
    run = IsoFigureRun(*path, path->prepareOutput(settings, {}));
    return write([&](const FigureJob& job) { return writeInnerFirst(job, figureIndex, bReturn); });
  }
  std::string later() {
    return write([&](const FigureJob& job) { return writeInnerLater(job, bReturn); });
  }
  // The later passes alone, behind a first pass.
  std::string laterOnly() {
    first();
    return later();
  }

  IsoPost iso;
  WireCutSettings settings;
  std::shared_ptr<CToolPath> path = std::make_shared<CToolPath>();  // copies of a figure share it
  IsoFigureRun run;
  FigureWritten result = FigureWritten::kDone;
  int nLeaderType = 0, nCutType = CutType::kByFigure;
  bool bReturn = false;

 private:
  template <class Writer>
  std::string write(const Writer& writer) {
    std::string out;
    iso.rowBase = nCutType == CutType::kByPass ? 80 : 0;
    const FigureContext context{iso, settings, out, nLeaderType, nCutType, "no path"};
    result = writer(FigureJob{context, *path, run});
    std::replace(out.begin(), out.end(), '\n', '|');
    return out;
  }
};

// A square of 20, wire from its centre (10,10) to (20,10): up, left, down, right, up.
inline InnerFigure squareHole(int family = kOtherFamily) {
  InnerFigure f(family);
  EXPECT_TRUE(f.path->initContour({{10, 10}, {20, 10}, kInnerHole, kCounterClockwise, 0, 0},
                                  {{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 20}, 0}, {{0, 20}, 0}}, true}, 1));
  return f;
}

// The same square with a corner of radius 5 at (20,20): its arc is span 2, between straight spans.
inline InnerFigure roundedHole(int family = kOtherFamily) {
  InnerFigure f(family);
  EXPECT_TRUE(f.path->initContour(
      {{10, 10}, {20, 10}, kInnerHole, kCounterClockwise, 0, 0},
      {{{{0, 0}, 0}, {{20, 0}, 0}, {{20, 15}, kQuarter}, {{15, 20}, 0}, {{0, 20}, 0}}, true}, 1));
  return f;
}

// What stands behind the first `from`.
inline std::string behind(const std::string& program, const std::string& from) {
  const auto start = program.find(from);
  EXPECT_NE(start, std::string::npos) << from << " in " << program;
  return start == std::string::npos ? program : program.substr(start + from.size());
}

// What stands between it and the next `to`.
inline std::string between(const std::string& program, const std::string& from, const std::string& to) {
  const std::string rest = behind(program, from);
  EXPECT_NE(rest.find(to), std::string::npos) << to << " in " << rest;
  return rest.substr(0, rest.find(to));
}

inline int count(const std::string& program, const std::string& what) {
  int found = 0;
  for (std::size_t at = 0; (at = program.find(what, at)) != std::string::npos; at += what.size()) ++found;
  return found;
}

}  // namespace tarnex
