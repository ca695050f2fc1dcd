// What all prompts share: the flags and keywords of acedInitGet, transparent commands, points in every
// notation. Knows no single prompt.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/editor/answers.h"
#include "host/editor/osnap.h"
#include "host/editor/reader.h"
#include "host/editor/state.h"

namespace tarnex {

// One prompt under way; takes over what acedInitGet said.
class Asking {
 public:
  Asking(AcEditor& editor, EditorState& state);

  struct Step {
    Reply reply;  // RTNORM: `text` is to be understood; RTKWORD: it is a keyword
    std::string text;
  };
  [[nodiscard]] Step next(std::string_view prompt, Extent extent);
  void complain(std::string_view why);  // says where; an answer of a script that is wrong is a failure
  [[nodiscard]] bool handBack(const std::string& text);  // flag 128: the text becomes acedGetInput's
  // User coordinates; `base` is where relative points start, without it the last point. What picks entities
  // isn't snapped.
  enum class Snap { kRunning, kNone };
  [[nodiscard]] std::optional<AcGePoint3d> point(const std::string& text, const AcGePoint3d* base,
                                                 Snap snap = Snap::kRunning);
  // Both complain when there is none. A list that looks at no point asks for the ids alone.
  [[nodiscard]] std::optional<EntityPick> entityNamed(const HandleText& named);
  [[nodiscard]] AcDbObjectId idNamed(const HandleText& named);
  [[nodiscard]] Answer<double> number(std::string_view prompt,
                                      const std::function<std::optional<double>(const std::string&)>& parse,
                                      const char* wanted);
  [[nodiscard]] Answer<AcGePoint3d> pointOrText(std::string_view prompt, const AcGePoint3d* base);

 private:
  [[nodiscard]] bool runTransparent(const std::string& text);
  [[nodiscard]] AcGePoint3d resolve(const PointText& p, const AcGePoint3d* base);
  [[nodiscard]] std::optional<AcGePoint3d> snappedPoint(OsnapMode mode, const AcGePoint3d* base);
  AcEditor& editor_;
  EditorState& state_;
  InitGet get_;
};

}  // namespace tarnex
