// Random jobs through the writers and the truth test: contours, styles, posts, both cut types.
// Knows jobs; a sound writer's programs hold.
#include <gtest/gtest.h>

#include <algorithm>

#include "host/platform/system.h"
#include "isojobs.h"

namespace tarnex::truth::test {
namespace {

constexpr double kPitch = 80;  // mm between figures

class RandomIsoJobs : public IsoJobs {
 protected:
  double uniform(double low, double high) { return std::uniform_real_distribution<>(low, high)(rng); }
  int whole(int low, int high) { return std::uniform_int_distribution<>(low, high)(rng); }
  bool chance(int oneIn) { return whole(1, oneIn) == 1; }
  bool family5() const { return post.nFamily == 5; }
  bool incremental() const { return post.word[0] != "G90"; }

  void randomPost() {
    post = shippedPost(kShippedPosts[whole(0, 4)]);
    post.param[28] = std::to_string(whole(0, 2));
    post.param[12] = std::to_string(whole(0, 1));
    post.param[22] = std::to_string(whole(0, 2));
    post.param[37] = std::to_string(whole(0, 1));
    post.paramOn[8] = whole(0, 1);
    if (post.lineFormat.empty()) post.lineFormat = "N%d ";
    if (chance(4)) post.paramOn[3] = 1, post.param[3] = ";";
    if (family5()) return;
    post.word[0] = chance(2) ? "G90" : "G91";
    post.param[4] = std::to_string(whole(0, 1));
    post.param[5] = std::to_string(whole(0, 1));
    post.param[10] = std::to_string(whole(2, 4));
    if (chance(2)) post.param[10] = "3";
    post.param[29] = incremental() ? "0" : std::to_string(whole(0, 1));
    post.param[6] = std::to_string(whole(0, 1));
    post.param[7] = std::to_string(whole(0, 1));
    if (chance(3)) post.param[23] = post.param[24] = "";
  }

  void randomSettings() {
    auto& s = module->settings;
    s.dIsoOvercut = uniform(0.05, 1.5);
    s.dOvercutLen = chance(3) ? 0 : uniform(0.1, 1);
    s.dCutoffLen = chance(3) ? 0 : uniform(0.05, 0.4);
    s.dOvercutExit = uniform(0.1, 1);
    s.dIsoAngle = uniform(20, 90);
    job.nLeaderType = whole(0, 1);
    job.nCutType = whole(0, 1) ? CutType::kByPass : CutType::kByFigure;
    const bool returns = post.param[12] == "1";
    // The way home of an outer shape leads over the part that has come free.
    if (returns) post.blockRow[3 * (120 + 30)] = "V11$";
    if (family5()) s.dCutoffLen = 0.05;
    drawing().ucsorg = chance(2) ? AcGePoint3d{0, 0, 0} : AcGePoint3d{uniform(-50, 50), uniform(-50, 50), 0};
  }

  ProcessStyle& randomStyle(std::size_t index) {
    auto& s = style(index, chance(3) ? whole(1, 10) : whole(1, 4));
    s.dValueA = chance(3) ? uniform(0, 0.02) : 0;
    s.nCode = 700 + whole(0, 4);
    s.passOffset.fill(chance(4) ? uniform(-3, 3) : 0);
    s.dValueC = s.passOffset[0];
    for (auto& p : s.passes) p.dValue1 = 0.001 * whole(80, 250);
    return s;
  }

  void randomFigure(std::size_t index) {
    const AcGePoint2d centre{uniform(-5, 5) + kPitch * static_cast<double>(index), uniform(-5, 5)};
    ProcessStyle& s = randomStyle(index);
    Shape shape = randomShape(rng, centre, uniform(8, 20));
    if (!family5() && chance(8)) shape = finePolygon(centre);
    if (chance(2)) shape.contour = reversedContour(shape.contour);
    Place place;
    place.span = entrySpan(shape);
    place.part = uniform(0.2, 0.8);
    place.lead = uniform(1.5, 4);
    place.square = true;
    place.tab = uniform(0.6, 0.95);
    switch (whole(0, 5)) {
      case 0:
      case 1:
        extras(hole(shape, place, s), s);
        break;
      case 2:
      case 3:
        // Pass by pass a tab without trim passes isn't reached.
        if (job.nCutType == CutType::kByPass && s.nPassLast == 0) s.nPassLast = 1;
        extras(outer(shape, place, s), s);
        break;
      case 4:
        extras(circle(centre, uniform(4, 15), s, chance(2) ? 1 : -1), s);
        break;
      default:
        openCut(centre, s);
    }
  }
  // Sides of a few hundredths of a millimetre.
  Shape finePolygon(AcGePoint2d centre) {
    Shape shape{centre, {{}, true}};
    const int sides = whole(150, 400);
    const double radius = uniform(5, 8);
    for (int k = 0; k < sides; ++k)
      shape.contour.vertices.push_back({acutPolar(centre, 2 * kPi * k / sides, radius), 0});
    return shape;
  }
  // A lead arc needs a span that doesn't bend away from it.
  int entrySpan(const Shape& shape) {
    const auto& v = shape.contour.vertices;
    for (;;) {
      const int k = whole(0, static_cast<int>(v.size()) - 1);
      if (job.nLeaderType != 1 || v[static_cast<std::size_t>(k)].bulge == 0) return k;
    }
  }
  // What else a path may carry: tapers of spans, corners made sharp, a roughing guide, trim passes of the
  // tab.
  void extras(AcDbObjectId id, const ProcessStyle& s) {
    const auto path = drawing().open<CToolPath>(id, OpenMode::kForWrite);
    const auto& v = path->polyline().vertices;
    const int n = path->numVerts();
    if (path->nSide() == kOuterShape && chance(3)) path->setFlag(kPunchJob, true);
    // Passes begin and end on spans without: nothing takes a taper back behind a pass.
    if (chance(4) && s.dValueC == 0 && !path->hasFlag(kPunchJob))
      for (int i = 2; i + 2 < n; ++i)
        if (i != path->nBreakSeg()) path->setSegmentTaperAt(i, chance(2) ? 0.25 * whole(-4, 4) : 0);
    if (path->nSide() == kInnerHole && !path->hasFlag(kOpenPath) && chance(4)) {
      const AcGeVector2d in = v[1].point - v[0].point;
      const AcGePoint2d t = v[0].point, a = t + in * 0.3, b = t + in.perpVector() * 0.2;
      path->setGuide({{{t, 0}, {a, 0.3}, {b, 0}, {t, 0}}, false});
    }
    if (!chance(3) || family5()) return;
    for (std::size_t i = 2; i + 2 < v.size(); ++i)
      if (isRoundedCorner(v, i)) path->setCodeAt(static_cast<int>(i), chance(2) ? kCornerMark : "S");
  }
  // An arc that two straight spans run into without a bend.
  static bool isRoundedCorner(const std::vector<BulgeVertex>& v, std::size_t i) {
    if (v[i].bulge == 0 || v[i - 1].bulge != 0 || v[i + 1].bulge != 0) return false;
    const auto heads = [&](std::size_t k, double t) {
      return heading(spanStroke(v[k].point, v[k + 1].point, v[k].bulge), t);
    };
    return (heads(i - 1, 1) - heads(i, 0)).length() < 1e-6 && (heads(i, 1) - heads(i + 1, 0)).length() < 1e-6;
  }
  void openCut(AcGePoint2d centre, const ProcessStyle& s) {
    PolylineCurve curve{{}, false};
    const int n = whole(2, 6);
    for (int k = 0; k < n; ++k)
      curve.vertices.push_back({{centre.x + 6.0 * k + uniform(-1, 1), centre.y + uniform(-8, 8)},
                                chance(3) ? uniform(-0.5, 0.5) : 0});
    extras(open(curve, {centre.x - 4, centre.y}, chance(2) ? 1 : -1, s), s);
  }

  void randomJob(int seed) {
    rng.seed(static_cast<unsigned>(20540 + seed));
    clear();
    job = JobLayout();
    randomPost();
    randomSettings();
    const auto figures = static_cast<std::size_t>(whole(1, 4));
    for (std::size_t f = 0; f < figures; ++f) randomFigure(f);
  }
  static int jobs() { return environment("TARNEX_LONG") ? 500 : 60; }

  std::mt19937 rng{20540};
};

TEST_F(RandomIsoJobs, Hold) {
  for (int j = 0; j < jobs(); ++j) {
    randomJob(j);
    const std::string text = program();
    const IsoReport r = check(text);
    ASSERT_EQ(r.figures.size(), static_cast<std::size_t>(paths));
    ASSERT_TRUE(r.ok) << "JOB " << j << " family " << post.nFamily << "\n" << told(r) << text;
  }
}

// A line of nothing but motion, between two such lines: a block on the contour, no way to or from it.
bool onContour(const std::vector<std::string>& lines, std::size_t k) {
  return std::all_of(lines.begin() + static_cast<std::ptrdiff_t>(k) - 1,
                     lines.begin() + static_cast<std::ptrdiff_t>(k) + 2, [](const std::string& line) {
                       for (const char* other : {"G4", "G5", "G00", "G9", "M", "O", "T", "P", "%", "("})
                         if (line.find(other) != std::string::npos) return false;
                       return line.find('X') != std::string::npos;
                     });
}

// The number behind X grows or shrinks by 40 micrometres, or by 400 where a block may lie a count of 10
// beside its contour.
bool moveX(std::string& line, bool coarse) {
  const auto x = line.find('X');
  const auto end = std::min(line.find_first_not_of("+-.0123456789", x + 1), line.size());
  const auto point = line.substr(0, end).find('.', x);
  const auto at = point == std::string::npos ? end - 2 : point + (coarse ? 1 : 2);
  if (at >= end || at <= x + 2 || line[at] < '0' || line[at] > '9') return false;
  line[at] = static_cast<char>(line[at] + (line[at] < '5' ? 4 : -4));
  return true;
}

TEST_F(RandomIsoJobs, AMovedBlockOfAContourIsFound) {
  int moved = 0;
  for (int j = 0; j < jobs(); ++j) {
    randomJob(j);
    const auto sound = linesOf(program());
    for (int tries = 0; tries < 20; ++tries) {
      const auto k = static_cast<std::size_t>(whole(1, static_cast<int>(sound.size()) - 2));
      auto lines = sound;
      if (!onContour(lines, k) || !moveX(lines[k], post.param[10] == "2")) continue;
      const IsoReport r = check(textOf(lines));
      ++moved;
      // Told near by: a block may be ahead of its place, and a corner's radius stands in the line ahead of
      // it.
      const int line = static_cast<int>(k) + 1;
      EXPECT_TRUE(std::ranges::any_of(
          r.findings,
          [&](const IsoFinding& f) { return f.grade == Grade::kFault && std::abs(f.line - line) <= 3; }))
          << "JOB " << j << " line " << line << ": " << sound[k] << " is " << lines[k] << "\n"
          << told(r) << textOf(sound);
      break;
    }
  }
  EXPECT_GT(moved, jobs() / 2);
}

}  // namespace
}  // namespace tarnex::truth::test
