// The forms of what paths show.
// Knows which settings they ask for, and within what limits.
#include <array>

#include "harbec/harbec.h"
#include "harbec/settingsform.h"

namespace {

using namespace tarnex;
using enum FieldKind;

// mm; texts and arrows that are to be seen have a size. Colours are the host's: 0 by block, 256 by layer.
constexpr double kLeastSize = 0.01, kLargestSize = 1000, kByBlock = 0, kByLayer = 256;
constexpr double kMostDecimals = 15;  // more say nothing of a double

constexpr FieldRow kDrawingRows[] = {
    {"dTextHeight", 20032, kReal, kLeastSize, kLargestSize}, {"bShowArrow", 20033, kYesNo},
    {"dArrowLen", 20034, kReal, kLeastSize, kLargestSize},   {"bShowTool", 20035, kYesNo},
    {"nColorTool", 20036, kInteger, kByBlock, kByLayer},     {"bShowReal", 20037, kYesNo},
    {"nColorReal", 20038, kInteger, kByBlock, kByLayer},     {"bShowNull", 20039, kYesNo},
    {"nColorNull", 20040, kInteger, kByBlock, kByLayer},
};

constexpr FieldRow kOtherRows[] = {
    {"bShowNumber", 20041, kYesNo},
    {"nColorNumber", 20042, kInteger, kByBlock, kByLayer},
    {"nCoordDecimals", 20043, kInteger, -1, kMostDecimals},
};

constexpr auto kAllRows = [] {
  std::array<FieldRow, std::size(kDrawingRows) + std::size(kOtherRows)> rows{};
  std::size_t n = 0;
  for (const FieldRow& row : kDrawingRows) rows[n++] = row;
  for (const FieldRow& row : kOtherRows) rows[n++] = row;
  return rows;
}();

bool askView(DialogFrame& frame, const FormTable& table) {
  SettingsForm view(frame, table);
  // Reading the settings has turned the wire path on; what the file says is what stands.
  if (const auto stands = view.settings.storedShowTool())
    view.form.field("bShowTool")->value = *stands != 0 ? 1LL : 0LL;
  return view.ask() && view.save();
}

}  // namespace

int SetDlgView(DialogFrame* frame) {
  return frame && askView(*frame, {"SetDlgView", 20031, kAllRows}) ? 1 : 0;
}

int VornDlg(DialogFrame* frame) {
  return frame && askView(*frame, {"VornDlg", 20030, kDrawingRows}) ? 0 : 1;
}
