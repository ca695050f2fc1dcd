// Values of paths that stand: offset and clearance by `JX`, the process style by the loop of `GG`.
// Knows prompts and paths; programs and the job's table of styles are above it.
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "pathcmd/batch.h"
#include "pathcmd/editcommands.h"
#include "pathcmd/jobparts.h"

namespace tarnex {

namespace {

constexpr int kDie = 0, kPunch = 1, kOpen = 2, kSettings = 3;

// What a number prompt gives; Enter gives what stands. Nothing: cancelled.
std::optional<double> askLength(Module& module, int number, double stands, int initGet) {
  module.editor.acedInitGet(initGet, "");
  const auto answer = module.editor.acedGetReal(module.message(number, {stands}));
  if (answer) return answer.value;
  return answer.reply == Reply::RTNONE ? std::optional(stands) : std::nullopt;
}

class StyleAssignment {
 public:
  StyleAssignment(Module& module, const ProcessStyle& style) : module_(module), style_(style) {}

  // False: cancelled.
  bool run() {
    for (;;) {
      const auto input = getUserInput(module_.editor, module_.message(43, {std::string_view(style_.sName)}),
                                      PickMode::kEntityPickBox, "A B C S");
      if (input.kind == InputKind::kCancel) return false;
      if (input.kind == InputKind::kEnter) return true;
      if (input.kind == InputKind::kKeyword) byKeyword(input.keyword);
      if (input.kind == InputKind::kEntity) toPick(input.entity);
      if (input.kind == InputKind::kPoint) toSelection();
    }
  }

 private:
  void byKeyword(int keyword) {
    if (keyword == kDie) dieJob(module_, &style_);
    if (keyword == kPunch) punchJob(module_, &style_);
    if (keyword == kOpen) openCutJob(module_, &style_);
    if (keyword == kSettings) editJobSettings(module_);
  }

  // Null: no path (told), or one that can't be changed (told).
  Opened<CToolPath> openPath(AcDbObjectId id) {
    if (!module_.drawing().peek<CToolPath>(id)) {
      module_.editor.print(module_.message(1039));
      return {};
    }
    return openPicked(module_, id);
  }

  // True: the path had a style already that is now replaced.
  bool give(CToolPath& path) {
    const bool replaced = path.getProcessStyle().sName != kBaseStyleName;
    path.setProcessStyle(style_);
    return replaced;
  }

  void toPick(AcDbObjectId id) {
    bool replaced = false;
    if (auto path = openPath(id)) replaced = give(*path);
    if (replaced) tellReplaced();
  }

  // The message comes once, and only where the last path had a style too.
  void toSelection() {
    const auto set = module_.editor.acedSSGet("");
    if (!set) return;
    bool replaced = false;
    metered(module_, set.value, [&](AcDbObjectId id) {
      auto path = openPath(id);
      if (!path) return;
      (void)path->setClearance(0);  // an open path has none
      path->setOffset(0);
      replaced = give(*path);
    });
    if (replaced) tellReplaced();
  }

  void tellReplaced() { module_.editor.messageBox(module_.message(115), MB_ICONINFORMATION); }

  Module& module_;
  const ProcessStyle style_;  // a copy: the loop may go on long after the dialog's table has changed
};

}  // namespace

bool assignStyle(Module& module, const ProcessStyle& style) {
  return StyleAssignment(module, style).run();
}

void JX(Module& module) {
  constexpr double kUsualOffset = 0.2, kUsualClearance = 0;  // mm
  constexpr int kNotNegative = 4, kAny = 0;
  CommandSetting setting(module.editor);
  setting.cmdEcho(0);
  const auto offset = askLength(module, 544, kUsualOffset, kNotNegative);
  if (!offset) return;
  const auto clearance = askLength(module, 543, kUsualClearance, kAny);
  if (!clearance) return;
  AcEditor::SelectArgs prompts;
  prompts.addPrompt = module.message(545);
  const auto set = module.editor.acedSSGet("", prompts);
  if (!set) return;
  for (AcDbObjectId id : set.value) {
    if (!module.drawing().peek<CToolPath>(id)) continue;
    auto path = openPicked(module, id);
    if (!path) continue;
    if (!path->setClearance(*clearance)) module.editor.print("\n" + module.message(18));
    path->setOffset(*offset);
  }
}

}  // namespace tarnex
