// The process report: which rows a job's styles give, and what a cancelled place leaves.
// Texts are read out of the block that the report becomes.
#include "frame/drawingvars.h"
#include "host/database/entities.h"
#include "machining/joblayout.h"
#include "outputiso/programtools.h"
#include "pathcmd/makepath.h"
#include "support/modulefixture.h"

namespace tarnex {
namespace {

class ProcessReport : public ModuleFixture {
 protected:
  ProcessReport() {
    texts({{447, "Paths"},
           {448, "Name"},
           {449, "Taper"},
           {450, "Fit"},
           {451, "Offset"},
           {452, "No"},
           {454, "%s next"},
           {500, "no job"}});
  }
  void pathOf(const ProcessStyle& style) {
    const double x = 20.0 * static_cast<double>(module->state<PathState>().PathList.size());
    auto path = std::make_unique<CToolPath>();
    ASSERT_TRUE(path->initCircle({{x, 0}, {x + 5, 0}, 1, 1, 0, 0}, {x, 0}, 5, 2));
    addPath(*module, std::move(path), {}, kColorByLayer, &style);
  }
  void keys(const std::vector<ProcessStyle>& styles) {
    JobLayout job;
    job.nStyleCount = static_cast<std::int32_t>(styles.size());
    std::copy(styles.begin(), styles.end(), job.styles.begin());
    DrawingVars vars(drawing());
    writeJobKeys(vars, job);
  }
  std::string report(std::vector<std::string> lines) {
    module->saveSettings();
    session.out.clear();
    session.answers(std::move(lines));
    GY(*module);
    return session.out;
  }
  // The texts of the one inserted block, a row a line from the top.
  std::vector<std::string> rows() {
    std::map<double, std::string, std::greater<>> byHeight;
    const auto* insert = session.last<AcDbBlockReference>();
    const auto* block = insert ? drawing().peek<AcDbBlockTableRecord>(insert->blockTableRecord()) : nullptr;
    if (!block) return {};
    for (AcDbObjectId id : block->entities())
      if (const auto* text = drawing().peek<AcDbText>(id)) {
        auto& row = byHeight[std::round(text->position().y * 1000)];
        row += (row.empty() ? "" : "|") + text->textString();
      }
    std::vector<std::string> list;
    for (const auto& [y, row] : byHeight) list.push_back(row);
    return list;
  }
};

TEST_F(ProcessReport, ShowsEachPassOfTheStylesThatPathsHave) {
  ProcessStyle hole;
  hole.sName = "CUT-A";
  hole.nPassLast = 2;
  hole.dValueC = 1.5;
  hole.dValueA = 0.01;
  for (std::size_t g = 0; g < 3; ++g) hole.passes[g].dValue1 = 0.2 - 0.05 * static_cast<double>(g);
  ProcessStyle outer;
  outer.sName = "A-B";  // a "-" this early belongs to the name
  ProcessStyle unused;
  unused.sName = "NONE";
  for (const auto* style : {&hole, &outer, &hole, &hole}) pathOf(*style);
  keys({hole, unused, outer});
  report({"", "100,50"});
  EXPECT_EQ(rows(), (std::vector<std::string>{"Paths|Name|Taper|Fit|Offset|No",
                                              "N1-N4|CUT|1.500|0.010|0.200|H000", "N1-N4 next|0.150|H001",
                                              "N1-N4 next|0.100|H002", "N2|A-B|0.000|0.000|0.000|H000"}));
  const auto* insert = session.last<AcDbBlockReference>();
  EXPECT_EQ(insert->position(), (AcGePoint3d{100, 50, 0}));
  EXPECT_EQ(session.all().size(), 5u);  // four paths and the table
}

TEST_F(ProcessReport, LeavesNothingWhenItIsGivenUpOrThereIsNoJob) {
  pathOf({});
  EXPECT_THAT(report({"", "^C"}), ::testing::HasSubstr("no job"));
  keys({ProcessStyle{}});
  const auto blocks = drawing().blocks().size();
  report({"", "^C"});
  report({"^C"});
  EXPECT_EQ(session.all().size(), 1u);
  EXPECT_EQ(drawing().blocks().size(), blocks);
}

}  // namespace
}  // namespace tarnex
