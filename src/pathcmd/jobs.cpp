// `GA` and `GT`: the dialog that chooses a kind of job, and what all jobs do with a path.
// Knows which loop stands behind which kind; the loops stand in files of their own.
#include "pathcmd/jobs.h"

#include "frame/dialoglibrary.h"
#include "frame/drawingvars.h"
#include "pathcmd/jobparts.h"

namespace tarnex {

namespace {

constexpr int kContour = 1, kUpperLower = 2, kRough = 3, kPickedBreak = 4;

// The kind of job that the user chose; 0: none. The heights of both planes go into the dialog from the
// drawing; the jobs here don't change them.
int askKind(Module& module, const char* dialog) {
  const DrawingVars vars(module.drawing());
  if (const auto height = vars.getDouble("ISO_THICKAUX")) module.settings.dThickAux = *height;
  if (const auto height = vars.getDouble("ISO_THICKPROG")) module.settings.dThickProg = *height;
  module.saveSettings();
  int kind = 0;
  if (DialogLibrary(module).call(dialog, 0, &kind) == 0) return 0;
  module.loadSettings();
  rebuildPathList(module);
  return kind;
}

void notBuilt(Module& module, std::string_view what) {
  module.editor.print(module.message(20010, {what}));
  module.editor.commandFailed();
}

}  // namespace

ProcessStyle makeBaseStyle() {
  ProcessStyle style;
  style.sName = kBaseStyleName;
  style.passes[0].sCode = style.passes[0].sSub1 = style.passes[0].sSub2 = "00";
  return style;
}

void dieJob(Module& module, const ProcessStyle* style) {
  const int kind = askKind(module, "SetDlgDie");
  if (kind == kUpperLower) return notBuilt(module, "GA 2");
  if (kind != kContour && kind != kRough) return;
  if (style) return module.editor.print(module.message(1039));
  kind == kContour ? pickContourJob(module, nullptr) : pickRoughJob(module, nullptr);
}

void punchJob(Module& module, const ProcessStyle* style) {
  const int kind = askKind(module, "SetDlgPunch");
  if (kind == kUpperLower) return notBuilt(module, "GT 2");
  if (kind == kContour) pickContourJob(module, style);
  if (kind == kPickedBreak) pickBreakJob(module);
}

Opened<CToolPath> lastPath(Module& module) {
  const auto& list = module.state<PathState>().PathList;
  if (list.empty()) return {};
  return module.drawing().open<CToolPath>(list.back(), OpenMode::kForWrite);
}

void settleJobPath(CToolPath& path, const ProcessStyle* style) {
  (void)path.setClearance(0);  // an open path has none
  path.setOffset(0);
  path.setProcessStyle(style ? *style : makeBaseStyle());
}

BreakPrompt breakPrompt(Module& module) {
  return {module.message(42), module.settings.dOvercutExit};
}

bool pickBreakOfLast(Module& module) {
  {
    auto path = lastPath(module);
    if (pickBreakPoint(module.editor, path, breakPrompt(module))) return true;
  }
  undoLastPath(module.drawing(), module.state<PathState>());
  return false;
}

bool askGap(Module& module) {
  constexpr int kNotZeroNotNegative = 6;
  module.editor.acedInitGet(kNotZeroNotNegative, "");
  const auto length = module.editor.acedGetReal(module.message(33, {module.settings.dGapValue}));
  if (length.reply == Reply::RTCAN) return false;
  if (length) module.settings.dGapValue = length.value;
  module.saveSettings();
  return true;
}

void editJobSettings(Module& module) {
  module.saveSettings();
  if (DialogLibrary(module).call("SetDlg", 0, 1) != 0) module.loadSettings();
}

void GA(Module& module) {
  dieJob(module, nullptr);
}

void GT(Module& module) {
  punchJob(module, nullptr);
}

}  // namespace tarnex
