// The forms of slow-wire jobs: what kind of job, and what its paths are made with.
// Knows which settings they ask for, and within what limits.
#include "harbec/harbec.h"
#include "harbec/jobrows.h"
#include "harbec/settingsform.h"

namespace {

using namespace tarnex;
using enum FieldKind;

constexpr ChoiceRow kTurns[] = {{0, 20410}, {1, 20411}};

// mm. A tab that is cut last has a length. A step is at least a thin wire's slot; of an allowance half a step
// counts.
constexpr FieldRow kDieRows[] = {
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
    kSameHolesRow,
    kGapValueRow,
    kOvercutExitRow,
    {"nRoughA", 20409, kChoice, 0, 1, kTurns},
    {"dRoughB", 20412, kReal, 0, 5},
    {"dRoughC", 20413, kReal, 0, 1000},
    {"dRoughD", 20414, kReal, 0.01, 10},
};

// All but roughing.
constexpr std::span<const FieldRow> kPunchRows{kDieRows, std::size(kDieRows) - 4};

// The kind stands first; it isn't kept.
int askJob(DialogFrame* frame, const FormTable& table, const FormField& kind, int* chosen) {
  if (!frame || !chosen) return 0;
  SettingsForm job(*frame, table);
  auto& fields = job.form.fields;
  fields.insert(fields.begin(), kind);
  if (!job.ask() || !job.save()) return 0;
  *chosen = static_cast<int>(std::get<long long>(job.form.field(kind.name)->value));
  return 1;
}

FormField kindField(const DialogFrame& frame, const char* name, int caption,
                    std::span<const ChoiceRow> kinds) {
  FormField field{name, textOr(frame, caption, name), kChoice, 1LL, 0, 0, {}};
  for (const ChoiceRow& kind : kinds)
    field.choices.emplace_back(FieldValue(static_cast<long long>(kind.value)),
                               textOr(frame, kind.caption, std::to_string(kind.value)));
  return field;
}

constexpr ChoiceRow kDieKinds[] = {{1, 20403}, {3, 20404}};
constexpr ChoiceRow kPunchKinds[] = {{1, 20403}, {4, 20405}};

}  // namespace

int SetDlgDie(DialogFrame* frame, int* kind) {
  if (!frame) return 0;
  return askJob(frame, {"SetDlgDie", 20400, kDieRows}, kindField(*frame, "nDieKind", 20402, kDieKinds), kind);
}

int SetDlgPunch(DialogFrame* frame, int* kind) {
  if (!frame) return 0;
  return askJob(frame, {"SetDlgPunch", 20401, kPunchRows},
                kindField(*frame, "nPunchKind", 20406, kPunchKinds), kind);
}
