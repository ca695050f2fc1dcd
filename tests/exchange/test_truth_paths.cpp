// The truth test on programs of edited paths as the writers make them: every one is proven, and faults that
// are planted in tapers, code texts, pauses, overcuts, steps, transit points and order are each found.
#include <gmock/gmock.h>

#include <cstdlib>
#include <sstream>

#include "editedpaths.h"
#include "exchange/truth_paths.h"
#include "frame/drawingvars.h"
#include "modules/moduletest.h"
#include "output3b/programwriter.h"
#include "pathcmd/paths.h"

namespace tarnex::truth::test {
namespace {

std::string lines(const Report& r) {
  std::string all;
  for (const std::string& l : describe(r)) all += l + "\n";
  return all;
}

// The program without one of the things that hang on its contours: a taper mark, a code text, the ways out
// and back at a corner. Nothing where it has none.
std::optional<std::string> spoil(const std::string& program, EditedPaths& random) {
  std::vector<std::string> rows;
  std::istringstream in(program);
  for (std::string l; std::getline(in, l);) rows.push_back(l);
  auto block = [&](std::size_t i) { return rows[i].size() > 7 && rows[i][0] == 'N' && rows[i][4] != ' '; };
  auto move = [&](std::size_t i) {
    return block(i) && rows[i].find(" G") != std::string::npos && rows[i][7] == 'B';
  };
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (block(i) &&
        (!move(i) || rows[i].back() == ' ' || std::count(rows[i].begin(), rows[i].end(), 'B') == 4))
      places.push_back(i);
  if (places.empty()) return std::nullopt;
  const std::size_t at = places[random.below(places.size())];
  const auto row = rows.begin() + static_cast<std::ptrdiff_t>(at);
  if (!move(at)) {
    rows.erase(row);
  } else if (rows[at].back() == ' ') {
    const bool out = at + 1 < rows.size() && rows[at + 1].size() == rows[at].size() &&
                     rows[at + 1].back() == ' ' &&
                     rows[at + 1].substr(6, rows[at].size() - 11) == rows[at].substr(6, rows[at].size() - 11);
    rows.erase(out ? row : row - 1, out ? row + 2 : row + 1);
  } else {
    const auto from = rows[at].rfind('B'), word = rows[at].find('D');
    rows[at].erase(word, rows[at].find_first_not_of('D', word) - word);
    rows[at].erase(from, rows[at].find('G') - from);
  }
  std::string out;
  int n = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (block(i)) {
      const std::string number = std::to_string(++n);
      rows[i].replace(1, 4, std::string(4 - number.size(), ' ') + number);
    }
    out += (i > 0 ? "\n" : "") + rows[i];
  }
  return out;
}

class EditedPrograms : public ModuleTest {
 protected:
  EditedPrograms() {
    (void)session.ed.acedSetVar("CMDDIA", 0LL);
    module->loadSettings();
    module->settings.bAskFileName = 0;
  }
  void fresh() {
    session.ed.setDatabase(std::make_unique<AcDbDatabase>());
    drawing().dwgName = "part.dwg";
  }
  // An unreadable module of the user's goes before the shipped one: nothing relieves then.
  void withRelief(bool on) {
    const std::string file = folder + "/Quillet.arx";
    std::filesystem::remove(file);
    if (!on) write("Quillet.arx", "none");
    relieved_ = on;
  }
  void options(EditedPaths& random) {
    WireCutSettings& s = module->settings;
    s.bCutoffPause = random.oneIn(2);
    s.dCutoffLen = random.oneIn(5) ? random.real(3, 30) : random.real(0.1, 1);
    s.bOvercut = random.oneIn(2);
    s.dOvercutLen = random.oneIn(5) ? random.real(3, 30) : random.real(0.1, 1);
    s.nOvercutMode = random.oneIn(2);
    s.bOvercutTangent = random.oneIn(3);
    s.bAutoFix = random.oneIn(2);
    s.dAutoFixLen = random.real(0.05, 0.3);
    s.dMinStep = random.oneIn(3) ? 0.05 : 0.006;
    s.bPrintCoords = random.oneIn(2);
    withRelief(random.oneIn(2));
  }
  void transits(EditedPaths& random) {
    DrawingVars vars(drawing());
    auto chain = [&](const char* key) {
      for (std::size_t n = random.below(4), k = 0; k < n; ++k)
        vars.setPoint(key + std::to_string(k), {random.real(-50, -20), random.real(-50, 50), 0});
    };
    chain("STARTPOINT"), chain("ENDPOINT");
  }
  // Paths in a drawing whose numbers aren't in the order in which they were made.
  bool make(EditedPaths& random, std::size_t count) {
    fresh();
    transits(random);
    for (std::size_t i = 0; i < count; ++i) {
      auto path = random.path({100.0 * static_cast<double>(i), 7});
      if (path->wireCentrePath().ownMethod || path->wireCentrePath().pieces != 1) return false;
      path->setPathNo(static_cast<int>((i * 2 + 1) % (count + 1)) + 1);
      session.add(std::move(path));
    }
    return true;
  }
  std::string program() {
    session.answers({""});
    session.out.clear();
    return write3BProgram(*module, "") ? read("part.3b") : "(none) " + session.out;
  }
  bool relieved_ = false;
  Report judged(const std::string& text) {
    Expected expected = expectedOfPaths(drawing(), module->settings);
    expected.relieved = relieved_;
    return check(text, figuresOfPaths(drawing()), expected);
  }
};

TEST_F(EditedPrograms, AreProven) {
  const int rounds = std::getenv("TARNEX_LONG") ? 3000 : 120;
  int made = 0, planted = 0;
  for (int seed = 1; made < rounds; ++seed) {
    EditedPaths random(static_cast<unsigned>(seed));
    options(random);
    if (!make(random, 1 + random.below(3))) continue;
    ++made;
    const std::string text = program();
    const Report r = judged(text);
    ASSERT_TRUE(r.ok) << "seed " << seed << "\n" << lines(r) << text;
    const auto spoilt = spoil(text, random);
    if (!spoilt) continue;
    ++planted;
    ASSERT_FALSE(judged(*spoilt).ok) << "seed " << seed << "\n" << text << "\nspoilt:\n" << *spoilt;
  }
  EXPECT_GT(planted, rounds / 2);
}

}  // namespace
}  // namespace tarnex::truth::test
