// Condition files, small and hostile, and what a large table costs.
// Knows the files as text.
#include "machining/conditiontable.h"

#include <gmock/gmock.h>

#include <chrono>

#include "bytes.h"
#include "host/platform/files.h"

namespace tarnex {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Conditions : public testing::Test {
 protected:
  void TearDown() override { EXPECT_FALSE(removeTree(folder)); }
  int load(const std::string& conditions, const std::string& lists) {
    EXPECT_FALSE(writeFileAtomically(folder + "/c.ini", conditions));
    EXPECT_FALSE(writeFileAtomically(folder + "/Main.dat", lists));
    return table.load(folder + "/c.ini", folder + "/Main.dat");
  }
  std::string folder = temporaryFolder("conditions");
  ConditionTable table;
};

constexpr const char* kLists =
    "[Matrial]\n1=SKD11\n2=Cu\n[Rad]\n1=0.20\n2=0.25\n[Thick]\n1=5\n2=20\n3=\n4=40\n";

TEST_F(Conditions, CellsByMaterialWireAndThickness) {
  EXPECT_EQ(load("[Main]\nVer=2\n[skd11-0.20-5]\n1=(head)\n2=C000=off\n3=C001=rough\nCORNERCODE=Q1\n"
                 "[SKD11-0.2-20]\n1=never\n[Cu-0.25-20]\n1=a\n3=c\n",
                 kLists),
            2);
  EXPECT_EQ(table.materialCount() * 100 + table.radCount(1) * 10 + table.thickCount(1, 1), 222u);
  EXPECT_EQ(table.materialName(1), "Cu");
  EXPECT_EQ(table.radValue(0, 1), 0.25);
  EXPECT_EQ(table.thickValue(0, 0, 1), 20);
  EXPECT_THAT(table.linesOf({0, 0, 0}), ElementsAre("(head)", "C000=off", "C001=rough"));
  EXPECT_EQ(table.cornerCode({0, 0, 0}), "Q1");
  EXPECT_THAT(table.linesOf({0, 0, 1}), IsEmpty());         // the list spells the wire 0.20
  EXPECT_THAT(table.linesOf({1, 1, 1}), ElementsAre("a"));  // a missing key ends the cell
  EXPECT_EQ(table.materialName(2) + table.line({0, 0, 0}, 3) + table.cornerCode({5, 5, 5}), "");
  EXPECT_EQ(table.radCount(2) + table.thickCount(0, 2) + table.lineCount({9, 0, 0}), 0u);
  EXPECT_EQ(table.radValue(0, 7) + table.thickValue(0, 0, 2), 0);
  ASSERT_TRUE(table.find("skd11", 0.2, 20));
  EXPECT_EQ(table.find("skd11", 0.2, 20)->thick, 1u);
  EXPECT_FALSE(table.find("SKD11", 0.2, 21));
  EXPECT_FALSE(table.find("SKD", 0.2, 20));
  EXPECT_THAT(table.faults(),
              Contains("[SKD11-0.2-20] is the cell of no material, wire and thickness of Main.dat"));
  EXPECT_THAT(table.faults(), Contains("[Cu-0.25-20]: 1 line(s) behind a missing or empty key aren't read"));
}

TEST_F(Conditions, VersionOneHasNoWireLevel) {
  EXPECT_EQ(load("[MAIN]\nver=1\n[SKD11-5]\n1=C001=x\n", kLists), 1);
  EXPECT_THAT(table.linesOf({0, 0, 0}), ElementsAre("C001=x"));
  EXPECT_THAT(table.linesOf({0, 1, 0}), ElementsAre("C001=x"));
  EXPECT_EQ(load("[SKD11-0.20-5]\n1=C001=x\n", kLists), 0);  // no Ver: the cells are there all the same
  EXPECT_EQ(table.lineCount({0, 0, 0}), 1u);
  EXPECT_EQ(table.load(folder + "/none.ini", folder + "/Main.dat"), 0);
  EXPECT_EQ(table.materialCount(), 2u);
  EXPECT_EQ(table.lineCount({0, 0, 0}), 0u);
}

TEST_F(Conditions, Limits) {
  std::string lists = "[Matrial]\n", cell = "[Main]\nVer=1\n[M1-1]\n";
  for (int i = 1; i <= 101; ++i) lists += std::to_string(i) + "=M" + std::to_string(i) + "\n";
  for (int i = 1; i <= 301; ++i) cell += std::to_string(i) + "=C" + std::to_string(i) + "=\n";
  load(cell + "CORNERCODE=" + std::string(200, 'x'), lists + "[Rad]\n1=0.2\n[Thick]\n1=1\n");
  EXPECT_EQ(table.materialCount(), 100u);
  EXPECT_EQ(table.lineCount({0, 0, 0}), 300u);
  EXPECT_EQ(table.cornerCode({0, 0, 0}).size(), 127u);
}

TEST_F(Conditions, ChineseFilesOfEitherKind) {
  // 铜板 is CD AD B0 E5 in GB, which is no UTF-8.
  EXPECT_EQ(load("[Main]\nVer=1\n[\xCD\xAD\xB0\xE5-5]\n1=\xCD\xAD\xB0\xE5\n",
                 "[Matrial]\n1=铜板\n[Rad]\n1=0.2\n[Thick]\n1=5\n"),
            1);
  EXPECT_THAT(table.linesOf({0, 0, 0}), ElementsAre("铜板"));
}

TEST_F(Conditions, LinesAreNumberedByTheirFront) {
  EXPECT_EQ(conditionNumber("C012=x"), 12);
  EXPECT_EQ(conditionNumber("c0="), 0);
  for (const char* none : {"", "C", "C=", "12=", "CC1=", "C1", "C-1=", "C99999999999="})
    EXPECT_EQ(conditionNumber(none), -1) << none;
}

// A million cells, a thousand of them with lines, and ten thousand sections besides.
TEST_F(Conditions, ALargeTableIsReadOnce) {
  std::string lists, file = "[Main]\nVer=2\n";
  for (const char* section : {"Matrial", "Rad", "Thick"}) {
    lists += std::string("[") + section + "]\n";
    for (int i = 1; i <= 100; ++i) lists += std::to_string(i) + "=" + std::to_string(i) + "\n";
  }
  for (int i = 0; i < 1000; ++i) {
    file += "[" + std::to_string(1 + i % 10) + "-" + std::to_string(1 + i / 10 % 10) + "-" +
            std::to_string(1 + i / 100) + "]\n";
    for (int k = 1; k <= 20; ++k)
      file += std::to_string(k) + "=C" + std::to_string(k) + "=" + std::to_string(i) + "\n";
  }
  for (int i = 0; i < 10000; ++i) file += "[x" + std::to_string(i) + "]\n1=y\n";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(load(file, lists), 2);
  std::size_t lines = 0;
  for (std::size_t m = 0; m < 100; ++m)
    for (std::size_t t = 0; t < 100; ++t) lines += table.lineCount({m, 3, t});
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));  // a slow machine's limit
  EXPECT_EQ(lines, 2000u);  // of wire 4: ten materials by ten thicknesses, 20 lines each
}

TEST_F(Conditions, DamagedFilesAreHeld) {
  std::mt19937 random(52);
  const std::string seed =
      "[Main]\nVer=2\n[SKD11-0.20-5]\n1=(head)\n2=C000=off\n3=C001=rough\nCORNERCODE=Q1\n";
  for (int i = 0; i < rounds(100); ++i) {
    load(damaged(seed, random), damaged(kLists, random));
    (void)table.faults();
    for (std::size_t m = 0; m <= table.materialCount(); ++m)
      for (std::size_t t = 0; t < 5; ++t) ASSERT_LE(table.lineCount({m, 0, t}), 300u);
  }
  for (const char* ver : {"-5", "99999999999999999999", "abc", ""})
    EXPECT_LE(load(std::string("[Main]\nVer=") + ver + "\n", "[Rad]\n1=1e999\n2=nan\n3=-\n"), INT32_MAX);
}

}  // namespace
}  // namespace tarnex
