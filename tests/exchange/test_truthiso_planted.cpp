// Faults planted into sound ISO programs: each is found, told at its line and place, and little else is.
// Knows programs as lines of text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "isojobs.h"

namespace tarnex::truth::test {
namespace {

// Lines of a program, counted from 1 as findings do.
class Lines {
 public:
  explicit Lines(const std::string& text) : lines_(linesOf(text)) {}
  [[nodiscard]] std::string text() const { return textOf(lines_); }
  // The line is to read `was` first: a program that has changed makes the test fail, not idle.
  void change(int line, const std::string& was, const std::string& is) {
    auto& there = lines_.at(static_cast<std::size_t>(line) - 1);
    EXPECT_EQ(there, was) << "line " << line;
    there = is;
  }
  void erase(int line, const std::string& was, int count = 1) {
    EXPECT_EQ(lines_.at(static_cast<std::size_t>(line) - 1), was) << "line " << line;
    lines_.erase(lines_.begin() + line - 1, lines_.begin() + line - 1 + count);
  }
  void insertBehind(int line, const std::string& text) { lines_.insert(lines_.begin() + line, text); }

 private:
  std::vector<std::string> lines_;
};

struct Planted {
  const char* name;
  std::function<void(Lines&)> edit;
  IsoFault kind;
  int line;
  AcGePoint2d at;
  std::size_t most = 1;  // faults, with those that follow from it
};

class PlantedIso : public IsoJobs {
 protected:
  // A hole of 20 by 20 about (0,0) with a corner of radius 5, entered at (10,-2.5) from 4 mm to its left, in
  // two passes; an outer square of 20 about (60,0), entered at (70,0) from 4 mm to its right, in three, its
  // tab from (66,-10) on.
  void makeJob() {
    const Shape rounded{
        {0, 0},
        {{{{-10, -10}, 0}, {{10, -10}, 0}, {{10, 5}, 0.41421356237309503}, {{5, 10}, 0}, {{-10, 10}, 0}},
         true}};
    hole(rounded, {1, 0.5, 4, true}, style(0, 2));
    outer(rectangle({60, 0}, 20, 20), {1, 0.5, 4, true, 0.825}, style(1, 3));
  }

  void expectFound(const std::vector<Planted>& faults) {
    const std::string sound = program();
    ASSERT_TRUE(check(sound).ok) << told(check(sound)) << sound;
    for (const Planted& p : faults) {
      SCOPED_TRACE(p.name);
      Lines lines(sound);
      p.edit(lines);
      const IsoReport r = check(lines.text());
      EXPECT_FALSE(r.ok);
      EXPECT_LE(r.faults, p.most) << told(r) << lines.text();
      const auto found = std::ranges::find_if(r.findings, [&](const IsoFinding& f) {
        return f.kind == p.kind && f.line == p.line && f.at.distanceTo(p.at) < 0.001;
      });
      EXPECT_NE(found, r.findings.end()) << told(r) << lines.text();
      for (const IsoFinding& f : r.findings)
        EXPECT_TRUE(f.line == 0 || f.text.starts_with("line " + std::to_string(f.line) + ": ")) << f.text;
    }
  }
};

TEST_F(PlantedIso, InAnAbsoluteProgram) {
  makeJob();
  using K = IsoFault;
  expectFound({
      {"a jump", [](Lines& l) { l.erase(24, "G01X-10.Y10."); }, K::kUncut, 24, {5, 10}},
      {"a wrong centre",
       [](Lines& l) { l.change(23, "G03X5.Y10.I-5.J0.", "G03X5.Y10.I-4.J0."); },
       K::kArc,
       23,
       {5, 10}},
      {"the centre on the other side",
       [](Lines& l) { l.change(23, "G03X5.Y10.I-5.J0.", "G03X5.Y10.I0.J5."); },
       K::kOffContour,
       23,
       {13.5355, 13.5355}},
      {"clockwise",
       [](Lines& l) { l.change(35, "G03X5.Y10.I-5.J0.", "G02X5.Y10.I-5.J0."); },
       K::kOffContour,
       35,
       {1.4645, 1.4645}},
      {"a sign flipped",
       [](Lines& l) { l.change(24, "G01X-10.Y10.", "G01X10.Y10."); },
       K::kOffContour,
       24,
       {10, 10}},
      {"the wrong side backward",
       [](Lines& l) { l.change(55, "G41H201G01X66.Y-10.", "G42H201G01X66.Y-10."); },
       K::kCompensation,
       56,
       {66, -10}},
      {"the tab cut early", [](Lines& l) { l.insertBehind(52, "G01X70.Y-10."); }, K::kTab, 53, {66, -10}},
      {"the tab ahead of a trim pass", [](Lines& l) { l.erase(54, "C02", 14); }, K::kTab, 56, {66, -10}},
      {"the last pass missing", [](Lines& l) { l.erase(32, "C02", 10); }, K::kNotCut, 31, {10, -2.5}},
      {"one pass more",
       [](Lines& l) {
         for (const char* line :
              {"G40G01X9.2Y-2.2", "G01X10.Y-2.2", "G01X10.Y-2.5", "G01X10.Y-10.", "G01X-10.Y-10.",
               "G01X-10.Y10.", "G03X5.Y10.I-5.J0.", "G01X10.Y5.", "G41H101G01X10.Y-2.5"})
           l.insertBehind(41, line);
       },
       K::kTooMany,
       43,
       {10, -2.5}},
      {"cut twice",
       [](Lines& l) {
         l.insertBehind(50, "G01X50.Y10.");
         l.insertBehind(50, "G01X70.Y10.");
       },
       K::kRepeated,
       51,
       {50, 10}},
      {"a last block too short",
       [](Lines& l) { l.change(73, "G01X70.Y0.", "G01X70.Y-0.3"); },
       K::kOffContour,
       74,
       {70.5, 0}},
      {"last blocks missing",
       [](Lines& l) { l.erase(39, "G01X10.Y-2.5", 2); },
       K::kOffContour,
       39,
       {9.2, -2.2}},
      {"overcut too far",
       [](Lines& l) { l.change(30, "G01X10.Y-2.2", "G01X10.Y-1.2"); },
       K::kOvercut,
       31,
       {10, -1.2}},
      {"a lead into the part",
       [](Lines& l) { l.change(47, "G01X70.5Y0.", "G01X69.5Y0."); },
       K::kLead,
       47,
       {69.640625, 0}},
  });
}

TEST_F(PlantedIso, InWordsAndWays) {
  makeJob();
  using K = IsoFault;
  expectFound({
      {"an offset that isn't there", [](Lines& l) { l.erase(10, "H101=0.193"); }, K::kOffset, 32, {10, -2.5}},
      {"another value",
       [](Lines& l) { l.change(10, "H101=0.193", "H101=0.183"); },
       K::kOffset,
       33,
       {10, -2.5}},
      {"an offset twice", [](Lines& l) { l.insertBehind(10, "H101=0.183"); }, K::kOffset, 11, {0, 0}},
      {"another pass's offset",
       [](Lines& l) { l.change(33, "G41H101G01X10.Y-2.5", "G41H100G01X10.Y-2.5"); },
       K::kOffset,
       33,
       {10, -2.5}},
      {"a condition that isn't there",
       [](Lines& l) { l.erase(6, "C02=ON06 OF60"); },
       K::kCondition,
       31,
       {10, -2.5},
       2},
      {"another condition", [](Lines& l) { l.change(32, "C02", "C03"); }, K::kCondition, 32, {10, -2.5}},
      {"no compensation",
       [](Lines& l) { l.change(21, "G41H100G01X10.Y-2.5", "H100G01X10.Y-2.5"); },
       K::kCompensation,
       22,
       {10, -2.5}},
      {"compensation too late",
       [](Lines& l) {
         l.change(48, "G42H200G01X70.Y0.", "H200G01X70.Y0.");
         l.change(49, "G01X70.Y10.", "G42G01X70.Y10.");
       },
       K::kCompensation,
       49,
       {70, 0}},
      {"compensation left on",
       [](Lines& l) { l.change(53, "G40G01X66.Y-10.8", "G01X66.Y-10.8"); },
       K::kCompensation,
       56,
       {66, -10}},
      {"the wire cut with compensation on",
       [](Lines& l) { l.change(74, "G40G01X70.5Y0.", "G01X70.5Y0."); },
       K::kCompensation,
       75,
       {70.5, 0}},
      {"a rapid move with the wire in", [](Lines& l) { l.erase(43, "M50"); }, K::kRapid, 43, {74, 0}, 3},
      {"a rapid move elsewhere",
       [](Lines& l) { l.change(44, "G00X74.Y0.", "G00X75.Y0."); },
       K::kConnection,
       44,
       {75, 0}},
      {"compensation on from the head",
       [](Lines& l) { l.change(14, "G40G90", "G41G90"); },
       K::kCompensation,
       18,
       {6, -2.5}},
      {"not threaded", [](Lines& l) { l.erase(45, "M60"); }, K::kWire, 46, {70.5, 0}},
      {"a start elsewhere",
       [](Lines& l) { l.change(17, "G92X6.Y-2.5", "G92X6.Y-3.5"); },
       K::kStart,
       20,
       {6, -3.5}},
      {"a number without its point",
       [](Lines& l) { l.change(22, "G01X10.Y5.", "G01X10Y5."); },
       K::kUnreadable,
       22,
       {0, 0}},
      {"a comment left open", [](Lines& l) { l.change(28, "M01", "(STOP"); }, K::kUnreadable, 28, {0, 0}},
  });
}

TEST_F(PlantedIso, InLineNumbers) {
  post.paramOn[8] = 1;
  post.lineFormat = "N%03d ";
  makeJob();
  using K = IsoFault;
  expectFound({
      {"out of order",
       [](Lines& l) { l.change(24, "N024 G01X-10.Y10.", "N034 G01X-10.Y10."); },
       K::kNumbering,
       24,
       {0, 0},
       2},  // and the next line is behind it
      {"twice", [](Lines& l) { l.change(46, "N046 C01", "N045 C01"); }, K::kNumbering, 46, {0, 0}, 2},
      {"none", [](Lines& l) { l.change(46, "N046 C01", "C01"); }, K::kNumbering, 46, {0, 0}, 2},
  });
}

// Increments, whole micrometres, modal; a return after each pass of the hole.
TEST_F(PlantedIso, InAnIncrementalProgram) {
  post = shippedPost("MicronInc");
  module->settings.dOvercutLen = 0;
  makeJob();
  using K = IsoFault;
  expectFound({
      {"a jump", [](Lines& l) { l.erase(12, "X0Y-20000"); }, K::kUncut, 12, {-10, 10}},
      {"a sign flipped",
       [](Lines& l) { l.change(12, "X0Y-20000", "X0Y20000"); },
       K::kOffContour,
       12,
       {-10, 30}},
      {"a wrong centre",
       [](Lines& l) { l.change(10, "G03X-5000Y5000I-5000J0", "G03X-5000Y5000I-5000J100"); },
       K::kArc,
       10,
       {5, 10}},
      {"the other side",
       [](Lines& l) { l.change(19, "G41D193X4000Y0", "G42D193X4000Y0"); },
       K::kCompensation,
       20,
       {10, -2.5}},
      {"a way onto the contour",
       [](Lines& l) { l.change(19, "G41D193X4000Y0", "G41D193X3900Y0"); },
       K::kUncut,
       20,
       {9.9, -2.5}},
      {"another offset",
       [](Lines& l) { l.change(19, "G41D193X4000Y0", "G41D192X4000Y0"); },
       K::kOffset,
       19,
       {10, -2.5}},
      {"the wire not home",
       [](Lines& l) { l.change(17, "G40X-4000Y0", "G40X-3900Y0"); },
       K::kReturn,
       20,
       {10, -2.5},
       3},
  });
}

// A taper that leans to the wrong side, has another angle, or isn't there.
TEST_F(PlantedIso, InTapers) {
  for (std::size_t k : {0u, 1u}) {
    auto& s = style(k, 2);
    s.passOffset.fill(1.5);
    s.dValueC = 1.5;
  }
  hole(rectangle({0, 0}, 20, 20), {1, 0.5, 4, true}, job.styles[0]);
  outer(rectangle({60, 0}, 20, 20), {1, 0.5, 4, true, 0.825}, job.styles[1]);
  using K = IsoFault;
  // Hole, counter-clockwise: the waste is left, so is the lean; the trim pass of the outer shape runs
  // backward, its waste is left too.
  expectFound({
      {"the other side", [](Lines& l) { l.change(21, "G51A1.500", "G52A1.500"); }, K::kTaper, 23, {10, 0}},
      {"another angle", [](Lines& l) { l.change(21, "G51A1.500", "G51A1.400"); }, K::kTaper, 23, {10, 0}},
      {"none", [](Lines& l) { l.erase(21, "G51A1.500"); }, K::kTaper, 22, {10, 0}},
      {"the other side backward",
       [](Lines& l) { l.change(59, "G51A1.500", "G52A1.500"); },
       K::kTaper,
       61,
       {66, -10}},
  });
}

}  // namespace
}  // namespace tarnex::truth::test
