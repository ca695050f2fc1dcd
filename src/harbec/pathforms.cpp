// The forms of path making.
// Knows which settings they ask for, and within what limits.
#include <array>

#include "harbec/harbec.h"
#include "harbec/settingsform.h"
#include "host/platform/format.h"

namespace {

using namespace tarnex;
using enum FieldKind;

constexpr ChoiceRow kSnapModes[] = {{0, 20112}, {1, 20113}};
constexpr ChoiceRow kDirections[] = {{1, 20115}, {-1, 20116}};
constexpr ChoiceRow kSides[] = {{1, 20118}, {-1, 20119}};
constexpr ChoiceRow kOrders[] = {{0, 20130}, {1, 20131}};

// mm, degrees. A lead-in has a length that a program can count. One arc can't go all the way round. A wire
// offset is the wire's radius and its spark gap, at most that of a roughing electrode.
constexpr FieldRow kPathRows[] = {
    {"dLeadLen", 20110, kReal, 0.01, 1000},
    {"nSnapMode", 20111, kChoice, 0, 1, kSnapModes},
    {"nDirection", 20114, kChoice, -1, 1, kDirections},
    {"nSide", 20117, kChoice, -1, 1, kSides},
    {"bSmallHole", 20120, kYesNo},
    {"dSmallHoleRadius", 20121, kReal, 0, 1000},
    {"bFixedLeadAngle", 20122, kYesNo},
    {"dLeadAngle", 20123, kReal, -360, 360},
    {"bThreadAtCentre", 20124, kYesNo},
    {"nCircleArcs", 20125, kInteger, 2, 360},
    {"dOffset", 20126, kReal, 0, 10},
    {"bSameHoles", 20128, kYesNo},
    {"nPathOrder", 20129, kChoice, 0, 1, kOrders},
};

constexpr FieldRow kManualRows[] = {
    {"nDirection", 20114, kChoice, -1, 1, kDirections},
    {"nCircleArcs", 20125, kInteger, 2, 360},
    {"dOffset", 20126, kReal, 0, 10},
    {"nPathOrder", 20129, kChoice, 0, 1, kOrders},
};

}  // namespace

int SetDlg(DialogFrame* frame, int mode) {
  if (frame && mode != 0) {
    frame->alert(formatChecked(textOr(*frame, 20010, "%s"), {std::string_view("SetDlg")}));
    return 0;
  }
  return askAndSave(frame, {"SetDlg", 20100, kPathRows});
}

int SetMDlg(DialogFrame* frame) {
  return askAndSave(frame, {"SetMDlg", 20102, kManualRows});
}
