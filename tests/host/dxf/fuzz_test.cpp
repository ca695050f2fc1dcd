// The reader and the writer against files broken in every way: nothing may crash, hang or grow, and what is
// written of a broken drawing is a drawing. TARNEX_LONG=1 runs for long.
#include <cstdlib>
#include <random>

#include "host/dxf/drawings.h"

namespace tarnex::test {
namespace {

std::vector<std::string> seeds() {
  const std::string complete = completeDrawing();
  const std::string old =
      section("BLOCKS", "0 BLOCK|8 0|2 B|10 0|20 0|0 LINE|8 0|10 0|20 0|11 1|21 0|0 ENDBLK|8 0") +
      section(
          "ENTITIES",
          "0 INSERT|8 0|2 B|66 1|10 1|20 1|70 2|0 ATTRIB|8 0|10 0|20 0|40 1|1 x|0 SEQEND|8 0|"
          "0 POLYLINE|8 0|66 1|70 5|0 VERTEX|8 0|10 0|20 0|70 16|0 VERTEX|8 0|10 1|20 0|42 1|70 8|0 SEQEND|8 "
          "0|"
          "0 ARC|8 0|10 0|20 0|40 1|50 0|51 90|210 0|220 0|230 -1|1001 A|1004 00FF|1010 1|1020 2|1030 3") +
      "0 EOF";
  const std::string curves =
      section("HEADER", "9 $ACADVER|1 AC1015|9 $INSUNITS|70 1") +
      section("ENTITIES",
              "0 SPLINE|8 0|70 11|71 2|40 -2|40 -1|40 0|40 1|40 2|40 3|40 4|40 5|40 6|10 0|20 0|10 4|20 0|10 "
              "4|20 4|10 0|20 4|10 0|20 0|10 4|20 0|"
              "0 LWPOLYLINE|5 20|8 0|90 2|70 1|10 0|20 0|42 1|10 5|20 0|0 MTEXT|8 0|10 0|20 0|3 abc|1 "
              "\\U+4E00|0 ELLIPSE|8 0|10 0|20 0|11 3|21 0|40 2|41 0|42 9") +
      "0 EOF";
  return {complete, ascii(old), ascii(curves, "\r\n"), binary(tagsOf(old), false),
          binary(parsed(complete), true)};
}

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}
  std::string operator()(std::string s) {
    for (int n = upTo(6); n >= 0 && !s.empty(); --n) one(s);
    return s;
  }

 private:
  int upTo(std::size_t n) { return static_cast<int>(random_() % (n + 1)); }
  std::size_t at(const std::string& s) { return random_() % s.size(); }
  void one(std::string& s) {
    static const char* const kWords[] = {
        "0\nSECTION\n", "0\nENDSEC\n", "0\nEOF\n",  "1e300", "nan", "-1", "99999999999",
        "0\nVERTEX\n",  "1001\n",      "102\n{X\n", "\r",    "\n",  ",",  "0\nLINE\n  8\n0\n"};
    const std::size_t p = at(s);
    switch (upTo(6)) {
      case 0:
        s[p] = static_cast<char>(random_());
        break;
      case 1:
        s.erase(p, static_cast<std::size_t>(upTo(40)));
        break;
      case 2:
        s.insert(p, kWords[random_() % std::size(kWords)]);
        break;
      case 3:
        s.resize(p);
        break;
      case 4:
        s.insert(p, s.substr(at(s), static_cast<std::size_t>(upTo(200))));
        break;
      case 5:
        eraseLine(s, p);
        break;
      default:
        s[p] = static_cast<char>('0' + upTo(9));
        break;
    }
  }
  static void eraseLine(std::string& s, std::size_t p) {
    const std::size_t from = s.rfind('\n', p), to = s.find('\n', p + 1);
    if (from != std::string::npos && to != std::string::npos && to > from) s.erase(from, to - from);
  }
  std::mt19937 random_;
};

// Everything a program does with a drawing: look, change a little, add, erase, write.
void use(AcDbDatabase& db) {
  static_cast<void>(db.drawingExtents());
  int n = 0;
  for (const AcDbObjectId id : db.modelSpaceEntities()) {
    auto e = db.open<AcDbEntity>(id, OpenMode::kForWrite);
    if (!e) continue;
    if (n % 4 == 0) e->setColorIndex(3);
    if (n % 4 == 1) e->transformBy(AcGeMatrix3d::translation({1, 2, 0}));
    if (n % 4 == 2) e->erase();
    ++n;
  }
  db.appendAcDbEntity(db.modelSpace(), std::make_unique<AcDbPoint>(AcGePoint3d{1, 1, 0}));
}

TEST(DxfFuzz, BrokenFilesNeverBreakTheProgram) {
  const char* longRun = std::getenv("TARNEX_LONG");
  const unsigned rounds = longRun && *longRun == '1' ? 200000 : 4000;
  const std::vector<std::string> files = seeds();
  unsigned readable = 0;
  for (unsigned i = 0; i < rounds; ++i) {
    const std::string bytes = Mutator(i)(files[i % files.size()]);
    const auto r = read(bytes);
    if (r->failure) continue;
    ++readable;
    EXPECT_LE(r->db.objectCount(), bytes.size() + 50) << i;
    use(r->db);
    const auto again = read(dxfText(r->db));
    EXPECT_FALSE(again->failure) << i << ": " << again->failure->cause;
  }
  EXPECT_GT(readable, rounds / 2);
}

}  // namespace
}  // namespace tarnex::test
