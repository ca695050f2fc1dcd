// Damaged and hostile files: what can be read is read, the rest is told by line, nothing is guessed in
// silence.
#include <cmath>

#include "host/dxf/drawings.h"

namespace tarnex::test {
namespace {

struct Case {
  const char* name;
  std::string file;
  std::size_t entities;  // of model space that stand afterwards
  std::uint64_t line;    // of the first note
  std::string note;      // the first one; "" none at all
};

const std::string kLine = "0 LINE|8 0|10 1|20 2|11 3|21 4|";

std::string entitiesFile(const std::string& content, const std::string& tail = "0 ENDSEC|0 EOF") {
  return ascii("0 SECTION|2 ENTITIES|" + content + tail);
}

// Lines count from 1: the section takes 1 to 4, a line entity twelve, the next one starts in line 17.
std::vector<Case> cases() {
  const std::string two = entitiesFile(kLine + kLine);
  std::string badCode = two;
  badCode.replace(badCode.find(" 20\n2"), 3, "x20");
  std::string extraLine = two;
  extraLine.insert(extraLine.find(" 10\n1"), "stray\n");
  std::string comma = two;
  comma.replace(comma.find("\n1\n") + 1, 1, "1,5");
  const std::string endless = "0 LINE|8 0|10 1|20 nan|11 3|21 4|";
  return {
      {"bad group code", badCode, 1, 11, "LINE: a group code was expected, the entity is left out"},
      {"line too many", extraLine, 1, 9, "LINE: a group code was expected, the entity is left out"},
      {"decimal comma", comma, 2, 5, "LINE: decimal comma in a number, read as a point"},
      {"not a number", entitiesFile(endless + kLine), 2, 5,
       "LINE: a number that is none or too large: \"nan\""},
      {"too large", entitiesFile("0 CIRCLE|8 0|10 1e300|20 0|40 1|" + kLine), 2, 5,
       "CIRCLE: a number that is none or too large: \"1e300\""},
      {"zero radius", entitiesFile("0 CIRCLE|8 0|10 1|20 0|40 0|" + kLine), 2, 5,
       "CIRCLE: radius of zero or less, the circle isn't used"},
      {"no end point", entitiesFile("0 LINE|8 0|10 1|20 0|11 1|" + kLine), 1, 5,
       "LINE without an end point, left out"},
      {"counts that lie", entitiesFile("0 LWPOLYLINE|8 0|90 40000000|70 0|10 1|20 0|10 2|20 0|"), 1, 5,
       "LWPOLYLINE: 40000000 vertices claimed, 2 read"},
      {"no EOF", entitiesFile(kLine, "0 ENDSEC"), 1, 19, "the file has no EOF at its end"},
      {"no ENDSEC", entitiesFile(kLine, "0 EOF"), 1, 17, "the section ENTITIES has no end"},
      {"cut in an entity", two.substr(0, two.size() - 40), 1, 17,
       "LINE: the file breaks off within it, left out"},
      {"section twice", entitiesFile(kLine, "0 ENDSEC|0 SECTION|2 ENTITIES|" + kLine + "0 ENDSEC|0 EOF"), 2,
       19, "a second section ENTITIES, both are read"},
      {"doubled handle", entitiesFile("0 POINT|5 A|8 0|10 1|20 0|0 POINT|5 A|8 0|10 2|20 0|"), 2, 15,
       "a handle stands twice in the file"},
      {"empty handle", entitiesFile("0 POINT|5 |8 0|10 1|20 0|"), 1, 5, "POINT: its handle is empty or none"},
      {"no section", ascii(kLine + "0 EOF"), 1, 1,
       "entities outside of any section, taken for those of the drawing"},
      {"no SEQEND",
       entitiesFile("0 POLYLINE|8 0|66 1|70 0|0 VERTEX|8 0|10 1|20 1|0 VERTEX|8 0|10 2|20 1|" + kLine), 2, 5,
       "POLYLINE: its SEQEND is missing"},
      {"comments and blanks", "999\nmade by hand\n" + two + "\n\n\x1a", 2, 0, ""},
  };
}

TEST(DxfDamaged, WhatCanBeReadIsReadAndTheRestTold) {
  for (const Case& c : cases()) {
    SCOPED_TRACE(c.name);
    const auto r = read(c.file);
    ASSERT_FALSE(r->failure) << r->failure->cause;
    EXPECT_EQ(r->db.modelSpaceEntities().size(), c.entities);
    ASSERT_EQ(r->report.notes.empty(), c.note.empty());
    if (c.note.empty()) continue;
    EXPECT_EQ(r->report.notes[0].line, c.line);
    EXPECT_EQ(r->report.notes[0].text, c.note);
  }
}

// What is written of a damaged drawing is whole again, and has what the notes didn't give up.
TEST(DxfDamaged, WrittenAgainTheEndsAreMended) {
  for (const Case& c : cases()) {
    SCOPED_TRACE(c.name);
    const auto r = read(c.file);
    r->db.appendAcDbEntity(r->db.modelSpace(), std::make_unique<AcDbPoint>(AcGePoint3d{7, 7, 0}));
    const auto again = read(dxfText(r->db));
    ASSERT_FALSE(again->failure);
    EXPECT_EQ(again->db.modelSpaceEntities().size(), c.entities + 1);
    for (const DxfNote& n : again->report.notes)
      EXPECT_TRUE(n.text.find("EOF") == std::string::npos && n.text.find("no end") == std::string::npos &&
                  n.text.find("breaks off") == std::string::npos)
          << n.text;
  }
}

TEST(DxfDamaged, OnlyTheUnrecognisableFails) {
  const auto failure = [](std::string bytes) {
    return read(std::move(bytes))->failure.value_or(DxfFailure{}).cause;
  };
  EXPECT_EQ(failure(""), "the file is empty");
  EXPECT_EQ(failure("%PDF-1.4\nsome text\n"),
            "no DXF: a section or an entity was expected, the file starts with \"%PDF-1.4\"");
  EXPECT_NE(failure(std::string(1000, '\0')), "");
  EXPECT_NE(failure("0\nSECTION\n"), "");
  const auto dwg = read(std::string("AC1018\0\0\0\0\0\1\2\3", 14) + std::string(500, 'x'));
  ASSERT_TRUE(dwg->failure);
  EXPECT_TRUE(dwg->failure->isDwg);
  EXPECT_EQ(dwg->failure->dwgVersion, "AC1018");
}

// Each of these asks for far more than the file holds.
TEST(DxfDamaged, HostileSizesCostNothing) {
  std::string chain;
  for (int i = 0; i < 10000; ++i)
    chain += "0 BLOCK|8 0|2 B" + std::to_string(i) + "|10 0|20 0|0 INSERT|8 0|2 B" + std::to_string(i + 1) +
             "|10 0|20 0|0 ENDBLK|8 0|";
  const auto deep = read(ascii("0 SECTION|2 BLOCKS|" + chain +
                               "0 ENDSEC|0 SECTION|2 ENTITIES|0 INSERT|8 0|2 B0|10 0|20 0|0 ENDSEC|0 EOF"));
  ASSERT_FALSE(deep->failure);
  EXPECT_FALSE(deep->report.notes.empty());
  EXPECT_NO_THROW(static_cast<void>(deep->db.drawingExtents()));

  std::string laughs;
  for (int i = 0; i < 12; ++i) {
    laughs += "0 BLOCK|8 0|2 L" + std::to_string(i) + "|10 0|20 0|";
    for (int k = 0; k < 10; ++k)
      laughs += i == 11 ? kLine : "0 INSERT|8 0|2 L" + std::to_string(i + 1) + "|10 0|20 0|";
    laughs += "0 ENDBLK|8 0|";
  }
  const auto wide = read(
      ascii("0 SECTION|2 BLOCKS|" + laughs +
            "0 ENDSEC|0 SECTION|2 ENTITIES|0 INSERT|8 0|2 L0|10 0|20 0|70 32767|71 32767|0 ENDSEC|0 EOF"));
  EXPECT_FALSE(wide->report.notes.empty());

  std::string notes;
  for (int i = 0; i < 3000; ++i) notes += "0 LINE|8 0|";
  const auto many = read(entitiesFile(notes + kLine));
  EXPECT_EQ(many->report.notes.size(), kMostNotes);
  EXPECT_EQ(many->report.leftOut, 3000);
  EXPECT_EQ(many->report.notes.back().text, "2501 more remarks like these");
}

}  // namespace
}  // namespace tarnex::test
