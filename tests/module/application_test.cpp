// The application as its host sees it: commands there and gone, drawings that come, two at the same time.
// The table is typed from its description, not from the code.
#include "module/application.h"

#include <fstream>
#include <sstream>
#include <thread>

#include "frame/drawingvars.h"
#include "frame/environment.h"
#include "host/editor/session.h"
#include "module/commandtable.h"
#include "output3b/programwriter.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

constexpr const char* kTable =
    "NC NC 0\nTCF TCF 0\nTK TK 0\nAC AC 0\nAF AF 0\nBP BP 0\nBM BM 0\nBK BK 0\nBB BB 0\n"
    "GK GK 0\nGG GG 0\nGA GA 0\nGT GT 0\nCD CD 0\nCM CM 0\nCS CS 0\nCX CX 0\nDB DB 0\nQQ QQ 0\n"
    "XD XD 0\nXD0 XD0 0\nSR SR 0\nSR0 SR0 0\nHZ HZ 0\ns2p s2p 0\ne2p e2p 0\nDD DD 0\nAO AO 0\n"
    "AI AI 0\nVorn Vorn 0\nSIM SIM 0\nJX JX 0\n3BIN 3BIN 0\nQD QD 0\nZD ZD 0\nQZ QZ 0\n"
    "GY GY 0\nJG JG 0\nJGB JGB 0\nCL CL 0\nBZ BZ 0\nWZ WZ 0\nPrintMoney PrintMoney 0\nD1 D1 0\n"
    "SXY SXY 0\nUSERVAR USERVAR 0\nTTT TTT 0\nP2C P2C 0\nSV SV 0\nL1 L1 0\nkk oo 1\ngg cc 1\n"
    "k1 o1 1\ng1 c1 1\nk2 o2 1\ng2 c2 1\nsw et 1\nsb ed 1\nsy1 ec1 1\nsy ec 1\nls1 zl 3\n"
    "Y YY 3\nTT TT 3\nscc scc 3\nRR RR 3\nAJ AJ 3\nAJ1 AJ1 3\nck wd 3\ndq cv 3\nfx sd 3\n"
    "sx ms 3\n";

class App : public InFolder {
 protected:
  App() {
    surround("TARNEX_SHIPPED", TARNEX_BINARY_DIR "/install");
    surround("SOURCE_DATE_EPOCH", "1000000000");
    app.acrxEntryPoint(AppMessage::kInitAppMsg);
  }
  Session session;
  Application app{session.ed, {folder, 1}};
};

TEST_F(App, TheCommandTable) {
  std::ostringstream rows;
  for (const auto& row : commandTable())
    rows << row.globalName << ' ' << row.localName << ' ' << row.flags << '\n';
  EXPECT_EQ(rows.str(), kTable);
  std::ostringstream registered;
  for (const auto& c : session.ed.commands())
    if (c.group == "QV") {
      registered << c.globalName << ' ' << c.localName << ' ' << c.flags << '\n';
      EXPECT_FALSE(c.help.empty()) << c.globalName;
    }
  EXPECT_EQ(registered.str(), kTable);
}

TEST_F(App, WhatIsNotBuiltSaysSoAndChangesNothing) {
  session.circle({0, 0}, 5);
  session.line({9, 9}, {20, 9});
  for (const auto& row : commandTable()) {
    if (row.run) continue;
    const auto before = session.all();
    const std::string out = session.run({row.globalName});
    EXPECT_NE(out.find(row.globalName), std::string::npos) << out;
    EXPECT_NE(session.status, 0) << row.globalName;
    EXPECT_EQ(session.all(), before) << row.globalName;
  }
}

TEST_F(App, NamesInCapitalsAndSmall) {
  const auto told = [&](const char* typed) {
    const std::string out = session.run({typed});
    return out.substr(out.find('\n'));  // without what was typed
  };
  // Two commands whose names differ in case alone, each by its own name; else the case is free.
  EXPECT_NE(told("GG"), told("gg"));
  EXPECT_EQ(told("cc"), told("CC"));
  session.run({"ttt"});
  session.run({"printmoney"});
  session.run({"NoSuchCommand"});
  EXPECT_NE(session.status, 0);
}

TEST_F(App, ALoadedDrawingHasItsPathsListed) {
  std::size_t listed = 99;
  session.run({"circle 0,0 5", "setvar CMDDIA 0", "BP", "*-50,-50", "50,50", ""});
  listed = app.module().state<PathState>().PathList.size();
  ASSERT_EQ(listed, 1u);
  session.run({"saveas " + folder + "/one.dxf", "new"});
  EXPECT_TRUE(app.module().state<PathState>().PathList.empty());
  session.run({"open " + folder + "/one.dxf"});
  EXPECT_EQ(app.module().state<PathState>().PathList.size(), 1u);
  session.run({"erase all", ""});
  session.run({"u"});
  EXPECT_EQ(app.module().state<PathState>().PathList.size(), 1u);
  app.acrxEntryPoint(AppMessage::kUnloadDwgMsg);
  EXPECT_TRUE(app.module().bLastDocClosed);
  EXPECT_EQ(app.acrxEntryPoint(static_cast<AppMessage>(99)), kRetOK);
}

TEST_F(App, UnloadedNothingIsLeftAndItCanComeBack) {
  EXPECT_TRUE(session.ed.classes().at("CToolPath"));
  app.acrxEntryPoint(AppMessage::kUnloadAppMsg);
  app.acrxEntryPoint(AppMessage::kUnloadAppMsg);
  for (const auto& c : session.ed.commands()) EXPECT_NE(c.group, "QV");
  EXPECT_FALSE(session.ed.classes().at("CToolPath"));
  EXPECT_FALSE(session.ed.classes().at("CToolPathBase"));
  // The host goes on without the application.
  session.run({"BP"});
  EXPECT_NE(session.status, 0);
  session.run({"new", "circle 0,0 5", "u", "SET dOffset 0.2"});
  app.acrxEntryPoint(AppMessage::kInitAppMsg);
  session.run({"TTT", "SET dOffset 0.3"});
  EXPECT_EQ(app.module().settings.dOffset, 0.3);
}

TEST_F(App, StartsWithoutFoldersAndTexts) {
  surround("TARNEX_SHIPPED", folder + "/nothing");
  Session bare;
  Application second(bare.ed, {folder + "/missing", 1});
  second.acrxEntryPoint(AppMessage::kInitAppMsg);
  bare.run({"TTT", "circle 0,0 5"});
  EXPECT_EQ(bare.all().size(), 1u);
}

TEST_F(App, WhatPathsShowIsAskedOnceAtTheStart) {
  Session person;
  person.answers({"bShowArrow=n", "=", "circle 0,0 5"});
  Application asked(person.ed, {folder, 1});
  asked.acrxEntryPoint(AppMessage::kInitAppMsg);
  EXPECT_NE(person.out.find("What paths show"), std::string::npos) << person.out;
  EXPECT_EQ(asked.module().settings.bShowArrow, 0);
  EXPECT_EQ(DrawingVars(person.ed.database()).getInt("VORN_SHOW_bShowArrow"), 0);
  EXPECT_FALSE(person.ed.database().modifiedSinceSave());
  EXPECT_FALSE(person.ed.anyCommandFailed());
  person.run({"new"});  // and the answer that followed was a command
  EXPECT_EQ(person.status, 0);
}

TEST_F(App, WhereNobodyAnswersNothingIsAskedAndNothingWritten) {
  EXPECT_EQ(session.out, "Tarnex is ready. BP makes paths, BB writes the 3B program.\n");
  EXPECT_EQ(read("WireCut.set"), "(no file)");
  EXPECT_FALSE(DrawingVars(session.ed.database()).exists("VORN_SHOW_bShowArrow"));
  EXPECT_FALSE(session.ed.database().modifiedSinceSave());
}

// The paths' lines are in the user's language; those of other entities, and of paths without the application,
// are the host's.
TEST_F(App, ListTellsAPathInTheUsersLanguage) {
  app.acrxEntryPoint(AppMessage::kUnloadAppMsg);
  Session chinese;
  Application second(chinese.ed, {folder, 2});
  second.acrxEntryPoint(AppMessage::kInitAppMsg);
  chinese.run({"circle 0,0 5", "circle 50,0 5", "setvar CMDDIA 0", "BP", "5,0", ""});
  const std::string out = chinese.run({"list all", ""});
  for (const char* line :
       {"     轨迹序号: 1\n", "     丝补偿量: 0.08\n", "     类型: 内孔\n", "     方向: 逆时针\n",
        "     穿丝点: ", "     切入点: ", "     封闭轮廓: 2 段，长度 31.416\n", "     长度单位为毫米。\n",
        "CIRCLE  Layer: \"0\""})
    EXPECT_NE(out.find(line), std::string::npos) << line << out;
  second.acrxEntryPoint(AppMessage::kUnloadAppMsg);
  EXPECT_NE(chinese.run({"list all", ""}).find("  Path number: 1\n"), std::string::npos);
}

// The program that one application writes for a job of its own.
std::string programOf(const std::string& folder, int shift) {
  Session session;
  Application app(session.ed, {folder, 1});
  app.acrxEntryPoint(AppMessage::kInitAppMsg);
  session.run({"setvar CMDDIA 0", "SET dOffset 0.1"});
  for (int i = 0; i < 60; ++i) session.circle({i * 12.0 + shift, (i % 7) * 12.0}, 2 + i % 4);
  session.run({"BP", "*-50,-50", "2000,500", "", "BB", ""});
  std::ifstream in(app.module().state<LastProgram3b>().path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST_F(App, TwoAtWorkDoNotMeet) {
  for (const char* name : {"/a", "/b", "/c", "/d"}) std::filesystem::create_directories(folder + name);
  const std::string first = programOf(folder + "/a", 0), second = programOf(folder + "/b", 5);
  ASSERT_GT(first.size(), 5000u);
  ASSERT_NE(first, second);
  std::string again[2];
  std::thread one([&] { again[0] = programOf(folder + "/c", 0); });
  std::thread two([&] { again[1] = programOf(folder + "/d", 5); });
  one.join();
  two.join();
  EXPECT_EQ(again[0], first);
  EXPECT_EQ(again[1], second);
}

TEST(ControlKeys, SendWhatIsTyped) {
  const std::pair<int, const char*> keys[] = {{1, "'zoom a "},     {4, "'zoom 2x "}, {5, "'zoom e "},
                                              {17, "'zoom 0.5x "}, {23, "'zoom w "}, {26, "u "}};
  std::size_t sent = 0;
  for (int c = 0; c < 300; ++c) sent += textOfControlKey(c) ? 1 : 0;
  EXPECT_EQ(sent, std::size(keys));
  for (const auto& [key, text] : keys) EXPECT_EQ(textOfControlKey(key), text);
}

}  // namespace

}  // namespace tarnex
