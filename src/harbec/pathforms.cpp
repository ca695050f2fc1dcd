// The forms of path making.
// Knows which settings they ask for, and within what limits.
#include "harbec/harbec.h"
#include "harbec/jobrows.h"
#include "harbec/settingsform.h"

namespace {

using namespace tarnex;
using enum FieldKind;

constexpr ChoiceRow kOrders[] = {{0, 20130}, {1, 20131}};

// mm, degrees. A lead-in has a length that a program can count. One arc can't go all the way round. A wire
// offset is the wire's radius and its spark gap, at most that of a roughing electrode.
constexpr FieldRow kPathRows[] = {
    kLeadLenRow,
    kSnapModeRow,
    kDirectionRow,
    kSideRow,
    kSmallHoleRow,
    kSmallHoleRadiusRow,
    kFixedLeadAngleRow,
    kLeadAngleRow,
    kThreadAtCentreRow,
    kCircleArcsRow,
    {"dOffset", 20126, kReal, 0, 10},
    kSameHolesRow,
    {"nPathOrder", 20129, kChoice, 0, 1, kOrders},
};

constexpr ChoiceRow kLeadKinds[] = {{0, 20423}, {1, 20424}};

// What a job's paths and their program are made with, mm and degrees; a radius or length of 0 leaves its part
// out.
constexpr FieldRow kJobRows[] = {
    kLeadLenRow,
    kSnapModeRow,
    kDirectionRow,
    kSideRow,
    kFixedLeadAngleRow,
    kLeadAngleRow,
    kThreadAtCentreRow,
    kCircleArcsRow,
    kGapValueRow,
    {"dBridgeLen", 20415, kReal, 0, 1000},
    {"dOvercutLen", 20416, kReal, 0, 100},
    kOvercutExitRow,
    {"dCutoffLen", 20417, kReal, 0, 100},
    {"dIsoOvercut", 20418, kReal, 0, 100},
    {"dIsoAngle", 20419, kReal, 0, 90},
    {"dIsoFixB", 20420, kReal, 0, 10},
    {"dIsoFixA", 20421, kReal, 0, 10},
    {"nIsoOption792", 20422, kChoice, 0, 1, kLeadKinds},
    {"nIsoOption796", 20425, kYesNo},
};

constexpr FieldRow kManualRows[] = {
    kDirectionRow,
    kCircleArcsRow,
    {"dOffset", 20126, kReal, 0, 10},
    {"nPathOrder", 20129, kChoice, 0, 1, kOrders},
};

}  // namespace

int SetDlg(DialogFrame* frame, int mode) {
  return mode == 0 ? askAndSave(frame, {"SetDlg", 20100, kPathRows})
                   : askAndSave(frame, {"SetDlg", 20101, kJobRows});
}

int SetMDlg(DialogFrame* frame) {
  return askAndSave(frame, {"SetMDlg", 20102, kManualRows});
}
