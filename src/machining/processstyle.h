// How a figure is cut on a slow-wire machine: its passes with offset, condition and taper.
// Knows the values; who reads or writes them is above it.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace tarnex {

struct PassRecord {
  std::string sCode;   // offset number, at most 7 bytes
  double dValue1 = 0;  // wire offset of the pass, mm
  std::string sSub1;   // condition number, at most 4 bytes
  std::string sSub2;   // carried, at most 10 bytes
  double dValue2 = 0;
  bool operator==(const PassRecord&) const = default;
};

inline constexpr int kMostPasses = 10;

struct ProcessStyle {
  std::string sName = "STYLE1";  // at most 23 bytes
  double dValueC = 0, dValueD = 0;
  int nPassLast = 0;  // number of passes less one; writers take the absolute value
  double dValueA = 0, dValueB = 0;
  int nCode = 700;  // colour * 100 + kind
  std::array<PassRecord, kMostPasses> passes;
  std::array<double, kMostPasses> passOffset{};  // taper of each pass, degrees
  ProcessStyle();
  bool operator==(const ProcessStyle&) const = default;
};

// How many passes the writers cut: |nPassLast| + 1, held to 1 .. kMostPasses.
[[nodiscard]] int passesOf(const ProcessStyle& style);
// The largest wire offset of its passes, mm; nSide 1: a hole, where the fit makes it smaller, -1: an outer
// shape.
[[nodiscard]] double largestOffset(const ProcessStyle& style, int nSide);
// What the kind of a style, nCode % 100, asks for; every other kind asks for nothing.
struct StyleKind {
  static constexpr int kSwapInner = 2, kSwapOuter = 3, kFirstPassWord = 4;
};
[[nodiscard]] inline int kindOf(const ProcessStyle& style) {
  return style.nCode % 100;
}
[[nodiscard]] inline int colourOf(const ProcessStyle& style) {
  return style.nCode / 100;
}
// Whether two styles are one job style: name, taper, fit and number of passes agree.
[[nodiscard]] bool sameStyle(const ProcessStyle& a, const ProcessStyle& b);
// nPassLast becomes at most 9 either way, values that aren't finite 0. What was changed, a text each.
std::vector<std::string> holdStyle(ProcessStyle& style);
// What the drawing's keys or the writers couldn't live with, a sentence each: a name, code or condition
// number that is empty, has a blank in it or is too long, more than ten passes.
[[nodiscard]] std::vector<std::string> styleFaults(const ProcessStyle& style);

// A style that many paths hold without each having a copy. Changing it changes no other holder's.
class SharedStyle {
 public:
  SharedStyle();  // the defaults
  [[nodiscard]] const ProcessStyle& operator*() const { return *style_; }
  [[nodiscard]] const ProcessStyle* operator->() const { return style_.get(); }
  void set(const ProcessStyle& style);

 private:
  std::shared_ptr<const ProcessStyle> style_;
};

}  // namespace tarnex
