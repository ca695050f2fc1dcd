// Figure by figure, and pass by pass.
// Knows rows between figures by their numbers.
#include "outputiso/figuresequence.h"

#include <memory>

#include "outputiso/postslots.h"

namespace tarnex {

namespace {

// Rows of connecting moves by the side of the figure that the wire comes from, relative to its rowBase; and
// the bases.
struct SequenceRows {
  int fromInner, fromOuter, backFromInner, backFromOuter, innerBase, outerBase;
};
constexpr SequenceRows kByFigureRows{21, 29, 21, 29, 0, 40}, kByPassRows{13, 11, 23, 30, 80, 120};

class SequenceWriter {
 public:
  SequenceWriter(const FigureSequence& s, const SequenceRows& rows)
      : s_(s),
        iso_(s.context.iso),
        rows_(rows),
        byPass_(&rows == &kByPassRows),
        bReturn_(iso_.post.paramInt(PostParam::kReturn) != 0),
        runs_(s.ids.size()) {}

  FiguresWritten byFigure() {
    eachFigure([this](std::size_t k, const CToolPath& path) {
      first(k, path);
      later(k, path);
      takeNotes(k, path);
      runs_[k].reset();
    });
    wayBack();
    return done_;
  }

  FiguresWritten byPass() {
    eachFigure([this](std::size_t k, const CToolPath& path) { first(k, path); });
    s_.meterDone();
    for (std::size_t k = 0; k < s_.ids.size(); ++k) {
      const auto path = s_.drawing.open<CToolPath>(s_.ids[k]);
      if (!runs_[k] || !path) continue;
      const CToolPath& written = standIn(k, *path);
      if (written.nSide() != kInnerHole || written.passCount() > 0) {
        connect(written.getPointAt(0), rows_.fromInner, rows_.fromOuter);
        later(k, written);
      }
      takeNotes(k, written);
    }
    wayBack();
    return done_;
  }

 private:
  template <class Do>
  void eachFigure(Do write) {
    for (std::size_t k = 0; k < s_.ids.size(); ++k) {
      s_.meter(static_cast<long>(k));
      const auto path = s_.drawing.open<CToolPath>(s_.ids[k]);
      if (!path || path->numVerts() == 0) continue;
      if (path->hasFlag(kFourAxis)) {
        done_.notes.push_back({path->nPathNo(), FigureTrouble::kFourAxis});
        continue;
      }
      const CToolPath& written = standIn(k, *path);
      runs_[k] =
          std::make_unique<IsoFigureRun>(written, written.prepareOutput(s_.context.settings, s_.relief));
      if (isBreakless({s_.context, written, *runs_[k]})) {
        done_.notes.push_back({path->nPathNo(), FigureTrouble::kBreakless});
        runs_[k].reset();
        continue;
      }
      const AcGePoint2d p = written.getPointAt(0);
      if (done_.figures == 0)
        start_ = p;
      else
        connect(p, rows_.fromInner, rows_.fromOuter);
      runs_[k]->ptWireEnd = p;
      done_.relievedCorners += runs_[k]->lists.relievedCorners;
      write(k, written);
      ++done_.figures;
    }
  }

  const CToolPath& standIn(std::size_t k, const CToolPath& path) const {
    const auto other = s_.standIns.find(s_.ids[k]);
    return other == s_.standIns.end() ? path : *other->second;
  }

  void first(std::size_t k, const CToolPath& path) {
    const FigureJob job{s_.context, path, *runs_[k]};
    previousInner_ = path.nSide() == kInnerHole;
    iso_.rowBase = previousInner_ ? rows_.innerBase : rows_.outerBase;
    if (previousInner_)
      writeInnerFirst(job, done_.figures, bReturn_);
    else
      writeOuterFirst(job, done_.figures, byPass_ && bReturn_);
    ++done_.passes;
    finished(k);
  }

  void later(std::size_t k, const CToolPath& path) {
    const FigureJob job{s_.context, path, *runs_[k]};
    previousInner_ = path.nSide() == kInnerHole;
    iso_.rowBase = previousInner_ ? rows_.innerBase : rows_.outerBase;
    if (previousInner_)
      writeInnerLater(job, bReturn_);
    else
      writeOuterLater(job, byPass_ && bReturn_);
    done_.passes += passesOf(path.getProcessStyle()) - (previousInner_ ? 1 : 0);
    finished(k);
  }

  void takeNotes(std::size_t k, const CToolPath& path) {
    const auto notes = notesOf({s_.context, path, *runs_[k]});
    done_.notes.insert(done_.notes.end(), notes.begin(), notes.end());
  }

  void finished(std::size_t k) {
    wireEnd_ = runs_[k]->ptWireEnd;
    s_.drain();
  }

  // The wire is cut: such a move adds nothing to what has been cut.
  void connect(AcGePoint2d to, int fromInner, int fromOuter) {
    const AcGePoint2d origin = iso_.ptOriginCopy;
    const double cut = iso_.dPathLength;
    const std::string line =
        iso_.post.param[PostParam::kRapid] +
        iso_.moveWords({to.x - origin.x, to.y - origin.y}, {wireEnd_.x - origin.x, wireEnd_.y - origin.y});
    iso_.dPathLength = cut;
    s_.context.out += iso_.block(line, previousInner_ ? fromInner : fromOuter, "\n", kWholeRow);
    iso_.nModalG = 0;
  }

  void wayBack() {
    if (done_.figures > 1 && iso_.post.paramInt(PostParam::kBackToFirst) == 1)
      connect(start_, rows_.backFromInner, rows_.backFromOuter);
    s_.drain();
  }

  const FigureSequence& s_;
  IsoPost& iso_;
  const SequenceRows& rows_;
  const bool byPass_, bReturn_;
  std::vector<std::unique_ptr<IsoFigureRun>> runs_;
  FiguresWritten done_;
  AcGePoint2d start_, wireEnd_;
  bool previousInner_ = true;
};

}  // namespace

FiguresWritten writeFiguresByFigure(const FigureSequence& sequence) {
  return SequenceWriter(sequence, kByFigureRows).byFigure();
}

FiguresWritten writeFiguresByPass(const FigureSequence& sequence) {
  return SequenceWriter(sequence, kByPassRows).byPass();
}

}  // namespace tarnex
