// Chains of edits on random drawings: whatever a user does to his paths, what hangs on a path stays in step,
// the file gives it back, each command is one step of undo and redo, and its journal is a script that does it
// again. Knows commands by what is typed.
#include <fstream>
#include <iterator>
#include <random>
#include <set>

#include "frame/environment.h"
#include "host/editor/drawingfile.h"
#include "host/editor/session.h"
#include "module/application.h"
#include "module/commandtable.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

std::string bytesOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

struct Work {
  explicit Work(const std::string& folder) : app(session.ed, {folder, 1}), file(folder + "/state.dxf") {
    app.acrxEntryPoint(AppMessage::kInitAppMsg);
    session.ed.journal = [this](std::string_view line) { journal += std::string(line) + "\n"; };
  }
  [[nodiscard]] AcDbDatabase& drawing() { return session.ed.database(); }
  [[nodiscard]] const std::vector<AcDbObjectId>& list() { return app.module().state<PathState>().PathList; }
  // All of the drawing as it would be saved, but for the next handle: prompts use some up.
  std::string state() {
    EXPECT_FALSE(saveDrawing(drawing(), file));
    std::string bytes = bytesOf(file);
    const std::size_t at = bytes.find("$HANDSEED");
    EXPECT_NE(at, std::string::npos);
    return bytes.erase(at, bytes.find("\n  9", at) - at);
  }

  Session session;
  Application app;
  std::string file, journal;
};

// What a user might type next.
class Typist {
 public:
  Typist(unsigned seed, Work& work) : engine_(seed), work_(work) {}

  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(engine_); }
  double real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(engine_); }
  static std::string text(double v) { return shortestNumber(std::round(v * 1e6) / 1e6); }
  static std::string text(AcGePoint2d p) { return text(p.x) + "," + text(p.y); }

  // Two or three contours side by side and a path on each.
  std::vector<std::string> drawingLines() {
    std::vector<std::string> lines{"setvar CMDDIA 0", "SET dOffset 0.1", "SET dLeadLen 3", "SET nSnapMode 0",
                                   formattedSide()};
    const int count = 2 + below(2);
    for (int i = 0; i < count; ++i) lines.push_back(contour({i * 60.0, 0}));
    for (const char* line : {"BP", "*-100,-100", "400,400", ""}) lines.push_back(line);
    return lines;
  }

  std::vector<std::string> command() {
    static constexpr const char* kCommands[] = {"XD", "XD",  "CX", "XD0", "CD",   "CM",     "QQ",     "CS",
                                                "SR", "SR0", "QD", "ZD",  "QZ",   "DB",     "AC",     "WZ",
                                                "WZ", "AF",  "AF", "TTT", "move", "rotate", "mirror", "copy"};
    const std::string name = kCommands[below(static_cast<int>(std::size(kCommands)))];
    if (!built(name)) return {};
    std::vector<std::string> lines;
    if (name == "AF") {
      lines = {"SET nKind " + std::to_string(1 + below(7)), "AF"};
      lines.insert(lines.end(),
                   {text(AcGePoint2d{real(-20, 100), -20}), text(AcGePoint2d{real(0, 200), 60}), ""});
      return lines;
    }
    lines.push_back(name);
    for (std::string& answer : answers(name)) lines.push_back(std::move(answer));
    if (below(6) == 0) {  // given up on the way
      lines.resize(1 + static_cast<std::size_t>(below(static_cast<int>(lines.size()))));
      lines.push_back("^C");
    }
    if (name == "copy" || name == "mirror") lines.push_back("TTT");  // the host knows no list of paths
    return lines;
  }

 private:
  static bool built(const std::string& name) {
    for (const auto& row : commandTable())
      if (name == row.globalName) return row.run != nullptr;
    return true;
  }
  std::string formattedSide() { return below(2) ? "SET nSide 1" : "SET nSide -1"; }

  std::string contour(AcGePoint2d at) {
    const auto p = [&](double x, double y) { return text(at + AcGeVector2d{x, y}); };
    switch (below(4)) {
      case 0:
        return "circle " + p(15, 15) + " " + text(real(6, 15));
      case 1:
        return "pline " + p(0, 0) + " " + p(30, 0) + " " + p(30, 12) + " " + p(14, 12) + " " + p(14, 26) +
               " a " + p(10, 30) + " l " + p(0, 30) + " cl";
      case 2:
        return "pline " + p(0, 0) + " " + p(real(20, 30), real(-3, 3)) + " " + p(real(25, 35), real(20, 30)) +
               " " + p(real(5, 10), real(30, 40)) + " cl";
      default:
        return "pline " + p(0, 0) + " " + p(30, 0) + " a " + p(30, 20) + " l " + p(0, 20) + " a cl";
    }
  }

  // Mostly on a path; now and then beside everything.
  std::string pick() {
    const auto& list = work_.list();
    if (list.empty() || below(12) == 0) return text(AcGePoint2d{real(-50, 250), real(-50, 90)});
    const auto* path =
        work_.drawing().peek<CToolPath>(list[static_cast<std::size_t>(below(int(list.size())))]);
    const auto curve = path->polyline();
    return text(pointAtDist(curve, real(0, 1) * path->length()).value_or(curve.vertices[0].point));
  }
  std::string corner() {
    const auto& list = work_.list();
    if (list.empty()) return pick();
    const auto* path =
        work_.drawing().peek<CToolPath>(list[static_cast<std::size_t>(below(int(list.size())))]);
    return text(path->getPointAt(below(path->numVerts())));
  }

  std::vector<std::string> answers(const std::string& name) {
    if (name == "XD") return {text(real(0, 3)), pick(), pick(), ""};
    if (name == "CX")
      return {below(2) ? "A" : "P", text(real(0, 2)), pick(), below(3) ? "P" : "A", pick(), ""};
    if (name == "XD0" || name == "QQ") return {pick(), "", ""};
    if (name == "CS") return {pick(), pick(), below(2) ? "U" : "Z", ""};
    if (name == "DB") return {text(real(0.1, 2)), pick(), pick(), ""};
    if (name == "AC") return {text(real(0.5, 2)), pick(), pick(), pick(), ""};
    if (name == "WZ")
      return below(3) ? std::vector<std::string>{"M0" + std::to_string(below(9)), pick(), corner(), ""}
                      : std::vector<std::string>{"", "C", pick(), pick(), ""};
    if (name == "TTT" || name == "QZ") return {};
    if (name == "move" || name == "copy")
      return {pick(), "", "0,0", text(AcGePoint2d{real(-9, 9), real(-9, 9)}), ""};
    if (name == "rotate") return {pick(), "", pick(), text(real(-180, 180))};
    if (name == "mirror") return {pick(), "", "0,0", text(AcGePoint2d{1, real(-2, 2)}), below(2) ? "y" : "n"};
    return {pick(), pick(), ""};  // CD, CM, SR, SR0, QD, ZD
  }

  std::mt19937 engine_;
  Work& work_;
};

// What hangs on a path belongs to vertices that it has.
void expectInStep(const CToolPath& path) {
  const int n = path.numVerts();
  EXPECT_EQ(path.aSegTaper().size(), static_cast<std::size_t>(n));
  ASSERT_EQ(path.aCodeVertex().size(), path.aCodeText().size());
  const std::set<int> coded(path.aCodeVertex().begin(), path.aCodeVertex().end());
  EXPECT_EQ(coded.size(), path.aCodeVertex().size());
  if (!coded.empty()) {
    EXPECT_GE(*coded.begin(), 0);
    EXPECT_LT(*coded.rbegin(), n);
  }
  EXPECT_LT(path.nBreakSeg(), n);
  EXPECT_TRUE(path.dTaper() == 0 || !path.hasSegTaper());
  AcDbDwgFiler written;
  ASSERT_EQ(path.dwgOutFields(written), ErrorStatus::eOk);
  const auto copy = CToolPath::desc().create();
  AcDbDwgFiler reading(written.bytes());
  ASSERT_EQ(copy->dwgInFields(reading), ErrorStatus::eOk);
  AcDbDwgFiler again;
  ASSERT_EQ(static_cast<const CToolPath&>(*copy).dwgOutFields(again), ErrorStatus::eOk);
  EXPECT_EQ(again.bytes(), written.bytes());
}

// The list holds every path of the drawing, in the order of numbers from 1 on.
void expectListed(Work& work) {
  std::set<AcDbObjectId> standing;
  for (AcDbObjectId id : work.session.all())
    if (work.drawing().peek<CToolPath>(id)) standing.insert(id);
  EXPECT_EQ(std::set<AcDbObjectId>(work.list().begin(), work.list().end()), standing);
  EXPECT_EQ(work.list().size(), standing.size());
}

class Edits : public InFolder {
 protected:
  Edits() {
    surround("TARNEX_SHIPPED", TARNEX_BINARY_DIR "/install");
    surround("SOURCE_DATE_EPOCH", "1000000000");
    for (const char* name : {"/a", "/b"}) std::filesystem::create_directories(folder + name);
  }

  void chain(unsigned seed, int commands) {
    Work work(folder + "/a");
    Typist typist(seed, work);
    work.session.run(typist.drawingLines());
    ASSERT_FALSE(work.list().empty());
    work.drawing().forgetUndo();
    std::vector<std::string> states{work.state()};
    for (int i = 0; i < commands; ++i) {
      const auto lines = typist.command();
      if (lines.empty()) continue;
      SCOPED_TRACE(::testing::PrintToString(lines) + " seed " + std::to_string(seed));
      work.session.run(lines);
      for (AcDbObjectId id : work.list()) expectInStep(*work.drawing().peek<CToolPath>(id));
      expectListed(work);
      if (std::string now = work.state(); now != states.back()) states.push_back(std::move(now));
      if (HasFailure()) return;
    }
    backAndForth(work, states);
    again(work, states.back());
  }

 private:
  // One `u` a command that changed something. A command that ended where it began is a step too.
  static void step(Work& work, const char* command, const std::string& from, const std::string& to) {
    std::string now = from;
    for (int tries = 0; tries < 5 && now == from; ++tries) {
      work.session.run({command});
      now = work.state();
    }
    ASSERT_EQ(now, to) << command;
    expectListed(work);
  }

  static void backAndForth(Work& work, const std::vector<std::string>& states) {
    for (std::size_t i = states.size() - 1; i > 0; --i) step(work, "u", states[i], states[i - 1]);
    for (std::size_t i = 1; i < states.size(); ++i) step(work, "redo", states[i - 1], states[i]);
  }

  void again(Work& work, const std::string& end) {
    Work second(folder + "/b");
    second.session.runScript("journal.scr", work.journal);
    EXPECT_EQ(second.state(), end);
  }
};

TEST_F(Edits, RandomChains) {
  const int chains = environment("TARNEX_LONG") ? 2000 : 100;
  for (int i = 0; i < chains && !HasFailure(); ++i) chain(20261100u + static_cast<unsigned>(i), 12);
}

}  // namespace

}  // namespace tarnex
