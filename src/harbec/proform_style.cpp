// The forms of one process style: what holds for the whole of it, then its passes.
// Knows the style's fields and the conditions of the cell in force.
#include <algorithm>

#include "harbec/proform.h"
#include "machining/conditionlines.h"
#include "machining/conditiontable.h"
#include "machining/machinepost.h"

namespace tarnex {

namespace {

constexpr int kStyleTitle = 20332, kPassesTitle = 20345, kNoBlank = 20346, kNoSuchCondition = 20347,
              kNameTaken = 20348;
constexpr ChoiceRow kKinds[] = {{0, 20336}, {2, 20337}, {3, 20338}, {4, 20339}};
constexpr double kMostOffset = 10, kMostTaper = 89.999, kMostValue = 1e6;  // mm, degrees
constexpr double kNameBytes = 19, kCodeBytes = 7, kConditionBytes = 4, kSecondBytes = 10;

bool isWord(const std::string& text) {
  return !text.empty() && text.find_first_of(" \t\r\n\v\f") == std::string::npos;
}

// Such a text would shift the fields behind it in the drawing.
FormField& addWord(FreeForm& form, const std::string& name, int caption, const std::string& value,
                   double bytes) {
  FormField& field = form.add(name, caption, FieldKind::kText, value);
  field.high = bytes;
  field.check = [why = form.text(kNoBlank, "must be one word")](const FieldValue& v) {
    return isWord(std::get<std::string>(v)) ? std::string() : why;
  };
  return field;
}

std::vector<std::string> linesInForce(const DialogFrame& frame, const JobLayout& job) {
  const std::string folder = frame.installFolder();
  MachinePost post;
  (void)readPost(postPath(folder, job.sPostPath, job.sMachine), post);
  ConditionTable table;
  table.load(conditionPath(folder, job.sPostPath, post.conditionFile[static_cast<std::size_t>(job.nDbf)]),
             conditionListsPath(folder));
  const auto family = machineFamily(job.sPostPath, [&](int id) { return textOr(frame, id, ""); });
  if (family.value_or(post.nFamily) == kFamilyFirstCell) return table.linesOf({});
  const auto cell = table.find(job.sMaterial, job.dWireRad, job.dThick);
  return cell ? table.linesOf(*cell) : std::vector<std::string>();
}

std::string conditionNumbers(const std::vector<std::string>& lines) {
  std::string all;
  for (std::size_t i = headLineCount(lines); i < lines.size(); ++i)
    if (lines[i].find('=') != std::string::npos)
      all += (all.empty() ? "" : ", ") + lines[i].substr(1, lines[i].find('=') - 1);
  return all;
}

// A condition is one that the cell lists; what stands already stays possible, and so is all where no
// conditions are kept.
void addCondition(FreeForm& form, const std::string& name, const std::string& standing,
                  const std::vector<std::string>& lines) {
  FormField& field = addWord(form, name, 20342, standing, kConditionBytes);
  const std::string numbers = conditionNumbers(lines);
  if (numbers.empty()) return;
  const std::string why =
      formatChecked(form.text(kNoSuchCondition, "is none of: %s"), {std::string_view(numbers)});
  field.check = [=, word = field.check](const FieldValue& v) {
    const auto& text = std::get<std::string>(v);
    if (const std::string fault = word(v); !fault.empty() || text == standing) return fault;
    return conditionLine(lines, text) ? std::string() : why;
  };
}

void addPass(FreeForm& form, const ProcessStyle& style, std::size_t g,
             const std::vector<std::string>& lines) {
  const PassRecord& pass = style.passes[g];
  const std::string number = "." + std::to_string(g + 1);
  addWord(form, "sCode" + number, 20340, pass.sCode, kCodeBytes);
  form.real("dValue1" + number, 20341, pass.dValue1, -kMostOffset, kMostOffset);
  addCondition(form, "sSub1" + number, pass.sSub1, lines);
  addWord(form, "sSub2" + number, 20343, pass.sSub2, kSecondBytes);
  form.real("dValue2" + number, 20344, pass.dValue2, -kMostValue, kMostValue);
  form.real("passOffset" + number, 20349, style.passOffset[g], -kMostTaper, kMostTaper);
}

void takePass(FreeForm& form, ProcessStyle& style, std::size_t g) {
  PassRecord& pass = style.passes[g];
  const std::string number = "." + std::to_string(g + 1);
  pass.sCode = form.textOf("sCode" + number);
  pass.dValue1 = form.realOf("dValue1" + number);
  pass.sSub1 = form.textOf("sSub1" + number);
  pass.sSub2 = form.textOf("sSub2" + number);
  pass.dValue2 = form.realOf("dValue2" + number);
  style.passOffset[g] = form.realOf("passOffset" + number);
}

// Paths and the job's styles find each other by name.
void addName(FreeForm& form, const JobLayout& job, std::size_t at) {
  FormField& field = addWord(form, "sName", 20333, job.styles[at].sName, kNameBytes);
  std::vector<std::string> others;
  for (std::size_t i = 0; i < static_cast<std::size_t>(job.nStyleCount); ++i)
    if (i != at) others.push_back(job.styles[i].sName);
  field.check = [others, word = field.check,
                 why = form.text(kNameTaken, "is another style's name")](const FieldValue& v) {
    const std::string fault = word(v);
    const bool taken = std::ranges::find(others, std::get<std::string>(v)) != others.end();
    return !fault.empty() || !taken ? fault : why;
  };
}

bool askHead(DialogFrame& frame, JobLayout& job, std::size_t at) {
  ProcessStyle& style = job.styles[at];
  FreeForm form(frame, kStyleTitle);
  addName(form, job, at);
  form.whole("nColour", 20334, colourOf(style), 0, 256);
  form.keepStanding(form.choice("nKind", 20335, kindOf(style), kKinds), FieldKind::kInteger);
  form.whole("nPasses", 20350, passesOf(style), 1, kMostPasses);
  form.real("dValueA", 20351, style.dValueA, -kMostOffset, kMostOffset);
  form.real("dValueB", 20352, style.dValueB, -kMostValue, kMostValue);
  form.real("dValueC", 20353, style.dValueC, -kMostTaper, kMostTaper);
  form.real("dValueD", 20354, style.dValueD, -kMostValue, kMostValue);
  if (!form.confirmed()) return false;
  style.sName = form.textOf("sName");
  style.nCode = form.wholeOf("nColour") * 100 + form.wholeOf("nKind");
  style.nPassLast = form.wholeOf("nPasses") - 1;
  style.dValueA = form.realOf("dValueA");
  style.dValueB = form.realOf("dValueB");
  style.dValueC = form.realOf("dValueC");
  style.dValueD = form.realOf("dValueD");
  return true;
}

}  // namespace

bool askStyle(DialogFrame& frame, JobLayout& job) {
  const auto at = static_cast<std::size_t>(job.nStyleNow);
  if (!askHead(frame, job, at)) return false;
  ProcessStyle& style = job.styles[at];
  const auto lines = linesInForce(frame, job);
  FreeForm form(frame, kPassesTitle);
  const auto passes = static_cast<std::size_t>(passesOf(style));
  for (std::size_t g = 0; g < passes; ++g) addPass(form, style, g, lines);
  if (!form.confirmed()) return false;
  for (std::size_t g = 0; g < passes; ++g) takePass(form, style, g);
  return true;
}

}  // namespace tarnex
