// The display values of a drawing, `SV` and `Vorn`.
// Knows one table of nine rows; the forms are the dialog library's.
#include "pathcmd/showcommands.h"

#include <variant>

#include "frame/dialoglibrary.h"
#include "frame/drawingvars.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

using S = WireCutSettings;

struct DisplayRow {
  const char* key;
  std::variant<double S::*, std::int32_t S::*> member;
};

constexpr DisplayRow kDisplayRows[] = {
    {"VORN_SHOW_dTextHeight", &S::dTextHeight}, {"VORN_SHOW_bShowArrow", &S::bShowArrow},
    {"VORN_SHOW_dArrowLen", &S::dArrowLen},     {"VORN_SHOW_bShowTool", &S::bShowTool},
    {"VORN_SHOW_nColorTool", &S::nColorTool},   {"VORN_SHOW_bShowReal", &S::bShowReal},
    {"VORN_SHOW_nColorReal", &S::nColorReal},   {"VORN_SHOW_bShowNull", &S::bShowNull},
    {"VORN_SHOW_nColorNull", &S::nColorNull},
};

// One entry point of the dialog library, and which of its results confirms.
struct ViewDialog {
  const char* entry;
  int notConfirmed;
  bool (*confirms)(int result);
};

constexpr ViewDialog kViewOptions{"SetDlgView", 0, [](int result) { return result != 0; }};
constexpr ViewDialog kDisplayOptions{"VornDlg", 1, [](int result) { return result == 0; }};

void askDisplay(Module& module, const ViewDialog& dialog) {
  readDisplayValues(module);
  module.saveSettings();
  if (!dialog.confirms(DialogLibrary(module).call(dialog.entry, dialog.notConfirmed))) return;
  module.loadSettings();
  module.settings.bShowTool = module.settings.storedShowTool().value_or(module.settings.bShowTool);
  writeDisplayValues(module);
  rebuildPathList(module);
}

}  // namespace

void readDisplayValues(Module& module) {
  const DrawingVars vars(module.drawing());
  S& settings = module.settings;
  for (const DisplayRow& row : kDisplayRows) {
    if (const auto* real = std::get_if<double S::*>(&row.member))
      settings.** real = vars.getDouble(row.key).value_or(settings.**real);
    else if (const auto whole = vars.getInt(row.key))
      settings.*std::get<std::int32_t S::*>(row.member) = *whole;
  }
}

void writeDisplayValues(Module& module) {
  DrawingVars vars(module.drawing());
  const S& settings = module.settings;
  for (const DisplayRow& row : kDisplayRows) {
    if (const auto* real = std::get_if<double S::*>(&row.member)) {
      if (vars.getDouble(row.key) != settings.**real) vars.setDouble(row.key, settings.**real);
    } else {
      const std::int32_t value = settings.*std::get<std::int32_t S::*>(row.member);
      if (vars.getInt(row.key) != value) vars.setInt(row.key, value);
    }
  }
}

void SV(Module& module) {
  askDisplay(module, kViewOptions);
}

void Vorn(Module& module) {
  askDisplay(module, kDisplayOptions);
}

}  // namespace tarnex
