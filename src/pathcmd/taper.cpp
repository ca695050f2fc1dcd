// `XD`, `CX`, `XD0`: tapers of segments and of whole paths.
// Knows paths and prompts.
#include <cmath>

#include "pathcmd/editcommands.h"

namespace tarnex {

namespace {

constexpr double kSteepest = 90;  // degrees; there the wire would lie flat

class TaperLoop {
 public:
  enum class Mode { kWhole = 0, kSegment = 1 };

  TaperLoop(Module& module, Mode mode, std::string_view keywords)
      : module_(module), keywords_(keywords), mode_(mode), value_(module.settings.dLastTaper) {}

  void run() {
    while (answer()) {
    }
    if (module_.settings.dLastTaper == value_) return;
    module_.settings.dLastTaper = value_;
    module_.saveSettings();
  }

 private:
  enum Keyword { kAll, kPart, kClear };

  std::string prompt() {
    const int text = keywords_.empty() ? 68 : 62 + static_cast<int>(mode_);
    return module_.message(text, {value_});
  }

  bool answer() {
    const auto input = getUserInput(module_.editor, prompt(), PickMode::kEntityPickBox, keywords_);
    switch (input.kind) {
      case InputKind::kInteger:
        take(input.intValue);
        return true;
      case InputKind::kReal:
        take(input.realValue);
        return true;
      case InputKind::kEntity:
        picked(input);
        return true;
      case InputKind::kPoint:
        return true;
      case InputKind::kKeyword:
        keyword(input.keyword);
        return true;
      default:
        return false;
    }
  }

  void take(double degrees) {
    if (std::abs(degrees) < kSteepest)
      value_ = degrees;
    else
      module_.editor.print(module_.message(20211, {value_}));
  }

  void keyword(int word) {
    if (word == kClear)
      XD0(module_);
    else
      mode_ = word == kPart ? Mode::kSegment : Mode::kWhole;
  }

  void picked(const UserInput& input) {
    if (!pickedPath(module_, input.entity)) return;
    const AcGePoint2d pick = snappedPick(module_, input);
    auto path = openPicked(module_, input.entity);
    if (!path) return;
    if (mode_ == Mode::kWhole)
      path->setTaper(value_);
    else if (!path->setSegmentTaper(pick, value_))
      module_.editor.print("\n" + module_.message(136));
  }

  Module& module_;
  const std::string_view keywords_;
  Mode mode_;
  double value_;
};

}  // namespace

void XD(Module& module) {
  TaperLoop(module, TaperLoop::Mode::kSegment, "").run();
}

void CX(Module& module) {
  TaperLoop(module, TaperLoop::Mode::kWhole, "A P C").run();
}

void XD0(Module& module) {
  const auto set = module.editor.acedSSGet("");
  if (!set) return;
  for (AcDbObjectId id : set.value) {
    const auto* path = module.drawing().peek<CToolPath>(id);
    if (!path || (path->dTaper() == 0 && !path->hasSegTaper())) continue;
    if (auto opened = openPicked(module, id)) opened->setTaper(0);
  }
}

}  // namespace tarnex
