// The form of the slow-wire job, and `GG` around it: each result, what is refused, and what a cancel leaves.
// Loads the library of this build.
#include "contour/hosthelpers.h"
#include "frame/drawingvars.h"
#include "machining/joblayout.h"
#include "modules/moduletest.h"
#include "outputiso/driver.h"
#include "pathcmd/jobs.h"
#include "toolpath/toolpath.h"

namespace tarnex {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class JobForm : public ModuleTest {
 protected:
  JobForm() {
    std::filesystem::create_directories(folder + "/MZS/P");
    write("MZS/Main.dat", "[Matrial]\n1=SKD11\n2=CU\n[Rad]\n1=0.2\n[Thick]\n1=5\n2=20\n");
    MachinePost post;
    post.conditionFile[0] = "c";
    write("MZS/P/M.pc", encodePost(post));
    write("MZS/P/c.ini", "[Main]\nVer=2\n[SKD11-0.2-5]\n1=H\n2=C000=A\n3=C001=B\n");
    job.sPostPath = "P";
    job.sMachine = "M";
    for (auto& pass : job.styles[0].passes) pass.sSub1 = "001";
    module->loadSettings();
  }
  ~JobForm() override { waitForStarted(*module); }
  void dialogs(bool on) { ASSERT_TRUE(session.ed.acedSetVar("CMDDIA", on ? 1LL : 0LL)); }
  int call(std::vector<std::string> answers) {
    session.out.clear();
    session.answers(std::move(answers));
    return DialogLibrary(*module).call("ProStyleDlg", -7, &job, 1);
  }
  std::string gg(std::vector<std::string> answers) {
    session.out.clear();
    session.answers(std::move(answers));
    GG(*module);
    return session.out;
  }
  AcDbObjectId hole(double x, const std::string& style) {
    auto path = std::make_unique<CToolPath>();
    const PolylineCurve c{{{{x, 0}, 0}, {{x + 10, 0}, 0}, {{x + 10, 10}, 0}, {{x, 10}, 0}}, true};
    EXPECT_TRUE(path->initContour({{x + 5, 5}, {x + 10, 5}, 1, 1, 0, 0}, c, 1));
    ProcessStyle s;
    s.sName = style;
    path->setProcessStyle(s);
    return session.add(std::move(path));
  }
  const CToolPath& path(AcDbObjectId id) { return *drawing().peek<CToolPath>(id); }
  void storeJob() {
    job.setFolder(folder);
    ASSERT_TRUE(job.save());
  }

  JobLayout job;
};

TEST_F(JobForm, TakesWhatStandsAndWhatWasSetAhead) {
  dialogs(false);
  const JobLayout before = job;
  EXPECT_EQ(call({}), 1) << session.out;
  EXPECT_TRUE(job == before) << "nothing is changed by looking";
  session.ed.preset("machine", "SODICK/SODICK");
  session.ed.preset("sMaterial", "cu");
  session.ed.preset("dThick", "20.0");
  session.ed.preset("nCutType", "1");
  session.ed.preset("nAction", "draw the report");
  EXPECT_EQ(call({}), 6) << session.out;
  EXPECT_EQ(job.sPostPath + "/" + job.sMachine + " " + job.sMaterial, "SODICK/SODICK CU");
  EXPECT_EQ(job.dThick, 20);
  EXPECT_EQ(job.nCutType, 1);
}

TEST_F(JobForm, EditsAStyleAndMakesANewOne) {
  dialogs(true);
  EXPECT_EQ(call({"4", "nStyleNow=2", "=", "sName=FINE", "nPasses=2", "dValueC=-1.5", "nColour=3", "nKind=2",
                  "=", "dValue1.1=0.15", "sSub1.2=001", "passOffset.2=0.5", "="}),
            4)
      << session.out;
  EXPECT_EQ(job.nStyleCount, 2);
  EXPECT_EQ(job.nStyleNow, 1);
  const auto& s = job.styles[1];
  EXPECT_EQ(s.sName, "FINE");
  EXPECT_EQ(s.nPassLast, 1);
  EXPECT_EQ(s.nCode, 302);
  EXPECT_EQ(s.dValueC, -1.5);
  EXPECT_EQ(s.passes[0].dValue1, 0.15);
  EXPECT_EQ(s.passOffset[1], 0.5);
  EXPECT_EQ(job.styles[0].sName, "STYLE1");
  EXPECT_EQ(call({"1", "nStyleCount=3", "="}), 1);
  EXPECT_EQ(job.styles[2].sName, "STYLE3") << "a new style has a name of its own";
}

TEST_F(JobForm, RefusesAsItIsTyped) {
  dialogs(true);
  const struct {
    std::vector<std::string> typed;
    const char* told;
  } cases[] = {{{"sName=A B"}, "must be one word"},
               {{"sName="}, "must be one word"},
               {{"sName=STYLE2"}, "is another style's name"},
               {{"nPasses=11"}, "is outside 1 to 10"},
               {{"=", "sCode.1=00 1"}, "must be one word"},
               {{"=", "sSub1.1=7"}, "is none of the conditions here: 000, 001"}};
  job.nStyleCount = 2;
  job.styles[1].sName = "STYLE2";
  const JobLayout before = job;
  for (const auto& c : cases) {
    std::vector<std::string> answers{"4", "="};
    answers.insert(answers.end(), c.typed.begin(), c.typed.end());
    answers.push_back("^C");
    EXPECT_EQ(call(answers), -1);
    EXPECT_THAT(session.out, HasSubstr(c.told));
    EXPECT_TRUE(job == before) << c.told;
  }
  // A cell without conditions of its own leaves the number to the user.
  EXPECT_EQ(call({"4", "dThick=20", "=", "=", "sSub1.1=7", "="}), 4) << session.out;
  EXPECT_EQ(job.styles[0].passes[0].sSub1, "7");
}

TEST_F(JobForm, ACancelLeavesNoTrace) {
  dialogs(true);
  hole(0, "STYLE1");
  storeJob();
  const std::string file = read("MZS/ISO.LYT");
  gg({"^C"});
  gg({"1", "machine=SODICK/SODICK", "^C"});
  gg({"1", "=", "^C"});          // the choice of paths
  gg({"1", "=", "", "^C"});      // the origin
  gg({"1", "=", "", "", "^C"});  // the file
  EXPECT_EQ(read("MZS/ISO.LYT"), file);
  EXPECT_FALSE(DrawingVars(drawing()).exists("ISO_MACHINE"));
  // What the dialog was confirmed with is the user's.
  gg({"1", "nCutType=1", "=", "^C"});
  EXPECT_NE(read("MZS/ISO.LYT"), file);
  EXPECT_EQ(DrawingVars(drawing()).getInt("ISO_CUTTYPE"), 1);
}

TEST_F(JobForm, WritesTheProgramAndKeepsTheJob) {
  dialogs(false);
  hole(0, "STYLE1");
  storeJob();
  const std::string out = gg({"", "", folder + "/a.iso"});
  EXPECT_THAT(out, HasSubstr("a.iso: "));
  EXPECT_THAT(read("a.iso"), Not(HasSubstr("(no file)")));
  EXPECT_EQ(DrawingVars(drawing()).getString("ISO_MACHINE"), "M");
  const std::string first = read("a.iso");
  gg({"", "", folder + "/b.iso"});
  EXPECT_EQ(read("b.iso"), first);
}

TEST_F(JobForm, AMissingPostIsToldAndNothingIsWritten) {
  dialogs(false);
  hole(0, "STYLE1");
  job.sMachine = "NONE";
  storeJob();
  EXPECT_THAT(gg({"", "", folder + "/a.iso"}), HasSubstr("The post of machine NONE can't be read."));
  EXPECT_EQ(read("a.iso"), "(no file)");
}

TEST_F(JobForm, ResultsThatChangePaths) {
  dialogs(true);
  const auto a = hole(0, "STYLE1"), b = hole(30, "OTHER");
  storeJob();
  // Edit: paths of that name get the style, and the dialog comes again.
  gg({"4", "=", "nPasses=3", "=", "=", "^C"});
  EXPECT_EQ(path(a).getProcessStyle().nPassLast, 2);
  EXPECT_EQ(path(b).getProcessStyle().nPassLast, 0);
  // Mark one by a pick, both by a window; clear one.
  gg({"3", "=", "10,5", "", "^C"});
  EXPECT_TRUE(path(a).hasFlag(kIsoMark64));
  EXPECT_FALSE(path(b).hasFlag(kIsoMark64));
  gg({"3", "=", "-50,-50", "100,100", "", "^C"});
  EXPECT_TRUE(path(b).hasFlag(kIsoMark64));
  gg({"2", "=", "10,5", "", "^C"});
  EXPECT_FALSE(path(a).hasFlag(kIsoMark64));
  // Assign by a pick.
  gg({"0", "=", "40,5", "", "^C"});
  EXPECT_EQ(path(b).getProcessStyle().sName, "STYLE1");
}

TEST_F(JobForm, TheJobFromAFileStaysWithTheDrawingWhereItIsNotToBeKept) {
  storeJob();
  dialogs(false);
  const JobLayout standing = job;
  write("job.toml", "thickness = 20\n[[style]]\nname = \"NEW\"\n");
  write("bad.toml", "\nthickness = \"thick\"\n");
  session.ed.preset("nAction", "7");
  for (const char* file : {"bad.toml", "none.toml"}) {
    session.ed.preset("jobFile", folder + "/" + file);
    EXPECT_EQ(call({}), -1) << file;
    EXPECT_TRUE(job == standing) << file;
  }
  EXPECT_THAT(session.out, HasSubstr("none.toml"));
  session.ed.preset("jobFile", folder + "/job.toml");
  session.ed.preset("bKeepJob", "0");
  gg({});
  session.ed.preset("nAction", "3");  // GG anew: the drawing's job goes before the file's
  gg({""});
  const auto& now = module->state<JobLayout>();
  EXPECT_EQ(now.styles[0].sName, "NEW");
  EXPECT_EQ(now.dThick, 20);
  EXPECT_EQ(now.sMaterial, standing.sMaterial) << "what the file leaves out stays";
  JobLayout file;
  file.setFolder(folder);
  EXPECT_TRUE(file.load());
  EXPECT_TRUE(file == standing);
  session.ed.preset("bKeepJob", "1");
  session.ed.preset("nSortMode", "1");
  gg({""});
  EXPECT_TRUE(file.load());
  EXPECT_TRUE(file == module->state<JobLayout>()) << "kept again, file and drawing agree";
}

TEST_F(JobForm, WithoutPromptsNoResultRunsForEver) {
  dialogs(false);
  const auto a = hole(0, "STYLE1");
  for (const char* action : {"2", "3", "4", "0"}) {
    session.ed.preset("nAction", action);
    gg({""});
  }
  EXPECT_FALSE(path(a).hasFlag(kIsoMark64));
  session.ed.preset("nAction", "5");
  EXPECT_THAT(gg({}), HasSubstr("is not built yet"));
}

}  // namespace
}  // namespace tarnex
