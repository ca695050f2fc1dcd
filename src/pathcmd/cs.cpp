// `CS`: the cutting order by picking paths in their new order.
// Knows the list of paths and prompts.
#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "pathcmd/editcommands.h"
#include "pathcmd/makepath.h"

namespace tarnex {

namespace {

// Lit up for as long as it lives, also when the user breaks off.
class Highlighted {
 public:
  Highlighted(AcDbDatabase& drawing, AcDbObjectId id) : drawing_(drawing), id_(id) {
    highlightEntity(drawing_, id_);
  }
  ~Highlighted() { unhighlightEntity(drawing_, id_); }
  Highlighted(const Highlighted&) = delete;
  Highlighted& operator=(const Highlighted&) = delete;

 private:
  AcDbDatabase& drawing_;
  const AcDbObjectId id_;
};

class OrderByPicking {
 public:
  explicit OrderByPicking(Module& module)
      : module_(module), drawing_(module.drawing()), state_(module.state<PathState>()) {}

  // On every way out, so that an interrupt leaves no drawing that shows numbers alone.
  ~OrderByPicking() { module_.bOrderMode = false; }
  OrderByPicking(const OrderByPicking&) = delete;
  OrderByPicking& operator=(const OrderByPicking&) = delete;

  void run() {
    module_.bOrderMode = true;
    renumberAll(drawing_, state_);
    while (answer()) {
    }
    module_.bOrderMode = false;
    renumberAll(drawing_, state_);
  }

 private:
  enum Keyword { kUndo, kBegin, kOrder, kSwap, kLength };

  bool answer() {
    const auto input = getUserInput(module_.editor, module_.message(177, {static_cast<long long>(pos_)}),
                                    PickMode::kEntityPickBox, "U B O W Z");
    switch (input.kind) {
      case InputKind::kCancel:
      case InputKind::kEnter:
        return false;
      case InputKind::kEntity:
        picked(input.entity);
        return true;
      case InputKind::kKeyword:
        keyword(input.keyword);
        return true;
      default:
        return true;
    }
  }

  void picked(AcDbObjectId id) {
    const auto* path = drawing_.peek<CToolPath>(id);
    if (!path) {
      module_.editor.print(module_.message(54));
      return;
    }
    const int k = path->nPathNo();
    if (k != pos_) {
      if (!exchange(pos_, k)) return;
      stack_.push_back(state_.PathList[static_cast<std::size_t>(k - 1)]);
    }
    ++pos_;
  }

  // The paths at places a and b (from 1) change places and numbers; both or neither.
  bool exchange(int a, int b) {
    const int count = static_cast<int>(state_.PathList.size());
    if (a < 1 || b < 1 || a > count || b > count) return false;
    if (a == b) return true;
    AcDbObjectId &first = state_.PathList[static_cast<std::size_t>(a - 1)],
                 &second = state_.PathList[static_cast<std::size_t>(b - 1)];
    const auto toSecond = openPicked(module_, first);
    if (!toSecond) return false;
    const auto toFirst = openPicked(module_, second);
    if (!toFirst) return false;
    toSecond->setPathNo(b);
    toFirst->setPathNo(a);
    std::swap(first, second);
    return true;
  }

  void keyword(int word) {
    switch (word) {
      case kUndo:
        undo();
        break;
      case kBegin:
        if (const auto* path = pick(module_.message(408))) pos_ = path->nPathNo() + 1;
        break;
      case kOrder:
        if (const auto* path = pick(module_.message(409)))
          sortNearest(drawing_, state_, path->nPathNo() - 1, static_cast<int>(state_.PathList.size()) - 1);
        break;
      case kSwap:
        swapTwo();
        break;
      case kLength:
        sortByLength(drawing_, state_);
        break;
      default:
        break;
    }
  }

  void undo() {
    if (stack_.empty()) return;
    const auto* path = drawing_.peek<CToolPath>(stack_.back());
    if (!path || !exchange(pos_ - 1, path->nPathNo())) return;
    stack_.pop_back();
    --pos_;
  }

  const CToolPath* pick(const std::string& prompt) {
    const auto answer = module_.editor.acedEntSel(prompt);
    return answer ? drawing_.peek<CToolPath>(answer.value.entity) : nullptr;
  }

  // A path by a pick; asked again for a wrong class. Null: no pick.
  AcDbObjectId pickPath(const std::string& prompt, AcDbObjectId butNot) {
    for (;;) {
      const auto answer = module_.editor.acedEntSel(prompt);
      if (!answer) return {};
      if (!drawing_.peek<CToolPath>(answer.value.entity))
        module_.editor.print(module_.message(54));
      else if (answer.value.entity != butNot)
        return answer.value.entity;
    }
  }

  AcDbObjectId secondOf(AcDbObjectId first, int number) {
    const Highlighted shown(drawing_, first);
    return pickPath(module_.message(61, {static_cast<long long>(number)}), first);
  }

  void swapTwo() {
    for (;;) {
      const AcDbObjectId first = pickPath(module_.message(60), {});
      if (first.isNull()) return;
      const int number = drawing_.peek<CToolPath>(first)->nPathNo();
      const AcDbObjectId second = secondOf(first, number);
      if (second.isNull()) continue;
      if (exchange(number, drawing_.peek<CToolPath>(second)->nPathNo())) renumberAll(drawing_, state_);
    }
  }

  Module& module_;
  AcDbDatabase& drawing_;
  PathState& state_;
  int pos_ = 1;
  std::vector<AcDbObjectId> stack_;  // paths that had to leave their places for picked ones
};

}  // namespace

void CS(Module& module) {
  rebuildPathList(module);
  OrderByPicking(module).run();
}

}  // namespace tarnex
