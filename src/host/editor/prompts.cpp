// The prompts: each asks for one kind of answer, takes keywords, and asks again when the answer isn't of the
// kind. Knows no selection.
#include <cmath>

#include "host/editor/answers.h"
#include "host/editor/asking.h"
#include "host/editor/ucs.h"

namespace tarnex {

namespace {

// Nothing when the number suits the flags, else why not.
const char* refusal(int flags, double v) {
  if ((flags & kNotZero) && v == 0) return "The value must not be zero.";
  if ((flags & kNotNegative) && v < 0) return "The value must not be negative.";
  return nullptr;
}

std::optional<OsnapMode> osnapWord(std::string_view text) {
  struct Row {
    const char* word;
    OsnapMode mode;
  };
  static constexpr Row kRows[] = {{"end", OsnapMode::kOsModeEnd},   {"mid", OsnapMode::kOsModeMid},
                                  {"cen", OsnapMode::kOsModeCen},   {"quad", OsnapMode::kOsModeQuad},
                                  {"int", OsnapMode::kOsModeInt},   {"perp", OsnapMode::kOsModePerp},
                                  {"near", OsnapMode::kOsModeNear}, {"node", OsnapMode::kOsModeNode}};
  for (const auto& row : kRows)
    if (equalIgnoringCase(text, row.word)) return row.mode;
  return std::nullopt;
}

}  // namespace

// ---- the shared part

Asking::Asking(AcEditor& editor, EditorState& state)
    : editor_(editor), state_(state), get_(std::exchange(state.initGet, {})) {}

void Asking::complain(std::string_view why) {
  editor_.print(state_.placePrefix() + std::string(why) + "\n");
  if (!state_.personAnswers) editor_.commandFailed();
}

Asking::Step Asking::next(std::string_view prompt, Extent extent) {
  Question question{prompt, {}, extent, false};
  for (const auto& k : get_.keywords) question.completions.push_back(k.whole);
  for (;;) {
    const Reading reading = readAnswer(state_, question, editor_.journal);
    if (reading.kind != Reading::Kind::kText) return {Reply::RTCAN, {}};
    const std::string text(trimmed(reading.text));
    if (text.empty()) {
      if (!(get_.flags & kNoEnter)) return {Reply::RTNONE, {}};
      complain("An answer is needed here.");
      continue;
    }
    if (text[0] == '\'' && runTransparent(text)) continue;
    if (auto keyword = matchKeyword(get_.keywords, text)) {
      state_.lastInput = *keyword;
      return {Reply::RTKWORD, *keyword};
    }
    return {Reply::RTNORM, text};
  }
}

// True when the text was a command's business.
bool Asking::runTransparent(const std::string& text) {
  const Command* command = editor_.findCommand(text);
  if (!command) return false;
  if (command->flags & ACRX_CMD_TRANSPARENT)
    editor_.runCommand(text);
  else
    complain(command->globalName + " can't run inside another command.");
  return true;
}

bool Asking::handBack(const std::string& text) {
  if (!(get_.flags & kOtherText)) return false;
  state_.lastInput = text;
  return true;
}

AcGePoint3d Asking::resolve(const PointText& p, const AcGePoint3d* base) {
  const AcGePoint3d from = base ? *base : state_.lastPoint;
  if (p.frame == PointText::Frame::kWorld) return worldToUcs(*state_.drawing, p.value);
  if (p.frame == PointText::Frame::kRelative)
    return {from.x + p.value.x, from.y + p.value.y, from.z + p.value.z};
  return p.value;
}

std::optional<AcGePoint3d> Asking::point(const std::string& text, const AcGePoint3d* base, Snap snap) {
  std::optional<AcGePoint3d> result;
  if (const auto p = parsePoint(text)) {
    result = resolve(*p, base);
    if (p->frame == PointText::Frame::kUser && snap == Snap::kRunning)
      result = runningSnap(editor_, state_, *result, base);
  } else if (const auto named = parseHandle(text); named && named->at) {
    result = worldToUcs(*state_.drawing, *named->at);
  } else if (const auto mode = osnapWord(text)) {
    result = snappedPoint(*mode, base);
  }
  if (result) state_.lastPoint = *result;
  return result;
}

// The snap word was one answer, the point that it works on is the next.
std::optional<AcGePoint3d> Asking::snappedPoint(OsnapMode mode, const AcGePoint3d* base) {
  const Reading reading = readAnswer(state_, {" of ", {}, Extent::kWord, false}, editor_.journal);
  const auto p = parsePoint(reading.text);
  if (reading.kind != Reading::Kind::kText || !p) return std::nullopt;
  return snapTo(state_, resolve(*p, base), {mode}, base ? *base : state_.lastPoint);
}

Answer<double> Asking::number(std::string_view prompt,
                              const std::function<std::optional<double>(const std::string&)>& parse,
                              const char* wanted) {
  for (;;) {
    const Step step = next(prompt, Extent::kWord);
    if (step.reply != Reply::RTNORM) return {step.reply, 0};
    const auto v = parse(step.text);
    if (!v) {
      if (handBack(step.text)) return {Reply::RTKWORD, 0};
      complain(wanted);
    } else if (const char* why = refusal(get_.flags, *v)) {
      complain(why);
    } else {
      return {Reply::RTNORM, *v};
    }
  }
}

Answer<AcGePoint3d> Asking::pointOrText(std::string_view prompt, const AcGePoint3d* base) {
  for (;;) {
    const Step step = next(prompt, Extent::kWord);
    if (step.reply != Reply::RTNORM) return {step.reply, {}};
    if (const auto p = point(step.text, base)) return {Reply::RTNORM, *p};
    if (handBack(step.text)) return {Reply::RTKWORD, {}};
    complain("\"" + step.text + "\" is no point; points are written 10,20 or @5,0 or @5<90.");
  }
}

// ---- the prompts

void AcEditor::acedInitGet(int flags, std::string_view keywords) {
  state_->initGet = {flags, parseKeywords(keywords)};
}

std::string AcEditor::acedGetInput() const {
  return state_->lastInput;
}

Answer<AcGePoint3d> AcEditor::acedGetPoint(std::string_view prompt, const AcGePoint3d* base) {
  return Asking(*this, *state_).pointOrText(prompt, base);
}

Answer<double> AcEditor::acedGetReal(std::string_view prompt) {
  return Asking(*this, *state_)
      .number(
          prompt, [](const std::string& t) { return parseReal(t); }, "A number is needed here.");
}

Answer<int> AcEditor::acedGetInt(std::string_view prompt) {
  const auto whole = [](const std::string& t) {
    const auto v = parseInt(t);
    return v ? std::optional<double>(*v) : std::nullopt;
  };
  const auto answer = Asking(*this, *state_).number(prompt, whole, "A whole number is needed here.");
  return {answer.reply, static_cast<int>(answer.value)};
}

Answer<double> AcEditor::acedGetDist(std::string_view prompt, const AcGePoint3d* base) {
  Asking asking(*this, *state_);
  const auto distance = [&](const std::string& t) -> std::optional<double> {
    if (const auto v = parseReal(t)) return v;
    const auto first = asking.point(t, base);
    if (!first) return std::nullopt;
    if (base) return base->distanceTo(*first);
    const auto second = acedGetPoint("Specify second point: ", &*first);
    return second ? std::optional<double>(first->distanceTo(second.value)) : std::nullopt;
  };
  return asking.number(prompt, distance, "A distance or a point is needed here.");
}

Answer<double> AcEditor::acedGetAngle(std::string_view prompt, const AcGePoint3d* base) {
  Asking asking(*this, *state_);
  const auto angle = [&](const std::string& t) -> std::optional<double> {
    if (const auto degrees = parseReal(t)) return *degrees * kPi / 180;
    const auto first = asking.point(t, base);
    if (!first) return std::nullopt;
    if (base) return acutAngle(base->flat(), first->flat());
    const auto second = acedGetPoint("Specify second point: ", &*first);
    return second ? std::optional<double>(acutAngle(first->flat(), second.value.flat())) : std::nullopt;
  };
  return asking.number(prompt, angle, "An angle in degrees or a point is needed here.");
}

Answer<std::string> AcEditor::acedGetString(bool blanks, std::string_view prompt) {
  state_->initGet = {};
  const Question question{prompt, {}, blanks ? Extent::kWholeLine : Extent::kWord, false};
  Reading reading = readAnswer(*state_, question, journal);
  if (reading.kind != Reading::Kind::kText) return {Reply::RTCAN, {}};
  return {Reply::RTNORM, std::move(reading.text)};
}

Answer<std::string> AcEditor::acedGetKword(std::string_view prompt) {
  Asking asking(*this, *state_);
  for (;;) {
    const auto step = asking.next(prompt, Extent::kWord);
    if (step.reply == Reply::RTKWORD) return {Reply::RTNORM, step.text};
    if (step.reply != Reply::RTNORM) return {step.reply, {}};
    if (asking.handBack(step.text)) return {Reply::RTKWORD, step.text};
    asking.complain("\"" + step.text + "\" is none of the choices.");
  }
}

Answer<AcGePoint3d> AcEditor::acedDragGen(const SelectionSet&, std::string_view prompt, bool pickBox) {
  state_->draggedPick.reset();
  Asking asking(*this, *state_);
  for (;;) {
    const auto step = asking.next(prompt, Extent::kWord);
    if (step.reply != Reply::RTNORM) return {step.reply, {}};
    if (const auto named = parseHandle(step.text); named && pickBox) {
      state_->draggedPick = asking.entityNamed(*named);
      if (!state_->draggedPick) continue;
      state_->lastPoint = worldToUcs(*state_->drawing, state_->draggedPick->point);
      return {Reply::RTNORM, state_->lastPoint};
    }
    if (const auto p = asking.point(step.text, nullptr)) return {Reply::RTNORM, *p};
    if (asking.handBack(step.text)) return {Reply::RTKWORD, {}};
    asking.complain("\"" + step.text + "\" is no point; points are written 10,20 or @5,0 or @5<90.");
  }
}

std::optional<EntityPick> AcEditor::draggedPick() const {
  return state_->draggedPick;
}

}  // namespace tarnex
