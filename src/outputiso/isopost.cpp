// The state of a program: what a new program, figure and pass change.
// Knows no text but the words that a pass gives.
#include "outputiso/isopost.h"

#include <algorithm>
#include <utility>

#include "outputiso/postslots.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

constexpr AcGePoint2d kNowhere{-9999.9999, -9999.9999};  // no program's point: what follows is written

std::size_t recordIndex(int pass) {
  return static_cast<std::size_t>(std::clamp(pass, 0, kMostPasses - 1));
}

}  // namespace

bool sidesSwap(const ProcessStyle& style, int nSide) {
  const int kind = kindOf(style);
  return (kind == StyleKind::kSwapOuter && nSide == kOuterShape) ||
         (kind == StyleKind::kSwapInner && nSide == kInnerHole);
}

void IsoPost::resetProgram() {
  figure = {};
  nPass = 0;
  nPassDir = 1;
  dPathLength = dTaperNow = 0;
  aPassLength = {};
  nModalG = -1;
  ptLast = ptLastCentre = kNowhere;
  ptConnected.reset();
  rowBase = 0;
  bIntegerUnits = post.paramInt(PostParam::kIntegerMicrometres) == 1;
  bIncremental = post.word[PostWord::kCoordinates] != "G90";
}

void IsoPost::setPath(IsoFigure next) {
  figure = std::move(next);
  bIntegerUnits = post.paramInt(PostParam::kIntegerMicrometres) == 1;
  bIncremental = post.word[PostWord::kCoordinates] != "G90";
}

void IsoPost::setPass(int pass, int passDir) {
  nPass = pass;
  nPassDir = passDir;
  const bool swap = sidesSwap(figure.styleNow, figure.nSide), fourAxis = (figure.nFlags & kFourAxis) != 0;
  const bool left = (figure.nDirection * figure.nSide * passDir == 1) != swap;
  if (fourAxis)
    post.word[PostWord::kCompensation] = post.param[left ? PostParam::kUpperLeft : PostParam::kUpperRight];
  else
    post.word[PostWord::kCompensation] = left ? "G41" : "G42";
  post.word[PostWord::kCompensationOff] = fourAxis ? post.param[PostParam::kUpperOff] : "G40";
  if (post.param[PostParam::kTaperLeft].empty()) {
    // No words for the two directions: the angle carries the sign.
    post.word[PostWord::kTaper].clear();
    nTaperSign = passDir * figure.nDirection == -1 ? 1 : -1;
    return;
  }
  nTaperSign = 0;
  const double w = passDir * figure.nDirection * figure.nSide * passTaper();
  post.word[PostWord::kTaper] =
      post.param[(w > 0.0) != swap ? PostParam::kTaperLeft : PostParam::kTaperRight];
}

const PassRecord& IsoPost::passRecord() const {
  return figure.styleNow.passes[recordIndex(nPass)];
}

double IsoPost::passOffsetNow() const {
  return passRecord().dValue1 - figure.nSide * figure.styleNow.dValueA;
}

double IsoPost::passTaper() const {
  const bool one = post.paramInt(PostParam::kOneTaper) == 1;
  return figure.styleNow.passOffset[one ? 0 : recordIndex(nPass)];
}

bool IsoPost::marksBlocks() const {
  const std::string& word = post.word[PostWord::kFirstPassWord];
  return word == "V9" || word == "v9";
}

}  // namespace tarnex
