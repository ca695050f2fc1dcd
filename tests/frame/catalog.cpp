// The open catalogue: languages, files that change or vanish under it, formatting.
// Writes small catalogues of its own; the shipped ones have their own tests.
#include "frame/catalog.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "host/platform/files.h"

namespace tarnex {
namespace {

class Catalog : public ::testing::Test {
 protected:
  void SetUp() override { folder = temporaryFolder("tarnex-catalog"); }
  void TearDown() override { std::filesystem::remove_all(folder); }
  void write(const std::vector<TgfText>& texts) {
    ASSERT_FALSE(writeFileAtomically(path(), writeTgf(texts).value()));
  }
  std::string path() const { return folder + "/VornXx.tgf"; }

  std::string folder;
  MessageCatalog catalog;
};

TEST_F(Catalog, DecodesTheCodePageOfEachLanguage) {
  // "轨" is B9 EC in GB2312, "軌" AD 79 in Big5, "é" E9 in the Latin page.
  const struct {
    int language;
    const char *stored, *shown;
  } cases[] = {{1, "caf\xE9", "café"}, {2, "BP \xB9\xEC", "BP 轨"}, {3, "\xAD\x79", "軌"}, {7, "\xE9", "é"}};
  for (const auto& c : cases) {
    write({{29, c.stored}});
    ASSERT_FALSE(catalog.open(path(), c.language)) << c.language;
    EXPECT_EQ(catalog.getMessage(29), c.shown) << c.language;
    EXPECT_EQ(catalog.getMessage(30), "") << c.language;
  }
  EXPECT_EQ(catalogFileName(1), "VornEn.tgf");
  EXPECT_EQ(catalogFileName(2), "VornGb.tgf");
  EXPECT_EQ(catalogFileName(3), "VornBig5.tgf");
  EXPECT_EQ(catalogFileName(7), "VornEn.tgf");
}

TEST_F(Catalog, SaysInTheLanguageThatTheFileIsMissing) {
  write({{1, "one"}});
  ASSERT_FALSE(catalog.open(path(), 1));
  EXPECT_EQ(catalog.open("C\\x.tgf", 1), "Cann't open file: \nC\\x.tgf\n\nPlease connect us.");
  EXPECT_FALSE(catalog.isOpen());
  EXPECT_EQ(catalog.getMessage(1), "") << "the catalogue open before has been closed";
  EXPECT_EQ(catalog.open("x", 2), "无法开启文件:\nx\n\n详细情况请联系软件供应商.");
  EXPECT_EQ(catalog.open("x", 3), "無法開啟文件:\nx\n\n詳細情況請聯系軟件供應商.");
  EXPECT_EQ(catalog.open("x", 7), "Cann't open file: \nx\n\nPlease connect us.");
}

TEST_F(Catalog, AnswersFromTheFileAsItIsNow) {
  write({{1, "one"}, {2, "two"}});
  ASSERT_FALSE(catalog.open(path(), 1));
  EXPECT_EQ(catalog.getMessage(1), "one");
  write({{1, "uno"}});  // another file under the same name
  EXPECT_EQ(catalog.getMessage(1), "uno");
  EXPECT_EQ(catalog.getMessage(2), "");
  ASSERT_FALSE(removeFile(path()));
  EXPECT_EQ(catalog.getMessage(1), "uno") << "an open file outlives its name";
  write({{1, "one again"}});
  EXPECT_EQ(catalog.getMessage(1), "one again");
}

TEST_F(Catalog, FindsItsFileByASystemPathWhateverTheCase) {
  write({{1, "one"}});
  EXPECT_FALSE(catalog.open(folder + "\\VORNXX.TGF", 1));
  EXPECT_EQ(catalog.getMessage(1), "one");
}

TEST_F(Catalog, FillsArgumentsOnlyWhenTheyMatch) {
  write({{29, "\nPath %d: "}, {4, "L%d %s"}, {68, "taper %g"}});
  ASSERT_FALSE(catalog.open(path(), 1));
  EXPECT_EQ(catalog.format(29, {12}), "\nPath 12: ");
  EXPECT_EQ(catalog.format(4, {3, "1.5"}), "L3 1.5");
  EXPECT_EQ(catalog.format(68, {0.5}), "taper 0.5");
  EXPECT_EQ(catalog.format(29, {"12"}), "\nPath %d: ");
  EXPECT_EQ(catalog.format(29, {1, 2}), "\nPath %d: ");
  EXPECT_EQ(catalog.format(99, {1}), "");
}

}  // namespace
}  // namespace tarnex
