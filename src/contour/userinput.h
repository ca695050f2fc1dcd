// The one prompt of the system: an entity pick, a point, a number, a keyword or Enter, and which of them it
// was. Knows the host's prompts; commands switch on the kind of the answer.
#pragma once

#include <string>
#include <string_view>

#include "host/editor/editor.h"

namespace tarnex {

enum class InputKind {
  kCancel = 0,
  kEnter = 1,
  kInteger = 2,
  kReal = 3,
  kPoint = 4,
  kEntity = 5,
  kKeyword = 6
};

// What a click can mean.
enum class PickMode { kPointOnly = 0, kEntityPlain = 1, kEntityPickBox = 2 };

struct UserInput {
  InputKind kind = InputKind::kCancel;
  AcGePoint3d point;  // world; on the curve for an entity pick
  int pointKind = 0;  // 1 once a point was set
  AcDbObjectId entity;
  int entityKind = -1;  // -1 unknown
  int spanKind = 0;     // pick on a polyline: 2 straight span, 3 arc, else 0
  int intValue = 0;
  double realValue = 0;
  int keyword = -1;  // index in the keyword list
};

// Prompts until it has an answer. `keywords`: at most 16 words at blanks, each cut to 6 characters. Answers
// are taken in world coordinates; OSMODE is off while a pick box is shown. `dragEntity` is what a frame may
// drag at the cursor.
[[nodiscard]] UserInput getUserInput(AcEditor& editor, std::string_view prompt, PickMode mode,
                                     std::string_view keywords = {}, AcDbObjectId dragEntity = {});

// The first span that takes the point: within 0.1 by summed distances on a straight one, within 0.01 of the
// circle and between the ends on an arc. 0 when none does.
[[nodiscard]] int spanAt(const PolylineCurve& polyline, AcGePoint2d p);

}  // namespace tarnex
