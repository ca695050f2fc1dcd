// The later passes of an outer figure: the trim passes along what is cut, back and forth; the tab, which
// frees the part; a punch's passes along the tab; the way home.
// Knows one figure and the break that its first pass has left.
#include <algorithm>
#include <utility>

#include "outputiso/outer.h"
#include "outputiso/postslots.h"

namespace tarnex {

namespace {

class OuterLater : public OuterWriter {
 public:
  explicit OuterLater(const FigureJob& job) : OuterWriter(job) {}

  void write(bool bReturn) {
    setPath();
    later_ = laterPasses();
    // The span is one of the lists' also where the path's own, from before it was changed, no longer is.
    breakSpan_ = std::clamp(run_.nBreakSeg, 1, n() - 2);
    if (byPass() && !spanAhead()) row("", rows_.laterHead);
    trimPasses();
    enterTab();
    cutTab();
    if (path_.hasFlag(kPunchJob)) extraPasses();
    if (bReturn) goHome();
  }

 private:
  void turnAbout(int pass) {
    dir_ = -dir_;
    iso_.setPass(pass, dir_);
  }

  // ---- trim passes
  void trimPasses() {
    dir_ = byPass() ? -1 : 1;
    for (int pass = 1; pass <= later_; ++pass) {
      turnAbout(pass);
      if (dir_ > 0)
        trimForward(pass);
      else
        trimBackward();
    }
  }

  // The first block of a trim pass is the move onto the contour, or what the control is told ahead of it.
  int trimAhead(const std::string& line) {
    row(line + kFirstBlockWord, rows_.trimStart, kRowUpToMotion);
    return kRowAfter;
  }

  void trimForward(int pass) {
    const int parts = spanAhead() ? trimAhead(forwardLine(1)) : kWholeRow;
    // Pass by pass the wire has been brought to the threading point first.
    const AcGePoint2d from = byPass() && pass == 1 ? V(0) : run_.ptLeadEnd;
    row(seg(from, V(1)), rows_.trimStart, parts);
    const int first = firstSpan();
    for (int i = first; i < breakSpan_; ++i) row(forwardLine(i) + mark(i == first), kNoRow);
    const IsoMove rest{V(std::max(first, breakSpan_)), run_.ptBreak, run_.dBreakBulgeA};
    row(spanLine(rest, forwardTaper(breakSpan_)), rows_.trimEnd);
    row(seg(run_.ptBreak, run_.ptBreakExit), rows_.trimRetreat);
  }

  void trimBackward() {
    const int parts = spanAhead() ? trimAhead(lineFromBreak()) : kWholeRow;
    row(seg(run_.ptBreakExit, run_.ptBreak), rows_.trimStart, parts);
    // On span 1 the way from the break is all that there is.
    const bool whole = breakSpan_ == 1 && !spanAhead();
    if (!spanAhead()) row(lineFromBreak(), whole ? rows_.trimEnd : kNoRow);
    for (int i = breakSpan_; i > 2; --i) row(backwardLine(i) + mark(i == breakSpan_), kNoRow);
    if (!whole) row(backwardLine(2), rows_.trimEnd);
    row(seg(V(1), run_.ptLeadEnd), rows_.trimRetreat);
  }

  // Back to the start of the break's span. It is never told as a corner.
  std::string lineFromBreak() {
    std::string line = iso_.taperChange(backwardTaper(breakSpan_ + 1));
    line += seg({run_.ptBreak, V(breakSpan_), -run_.dBreakBulgeA});
    return line;
  }

  // ---- tab
  // Onto the tab from where the trim passes have left the wire; without any it stands at the break.
  void enterTab() {
    if (later_ == 0) {
      dir_ = byPass() ? -1 : 1;
      return iso_.setPass(0, dir_);
    }
    const bool atLead = later_ % 2 == (byPass() ? 0 : 1);
    dir_ = atLead ? -1 : 1;
    if (const auto record = tabRecord()) iso_.setPass(*record, dir_);
    std::string entry = tabEntry();
    if (spanAhead())
      pending_ = std::move(entry);
    else
      row(entry, rows_.tabEntry);
  }

  [[nodiscard]] std::string tabEntry() {
    return dir_ > 0 ? seg(run_.ptBreakExit, run_.ptBreak) : seg(run_.ptLeadEnd, V(1));
  }

  // Nothing: the pass goes on with the record and the words of the last trim pass.
  [[nodiscard]] std::optional<int> tabRecord() const {
    switch (path_.hasFlag(kPunchJob) ? 0 : iso_.post.paramInt(PostParam::kTabRecord)) {
      case 0:
        return 0;
      case 1:
        return later_;
      case -1:
        return std::min(later_ + 1, kMostPasses - 1);  // ten passes leave none behind the last
      default:
        return std::nullopt;
    }
  }

  struct Piece {
    IsoMove move;
    IsoTaper taper;
  };
  [[nodiscard]] int tabPieces() const { return n() - 1 - breakSpan_; }
  // The j-th piece of the tab on the way of this pass.
  [[nodiscard]] Piece tabPiece(int j) const {
    const int i = dir_ > 0 ? breakSpan_ + j : n() - 2 - j;
    IsoMove move = span(i);
    if (i == breakSpan_) move = {run_.ptBreak, V(i + 1), run_.dBreakBulgeB};
    if (dir_ > 0) return {move, forwardTaper(i)};
    if (j == 0) move.to = V(1);
    return {{move.to, move.from, -move.bulge}, backwardTaper(i + 1)};
  }

  void cutTab() {
    double previous = T(breakSpan_);
    const int last = tabPieces() - 1;
    for (int j = 0; j <= last; ++j) {
      Piece piece = tabPiece(j);
      piece.taper.previous = std::exchange(previous, piece.taper.current);
      if (j == last)
        endTab(piece, j);
      else
        putTab(spanLine(piece.move, piece.taper), j, kNoRow);
    }
    retreat(rows_.tabRetreat);
  }

  // The move onto the tab waits for the first line, which is told ahead of it; without one the tab's second
  // piece has the mark.
  void putTab(const std::string& line, int j, int r) {
    if (pending_.empty()) return row(line + mark(j == 1), r);
    row(line + kFirstBlockWord, rows_.tabEntry, kRowUpToMotion);
    row(std::exchange(pending_, {}), rows_.tabEntry, kRowAfter);
  }

  void endTab(const Piece& piece, int j) {
    raw(iso_.taperChange(piece.taper));
    if (const auto stop = stopPoint(piece.move)) {
      const bool bothMarked = !pending_.empty();
      putTab(seg(stop->upTo), j, rows_.tabUpToStop);
      return row(seg(stop->rest) + mark(bothMarked), rows_.tabEnd);
    }
    if (wantsStop()) {
      run_.bStopTooLong = true;
      row("", rows_.tabUpToStop);
    }
    if (spanAhead()) {
      run_.bNoStopText = true;
      raw(kNoStopText);
    }
    row(seg(piece.move), rows_.tabEnd);
  }

  void retreat(int r) {
    const AcGePoint2d to = run_.ptWireEnd = dir_ > 0 ? run_.ptLeadEnd : run_.ptBreakExit;
    row(seg(dir_ > 0 ? V(n() - 1) : run_.ptBreak, to), r);
  }

  // A punch's tab is trimmed as the rest was.
  void extraPasses() {
    for (int pass = 1; pass <= later_; ++pass) {
      turnAbout(pass);
      row(tabEntry(), rows_.extraEntry);
      const int last = tabPieces() - 1;
      for (int j = 0; j < last; ++j) row(spanLine(tabPiece(j).move, tabPiece(j).taper), kNoRow);
      row(seg(tabPiece(last).move), rows_.extraEnd);
      retreat(rows_.extraRetreat);
    }
  }

  void goHome() {
    if (later_ == 0) iso_.setPass(0, dir_);
    row(seg({run_.ptWireEnd, V(0), 0.0, true}), rows_.home);
    run_.ptWireEnd = V(0);
  }

  int later_ = 0, dir_ = 1;
  int breakSpan_ = 1;
  std::string pending_;
};

}  // namespace

FigureWritten writeOuterLater(const FigureJob& job, bool bReturn) {
  OuterLater writer(job);
  if (const auto refused = writer.refusal()) return *refused;
  writer.write(bReturn);
  return FigureWritten::kDone;
}

}  // namespace tarnex
