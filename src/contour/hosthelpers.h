// The small helpers around every command: system variables kept and put back, the coordinate system, model
// space, window selection, macros, the hand-over to the NC editor. They are the seam between the system and
// its host; no other room drives the host's prompts by itself.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/module.h"

namespace tarnex {

inline constexpr int kLeaveAsIs = -9999;

// Each returns the value that stood before; -9999 (for setCmdEcho anything but 0 and 1, for setPellipse a
// negative value) only reads.
int setOsmode(AcEditor& editor, int value);
int setCmdEcho(AcEditor& editor, int value);
int setPellipse(AcEditor& editor, int value);
double setTextSize(AcEditor& editor, double value);
int setSnapFlag(AcDbDatabase& drawing, int value);      // drawing variable SNAPFLAG
int setSelMask(AcDbDatabase& drawing, int value);       // drawing variable SELMASK
[[nodiscard]] double viewUnit(const AcEditor& editor);  // VIEWSIZE * 0.025, mm

// Leaves a coordinate system parallel to world with its origin at p (a rotation isn't kept) and returns the
// origin that stood before; nothing only reads.
AcGePoint3d setUcsOrigin(AcEditor& editor, const std::optional<AcGePoint3d>& p);

// World coordinates, and system variables as a command wants them, put back on every way out.
class CommandSetting {
 public:
  explicit CommandSetting(AcEditor& editor) : editor_(editor) {}
  CommandSetting(const CommandSetting&) = delete;
  CommandSetting& operator=(const CommandSetting&) = delete;
  ~CommandSetting();
  CommandSetting& world();
  CommandSetting& osmode(int value);
  CommandSetting& cmdEcho(int value);

 private:
  AcEditor& editor_;
  std::optional<AcGePoint3d> origin_;
  std::optional<int> osmode_, cmdEcho_;
};

// Sets layer (null: the current one), colour and linetype ("" by layer) and appends.
AcDbObjectId appendToModelSpace(AcDbDatabase& drawing, std::unique_ptr<AcDbEntity> entity, AcDbObjectId layer,
                                int color, std::string_view linetype);

// The entities of the window from `first` to a corner that the user gives: crossing when it is drawn to the
// left. Empty on cancel. A list of handles in the corner's place names the entities themselves.
[[nodiscard]] SelectionSet windowSelect(AcEditor& editor, const AcGePoint3d& first);

struct PickBox {
  AcGePoint3d high, low;
};
[[nodiscard]] PickBox pickBoxCorners(const AcEditor& editor, const AcGePoint3d& p);
[[nodiscard]] SelectionSet entitiesAt(AcEditor& editor, const AcGePoint3d& p);

void waitForEnter(AcEditor& editor);
void sendToHost(AcEditor& editor, std::string_view text);
// ^C, ^P and ; as in menu macros; a line holds any length.
void runMacro(AcEditor& editor, std::string_view text);

void highlightEntity(AcDbDatabase& drawing, AcDbObjectId id);
void unhighlightEntity(AcDbDatabase& drawing, AcDbObjectId id);
void setEntityColor(AcDbDatabase& drawing, AcDbObjectId id, int color);
// Erases entities on locked layers too; the layers' locks are as before afterwards.
void eraseList(AcDbDatabase& drawing, SelectionSet& list);

// Gives the NC text of the file `path` (a real path, may be empty) to the editor through the shared text area
// and starts the editor. The file itself stays as it is until the editor saves, so a text longer than the
// area, an area that isn't there, and an editor that can't be started lose nothing; the user is told.
void handOverToEditor(Module& module, const std::string& path);
// Waits until no editor holds an older text of that file, which it would save over a newer one.
void waitForEditorsOf(Module& module, const std::string& path);
// Waits for the programs that were started: at the program's own end.
void waitForStarted(Module& module);

}  // namespace tarnex
