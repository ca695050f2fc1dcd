// A figure's passes: the block that begins one, those that follow the contour, the end.
// Knows one figure; blocks that leave the contour are next door.
#include <algorithm>

#include "exchange/figureiso.h"
#include "host/platform/format.h"

namespace tarnex::truth {

double IsoFigureRun::placeOf(Feature f, int dir) const {
  switch (f) {
    case Feature::kEntry:
      return rail_.closed() && dir < 0 ? rail_.length() : 0;
    case Feature::kBreak:
      return break_;
    case Feature::kEnd:
      return rail_.length();
    default:
      return s_;
  }
}

std::optional<RailRun> IsoFigureRun::follow(const IsoMove& m, int dir) const {
  const double from = ran_ ? s_ : placeOf(feature_, dir);
  const double tol = tolerance(m);
  return rail_.follow(
      idealOf(m), from,
      {dir, tol, job_.shape + m.slack + (absolute() ? 0 : doubt_), !m.fault.empty() || looseWay_});
}

bool IsoFigureRun::startsHere(const IsoPiece& piece, int dir) const {
  const double due = dir > 0 ? piece.from : piece.to;
  return std::abs(placeOf(feature_, dir) - due) <= 2 * job_.base;
}

// The piece that a run in this direction cuts; what is wrong with that is told.
void IsoFigureRun::takePiece(const IsoMove& m, int dir) {
  surplus_ = true;
  if (next_ >= plan_.size()) {
    piece_.name = "a pass";
    piece_.record = plan_.back().record;
    return tell(IsoFault::kTooMany, m, ideal_,
                formatted("all %zu passes of its style are cut, this is one more", plan_.size()));
  }
  for (std::size_t k = next_; k < plan_.size(); ++k) {
    if (!startsHere(plan_[k], dir)) continue;
    piece_ = plan_[k];
    if (k != next_) {
      const IsoPiece& due = plan_[next_];
      if (piece_.kind == IsoPiece::Kind::kTab)
        tell(IsoFault::kTab, m, ideal_,
             formatted("the tab is cut from %s on ahead of %zu trim pass%s, %s the first",
                       placeText(ideal_).c_str(), k - next_, k - next_ == 1 ? "" : "es", due.name.c_str()));
      else
        tell(IsoFault::kNotCut, m, ideal_, due.name + " is missing ahead of " + piece_.name);
    }
    next_ = k;
    surplus_ = false;
    active_ = true;
    return;
  }
  piece_ = plan_[next_];
  if (piece_.kind == IsoPiece::Kind::kMain || piece_.kind == IsoPiece::Kind::kWhole ||
      feature_ == Feature::kNone) {
    tell(IsoFault::kUncut, m, ideal_,
         formatted("%s begins at %s; it is to begin at %s", piece_.name.c_str(), placeText(ideal_).c_str(),
                   placeText(rail_.pointAt(piece_.from)).c_str()));
    surplus_ = false;
    active_ = true;
    return;
  }
  tell(IsoFault::kTooMany, m, ideal_,
       formatted("%s is due, but the wire runs along what all passes have cut", piece_.name.c_str()));
}

// The first block of a run. False: it doesn't run along the contour.
bool IsoFigureRun::begin(const IsoMove& m) {
  const bool dueForward = next_ >= plan_.size() || startsHere(plan_[next_], 1);
  for (const int dir : {dueForward ? 1 : -1, dueForward ? -1 : 1}) {
    const auto run = follow(m, dir);
    if (!run) continue;
    dir_ = dir;
    s_ = run->from;
    takePiece(m, dir);
    ran_ = true;
    checkBegin(m);
    homeSeen_ = false;
    advance(m, *run);
    return true;
  }
  dir_ = dueForward ? 1 : -1;
  return false;
}

// What is to hold before a pass.
void IsoFigureRun::checkBegin(const IsoMove& m) {
  const auto fault = [&](IsoFault kind, const std::string& what) {
    job_.findings.fault(kind, place(&m, ideal_), what);
  };
  if (job_.dialect.returnsEachPass && figure_.kind == IsoKind::kHole && !homeSeen_)
    fault(IsoFault::kReturn, "the wire hasn't been back at the threading point " +
                                 placeText(figure_.threading) + " since the pass before");
  if (!offSeen_) fault(IsoFault::kCompensation, "compensation isn't switched off ahead of " + piece_.name);
  if (landingCompensation_ == 0 && m.state->compensation != 0)
    fault(IsoFault::kCompensation,
          "compensation comes on with the contour's first block, not on the way to it");
}

void IsoFigureRun::on(const IsoMove& m) {
  if (!ran_) {
    if (begin(m)) return;
    // Only touched; or the first block of a pass is wrong, or it begins at a wrong place.
    if (feature_ == Feature::kNone && next_ < plan_.size() && beginElsewhere(m)) return;
    if (next_ >= plan_.size() || feature_ == Feature::kNone) {
      where_ = Where::kOff;
      return off(m);
    }
    s_ = placeOf(feature_, dir_);
    takePiece(m, dir_);
    ran_ = true;
    homeSeen_ = false;
    return derail(m);
  }
  if (const auto run = follow(m, dir_)) return advance(m, *run);
  if (relief(m)) return;
  const auto back = follow(m, -dir_);
  if (atEnd() || surplus_) {
    if (back && !surplus_ && next_ < plan_.size() &&
        std::abs((dir_ > 0 ? plan_[next_].to : plan_[next_].from) - s_) <= job_.base) {
      dir_ = -dir_;
      takePiece(m, dir_);
      return advance(m, *back);
    }
    endRun(&m);
    return off(m);
  }
  if (!back) return derail(m);
  if (!faulty_)
    tell(IsoFault::kRepeated, m, ideal_,
         formatted("%s runs back from %s to %s along what it has cut", piece_.name.c_str(),
                   placeText(ideal_).c_str(), placeText(m.stroke.end).c_str()));
  s_ = back->to;
  settle(m, *back);
}

void IsoFigureRun::settle(const IsoMove& m, const RailRun& run) {
  looseWay_ = false;
  derails_ = 0;
  bool exact = run.vertex;
  const Stroke& span = rail_.span(run.span);
  Point to = rail_.pointAt(run.to);
  if (exact) to = run.to > run.from ? span.end : span.start;
  if (!run.vertex && figure_.kind == IsoKind::kOuter && figure_.breakAt &&
      std::abs(run.to - break_) <= tolerance(m)) {
    to = *figure_.breakAt;
    s_ = break_;
    exact = true;
  }
  stepTo(m, to, exact);
}

void IsoFigureRun::advance(const IsoMove& m, const RailRun& run) {
  if (run.off > report_.worst && !faulty_) {
    report_.worst = run.off;
    report_.worstLine = m.line;
  }
  checkWords(m, run);
  const double from = s_;
  s_ = run.to;
  settle(m, run);
  report_.cut += std::abs(s_ - from);
  account(m);
}

// What of the plan has been cut. Nearer to its end than two roundings a piece counts as cut, and nothing is
// cut behind it: a last block that is so short may be missing, or there.
void IsoFigureRun::account(const IsoMove& m) {
  if (surplus_) return;
  const double past = dir_ * (s_ - (dir_ > 0 ? piece_.to : piece_.from));
  if (past < -2 * job_.base) return;
  if (active_) {
    active_ = false;
    ++next_;
    ++report_.passes;
  }
  if (past > 2 * job_.base) beyond(m, past);
}

// `past` mm have been cut behind the end of the run's piece.
void IsoFigureRun::beyond(const IsoMove& m, double past) {
  const bool tabNext = next_ < plan_.size() && plan_[next_].kind == IsoPiece::Kind::kTab && dir_ > 0;
  overcut_ = past;
  if (figure_.kind == IsoKind::kHole) return;
  if (piece_.kind == IsoPiece::Kind::kMain && tabNext) {  // without trim passes the tab follows at once
    piece_ = plan_[next_];
    active_ = true;
    overcut_ = 0;
    account(m);
    return;
  }
  if (faulty_) return;
  if (piece_.kind == IsoPiece::Kind::kMain && dir_ > 0)
    tell(IsoFault::kTab, m, rail_.pointAt(break_),
         formatted("%s cuts into the tab, from %s on, though %s is still to come", piece_.name.c_str(),
                   placeText(rail_.pointAt(break_)).c_str(),
                   next_ < plan_.size() ? plan_[next_].name.c_str() : "nothing"));
  else
    tell(IsoFault::kRepeated, m, rail_.pointAt(s_ - dir_ * past),
         formatted("%s runs on past its end at %s", piece_.name.c_str(),
                   placeText(rail_.pointAt(s_ - dir_ * past)).c_str()));
}

void IsoFigureRun::endRun(const IsoMove* m) {
  where_ = Where::kOff;
  if (!ran_) return;
  if (active_ && !faulty_) {
    const double end = dir_ > 0 ? piece_.to : piece_.from;
    job_.findings.fault(
        IsoFault::kUncut, place(m, ideal_),
        formatted("%s leaves the contour at %s, %.4f mm before its end at %s", piece_.name.c_str(),
                  placeText(ideal_).c_str(), dir_ * (end - s_), placeText(rail_.pointAt(end)).c_str()));
  }
  if (active_) {
    ++next_;
    ++report_.passes;
  }
  if (figure_.kind == IsoKind::kHole && !active_ && !surplus_ && !faulty_) checkOvercut(m);
  ran_ = active_ = surplus_ = faulty_ = false;
}

void IsoFigureRun::checkOvercut(const IsoMove* m) {
  const int rule = job_.dialect.overcutRule, later = passesOf(figure_.style) - 1;
  const bool due =
      rule == 0 || (rule == 1 && piece_.record == 0) || (rule == 2 && later > 0 && piece_.record == later);
  double want = due && (!figure_.marked || job_.expected.markedOvercut) ? job_.expected.overcut : 0;
  // A short first span takes half of its length; a circle's takes none.
  if (const double first = rail_.startOf(1); want >= first)
    want = figure_.circle && rail_.span(0).arc ? 0 : first / 2;
  const double loose = 2 * job_.base + doubt_;
  if (std::abs(overcut_ - want) <= loose) return;
  const Point entry = rail_.span(0).start;
  if (want == 0)
    job_.findings.fault(
        IsoFault::kOvercut, place(m, ideal_),
        formatted("%s cuts %.4f mm behind the entry point %s a second time, where no overcut is due",
                  piece_.name.c_str(), overcut_, placeText(entry).c_str()));
  else
    job_.findings.fault(IsoFault::kOvercut, place(m, ideal_),
                        formatted("%s overcuts %.4f mm past the entry point %s; %.4f mm are due",
                                  piece_.name.c_str(), overcut_, placeText(entry).c_str(), want));
}

void IsoFigureRun::checkWords(const IsoMove& m, const RailRun& run) {
  if (m.state->compensation != 0) offSeen_ = false;
  const IsoWordsCheck check{job_, figure_, piece_, run.span, dir_, bySpan_};
  const auto once = [&](unsigned bit, auto what) {
    if ((told_ & bit) != 0) return;
    const std::size_t had = job_.findings.count();
    what();
    if (job_.findings.count() != had) told_ |= bit;
  };
  once(1, [&] { check.compensation(m); });
  once(2, [&] { check.offset(m); });
  once(4, [&] { check.condition(m); });
  if (!m.corner) once(8, [&] { check.taper(m); });
}

}  // namespace tarnex::truth
