// From a drawing to a program that can be trusted, as typed by a user.
// The punch's program is reckoned from its drawn numbers alone.
#include <cmath>
#include <sstream>

#include "apps/programtest.h"

namespace tarnex {

namespace {

using ::testing::HasSubstr;

class Job : public ProgramTest {};

// The punch is a cross with rounded corners, all tangent: a wire 0.08 outside keeps every line's direction
// and every arc's centre. It is cut counter-clockwise from the middle of its first line, (15,0), with a
// lead-in of 3 mm from (18,0).
class Cross {
 public:
  std::string blocks() {
    x_ = 18000;
    lineTo(15080, 0);
    const int first = number_;
    quarter();
    for (int turn = 1; turn < 4; ++turn) {
      rotate();
      quarter();
    }
    (void)first;
    rotate();
    lineTo(15080, 0);
    lineTo(18000, 0);
    return text_;
  }

 private:
  // All in micrometres, in the frame of this quarter; turned into the drawing when written.
  void quarter() {
    lineTo(15080, 3000);
    arcTo(14000, 4080, 14000, 3000, true);
    lineTo(4500, 4080);
    arcTo(4080, 4500, 4500, 4500, false);
    lineTo(4080, 14000);
    arcTo(3000, 15080, 3000, 14000, true);
    // On to the next quarter's first line end: its frame has (3000,15080) at (15080,-3000).
  }
  void rotate() {
    turn_ = (turn_ + 1) % 4;
    const long x = x_;
    x_ = y_;
    y_ = -x;
  }
  void turned(long x, long y, long& u, long& v) const {
    const long c[] = {1, 0, -1, 0}, s[] = {0, 1, 0, -1};
    u = c[turn_] * x - s[turn_] * y;
    v = s[turn_] * x + c[turn_] * y;
  }
  void write(long x, long y, long count, char axis, const std::string& word) {
    char line[80];
    std::snprintf(line, sizeof line, "N%4d: B%7ld B%7ld B%7ld G%c %s ;\n", number_++, x, y, count, axis,
                  word.c_str());
    for (const char* p = line; *p; ++p)
      if (*p != ' ') text_ += *p;
  }
  void lineTo(long x, long y) {
    long dx, dy;
    turned(x - x_, y - y_, dx, dy);
    x_ = x, y_ = y;
    if (dx == 0 && dy == 0) return;
    const int quadrant = dx > 0 && dy >= 0 ? 1 : dx <= 0 && dy > 0 ? 2 : dx < 0 ? 3 : 4;
    const char axis = std::abs(dx) > std::abs(dy) ? 'X' : 'Y';
    // Along an axis both counts may be 0.
    const bool straight = dx == 0 || dy == 0;
    write(straight ? 0 : std::abs(dx), straight ? 0 : std::abs(dy), std::max(std::abs(dx), std::abs(dy)),
          axis, "L" + std::to_string(quadrant));
  }
  // A quarter circle: from one axis to the next, so its counted length is the radius along either axis.
  void arcTo(long x, long y, long cx, long cy, bool left) {
    long sx, sy, ex, ey;
    turned(x_ - cx, y_ - cy, sx, sy);
    turned(x - cx, y - cy, ex, ey);
    x_ = x, y_ = y;
    // Counted along the axis that is the smaller at the end.
    const char axis = std::abs(ex) < std::abs(ey) ? 'X' : 'Y';
    // The word is that of the quadrant that the arc enters.
    const long mx = sx + ex, my = sy + ey;
    const int quadrant = mx > 0 ? (my > 0 ? 1 : 4) : (my > 0 ? 2 : 3);
    write(std::abs(sx), std::abs(sy), std::abs(axis == 'X' ? sx - ex : sy - ey), axis,
          (left ? "NR" : "SR") + std::to_string(quadrant));
  }

  long x_ = 0, y_ = 0;
  int turn_ = 0, number_ = 1;
  std::string text_;
};

// The numbered lines without blanks, as far as coordinates or comments stand behind them.
std::string blocksOf(const std::string& program) {
  std::string blocks;
  std::istringstream lines(program);
  for (std::string line; std::getline(lines, line);) {
    if (line.size() < 7 || line[0] != 'N' || line[4] == ' ') continue;
    line.resize(std::min(line.size(), line.find(';') + 1));
    std::erase(line, ' ');
    blocks += line + "\n";
  }
  return blocks;
}

TEST_F(Job, ThePunchBlockByBlock) {
  ASSERT_EQ(
      sh("tarnex 3b punch.dxf -o punch.3b --set dOffset=0.08 --set bCutoffPause=0 --set bOvercut=0").code, 0);
  EXPECT_EQ(blocksOf(read("punch.3b")), Cross().blocks());
}

TEST_F(Job, SamplesAreTrueAndComeAgainByteForByte) {
  for (const std::string name : {"plate", "punch"}) {
    const Ran made = sh("tarnex 3b " + name + ".dxf -o " + name + ".3b --save " + name +
                        "-paths.dxf --plot " + name + ".svg");
    ASSERT_EQ(made.code, 0) << made.out;
    const Ran checked = sh("tarnex check " + name + ".3b --drawing " + name + "-paths.dxf");
    EXPECT_EQ(checked.code, 0) << checked.out;
    EXPECT_THAT(read(name + ".svg"), HasSubstr("</svg>"));
    const std::string program = read(name + ".3b");
    // The saved drawing gives the same program.
    write("again.scr", "setvar CMDDIA 0\nSET bAskFileName 1\nBB\n\n" + folder + "/again.3b\n");
    const Ran again = sh("tarnex run again.scr " + name + "-paths.dxf");
    EXPECT_EQ(again.code, 0) << again.out;
    const auto body = [](const std::string& text) { return text.substr(text.find("Start Point")); };
    EXPECT_EQ(body(read("again.3b")), body(program));
    // And so do the commands that the job is made of, in a folder with the same settings.
    const Ran script = sh("rm " + name + ".3b; tarnex 3b " + name + ".dxf -o " + name +
                          ".3b --show-script > job.scr; rm " + name + ".3b; tarnex run job.scr");
    EXPECT_EQ(script.code, 0) << script.out;
    EXPECT_EQ(read(name + ".3b"), program);
  }
}

TEST_F(Job, PathsArePolylinesToOthers) {
  ASSERT_EQ(sh("tarnex 3b plate.dxf -o plate.3b --save paths.dxf").code, 0);
  write("look.py",
        "import ezdxf\n"
        "d = ezdxf.readfile('paths.dxf')\n"
        "print(len(d.modelspace().query('LWPOLYLINE')), d.audit().has_errors)\n");
  const Ran looked = sh(TARNEX_EZDXF_PYTHON " look.py");
  const int paths = count(read("paths.dxf"), "LWPOLYLINE\n");
  ASSERT_GT(paths, 1);
  EXPECT_EQ(looked.out, std::to_string(paths) + " False\n");
}

TEST_F(Job, TenPlantedFaultsAreFound) {
  ASSERT_EQ(sh("tarnex 3b punch.dxf -o p.3b --save paths.dxf --set dOffset=0.08").code, 0);
  const std::string program = read("p.3b");
  std::vector<std::string> lines;
  std::istringstream in(program);
  for (std::string l; std::getline(in, l);) lines.push_back(l);
  std::size_t cut = 0, arc = 0;  // the first straight block and the first arc behind the lead-in
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].rfind("N   2", 0) == 0) cut = i;
    if (!arc && lines[i].find("NR") != std::string::npos) arc = i;
  }
  ASSERT_GT(cut, 0u);
  ASSERT_GT(arc, cut);
  const auto swap = [](std::string line, const std::string& what, const std::string& by) {
    const auto at = line.find(what);
    EXPECT_NE(at, std::string::npos) << line << " " << what;
    return at == std::string::npos ? line : line.replace(at, what.size(), by);
  };
  std::vector<std::pair<const char*, std::vector<std::string>>> planted;
  const auto plant = [&](const char* name, auto change) {
    auto copy = lines;
    change(copy);
    planted.emplace_back(name, copy);
  };
  const auto at = [](std::vector<std::string>& l, std::size_t i) {
    return l.begin() + static_cast<std::ptrdiff_t>(i);
  };
  plant("wrong quadrant of a line", [&](auto& l) { l[cut] = swap(l[cut], " L2", " L4"); });
  plant("wrong quadrant of an arc", [&](auto& l) { l[arc] = swap(l[arc], "NR1", "NR3"); });
  plant("arc the other way", [&](auto& l) { l[arc] = swap(l[arc], "NR1", "SR4"); });
  plant("other counting axis", [&](auto& l) { l[cut] = swap(l[cut], "GY", "GX"); });
  plant("a block dropped", [&](auto& l) { l.erase(at(l, arc)); });
  plant("a block twice", [&](auto& l) { l.insert(at(l, arc), l[arc]); });
  plant("two blocks changed about", [&](auto& l) { std::swap(l[arc], l[arc + 1]); });
  plant("ten micrometres more", [&](auto& l) { l[cut] = swap(l[cut], "3000", "3010"); });
  plant("another radius", [&](auto& l) { l[arc] = swap(l[arc], "1080", "1090"); });
  plant("no stop", [&](auto& l) { l.pop_back(); });
  plant("no block", [&](auto& l) { l[arc] = swap(l[arc], "GX", "QX"); });
  for (const auto& [name, text] : planted) {
    std::string all;
    for (const auto& l : text) all += (all.empty() ? "" : "\n") + l;
    write("bad.3b", all);
    const Ran checked = sh("tarnex check bad.3b --drawing paths.dxf");
    EXPECT_EQ(checked.code, 1) << name << "\n" << checked.out;
  }
  // The wrong side: the drawing's contour cut as a hole.
  ASSERT_EQ(sh("tarnex 3b punch.dxf -o wrong.3b --set dOffset=0.2").code, 0);
  EXPECT_EQ(sh("tarnex check wrong.3b --drawing paths.dxf").code, 1);
  EXPECT_EQ(sh("tarnex check p.3b --drawing paths.dxf").code, 0);
  EXPECT_EQ(sh("tarnex check p.3b --drawing punch.dxf --offset 0.08").code, 0);
  EXPECT_EQ(sh("tarnex check p.3b --drawing punch.dxf --offset 0.09").code, 1);
}

TEST_F(Job, AKilledOneLeavesTheOldProgramOrTheNew) {
  std::string many;
  for (int i = 0; i < 2500; ++i) many += circle(i % 50 * 10, i / 50 * 10, 3 + i % 7 * 0.1);
  drawing("many.dxf", many);
  ASSERT_EQ(sh("tarnex 3b many.dxf -o many.3b").code, 0);
  const std::string whole = read("many.3b");
  write("many.3b", "old");
  for (int k = 0; k < 8; ++k) {
    sh("'" TARNEX_BINARY_DIR "/bin/tarnex' 3b many.dxf -o many.3b >/dev/null & p=$!; sleep 0.0" +
       std::to_string(k + 1) + "; kill -9 $p; wait $p");
    const std::string now = read("many.3b");
    EXPECT_TRUE(now == "old" || now == whole) << k;
  }
  // Ctrl-C: no program, and it is said.
  write("many.3b", "old");
  const Ran stopped =
      sh("'" TARNEX_BINARY_DIR "/bin/tarnex' 3b many.dxf -o many.3b & p=$!; sleep 0.1; kill -2 $p; wait $p");
  const std::string now = read("many.3b");
  EXPECT_TRUE(now == (stopped.code == 0 ? whole : "old")) << stopped.code << stopped.out;
}

}  // namespace

}  // namespace tarnex
