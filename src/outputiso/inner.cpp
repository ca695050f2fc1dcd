// Pieces of the passes of an inner figure.
// Knows one figure; when a pass takes which piece, its writers know.
#include "outputiso/inner.h"

#include <algorithm>
#include <cmath>

#include "contour/geometrylibrary.h"
#include "frame/settings.h"
#include "outputiso/postslots.h"

namespace tarnex {

InnerWriter::InnerWriter(const FigureJob& job) : FigureWriter(job) {}

void InnerWriter::startPass(double taper) {
  passTaper_ = taper;
  cur_ = V(1);
  prev_ = T(0);
  bCut_ = false;
}

double InnerWriter::leadAngle() const {
  return kPi * context_.settings.dIsoAngle * 0.005555555555555556;
}

void InnerWriter::setLeadBulge() {
  run_.dLeadBulge = turn() * std::tan(leadAngle() / 4);
}

int InnerWriter::overcutRule() const {
  return iso_.post.paramInt(PostParam::kOvercutRule);
}

std::optional<InnerWriter::SharpCorner> InnerWriter::markedCorner(int i) const {
  if (i + 3 >= n() || B(i + 1) == 0.0) return std::nullopt;
  const auto& vertices = path_.aCodeVertex();
  const auto code =
      std::find(vertices.begin(), vertices.end(), run_.lists.pathVertex[static_cast<std::size_t>(i) + 1]);
  if (code == vertices.end()) return std::nullopt;
  const std::string& text = path_.aCodeText()[static_cast<std::size_t>(code - vertices.begin())];
  const bool tapered = passTaper_ != 0.0 || T(i) != 0.0 || T(i + 2) != 0.0;
  if (!tapered && text.find(kCornerMark) != std::string::npos) return std::nullopt;
  const auto meetings =
      intersect(LineCurve{V(i), V(i + 1)}, LineCurve{V(i + 2), V(i + 3)}, Extend::kExtendBoth);
  if (meetings.empty()) return std::nullopt;
  return SharpCorner{meetings.front(), bulgeToCircle(V(i + 1), V(i + 2), B(i + 1)).radius};
}

InnerWriter::ContourLine InnerWriter::contourLine(int i) {
  const auto corner = markedCorner(i);
  const int next = corner ? i + 2 : i + 1;
  ContourLine line{iso_.taperChange({T(i), prev_, bAll(), B(i), T(next)}), corner.has_value(), next};
  const AcGePoint2d to = corner ? corner->at : V(i + 1);
  join(line.text, seg({cur_, to, B(i)}));
  if (corner) {
    const std::string radius = "R" + iso_.formatNumber(corner->radius);
    line.text += radius + radius;
  }
  cur_ = to;
  prev_ = T(i);
  return line;
}

void InnerWriter::overcut(AcGePoint2d from, int r, bool bFirstBlock) {
  const bool bTaper = T(1) != 0.0;
  if (bTaper && T(lastSpan()) != T(1)) {
    iso_.dTaperNow = T(1);
    raw(iso_.block("V105V106", kNoRow, "", kWholeRow) + "\n");
  }
  row(seg({from, run_.ptBreak, run_.dOvercutBulgeA}) + (bFirstBlock ? kFirstBlockWord : ""), r);
  if (bTaper) raw(iso_.block(iso_.post.word[PostWord::kTaperCancel], kNoRow, "", kWholeRow) + "\n");
  bCut_ = true;
}

void InnerWriter::leadOut(AcGePoint2d start) {
  const int last = lastSpan();
  const double a = bCut_ ? spanNormalAngle(V(1), run_.ptBreak, run_.dOvercutBulgeA, turn(), true)
                         : spanNormalAngle(V(last), V(last + 1), B(last), turn(), true);
  run_.ptExitArcA = acutPolar(start, a + kPi, run_.dOvercutExit);
  run_.ptExitArcB = acutPolar(run_.ptExitArcA, a + path_.nDirection() * leadAngle(), run_.dOvercutExit);
}

void InnerWriter::leadOutBeside(AcGePoint2d from, AcGePoint2d to) {
  const double a = acutAngle(to, from);
  run_.ptExitArcB = acutPolar(to, a + path_.nDirection() * leadAngle(), run_.dOvercutExit);
}

}  // namespace tarnex
