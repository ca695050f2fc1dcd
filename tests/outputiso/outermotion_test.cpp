// Outer figures as a control runs them: a reader that adds up incremental moves follows the wire over random
// contours. It knows the words of a block, and where the contour and its break are; nothing of rows but where
// a pass begins.
#include <algorithm>

#include "contour/geometrylibrary.h"
#include "outertest.h"

namespace tarnex {
namespace {

constexpr double kRounding = 0.0005;  // mm: a few hundred moves, each cut at a millionth

struct Walk {
  std::vector<AcGePoint2d> at;
  std::size_t tab = 0;  // moves ahead of the tab's pass
};

Walk walk(const std::string& program, AcGePoint2d from, const std::string& tabRow) {
  Walk w;
  std::size_t begin = 0;
  for (std::size_t end; (end = program.find('\n', begin)) != std::string::npos; begin = end + 1) {
    const std::string line = program.substr(begin, end - begin);
    if (line.starts_with(tabRow)) w.tab = w.at.size();
    const std::size_t motion = line.find('G', line.starts_with('<') ? line.find(" G0") : 0);
    if (motion == std::string::npos || line[motion + 1] != '0') continue;
    const std::size_t stop = line.find('>', motion);
    for (const auto& [letter, text] : readWords(line.substr(motion, stop - motion))) {
      if (letter == 'X') from.x += readNumber(text, false);
      if (letter == 'Y') from.y += readNumber(text, false);
    }
    w.at.push_back(from);
  }
  return w;
}

class RandomFigures {
 public:
  explicit RandomFigures(unsigned seed) : random_(seed) {}
  double real(double low, double high) { return std::uniform_real_distribution<>(low, high)(random_); }
  int whole(int low, int high) { return std::uniform_int_distribution<>(low, high)(random_); }

  // Counter-clockwise about the origin, with some arcs; the break anywhere but in the first span's first
  // half, the exit anywhere.
  OuterFigure next() {
    OuterFigure f;
    const int spans = whole(3, 9);
    std::vector<AcGePoint2d> vertices{{0, -30}};
    std::vector<double> bulges{0};
    for (int i = 0; i < spans; ++i) {
      const double a = 2 * kPi * (i + real(0, 0.5)) / spans - kPi / 2;
      vertices.push_back(AcGePoint2d{} + AcGeVector2d{std::cos(a), std::sin(a)} * real(8, 14));
      bulges.push_back(whole(0, 1) == 1 ? real(-0.4, 0.8) : 0);
    }
    vertices.push_back(vertices[1]);
    f.lists = listsOf(vertices, bulges);
    breakAlong(f, static_cast<std::size_t>(whole(1, spans)));
    f.style = tracedStyle(whole(0, 9));
    f.nFlags = whole(0, 2) == 0 ? kPunchJob : 0;
    f.stop = real(-1, 6);
    f.leadPiece = real(-1, 25);
    f.nLeaderType = whole(0, 1);
    return f;
  }

 private:
  void breakAlong(OuterFigure& f, std::size_t i) {
    const AcGePoint2d a = f.lists.vertices[i], b = f.lists.vertices[i + 1];
    const double bulge = f.lists.bulges[i];
    f.ptBreak = pointAlongSpan(a, b, bulge, spanLength(a, b, bulge) * real(0.5, 0.99)).value().point;
    f.ptBreakExit = f.ptBreak + (f.ptBreak - AcGePoint2d{}).normal();
  }
  std::mt19937 random_;
};

bool near(AcGePoint2d a, AcGePoint2d b) {
  return a.distanceTo(b) < kRounding;
}

// On the contour, or at one of the places where the wire may stand off it.
bool mayStand(const OuterFigure& f, const IsoFigureRun& run, AcGePoint2d p) {
  if (near(p, f.ptBreakExit) || near(p, run.ptLeadEnd) || near(p, f.lists.vertices[0])) return true;
  const auto& v = f.lists.vertices;
  for (std::size_t i = 1; i + 1 < v.size(); ++i)
    if (near(p, v[i]) || isPointOnSpan(v[i], v[i + 1], f.lists.bulges[i], p)) return true;
  return false;
}

// Vertices between the break and the entry point.
bool inTab(const OuterFigure& f, const IsoFigureRun& run, AcGePoint2d p) {
  for (auto i = static_cast<std::size_t>(run.nBreakSeg) + 1; i + 1 < f.lists.vertices.size(); ++i)
    if (near(p, f.lists.vertices[i])) return true;
  return false;
}

TEST(OuterMotion, TheWireNeverJumpsAndTheTabComesLast) {
  RandomFigures random(2501);
  for (int round = 0; round < rounds(300, 20000); ++round) {
    OuterFigure f = random.next();
    const bool byPass = f.style.nPassLast > 0 && random.whole(0, 1) == 1;
    if (byPass) f.nCutType = CutType::kByPass;
    f.bReturn = byPass && random.whole(0, 1) == 1;
    const IsoPost iso = outerPost(round % 2, {{10, "6"}}, {{0, "G91"}});
    const OuterProgram p = writeOuter(f, iso);
    SCOPED_TRACE(p.first + "--\n" + p.later);
    ASSERT_TRUE(p.run.bStoppedAtBreak);
    const Walk first = walk(p.first, f.lists.vertices[0], "?");
    const bool trims = f.style.nPassLast > 0;
    ASSERT_TRUE(near(first.at.back(), trims ? f.ptBreakExit : f.ptBreak));
    // Pass by pass, the wire is brought to the threading point before the later passes.
    const Walk later = walk(p.later, byPass ? f.lists.vertices[0] : first.at.back(), byPass ? "<22" : "<19");
    ASSERT_TRUE(near(later.at.back(), p.run.ptWireEnd));
    ASSERT_TRUE(!f.bReturn || near(later.at.back(), f.lists.vertices[0]));
    for (const auto& at : first.at) ASSERT_TRUE(mayStand(f, p.run, at) && !inTab(f, p.run, at));
    for (std::size_t i = 0; i < later.at.size(); ++i)
      ASSERT_TRUE(mayStand(f, p.run, later.at[i]) && (i >= later.tab || !inTab(f, p.run, later.at[i])));
    // Every vertex was reached, those of the tab in its own pass.
    const auto reaches = [](auto begin, auto end, AcGePoint2d v) {
      return std::any_of(begin, end, [v](AcGePoint2d at) { return near(at, v); });
    };
    const auto tab = later.at.begin() + static_cast<std::ptrdiff_t>(later.tab);
    for (std::size_t i = 1; i < f.lists.vertices.size(); ++i) {
      const AcGePoint2d v = f.lists.vertices[i];
      ASSERT_TRUE(inTab(f, p.run, v) ? reaches(tab, later.at.end(), v)
                                     : reaches(first.at.begin(), first.at.end(), v));
    }
  }
}

}  // namespace
}  // namespace tarnex
