// Selection sets: what lies at a point or in a window, the whole drawing, and the dialogue in which a user
// gathers one. Knows no command.
#include <algorithm>
#include <unordered_set>

#include "host/editor/answers.h"
#include "host/editor/asking.h"
#include "host/editor/boxtest.h"
#include "host/editor/filter.h"
#include "host/editor/ucs.h"

namespace tarnex {

namespace {

const AcDbEntity* standing(const AcDbDatabase& db, AcDbObjectId id) {
  return db.peek<AcDbEntity>(id);
}

// The entities of model space that a filter lets through, all of them or the shown ones.
SelectionSet wholeDrawing(const AcDbDatabase& db, SelectionFilter& filter, bool shownOnly) {
  SelectionSet result;
  for (const auto id : db.modelSpaceEntities()) {
    const auto* entity = standing(db, id);
    if (entity && (!shownOnly || db.isShown(*entity)) && filter.accepts(*entity)) result.push_back(id);
  }
  return result;
}

SelectionSet inWindow(EditorState& state, const Extents2d& box, bool crossing, SelectionFilter& filter) {
  const auto& db = *state.drawing;
  SelectionSet result;
  for (const auto id : state.nearby.candidates(db, box)) {
    const auto* entity = standing(db, id);
    if (!entity || !db.isShown(*entity) || !filter.accepts(*entity)) continue;
    if (crossing ? touchesBox(*entity, box) : insideBox(*entity, box)) result.push_back(id);
  }
  return result;
}

SelectionSet accepted(const AcDbDatabase& db, const SelectionSet& ids, SelectionFilter& filter) {
  SelectionSet result;
  for (const auto id : ids)
    if (const auto* entity = standing(db, id); entity && filter.accepts(*entity)) result.push_back(id);
  return result;
}

SelectionSet newestShown(const AcDbDatabase& db) {
  const auto* space = db.peek<AcDbBlockTableRecord>(db.modelSpace());
  if (!space) return {};
  const auto& ids = space->entities();
  for (auto id = ids.rbegin(); id != ids.rend(); ++id)
    if (const auto* entity = standing(db, *id); entity && db.isShown(*entity)) return {*id};
  return {};
}

Answer<SelectionSet> found(SelectionSet set) {
  if (set.empty()) return {Reply::RTERROR, {}};
  return {Reply::RTNORM, std::move(set)};
}

// A point of the entity that stands for it, in the middle of its first piece.
AcGePoint3d pointOn(const AcDbEntity& entity) {
  const auto curves = entity.outline();
  if (curves.empty()) {
    const Extents2d box = entity.getGeomExtents();
    return box.empty() ? AcGePoint3d{} : solid(midpoint(box.low, box.high));
  }
  const std::vector<Curve> pieces = exploded(curves[0]);
  const Curve& first = pieces.empty() ? curves[0] : pieces[0];
  if (std::holds_alternative<RayCurve>(first)) return solid(startPoint(first));
  return solid(pointAtDist(first, length(first) / 2).value_or(startPoint(first)));
}

}  // namespace

AcDbObjectId Asking::idNamed(const HandleText& named) {
  const auto& db = *state_.drawing;
  const auto id = db.idOfHandle(named.handle);
  const auto* entity = id.isNull() ? nullptr : db.peek<AcDbEntity>(id);
  if (entity && entity->ownerId() == db.modelSpace()) return id;
  complain("No entity of the drawing has the handle " + handleText(named.handle).substr(1) + ".");
  return {};
}

std::optional<EntityPick> Asking::entityNamed(const HandleText& named) {
  const AcDbObjectId id = idNamed(named);
  if (id.isNull()) return std::nullopt;
  return EntityPick{id, named.at ? *named.at : pointOn(*state_.drawing->peek<AcDbEntity>(id))};
}

// ---- the dialogue

namespace {

class Gathering {
 public:
  Gathering(AcEditor& editor, EditorState& state, const AcEditor::SelectArgs& args)
      : editor_(editor), state_(state), args_(args), filter_(*state.drawing, args.filter) {}

  Answer<SelectionSet> run();

 private:
  enum class Next { kOn, kCancelled, kDone };
  Next answered(Asking& asking, const std::string& text);
  Next keyword(const std::string& word);
  Next window(std::optional<bool> crossing, std::optional<AcGePoint3d> first);
  Next handles(Asking& asking, const std::string& text);
  void take(const SelectionSet& ids);
  [[nodiscard]] std::string prompt() const;

  AcEditor& editor_;
  EditorState& state_;
  const AcEditor::SelectArgs& args_;
  SelectionFilter filter_;
  SelectionSet set_;
  std::vector<bool> members_;  // by id
  bool removing_ = false;
};

std::string Gathering::prompt() const {
  if (removing_) return args_.removePrompt.empty() ? "\nRemove objects: " : args_.removePrompt;
  return args_.addPrompt.empty() ? "\nSelect objects: " : args_.addPrompt;
}

// Adds or removes what the filter lets through and says how much that was.
void Gathering::take(const SelectionSet& ids) {
  std::unordered_set<std::uint32_t> gone;
  for (const auto id : accepted(*state_.drawing, ids, filter_)) {
    if (id.index >= members_.size()) members_.resize(id.index + std::size_t{1});
    if (members_[id.index] != removing_) continue;
    members_[id.index] = !removing_;
    if (removing_)
      gone.insert(id.index);
    else
      set_.push_back(id);
  }
  if (removing_) {
    std::erase_if(set_, [&](AcDbObjectId id) { return gone.contains(id.index); });
    editor_.print(std::to_string(gone.size()) + " removed, " + std::to_string(set_.size()) + " selected\n");
  } else {
    editor_.print(std::to_string(ids.size()) + " found, " + std::to_string(set_.size()) + " selected\n");
  }
  state_.lineJustEnded = true;
}

Gathering::Next Gathering::window(std::optional<bool> crossing, std::optional<AcGePoint3d> first) {
  if (!first) {
    const auto corner = editor_.acedGetPoint("Specify first corner: ");
    if (!corner) return corner.reply == Reply::RTCAN ? Next::kCancelled : Next::kOn;
    first = corner.value;
  }
  const auto second = editor_.acedGetCorner(*first, "Specify opposite corner: ");
  if (!second) return second.reply == Reply::RTCAN ? Next::kCancelled : Next::kOn;
  if (const auto named = editor_.namedInsteadOfCorner()) {
    take(*named);
    return Next::kOn;
  }
  const auto& db = *state_.drawing;
  const Extents2d box = boxOf(ucsToWorld(db, *first).flat(), ucsToWorld(db, second.value).flat());
  take(inWindow(state_, box, crossing.value_or(first->x > second.value.x), filter_));
  return Next::kOn;
}

Gathering::Next Gathering::keyword(const std::string& word) {
  if (word == "Window") return window(false, {});
  if (word == "Crossing") return window(true, {});
  if (word == "BOX") return window({}, {});
  if (word == "ALL") take(wholeDrawing(*state_.drawing, filter_, true));
  if (word == "Last") take(newestShown(*state_.drawing));
  if (word == "Previous") take(state_.previous);
  if (word == "Remove") removing_ = true;
  if (word == "Add") removing_ = false;
  return Next::kOn;
}

Gathering::Next Gathering::handles(Asking& asking, const std::string& text) {
  SelectionSet ids;
  std::string_view words = text;
  while (const auto word = takeWord(words)) {
    const auto named = parseHandle(*word);
    if (!named)
      asking.complain("\"" + *word + "\" is no handle; handles are written &1F.");
    else if (const AcDbObjectId id = asking.idNamed(*named); !id.isNull())
      ids.push_back(id);
  }
  take(ids);
  return Next::kOn;
}

Gathering::Next Gathering::answered(Asking& asking, const std::string& text) {
  if (text[0] == '&') return handles(asking, text);
  const auto point = asking.point(text, nullptr, Asking::Snap::kNone);
  if (!point) {
    asking.complain("\"" + text +
                    "\" selects nothing; give a point, a handle such as &1F, Window, Crossing, ALL, " +
                    "Last, Previous, Remove or Add.");
    return Next::kOn;
  }
  // The nearest alone, of those that the filter lets through.
  const auto near = accepted(*state_.drawing, editor_.entitiesAtPickBox(*point), filter_);
  if (near.empty()) return window({}, *point);
  take({near[0]});
  return Next::kOn;
}

Answer<SelectionSet> Gathering::run() {
  for (;;) {
    editor_.acedInitGet(0, "Window Crossing BOX ALL Last Previous Remove Add");
    Asking asking(editor_, state_);
    const auto step = asking.next(prompt(), Extent::kHandles);
    if (step.reply == Reply::RTNONE) break;
    if (step.reply == Reply::RTCAN) return {Reply::RTCAN, {}};
    const Next next = step.reply == Reply::RTKWORD ? keyword(step.text) : answered(asking, step.text);
    if (next == Next::kCancelled) return {Reply::RTCAN, {}};
    if (next == Next::kDone) break;
  }
  if (!set_.empty()) state_.previous = set_;
  return found(std::move(set_));
}

}  // namespace

// ---- the operations

Answer<SelectionSet> AcEditor::acedSSGet(std::string_view mode) {
  return acedSSGet(mode, {});
}

Answer<SelectionSet> AcEditor::acedSSGet(std::string_view mode, const SelectArgs& args) {
  const auto& db = *state_->drawing;
  SelectionFilter filter(db, args.filter);
  if (mode == "X") return found(wholeDrawing(db, filter, false));
  if (mode == "A") return found(wholeDrawing(db, filter, true));
  if (mode == "L") return found(accepted(db, newestShown(db), filter));
  if (mode == "P") return found(accepted(db, state_->previous, filter));
  if (mode == "W" || mode == "C") {
    if (!args.first || !args.second) return {Reply::RTERROR, {}};
    const Extents2d box = boxOf(ucsToWorld(db, *args.first).flat(), ucsToWorld(db, *args.second).flat());
    return found(inWindow(*state_, box, mode == "C", filter));
  }
  if (!mode.empty() && mode != ":$") return {Reply::RTERROR, {}};
  if (mode.empty() && args.first) return found(accepted(db, entitiesAtPickBox(*args.first), filter));
  return Gathering(*this, *state_, args).run();
}

SelectionSet AcEditor::entitiesAtPickBox(const AcGePoint3d& p) {
  struct Found {
    AcDbObjectId id;
    double distance;
  };
  const auto& db = *state_->drawing;
  const AcGePoint2d at = ucsToWorld(db, p).flat();
  const double h = halfPixels(*state_, intVar("PICKBOX"));
  // The corners lie on the directions of 42 and 225 degrees, as for the pick box of the applications.
  const Extents2d box = boxOf(acutPolar(at, 0.7333, h), acutPolar(at, 3.9269, h));
  std::vector<Found> hits;
  for (const auto id : state_->nearby.candidates(db, box)) {
    const auto* entity = standing(db, id);
    if (entity && db.isShown(*entity) && touchesBox(*entity, box))
      hits.push_back({id, distanceTo(*entity, at)});
  }
  std::stable_sort(hits.begin(), hits.end(),
                   [](const Found& a, const Found& b) { return a.distance < b.distance; });
  SelectionSet result;
  for (const auto& hit : hits) result.push_back(hit.id);
  return result;
}

Answer<EntityPick> AcEditor::acedEntSel(std::string_view prompt) {
  Asking asking(*this, *state_);
  for (;;) {
    const auto step = asking.next(prompt.empty() ? "\nSelect object: " : prompt, Extent::kWord);
    if (step.reply != Reply::RTNORM) return {step.reply, {}};
    if (const auto named = parseHandle(step.text)) {
      if (const auto pick = asking.entityNamed(*named)) return {Reply::RTNORM, *pick};
      return {Reply::RTERROR, {}};
    }
    if (equalIgnoringCase(step.text, "last") || equalIgnoringCase(step.text, "l")) {
      const auto last = newestShown(*state_->drawing);
      if (last.empty()) return {Reply::RTERROR, {}};
      return {Reply::RTNORM, {last[0], pointOn(*standing(*state_->drawing, last[0]))}};
    }
    if (const auto p = asking.point(step.text, nullptr, Asking::Snap::kNone)) {
      const auto hits = entitiesAtPickBox(*p);
      if (hits.empty()) return {Reply::RTERROR, {{}, ucsToWorld(*state_->drawing, *p)}};
      return {Reply::RTNORM, {hits[0], ucsToWorld(*state_->drawing, *p)}};
    }
    if (asking.handBack(step.text)) return {Reply::RTKWORD, {}};
    asking.complain("\"" + step.text + "\" is neither a point nor a handle such as &1F.");
  }
}

Answer<AcGePoint3d> AcEditor::acedGetCorner(const AcGePoint3d& first, std::string_view prompt) {
  state_->namedInsteadOfCorner.reset();
  Asking asking(*this, *state_);
  for (;;) {
    const auto step = asking.next(prompt, Extent::kHandles);
    if (step.reply != Reply::RTNORM) return {step.reply, {}};
    if (step.text[0] == '&') {
      SelectionSet ids;
      std::string_view words = step.text;
      while (const auto word = takeWord(words)) {
        const auto named = parseHandle(*word);
        if (!named)
          asking.complain("\"" + *word + "\" is no handle; handles are written &1F.");
        else if (const AcDbObjectId id = asking.idNamed(*named); !id.isNull())
          ids.push_back(id);
      }
      state_->namedInsteadOfCorner = std::move(ids);
      return {Reply::RTNORM, first};
    }
    if (const auto p = asking.point(step.text, &first)) return {Reply::RTNORM, *p};
    if (asking.handBack(step.text)) return {Reply::RTKWORD, {}};
    asking.complain("\"" + step.text + "\" is no point; points are written 10,20 or @5,0 or @5<90.");
  }
}

std::optional<SelectionSet> AcEditor::namedInsteadOfCorner() const {
  return state_->namedInsteadOfCorner;
}

AcDbObjectId AcEditor::acdbEntLast() const {
  const auto* space = state_->drawing->peek<AcDbBlockTableRecord>(state_->drawing->modelSpace());
  if (!space) return {};
  const auto& ids = space->entities();
  const auto it =
      std::find_if(ids.rbegin(), ids.rend(), [&](AcDbObjectId id) { return standing(*state_->drawing, id); });
  return it == ids.rend() ? AcDbObjectId{} : *it;
}

AcDbObjectId AcEditor::acdbEntNext(AcDbObjectId after) const {
  const auto* space = state_->drawing->peek<AcDbBlockTableRecord>(state_->drawing->modelSpace());
  if (!space) return {};
  const auto& ids = space->entities();
  auto it = after.isNull() ? ids.begin() : std::upper_bound(ids.begin(), ids.end(), after);
  it = std::find_if(it, ids.end(), [&](AcDbObjectId id) { return standing(*state_->drawing, id); });
  return it == ids.end() ? AcDbObjectId{} : *it;
}

}  // namespace tarnex
