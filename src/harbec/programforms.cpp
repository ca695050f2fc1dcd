// The form of 3B programs and that of duplicate removal.
// Knows which settings they ask for, and within what limits.
#include <algorithm>

#include "frame/folders.h"
#include "harbec/harbec.h"
#include "harbec/settingsform.h"
#include "machining/machinetable.h"

namespace {

using namespace tarnex;
using enum FieldKind;

constexpr ChoiceRow kOvercutModes[] = {{0, 20157}, {1, 20158}};

// mm. Lengths of 0 switch their option off. A corner radius is the wire's and its gap; a step below a
// micrometre is none.
constexpr FieldRow kProgramRows[] = {
    {"bCutoffPause", 20152, kYesNo},
    {"dCutoffLen", 20153, kReal, 0, 100},
    {"bOvercut", 20154, kYesNo},
    {"dOvercutLen", 20155, kReal, 0, 100},
    {"nOvercutMode", 20156, kChoice, 0, 1, kOvercutModes},
    {"bOvercutTangent", 20159, kYesNo},
    {"bAutoFix", 20160, kYesNo},
    {"dAutoFixLen", 20161, kReal, 0, 10},
    {"dMinStep", 20162, kReal, 0, 10},
    {"bAskFileName", 20163, kYesNo},
    {"bPrintCoords", 20164, kYesNo},
};

constexpr FieldRow kDuplicateRows[] = {
    {"bDupPoint", 20181, kYesNo},
    {"bDupCurve", 20182, kYesNo},
    {"dDupTol", 20183, kReal, 0, 100},  // mm; at 0 nothing is short
    {"bFoldCurves", 20184, kYesNo},
};

constexpr double kLongestName = 127;  // bytes: a line of the machine file holds no more
constexpr std::size_t kRememberedName = 19;

// The machines of the file; without a file the name is typed.
FormField machineField(const DialogFrame& frame, const std::string& standing) {
  MachineTable table;
  table.load(frame.installFolder(), frame.language() != 0 ? frame.language() : language());
  FormField field{"machine", textOr(frame, 20151, "machine"), kChoice, standing, 0, kLongestName, {}};
  for (const auto& machine : table.machines()) field.choices.emplace_back(machine.name, machine.name);
  const auto listed = [&](const auto& choice) { return choice.first == field.value; };
  if (field.choices.empty())
    field.kind = kText;
  else if (standing.empty())
    field.value = field.choices.front().first;
  else if (std::ranges::none_of(field.choices, listed))
    field.choices.emplace_back(standing, standing);
  return field;
}

}  // namespace

int PKZSDlg(DialogFrame* frame, std::string* machine) {
  if (!frame || !machine) return 0;
  SettingsForm settings(*frame, {"PKZSDlg", 20150, kProgramRows});
  auto& fields = settings.form.fields;
  fields.insert(fields.begin(), machineField(*frame, *machine));
  if (!settings.ask()) return 0;
  const std::string chosen = std::get<std::string>(settings.form.field("machine")->value);
  if (chosen.size() <= kRememberedName) settings.settings.sMachineKZS = chosen;
  if (!settings.save()) return 0;
  *machine = chosen;
  return 1;
}

int DupDlg(DialogFrame* frame) {
  return askAndSave(frame, {"DupDlg", 20180, kDuplicateRows});
}
