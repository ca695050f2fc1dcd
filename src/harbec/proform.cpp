// The form of a slow-wire job.
// Knows the job's fields and where their choices come from; styles are asked for beside it.
#include "harbec/proform.h"

#include <algorithm>

#include "harbec/harbec.h"
#include "host/platform/files.h"
#include "machining/conditiontable.h"
#include "machining/jobsource.h"
#include "machining/machines.h"

namespace tarnex {

FormField& FreeForm::add(const std::string& name, int caption, FieldKind kind, FieldValue value) {
  form.fields.push_back({name, text(caption, name), kind, std::move(value), -1e9, 1e9, {}, {}});
  return form.fields.back();
}

FormField& FreeForm::real(const std::string& name, int caption, double value, double low, double high) {
  FormField& field = add(name, caption, FieldKind::kReal, value);
  field.low = low;
  field.high = high;
  return field;
}

FormField& FreeForm::whole(const std::string& name, int caption, long long value, double low, double high) {
  FormField& field = add(name, caption, FieldKind::kInteger, value);
  field.low = low;
  field.high = high;
  return field;
}

FormField& FreeForm::choice(const std::string& name, int caption, long long value,
                            std::span<const ChoiceRow> rows) {
  FormField& field = add(name, caption, FieldKind::kChoice, value);
  for (const auto& row : rows)
    field.choices.emplace_back(static_cast<long long>(row.value),
                               text(row.caption, std::to_string(row.value)));
  return field;
}

void FreeForm::keepStanding(FormField& field, FieldKind typed) {
  const auto stands = [&](const auto& choice) { return choice.first == field.value; };
  if (field.choices.empty())
    field.kind = typed;
  else if (std::ranges::none_of(field.choices, stands))
    field.choices.emplace_back(field.value, recordText(field.value));
}

double FreeForm::realOf(const std::string& name) {
  return std::get<double>(form.field(name)->value);
}

int FreeForm::wholeOf(const std::string& name) {
  return static_cast<int>(std::get<long long>(form.field(name)->value));
}

std::string FreeForm::textOf(const std::string& name) {
  return std::get<std::string>(form.field(name)->value);
}

}  // namespace tarnex

namespace {

using namespace tarnex;

constexpr int kJobOfDrawing = 20300, kJobOfLast = 20301, kSourceTitle = 20501;

constexpr ChoiceRow kActions[] = {{1, 20303}, {0, 20304}, {4, 20305}, {2, 20306},
                                  {3, 20307}, {7, 20500}, {6, 20308}, {5, 20309}};
constexpr ChoiceRow kFiles[] = {{0, 20312}, {1, 20313}};
constexpr ChoiceRow kCutTypes[] = {{CutType::kByFigure, 20318}, {CutType::kByPass, 20319}};
constexpr ChoiceRow kSortModes[] = {
    {SortMode::kByNumber, 20321}, {SortMode::kByStyle, 20322}, {SortMode::kNearestNext, 20323}};
constexpr ChoiceRow kLeads[] = {{0, 20325}, {1, 20326}};

constexpr double kHighestPlane = 10000, kLongestText = 19, kLongestPath = 4096, kThickest = 10000,
                 kThickestWire = 10;

// Choices of machine, material, wire and thickness from the install folder.
void addMachine(FreeForm& form, const JobLayout& job, const std::string& installFolder) {
  FormField& machine =
      form.add("machine", 20310, FieldKind::kChoice, MachineName{job.sPostPath, job.sMachine}.text());
  machine.high = 2 * kLongestText + 1;
  for (const auto& name : machinesOf(installFolder)) machine.choices.emplace_back(name.text(), name.name);
  form.keepStanding(machine, FieldKind::kText);
}

void addConditions(FreeForm& form, const JobLayout& job, const std::string& installFolder) {
  ConditionTable table;
  table.load({}, conditionListsPath(installFolder));
  form.choice("nDbf", 20311, job.nDbf, kFiles);
  FormField& material = form.add("sMaterial", 20314, FieldKind::kChoice, job.sMaterial);
  material.high = kLongestText;
  for (std::size_t m = 0; m < table.materialCount(); ++m)
    material.choices.emplace_back(table.materialName(m), table.materialName(m));
  form.keepStanding(material, FieldKind::kText);
  const auto values = [&](FormField& field, const std::vector<ConditionTable::Value>& list) {
    field.kind = FieldKind::kChoice;
    for (const auto& v : list) field.choices.emplace_back(v.value, v.text);
    form.keepStanding(field, FieldKind::kReal);
  };
  values(form.real("dWireRad", 20315, job.dWireRad, 0, kThickestWire), table.rads());
  values(form.real("dThick", 20316, job.dThick, 0, kThickest), table.thicks());
}

// The styles in use and the next.
void addStyles(FreeForm& form, const JobLayout& job) {
  form.whole("nStyleCount", 20329, job.nStyleCount, 1, kMostStyles);
  FormField& now = form.choice("nStyleNow", 20330, std::clamp(job.nStyleNow, 0, kMostStyles - 1) + 1LL, {});
  for (int i = 0; i < kMostStyles && i <= job.nStyleCount; ++i)
    now.choices.emplace_back(
        i + 1LL, i < job.nStyleCount ? job.styles[static_cast<std::size_t>(i)].sName : form.text(20331, "+"));
  form.keepStanding(now, FieldKind::kInteger);
}

// The job becomes what a source says over it. False: cancelled, or the source has faults; the first is told.
bool takeSource(DialogFrame& frame, JobLayout& job) {
  FreeForm form(frame, kSourceTitle);
  form.add("jobFile", 20502, FieldKind::kFile, std::string()).high = kLongestPath;
  if (!form.confirmed()) return false;
  const std::string path = absolutePath(form.textOf("jobFile"));
  const auto text = readFile(path);
  if (!text) {
    frame.alert(text.error.text());
    return false;
  }
  auto read = readJobSource(*text.value, path, job);
  if (!read.faults.empty()) {
    frame.alert(read.faults.front());
    return false;
  }
  job = std::move(read.job);
  return true;
}

// A style that comes into use under a name that another has gets one of its own.
void useStyles(JobLayout& job, int count) {
  for (int i = job.nStyleCount; i < count; ++i) {
    auto& style = job.styles[static_cast<std::size_t>(i)];
    const auto taken = [&] {
      return std::any_of(job.styles.begin(), job.styles.begin() + i,
                         [&](const ProcessStyle& other) { return other.sName == style.sName; });
    };
    for (int n = i + 1; taken(); ++n) style.sName = formatted("STYLE%d", n);
  }
  job.nStyleCount = count;
}

bool take(FreeForm& form, JobLayout& job, DialogFrame& frame) {
  MachineName machine;
  std::string error;
  if (!parseMachine(form.textOf("machine"), machine, error)) {
    frame.alert(error);
    return false;
  }
  job.sPostPath = machine.folder;
  job.sMachine = machine.name;
  job.nDbf = form.wholeOf("nDbf");
  job.sMaterial = form.textOf("sMaterial");
  job.dWireRad = form.realOf("dWireRad");
  job.dThick = form.realOf("dThick");
  job.nCutType = form.wholeOf("nCutType");
  job.nSortMode = form.wholeOf("nSortMode");
  job.nLeaderType = form.wholeOf("nLeaderType");
  job.dThickAux = form.realOf("dThickAux");
  job.dThickProg = form.realOf("dThickProg");
  const int now = form.wholeOf("nStyleNow");
  useStyles(job, std::max(form.wholeOf("nStyleCount"), now));
  job.nStyleNow = now - 1;
  job.bKept = form.wholeOf("bKeepJob") != 0;
  return true;
}

}  // namespace

int ProStyleDlg(DialogFrame* frame, JobLayout* job, int bKnown) {
  constexpr int kNotConfirmed = -1, kEditStyle = 4, kFromSource = 7;
  if (!frame || !job) return kNotConfirmed;
  JobLayout edited = *job;
  (void)edited.hold();
  FreeForm form(*frame, bKnown ? kJobOfDrawing : kJobOfLast);
  form.choice("nAction", 20302, 1, kActions);
  addMachine(form, edited, frame->installFolder());
  addConditions(form, edited, frame->installFolder());
  form.choice("nCutType", 20317, edited.nCutType, kCutTypes);
  form.choice("nSortMode", 20320, edited.nSortMode, kSortModes);
  form.choice("nLeaderType", 20324, edited.nLeaderType == 1 ? 1 : 0, kLeads);
  form.real("dThickAux", 20327, edited.dThickAux, -kHighestPlane, kHighestPlane);
  form.real("dThickProg", 20328, edited.dThickProg, -kHighestPlane, kHighestPlane);
  addStyles(form, edited);
  form.add("bKeepJob", 20503, FieldKind::kYesNo, edited.bKept ? 1LL : 0LL);
  if (!form.confirmed() || !take(form, edited, *frame)) return kNotConfirmed;
  const int action = form.wholeOf("nAction");
  if (action == kEditStyle && !askStyle(*frame, edited)) return kNotConfirmed;
  if (action == kFromSource && !takeSource(*frame, edited)) return kNotConfirmed;
  *job = edited;
  return action == kFromSource ? kEditStyle : action;
}
