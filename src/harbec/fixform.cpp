// The form of auto fix.
// Knows which sizes it asks for, and within what limits.
#include "frame/autofix.h"
#include "harbec/harbec.h"
#include "harbec/settingsform.h"

namespace {

using namespace tarnex;
using enum FieldKind;

constexpr ChoiceRow kKinds[] = {{1, 20062}, {2, 20063}, {3, 20064}, {4, 20065},
                                {5, 20066}, {6, 20067}, {7, 20068}};

// mm; degrees. A radius of 0 leaves its corners alone; all else has a size that a program can count.
constexpr double kLeast = 0.001, kMost = 100;

constexpr FieldRow kRows[] = {
    {"nKind", 20061, kChoice, 1, 7, kKinds},
    {"dRound1", 20069, kReal, 0, kMost},
    {"dNotchDepth", 20070, kReal, kLeast, kMost},
    {"dNotchWidth", 20071, kReal, kLeast, kMost},
    {"dRound2Against", 20072, kReal, 0, kMost},
    {"dRound2With", 20073, kReal, 0, kMost},
    {"dRound3", 20074, kReal, 0, kMost},
    {"dCircleReach", 20075, kReal, kLeast, kMost},
    {"dCircleRadius", 20076, kReal, kLeast, kMost},
    {"dEntryDepth", 20077, kReal, kLeast, kMost},
    {"dEntryWidth", 20078, kReal, kLeast, kMost},
    {"dSpikeLen", 20079, kReal, kLeast, kMost},
    {"dSpikeAngle", 20080, kReal, -360, 360},
    {"dEarLen", 20081, kReal, kLeast, kMost},
};

}  // namespace

int AutoFixDlg(DialogFrame* frame) {
  if (!frame) return 0;
  RecordForm<AutoFixSettings> fix(*frame, {"AutoFixDlg", 20060, kRows, 20082});
  return fix.ask() && fix.save() ? 1 : 0;
}
