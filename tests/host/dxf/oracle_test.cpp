// Our files before another reader: drawings that it made are read, changed and written, and judged by it.
#include <algorithm>
#include <filesystem>
#include <sstream>

#include "host/dxf/drawings.h"
#include "host/dxf/path_class.h"
#include "host/platform/files.h"
#include "host/platform/system.h"

namespace tarnex::test {
namespace {

constexpr const char* kPython = "/usr/bin/python3";

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) all.push_back(line);
  return all;
}

class DxfOracle : public testing::Test {
 protected:
  void SetUp() override {
    const auto code = runProcess({kPython, "-c", "import ezdxf"}, nullptr);
    if (code != 0) GTEST_SKIP() << "python3-ezdxf isn't installed: nothing here can be judged";
    folder_ = temporaryFolder("dxf-oracle");
  }
  void TearDown() override {
    if (!folder_.empty()) std::filesystem::remove_all(folder_);
  }
  std::string ask(std::vector<std::string> words) {
    words.insert(words.begin(), {kPython, "-B", TARNEX_SOURCE_DIR "/tests/host/dxf/oracle.py"});
    std::string output;
    const auto code = runProcess(words, &output);
    return code == 0 ? output : "python ended with " + std::to_string(code.value_or(-1)) + "\n" + output;
  }
  std::string folder_;
};

void addLayer(AcDbDatabase& db, const char* name, int color) {
  auto layer = std::make_unique<AcDbLayerTableRecord>();
  layer->setName(name);
  layer->setColorIndex(color);
  db.addLayer(std::move(layer));
}

// A line, a bulged polyline, paths with short and long records, other curves, a layer and a dictionary.
void addThings(AcDbDatabase& db) {
  addLayer(db, "WIRE", 3);
  const auto append = [&](std::unique_ptr<AcDbEntity> e) {
    e->setLayer(db.layer("WIRE"));
    e->setColorIndex(6);
    db.appendAcDbEntity(db.modelSpace(), std::move(e));
  };
  append(std::make_unique<AcDbLine>(AcGePoint3d{1, 2, 0}, AcGePoint3d{3, 4.5, 0}));
  append(std::make_unique<AcDbPolyline>(PolylineCurve{{{{0, 0}, 0.5}, {{4, 0}, 0}, {{4, 4}, 0}}, true}));
  append(makePath("short"));
  append(makePath(std::string(40000, 'x'), 3));
  append(std::make_unique<AcDbMText>(AcGePoint3d{1, 2, 0}, "words", 2.5));
  append(makeCurveEntity(NurbsCurve{2, {{0, 0}, {1, 2}, {3, 0}}, {}, {0, 0, 0, 1, 1, 1}}));
  append(makeCurveEntity(EllipseCurve{{0, 0}, {5, 0}, 0.5, 0, 2 * kPi}));
  auto root = db.open<AcDbDictionary>(db.namedObjectsDictionary(), OpenMode::kForWrite);
  AcDbObjectId id;
  root->setAt("MY_INFO_DICT", std::make_unique<AcDbDictionary>(), id);
  root.close();
  auto record = std::make_unique<AcDbXrecord>();
  record->setFromRbChain({{40, 1.5}});
  db.open<AcDbDictionary>(id, OpenMode::kForWrite)->setAt("KEY", std::move(record), id);
}

TEST_F(DxfOracle, EveryVersionIsReadAndAddedTo) {
  const std::vector<std::string> names = lines(ask({"make", folder_}));
  ASSERT_EQ(names.size(), 7u) << names.at(0);
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const auto bytes = readFile(name);
    ASSERT_TRUE(bytes) << bytes.error.text();
    auto r = read(*bytes.value);
    ASSERT_FALSE(r->failure) << r->failure->cause;
    EXPECT_TRUE(r->report.notes.empty()) << r->report.notes.at(0).line << ": " << r->report.notes.at(0).text;
    EXPECT_EQ(dxfText(r->db), *bytes.value);
    addThings(r->db);
    ASSERT_FALSE(writeFileAtomically(name + ".after.dxf", dxfText(r->db)));
  }
  std::vector<std::string> words = names;
  words.insert(words.begin(), "judge");
  const std::string verdict = ask(words);
  for (const std::string& name : names) {
    const std::size_t from = verdict.find("== " + name + "\n");
    ASSERT_NE(from, std::string::npos) << verdict;
    const std::string one = verdict.substr(from, verdict.find("\n==", from) - from);
    EXPECT_NE(one.find("faults: 0\n"), std::string::npos) << one;
    EXPECT_NE(one.find("LINE WIRE 6 1,2 3,4.5\n"), std::string::npos) << one;
    EXPECT_NE(one.find("POLYLINE WIRE 6 0,0,0.5 4,0,0 4,4,0\n"), std::string::npos) << one;
    EXPECT_NE(one.find("POLYLINE WIRE 6 0,0,0 0.1,7,0.5 0.2,0,0 0.3,7,0\n"), std::string::npos)
        << one;  // the short path
    EXPECT_NE(one.find("POLYLINE WIRE 6 0,0,0 0.1,7,0.5 0.2,0,0\n"), std::string::npos)
        << one;  // the long one
  }
}

TEST_F(DxfOracle, NewDrawingsHaveNoErrors) {
  AcDbDatabase db;
  addThings(db);
  auto block = std::make_unique<AcDbBlockTableRecord>();
  block->setName("FRAME");
  const AcDbObjectId id = db.addBlock(std::move(block));
  db.appendAcDbEntity(id, std::make_unique<AcDbCircle>(AcGePoint3d{1, 1, 0}, 2));
  db.appendAcDbEntity(db.modelSpace(), std::make_unique<AcDbBlockReference>(id, AcGePoint3d{5, 5, 0}));
  db.loadLineTypeFile("Acad_iso02W100");
  ASSERT_FALSE(writeFileAtomically(folder_ + "/new.dxf", dxfText(db)));
  const std::vector<std::string> shown = lines(ask({"show", folder_ + "/new.dxf"}));
  ASSERT_EQ(shown.size(), 9u) << shown.at(0);
  EXPECT_EQ(shown[1], "LWPOLYLINE WIRE 6 0,0,0.5 4,0,0 4,4,0");
  EXPECT_EQ(shown[7], "INSERT 0 256 ");
  EXPECT_EQ(shown[8], "errors: 0");
}

}  // namespace
}  // namespace tarnex::test
