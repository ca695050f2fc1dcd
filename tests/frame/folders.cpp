// Where the data lies and which language it speaks.
// Makes a user's folders and shipped content of its own.
#include "frame/folders.h"

#include "frame/environment.h"

namespace tarnex {
namespace {

class Folders : public InFolder {
 protected:
  Folders() {
    for (const char* name : {"TARNEX_INSTALL", "TARNEX_LANGUAGE", "LC_ALL", "LC_MESSAGES"})
      surround(name, std::nullopt);
    surround("TARNEX_CONFIG", folder + "/tarnex.ini");
    surround("XDG_DATA_HOME", folder + "/data");
    surround("TARNEX_SHIPPED", folder + "/shipped");
    write("shipped/VornEn.tgf", "english");
    write("shipped/KZS/KZSEn.ini", "machines");
  }
};

TEST_F(Folders, TheInstallFolderIsTheChosenOneElseTheUsersOwn) {
  EXPECT_EQ(productFolder("Vornline", ""), folder + "/data/tarnex/Vornline");
  EXPECT_EQ(productFolder("", "Ostrand"), folder + "/data/tarnex/Ostrand");
  EXPECT_EQ(productFolder("", ""), executableFolder());
  write("tarnex.ini", "[Software\\KESTRIX\\Vornline]\nPath=" + folder + "\\here\\\n");
  EXPECT_EQ(productFolder("Vornline", ""), folder + "\\here");
  surround("TARNEX_INSTALL", folder + "/there/");
  EXPECT_EQ(productFolder("Vornline", ""), folder + "/there");
}

TEST_F(Folders, FirstUseMakesTheFolderAndKeepsWhatTheUserEdits) {
  std::string problem;
  const std::string install = installFolder(&problem);
  EXPECT_EQ(problem, "");
  EXPECT_EQ(install, folder + "/data/tarnex/Vornline");
  EXPECT_EQ(read("data/tarnex/Vornline/KZS/KZSEn.ini"), "machines");
  write("data/tarnex/Vornline/KZS/KZSEn.ini", "mine");
  write("shipped/KZS/KZSEn.ini", "newer machines");
  EXPECT_EQ(installFolder(), install);
  EXPECT_EQ(read("data/tarnex/Vornline/KZS/KZSEn.ini"), "mine");
  write("plain", "");
  surround("TARNEX_INSTALL", folder + "/plain/below");
  (void)installFolder(&problem);
  EXPECT_THAT(problem, ::testing::HasSubstr("plain/below"));
}

TEST_F(Folders, AFileOfTheInstallFolderTakesTheShippedOnesPlace) {
  const std::string install = installFolder();
  EXPECT_EQ(realPath(messageFilePath(install, 1)), folder + "/shipped/VornEn.tgf");
  EXPECT_EQ(realPath(messageFilePath(install, 7)), folder + "/shipped/VornEn.tgf");
  EXPECT_EQ(messageFilePath(install, 2), install + "\\VornGb.tgf");  // nowhere: where it should lie
  EXPECT_EQ(dialogLibraryPath(install), install + "\\Harbec.DLL");
  write("shipped/harbec.dll", "shipped");  // whatever the case of the name
  EXPECT_EQ(realPath(dialogLibraryPath(install)), folder + "/shipped/harbec.dll");
  write("data/tarnex/Vornline/Harbec.DLL", "the user's");
  EXPECT_EQ(realPath(dialogLibraryPath(install)), install + "/Harbec.DLL");
}

TEST_F(Folders, LanguageComesFromTheRegistryElseFromTheSystem) {
  const struct {
    const char* locale;
    int language;
  } systems[] = {{"zh_CN.UTF-8", 2}, {"zh_TW.Big5", 3}, {"zh_HK", 1}, {"de_DE.UTF-8", 1}, {"C", 1}, {"", 1}};
  for (const auto& system : systems) {
    surround("LC_ALL", system.locale);
    surround("LANG", "C");
    EXPECT_EQ(language(), system.language) << system.locale;
  }
  surround("LC_ALL", "zh_CN.UTF-8");
  write("tarnex.ini", "[Software\\KESTRIX]\nLanguage=7\n");
  EXPECT_EQ(language(), 7);
  write("tarnex.ini", "[Software\\KESTRIX]\nLanguage=0\n");
  EXPECT_EQ(language(), 2);
  write("tarnex.ini", "[Software\\KESTRIX]\nLanguage=English\n");
  EXPECT_EQ(language(), 2);
  surround("TARNEX_LANGUAGE", "1");
  EXPECT_EQ(language(), 1);
}

}  // namespace
}  // namespace tarnex
