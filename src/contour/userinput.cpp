// The one prompt of the system.
// Knows the host's prompts; no command.
#include "contour/userinput.h"

#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr std::size_t kMostKeywords = 16, kKeywordBytes = 6;

std::vector<std::string> keywordSlots(std::string_view keywords) {
  std::vector<std::string> slots;
  for (std::size_t at = 0; at < keywords.size() && slots.size() < kMostKeywords;) {
    const std::size_t begin = keywords.find_first_not_of(' ', at);
    if (begin == std::string_view::npos) break;
    const std::size_t end = std::min(keywords.find(' ', begin), keywords.size());
    slots.emplace_back(keywords.substr(begin, std::min(end - begin, kKeywordBytes)));
    at = end;
  }
  return slots;
}

bool isNumberText(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (!((c >= '0' && c <= '9') || c == '.' || (c == '-' && i == 0))) return false;
  }
  return true;
}

void takeNumber(UserInput& input, const std::string& text) {
  if (text.find('.') != std::string::npos) {
    input.kind = InputKind::kReal;
    input.realValue = std::strtod(text.c_str(), nullptr);
    return;
  }
  long long value = 0;
  input.kind = InputKind::kInteger;
  const bool tooLong = !parseInteger(text, value) && text.find_first_of("0123456789") != std::string::npos;
  if (tooLong) value = text[0] == '-' ? INT32_MIN : INT32_MAX;
  input.intValue = static_cast<int>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
}

// What stands at the point becomes the answer; nothing there leaves the point.
void pickAt(AcEditor& editor, UserInput& input, AcDbObjectId named) {
  AcDbObjectId picked = named;
  if (picked.isNull()) {
    const auto found = entitiesAt(editor, input.point);
    if (found.empty()) return;
    picked = found.front();
  }
  input.kind = InputKind::kEntity;
  input.entity = picked;
  const auto curve = editor.database().open<AcDbCurve>(picked);
  if (!curve) return;
  input.point = curve->getClosestPointTo(input.point, true);
  if (const auto* polyline = editor.database().peek<AcDbPolyline>(picked);
      polyline && polyline->numVerts() > 0)
    input.spanKind = polyline->getBulgeAt(spanAt(polyline->polyline(), input.point.flat())) == 0 ? 2 : 3;
}

// One answer; nothing when it was a text that isn't a number.
bool askOnce(AcEditor& editor, std::string_view prompt, PickMode mode, const std::vector<std::string>& slots,
             const SelectionSet& drag, UserInput& input) {
  std::string words;
  for (const auto& slot : slots) words += (words.empty() ? "" : " ") + slot;
  editor.acedInitGet(128, words);
  const auto answer = editor.acedDragGen(drag, prompt, mode == PickMode::kEntityPickBox);
  switch (answer.reply) {
    case Reply::RTNONE:
      input.kind = InputKind::kEnter;
      return true;
    case Reply::RTKWORD: {
      const std::string text = editor.acedGetInput();
      for (std::size_t i = 0; i < slots.size(); ++i)
        if (slots[i] == text) {
          input.kind = InputKind::kKeyword;
          input.keyword = static_cast<int>(i);
          return true;
        }
      if (!isNumberText(text)) {
        editor.print(" ***指令关键字不正确, 请重新输入!");
        return false;
      }
      takeNumber(input, text);
      return true;
    }
    case Reply::RTNORM: {
      input.kind = InputKind::kPoint;
      input.point = answer.value;
      input.pointKind = 1;
      const auto named = editor.draggedPick();
      if (mode != PickMode::kPointOnly) pickAt(editor, input, named ? named->entity : AcDbObjectId{});
      return true;
    }
    default:
      input.kind = InputKind::kCancel;
      return true;
  }
}

}  // namespace

UserInput getUserInput(AcEditor& editor, std::string_view prompt, PickMode mode, std::string_view keywords,
                       AcDbObjectId dragEntity) {
  const auto slots = keywordSlots(keywords);
  const SelectionSet drag = dragEntity.isNull() ? SelectionSet{} : SelectionSet{dragEntity};
  CommandSetting setting(editor);
  setting.world();
  if (mode == PickMode::kEntityPickBox) setting.osmode(0);
  UserInput input;
  while (!askOnce(editor, prompt, mode, slots, drag, input)) {
  }
  return input;
}

int spanAt(const PolylineCurve& polyline, AcGePoint2d p) {
  const auto& v = polyline.vertices;
  for (std::size_t i = 0; i < polyline.spanCount(); ++i) {
    const AcGePoint2d a = v[i].point, b = v[(i + 1) % v.size()].point;
    if (v[i].bulge == 0) {
      if (a.distanceTo(p) + b.distanceTo(p) - a.distanceTo(b) < 0.1) return static_cast<int>(i);
      continue;
    }
    if (a == b) continue;
    const auto circle = bulgeToCircle(a, b, v[i].bulge);
    if (std::abs(p.distanceTo(circle.centre) - circle.radius) < 0.01 &&
        angleWithinArc(acutAngle(circle.centre, a), acutAngle(circle.centre, b), acutAngle(circle.centre, p),
                       v[i].bulge))
      return static_cast<int>(i);
  }
  return 0;
}

}  // namespace tarnex
