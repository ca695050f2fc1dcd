// Plain drawings: which contour a path runs beside, how far the path as a whole has drifted, which side is
// right. Knows no path entities and no threading points.
#include "exchange/plain.h"

namespace tarnex::truth {

namespace {

constexpr double kFarOff =
    1.0;  // mm beyond the compensation within which a path still counts as beside a contour
constexpr double kWorstCounts = 0.01;  // share of the worst middle in how well a path fits a contour
constexpr int kFitRounds = 4;
// mm times the root of the number of blocks that a fitted start may be off. Roundings of up to half a count
// either way walk at random; the mean of such a walk over n blocks, which the fit takes for drift, spreads by
// 0.17 counts times the root of n in x and in y. Four times that is met once in ten thousand paths.
constexpr double kFitUnsure = 0.0007;
// Weight, in observations, of the guess that there is no drift: where hardly anything is seen in some
// direction, roundings must not be taken for a large drift in it.
constexpr double kFitStill = 0.3;
constexpr double kFitWindow = 0.05;  // mm; deviations beyond are no drift and must not pull the fit

struct Middle {
  Point at;
  double length = 0;
};

// Middles of the longest moves but for the first and last, at most three, longest first.
std::vector<Middle> middlesOf(const WirePath& path) {
  std::vector<Middle> out;
  for (std::size_t i = 0; i < path.steps.size(); ++i) {
    const bool end = i == 0 || i + 1 == path.steps.size();
    if (!end || path.steps.size() < 3)
      out.push_back({at(path.steps[i].stroke, 0.5), lengthOf(path.steps[i].stroke)});
  }
  const auto n = std::min<std::size_t>(3, out.size());
  std::partial_sort(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(n), out.end(),
                    [](const Middle& a, const Middle& b) { return a.length > b.length; });
  out.resize(n);
  return out;
}

class PlainRun {
 public:
  PlainRun(Job& job, const std::vector<Section>& sections)
      : job_(job), sections_(sections), used_(job.figures.size(), false) {
    std::vector<Stroke> all;
    for (std::size_t f = 0; f < job.outlines.size(); ++f) {
      if (!job.outlines[f]) {
        used_[f] = true;
        continue;
      }
      for (const Stroke& s : job.outlines[f]->spans.strokes()) all.push_back(s), owner_.push_back(f);
      widest_ = std::max(widest_, job.outlines[f]->compensation);
    }
    all_ = Nearby(std::move(all));
    settleSides();
  }

  void run(Point start) {
    here_ = start;
    for (std::size_t i = 0; i < sections_.size();) i = sections_[i].single() ? travel(i) : cut(i);
    for (std::size_t f = 0; f < used_.size(); ++f)
      if (!used_[f]) job_.tellNotCut(f);
  }

 private:
  // Outside at even nesting depth, inside at odd.
  void settleSides() {
    std::vector<Stroke> diagonals;  // whose boxes are those of the closed figures
    std::vector<std::size_t> figures;
    for (std::size_t f = 0; f < job_.outlines.size(); ++f) {
      if (!job_.outlines[f] || !job_.outlines[f]->closed) continue;
      Box b;
      for (const Stroke& s : job_.outlines[f]->spans.strokes()) b.add(boxOf(s));
      diagonals.push_back(lineStroke({b.x0, b.y0}, {b.x1, b.y1}));
      figures.push_back(f);
    }
    const Nearby boxes(std::move(diagonals));
    for (const std::size_t f : figures) {
      if (job_.sides[f] != Side::kEither) continue;
      const Point p = at(job_.outlines[f]->span(0), 0.5);
      std::size_t depth = 0;
      boxes.within(boxOf(p), 0, [&](std::size_t i) {
        if (figures[i] != f && encloses(job_.outlines[figures[i]]->spans.strokes(), p)) ++depth;
      });
      job_.sides[f] = depth % 2 == 0 ? Side::kOutside : Side::kInside;
    }
  }
  std::size_t travel(std::size_t i) {
    here_ = here_ + sections_[i].way;
    loose_ += sections_[i].rounding + sections_[i].loose;
    return i + 1;
  }
  // One past the last section of the path that begins with section i: where the wire is back, or before a
  // single move.
  [[nodiscard]] std::size_t pathEnd(std::size_t i, bool& back) const {
    Vec way{0, 0};
    double allowed = kAllowance;
    for (std::size_t j = i; j < std::min(i + 2, sections_.size()); ++j) {
      way = way + sections_[j].way;
      allowed += sections_[j].rounding + sections_[j].loose;
      back = way.length() <= allowed;
      if (back) return j + 1;
    }
    const bool two = i + 1 < sections_.size() && !sections_[i + 1].single() &&
                     (i + 2 >= sections_.size() || sections_[i + 2].single());
    return i + (two ? 2 : 1);
  }
  // The figure beside which the path runs: the one whose distance at the path's longest moves is nearest to
  // its compensation.
  [[nodiscard]] std::optional<std::size_t> figureBeside(const WirePath& path) const {
    std::optional<std::size_t> best;
    double least = kFarOff;
    for (const Middle& m : middlesOf(path)) {
      std::vector<std::size_t> near;
      all_.within(boxOf(m.at), widest_ + kFarOff, [&](std::size_t i) { near.push_back(owner_[i]); });
      std::sort(near.begin(), near.end());
      near.erase(std::unique(near.begin(), near.end()), near.end());
      for (const std::size_t f : near) {
        const Outline& o = *job_.outlines[f];
        const double off = misfit(o, path);
        if (off < least || (off == least && best && used_[*best] && !used_[f])) least = off, best = f;
      }
    }
    return best;
  }
  // The best of the middles counts, for others may lie on the long tip of a sharp corner; the worst decides
  // between contours that one middle lies beside equally well.
  [[nodiscard]] static double misfit(const Outline& o, const WirePath& path) {
    double least = kFarOff, most = 0;
    for (const Middle& m : middlesOf(path)) {
      const double off = std::abs(o.spans.nearestTo(m.at).foot.distance - o.compensation);
      least = std::min(least, off), most = std::max(most, off);
    }
    return least + kWorstCounts * std::min(most, kFarOff);
  }
  // How far the whole path lies from where the contour wants it: the shift that makes its distances the
  // compensation, by least squares over the middles of its moves.
  [[nodiscard]] static Vec driftOf(const Outline& o, const WirePath& path) {
    Vec drift{0, 0};
    for (int round = 0; round < kFitRounds; ++round) {
      double xx = kFitStill, xy = 0, yy = kFitStill, xe = 0, ye = 0;
      for (std::size_t i = 1; i + 1 < path.steps.size(); ++i) {
        for (const double t : {0.25, 0.5, 0.75}) {
          const Point p = at(path.steps[i].stroke, t) - drift;
          const auto foot = o.spans.nearestTo(p).foot;
          double e = foot.distance - o.compensation;
          if (foot.t <= 0 || foot.t >= 1 || foot.distance < 1e-9 || std::abs(e) > kFitWindow) continue;
          const Vec u = unit(p - foot.point);
          e += dot(u, drift);
          xx += u.x * u.x, xy += u.x * u.y, yy += u.y * u.y, xe += u.x * e, ye += u.y * e;
        }
      }
      const double d = xx * yy - xy * xy;
      if (!(d > 0)) break;
      drift = Vec{(yy * xe - xy * ye) / d, (xx * ye - xy * xe) / d};
    }
    return drift;
  }
  std::size_t cut(std::size_t i) {
    bool back = false;
    const std::size_t end = pathEnd(i, back);
    const Lines lines{sections_[i].first, sections_[end - 1].last};
    const WirePath raw = walkLines(lines.first, lines.last, {here_, {}, nullptr, nullptr, 0, 0});
    const auto f = figureBeside(raw);
    if (!f) {
      job_.findings.fault(
          FindingKind::kUnknownCut, {0, lines.first, here_},
          formatted("blocks %lld to %lld from (%.4f, %.4f) on run beside none of the contours",
                    sections_[i].number(), sections_[end - 1].lastNumber(), here_.x, here_.y));
      here_ = here_ + (raw.end() - raw.start());
      return end;
    }
    measure(*f, lines, raw);
    if (!back) here_ = here_ + (raw.end() - raw.start()), loose_ += raw.rounding;
    return end;
  }
  void measure(std::size_t f, Lines lines, const WirePath& raw) {
    const auto number = static_cast<long long>(lines.first->number);
    if (used_[f])
      job_.findings.fault(
          FindingKind::kUnknownCut, {job_.figures[f].number, lines.first, here_},
          formatted("block %lld: figure %d is cut once more", number, job_.figures[f].number));
    used_[f] = true;
    // Walked again: the contour says how starts near an axis are meant.
    const Outline& outline = *job_.outlines[f];
    const Vec drift =
        driftOf(outline, walkLines(lines.first, lines.last, {here_, {}, &outline, nullptr, 0, 0}));
    const double unsure = std::min(raw.rounding, kFitUnsure * std::sqrt(double(raw.blocks)));
    if (drift.length() > kAllowance + loose_ + unsure)
      job_.findings.fault(FindingKind::kStart, {job_.figures[f].number, lines.first, here_},
                          formatted("block %lld: the whole path of figure %d lies %.4f mm (%.4f, %.4f) off",
                                    number, job_.figures[f].number, drift.length(), drift.x, drift.y));
    here_ = here_ - drift;
    job_.measure(f, lines, here_, unsure);
    job_.report.paths.back().placing = drift.length();
    loose_ = unsure;
  }

  Job& job_;
  const std::vector<Section>& sections_;
  std::vector<bool> used_;
  Nearby all_;
  std::vector<std::size_t> owner_;
  double widest_ = 0;
  Point here_;
  double loose_ = 0;  // mm that here_ may be off
};

}  // namespace

void checkPlain(Job& job, const std::vector<Section>& sections, AcGePoint2d start) {
  PlainRun(job, sections).run(start);
}

}  // namespace tarnex::truth
