// The command that cuts curves off at others.
// Knows no application.
#include <algorithm>
#include <cmath>

#include "host/editor/answers.h"
#include "host/editor/hostcommands.h"
#include "host/editor/ucs.h"

namespace tarnex {

namespace {

// A cut nearer than this to an end of an open curve takes nothing off, mm.
constexpr double kSamePlace = 1e-9;

// Where the edges meet the curve, as parameters, sorted, each once; ends of open curves left out.
std::vector<double> cutsOf(const AcDbDatabase& db, const Curve& curve, const SelectionSet& edges,
                           AcDbObjectId self) {
  std::vector<double> params;
  const bool closed = isClosed(curve);
  const double slack = std::max(kSamePlace, roundoff(extents(curve).high.x - extents(curve).low.x));
  for (const auto id : edges) {
    const auto* edge = id == self ? nullptr : db.peek<AcDbEntity>(id);
    if (!edge) continue;
    for (const auto& outline : edge->outline())
      for (const auto p : intersect(curve, outline, Extend::kOnBothOperands)) {
        const bool atEnd =
            !closed && (p.distanceTo(startPoint(curve)) <= slack ||
                        (!std::holds_alternative<RayCurve>(curve) && p.distanceTo(endPoint(curve)) <= slack));
        if (!atEnd) params.push_back(closestPoint(curve, p).param);
      }
  }
  std::sort(params.begin(), params.end());
  params.erase(std::unique(params.begin(), params.end(),
                           [&](double a, double b) {
                             return pointAtParam(curve, a).distanceTo(pointAtParam(curve, b)) <= slack;
                           }),
               params.end());
  return params;
}

std::size_t pieceAt(const std::vector<Curve>& pieces, AcGePoint2d pick) {
  const auto nearest = std::min_element(pieces.begin(), pieces.end(), [&](const Curve& a, const Curve& b) {
    return closestPoint(a, pick).distance < closestPoint(b, pick).distance;
  });
  return static_cast<std::size_t>(nearest - pieces.begin());
}

// What is left when the piece at the pick goes. Nothing: there is no cut that takes something off.
std::optional<std::vector<Curve>> leftOver(const Curve& curve, const std::vector<double>& cuts,
                                           AcGePoint2d pick) {
  if (cuts.empty() || (isClosed(curve) && cuts.size() < 2)) return std::nullopt;
  const auto pieces = split(curve, cuts);
  if (pieces.size() < 2) return std::nullopt;
  // Only the cuts beside the pick count; the others leave the curve whole.
  const std::size_t at = pieceAt(pieces, pick);
  std::vector<double> beside;
  if (isClosed(curve) || at > 0) beside.push_back(closestPoint(curve, startPoint(pieces[at])).param);
  if (isClosed(curve) || at + 1 < pieces.size())
    beside.push_back(closestPoint(curve, endPoint(pieces[at])).param);
  auto left = split(curve, beside);
  if (left.size() < 2) return std::nullopt;
  left.erase(left.begin() + static_cast<std::ptrdiff_t>(pieceAt(left, pick)));
  return left;
}

bool isTrimmable(const AcDbCurve& curve) {
  for (const AcRxClass* kind : {&AcDbLine::desc(), &AcDbRay::desc(), &AcDbArc::desc(), &AcDbCircle::desc(),
                                &AcDbEllipse::desc(), &AcDbSpline::desc(), &AcDbPolyline::desc()})
    if (&curve.isA() == kind) return true;
  return false;
}

// Puts the first piece in the entity's place where the kind stays the same, so that it keeps its handle.
bool becomes(AcDbCurve& entity, const Curve& piece) {
  if (auto* polyline = dynamic_cast<AcDbPolyline*>(&entity)) {
    const auto* c = std::get_if<PolylineCurve>(&piece);
    if (c) polyline->setPolyline(*c);
    return c != nullptr;
  }
  if (auto* line = dynamic_cast<AcDbLine*>(&entity)) {
    const auto* c = std::get_if<LineCurve>(&piece);
    if (!c) return false;
    const double z = line->getStartPoint().z;
    line->setStartPoint(solid(c->start, z));
    line->setEndPoint(solid(c->end, z));
    return true;
  }
  auto* arc = dynamic_cast<AcDbArc*>(&entity);
  const auto* c = std::get_if<ArcCurve>(&piece);
  if (!arc || !c) return false;
  const double end = c->startAngle + c->sweep;
  arc->setStartAngle(normalizedAngle(c->sweep > 0 ? c->startAngle : end));
  arc->setEndAngle(normalizedAngle(c->sweep > 0 ? end : c->startAngle));
  return true;
}

void fail(AcEditor& editor, const std::string& why) {
  editor.print(why + "\n");
  editor.commandFailed();
}

void trimOne(AcEditor& editor, const SelectionSet& edges, const EntityPick& pick) {
  auto& db = editor.database();
  auto entity = db.open<AcDbCurve>(pick.entity, OpenMode::kForWrite);
  if (entity.status() == ErrorStatus::eOnLockedLayer) return fail(editor, "That is on a locked layer.");
  if (!entity || !isTrimmable(*entity)) return fail(editor, "That can't be trimmed.");
  const Curve curve = entity->geometry();
  const auto left = leftOver(curve, cutsOf(db, curve, edges, pick.entity), pick.point.flat());
  if (!left) return fail(editor, "No edge cuts that.");
  const bool keeps = !left->empty() && becomes(*entity, left->front());
  for (std::size_t i = keeps ? 1 : 0; i < left->size(); ++i) {
    auto piece = makeCurveEntity((*left)[i]);
    piece->setPropertiesFrom(*entity);
    db.appendAcDbEntity(db.modelSpace(), std::move(piece));
  }
  if (!keeps) entity->erase();
}

}  // namespace

void trimCommand(AcEditor& editor) {
  AcEditor::SelectArgs args;
  args.addPrompt = "\nSelect cutting edges, Enter for all: ";
  auto edges = editor.acedSSGet(":$", args);
  if (edges.reply == Reply::RTCAN) return;
  if (!edges) edges = editor.acedSSGet("A");
  for (;;) {
    const auto pick = editor.acedEntSel("Select object to trim: ");
    if (pick)
      trimOne(editor, edges.value, pick.value);
    else if (pick.reply == Reply::RTERROR)
      editor.print("Nothing is there.\n");
    else
      return;
  }
}

}  // namespace tarnex
