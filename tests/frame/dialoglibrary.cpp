// A dialog library that isn't there, or lacks an entry point.
// Calls none; the library itself has its own tests.
#include "frame/dialoglibrary.h"

#include "frame/environment.h"
#include "host/editor/session.h"

namespace tarnex {
namespace {

class DialogLibraryCall : public InFolder {
 protected:
  DialogLibraryCall() { surround("TARNEX_SHIPPED", folder + "/shipped"); }
  std::string told(int language, const char* entry, int notConfirmed, int result) {
    Session session;
    Module module(session.ed, folder, language);
    EXPECT_EQ(DialogLibrary(module).call(entry, notConfirmed), result);
    EXPECT_TRUE(session.ed.anyCommandFailed());
    return session.out;
  }
};

TEST_F(DialogLibraryCall, IsToldInTheUsersLanguage) {
  std::filesystem::create_directories(folder + "/shipped");
  const std::string path = folder + "\\Harbec.DLL";
  EXPECT_THAT(told(2, "PKZSDlg", -1, -1), ::testing::HasSubstr("无法加载文件" + path + ", 详情请洽开发商!"));
  EXPECT_THAT(told(1, "VornDlg", 1, 1), ::testing::HasSubstr("无法加载文件" + path + ", 详情请洽开发商!"));
  EXPECT_THAT(told(3, "DupDlg", 0, 0), ::testing::HasSubstr("無法加載文件" + path + ", 詳情請洽開發商!"));
  std::filesystem::copy_file(TARNEX_BINARY_DIR "/lib/libtarnex_geometry.so", folder + "/Harbec.DLL");
  EXPECT_THAT(told(1, "SetDlgView", 0, 0), ::testing::HasSubstr("无法执行 SetDlgView, 详情请洽开发商!"));
  EXPECT_THAT(told(3, "PKZSDlg", -1, -1), ::testing::HasSubstr("無法執行 PKZSDlg, 詳情請洽開發商!"));
}

}  // namespace
}  // namespace tarnex
