// Motion words: connecting moves, lines and arcs, changes of taper, corners.
// Knows program coordinates and the post's way of saying them; blocks are made of them by template.cpp.
#include <algorithm>
#include <cmath>
#include <limits>

#include "contour/geometrylibrary.h"
#include "outputiso/isopost.h"
#include "outputiso/postslots.h"

namespace tarnex {

namespace {

constexpr double kSameWord = 0.0001;  // mm: nearer values aren't written again in modal output

// The words of one span as they grow.
class MotionLine {
 public:
  explicit MotionLine(NumberStyle style) : style_(style) { text.reserve(64); }
  void put(char letter, double mm) {
    text += letter;
    appendNumber(text, mm, style_);
  }
  void putPoint(const char letters[2], AcGePoint2d p) {
    put(letters[0], p.x);
    put(letters[1], p.y);
  }
  // What differs from the words written last.
  void putChanged(const char letters[2], AcGePoint2d p, AcGePoint2d last) {
    if (std::abs(p.x - last.x) >= kSameWord) put(letters[0], p.x);
    if (std::abs(p.y - last.y) >= kSameWord) put(letters[1], p.y);
  }
  std::string text;

 private:
  NumberStyle style_;
};

AcGePoint2d lessOrigin(AcGePoint2d p, AcGePoint2d origin) {
  return {p.x - origin.x, p.y - origin.y};
}

constexpr int kRapidCode = 0, kLineCode = 1;
constexpr double kElsewhere = std::numeric_limits<double>::infinity();  // no target's coordinate

struct Motion {
  AcGePoint2d from, to;  // program coordinates
  double bulge;
  bool bRapid;
  AcGePoint2d target;  // what X and Y print
};

// X and Y of absolute modal output.
void putChangedPoint(const IsoPost& iso, MotionLine& line, AcGePoint2d target) {
  AcGePoint2d from = iso.ptLast;
  if (iso.ptConnected) {  // what stood there before counts where the wire still stands there
    if (std::abs(iso.ptConnected->x - from.x) >= kSameWord) from.x = kElsewhere;
    if (std::abs(iso.ptConnected->y - from.y) >= kSameWord) from.y = kElsewhere;
  }
  line.putChanged("XY", target, from);
}

void count(IsoPost& iso, double length, bool bRapid) {
  iso.dPathLength += length;
  const int pass = std::clamp(iso.nPass, 0, kMostPasses - 1);
  if (!bRapid) iso.aPassLength[static_cast<std::size_t>(pass)] += length;
}

void putLine(IsoPost& iso, MotionLine& line, const Motion& m) {
  count(iso, m.from.distanceTo(m.to), m.bRapid);
  const int code = m.bRapid ? kRapidCode : kLineCode;
  const bool modal = iso.post.paramInt(PostParam::kModal) != 0;
  if (!modal || iso.nModalG != code)
    line.text += m.bRapid ? std::string_view(iso.post.param[PostParam::kRapid]) : "G01";
  if (modal) iso.nModalG = code;
  if (modal && !iso.bIncremental)
    putChangedPoint(iso, line, m.target);
  else
    line.putPoint("XY", m.target);
}

void putArc(IsoPost& iso, MotionLine& line, const Motion& m) {
  const auto circle = bulgeToCircle(m.from, m.to, m.bulge);
  count(iso, 4 * std::atan(std::abs(m.bulge)) * circle.radius, false);
  AcGePoint2d centre = circle.centre;
  if (iso.post.paramInt(PostParam::kCentre) == 0) centre = {centre.x - m.from.x, centre.y - m.from.y};
  const int code = m.bulge > 0.0 ? 3 : 2;
  const bool modal = iso.post.paramInt(PostParam::kModal) != 0;
  if (!modal || iso.nModalG != code) line.text += code == 3 ? "G03" : "G02";
  if (modal) iso.nModalG = code;
  if (modal && !iso.bIncremental) {
    putChangedPoint(iso, line, m.target);
    line.putChanged("IJ", centre, iso.ptLastCentre);
  } else {
    line.putPoint("XY", m.target);
    line.putPoint("IJ", centre);
  }
  iso.ptLastCentre = centre;
}

bool marksFirstPass(const IsoPost& iso, const ProcessStyle& style) {
  return kindOf(style) == StyleKind::kFirstPassWord && iso.nPass == 0 && iso.marksBlocks();
}

bool besideTaper(const IsoTaper& t) {
  return t.bAllCorners && t.bulge != 0.0 && t.current == 0.0 && (t.previous != 0.0 || t.next != 0.0);
}

}  // namespace

NumberStyle IsoPost::numberStyle() const {
  if (post.nFamily == kFamilySignedUnits) return {NumberStyle::Kind::kSigned};
  if (bIntegerUnits) return {NumberStyle::Kind::kInteger};
  return {NumberStyle::Kind::kDecimal, post.paramInt(PostParam::kDecimals)};
}

std::string IsoPost::formatNumber(double mm) const {
  std::string text;
  appendNumber(text, mm, numberStyle());
  return text;
}

std::string IsoPost::moveWords(AcGePoint2d to, AcGePoint2d from) {
  dPathLength += from.distanceTo(to);
  ptConnected = to;
  MotionLine line(numberStyle());
  line.putPoint("XY", bIncremental ? lessOrigin(to, from) : to);
  return std::move(line.text);
}

std::string IsoPost::segmentWords(const IsoMove& move, const ProcessStyle& style) {
  Motion m{
      lessOrigin(move.from, ptOriginCopy), lessOrigin(move.to, ptOriginCopy), move.bulge, move.bRapid, {}};
  m.target = bIncremental ? lessOrigin(m.to, m.from) : m.to;
  MotionLine line(numberStyle());
  if (m.bulge == 0.0)
    putLine(*this, line, m);
  else
    putArc(*this, line, m);
  ptLast = m.target;
  ptConnected.reset();
  if (marksFirstPass(*this, style)) line.text += post.word[PostWord::kFirstPassEnd];
  return std::move(line.text);
}

std::string IsoPost::taperChange(const IsoTaper& taper) {
  std::string lines;
  if (post.nFamily != kFamilyCornerWords && besideTaper(taper))
    lines = post.param[PostParam::kArcCornerLine] + "\n";
  if (taper.current == taper.previous) return lines;
  if (taper.current == 0.0) return lines + post.word[PostWord::kTaperCancel] + "\n";
  dTaperNow = taper.current;
  return lines + block("V105V106", kNoRow, "", kWholeRow) + "\n";
}

std::string IsoPost::cornerWord(const IsoTaper& taper, double radius) const {
  if (post.nFamily != kFamilyCornerWords || radius == 0.0 || !besideTaper(taper)) return {};
  return "r" + formatNumber(radius);
}

}  // namespace tarnex
