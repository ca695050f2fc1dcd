// One path as the blocks of a 3B program: the steps from the working lists to the return.
// Knows one path; how its lists are prepared stands in contourlists, the program's frame above.
#include "output3b/contourwriter.h"

#include <algorithm>

#include "contour/geometrylibrary.h"
#include "host/platform/format.h"
#include "output3b/contourlists.h"
#include "output3b/segment.h"
#include "toolpath/cornerrelief.h"

namespace tarnex {

void Program3b::block(std::string_view words) {
  text += "\nN";
  const std::string number = std::to_string(lineNo++);
  if (number.size() < 4) text.append(4 - number.size(), ' ');
  text += number;
  text += ": ";
  text += words;
}

void Program3b::unnumbered(std::string_view words) {
  text += "\nN    : ";
  text += words;
}

namespace {

constexpr double kNoTaper = 0.001;  // degrees; smaller ones aren't marked

class ContourWriter {
 public:
  ContourWriter(const CToolPath& path, const Contour3bContext& context, ContourLists lists,
                Program3b& program)
      : path_(path),
        context_(context),
        settings_(context.settings),
        l_(std::move(lists)),
        program_(program) {}

  void run() {
    std::string firstCode = path_.getCodeAt(0);
    for (int i = 0; i < l_.nSeg && i + 1 < l_.size();) i = segment(i, firstCode);
    if (path_.bClosed() || path_.bCircle()) writeReturn();
  }

 private:
  const AcGePoint2d* origin() const { return settings_.bPrintCoords ? &context_.origin : nullptr; }

  // Writes segment i and what stands at its end; the index to go on with.
  int segment(int i, std::string& firstCode) {
    const double bulge = l_.bulge[at(i)] == kMarkedBulge ? 0.0 : l_.bulge[at(i)];
    encodeSegment(block_, l_.p[at(i)], l_.p[at(i + 1)], bulge, origin());
    if (block_.empty()) {
      // Without its pause the part would fall out.
      if (i == l_.nPauseAt - 1) program_.unnumbered(context_.pauseText);
      return i + 1;
    }
    if (i == l_.nPauseAt - 1) {
      program_.block(block_);
      program_.unnumbered(context_.pauseText);
      return i + 1;
    }
    if (l_.overcutDone && (i == l_.nSeg - 1 || (settings_.nOvercutMode == 1 && i == l_.nSeg - 2))) {
      program_.block(block_);
      return i + 1;
    }
    markTaper(i);
    if (i == 0 && !firstCode.empty()) writeCode(std::exchange(firstCode, {}));
    program_.block(block_);
    writeCodesAt(i + 1);
    if (const int next = markedStep(i); next > 0) return next;
    compensateCorner(i);
    return i + 1;
  }

  static std::size_t at(int i) { return static_cast<std::size_t>(i); }
  double taperAt(int i) const { return i >= 0 && at(i) < l_.taper.size() ? l_.taper[at(i)] : 0.0; }

  // ---- taper marks

  void insertBefore(std::string_view letters, const std::string& words) {
    for (char letter : letters)
      if (const auto pos = block_.find(letter); pos != std::string::npos) {
        block_.insert(pos, words);
        return;
      }
  }

  // The lead-in, and the return, carry their own count again.
  void markLead() {
    const auto third = block_.rfind('B');
    const auto from = block_.find_first_not_of(' ', third + 1);
    const auto to = block_.find(' ', from);
    insertBefore("G", formatChecked("B %6s ", {std::string_view(block_).substr(from, to - from)}));
    insertBefore("L", path_.nSide() == kInnerHole ? "D " : "DD ");
  }

  void markTaper(int i) {
    if (i == 0) {
      if (std::abs(path_.dTaper()) >= kNoTaper) markLead();
      return;
    }
    if (std::abs(taperAt(i + 1)) >= kNoTaper)
      context_.report(formatted("\ni+1:%d, %f", i, taperAt(i + 1)));
    else if (std::abs(taperAt(i - 1)) >= kNoTaper)
      context_.report(formatted("\ni-1:%d, %f", i, taperAt(i - 1)));
    else
      return;
    const double chord = l_.p[at(i)].distanceTo(l_.p[at(i + 1)]);
    const bool widening = l_.bulge[at(i)] * path_.nDirection() * path_.nSide() > 0;
    insertBefore("G", formatted("B %6d ", static_cast<int>(round1000(chord))));
    insertBefore("LSN", widening ? "DD " : "D ");
  }

  // ---- code texts

  // Pieces between "|" are blocks of their own.
  void writeCode(const std::string& text) {
    std::string_view rest = text;
    for (std::size_t bar; (bar = rest.find('|')) != std::string_view::npos; rest.remove_prefix(bar + 1))
      program_.block(rest.substr(0, bar));
    if (!rest.empty()) program_.block(rest);
  }

  void writeCodesAt(int i) {
    const auto [first, last] = l_.sourcesOf(i);
    for (int vertex = std::max(first, 1); vertex <= last; ++vertex)
      if (const std::string code = path_.getCodeAt(vertex); !code.empty()) writeCode(code);
  }

  // ---- out and back

  void blockWithoutEnd(AcGePoint2d from, AcGePoint2d to) {
    encodeSegment(block_, from, to, 0.0);
    if (block_.empty()) return;
    block_.erase(block_.rfind(';'));
    program_.block(block_);
  }

  // An out-and-back step that stands in the path; the index behind it, or 0.
  int markedStep(int i) {
    if (i + 3 >= l_.size() || l_.bulge[at(i + 1)] != kMarkedBulge || l_.bulge[at(i + 2)] != kMarkedBulge)
      return 0;
    const AcGePoint2d v = l_.p[at(i + 1)], q = l_.p[at(i + 2)], back = l_.p[at(i + 3)];
    if (!(back.distanceTo(v) <= kSamePoint)) return 0;
    if (v.distanceTo(q) > settings_.dMinStep) {
      blockWithoutEnd(v, q);
      blockWithoutEnd(q, back);
    }
    // What hung on the corner before the step was put in hangs on the root behind it.
    writeCodesAt(i + 2);
    writeCodesAt(i + 3);
    // A last segment too short for the pause to split it may begin with a step.
    if (i + 2 == l_.nPauseAt - 1) program_.unnumbered(context_.pauseText);
    return i + 3;
  }

  void compensateCorner(int i) {
    if (i <= 0 || i >= l_.nSeg - 1 || i + 2 >= l_.size()) return;
    const AcGePoint2d v = l_.p[at(i + 1)];
    const WireCorner corner{{l_.p[at(i)], l_.bulge[at(i)]}, {v, l_.bulge[at(i + 1)]}, l_.p[at(i + 2)]};
    const auto step = cornerStep(corner, path_.nDirection() * path_.nSide(), l_.dFix);
    if (!step || step->length < settings_.dMinStep) return;
    blockWithoutEnd(v, step->tip);
    blockWithoutEnd(step->tip, v);
  }

  void writeReturn() {
    encodeSegment(block_, l_.p.back(), l_.p.front(), 0.0, origin());
    if (block_.empty()) return;
    if (path_.dTaper() != 0.0) markLead();
    program_.block(block_);
  }

  const CToolPath& path_;
  const Contour3bContext& context_;
  const WireCutSettings& settings_;
  ContourLists l_;
  Program3b& program_;
  std::string block_;
};

}  // namespace

void write3B(const CToolPath& path, const Contour3bContext& context, Program3b& program) {
  auto lists = contourLists(path, context);
  if (lists.p.size() < 2) {
    program.text += "\n" + context.message(2);
    return;
  }
  placeEnd(path, context.settings, lists);
  ContourWriter(path, context, std::move(lists), program).run();
}

}  // namespace tarnex
