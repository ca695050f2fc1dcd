// The process style: defaults, limits, and what is wrong with one.
// Knows the values alone.
#include "machining/processstyle.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "host/platform/format.h"

namespace tarnex {

ProcessStyle::ProcessStyle() {
  for (int i = 0; i < kMostPasses; ++i) {
    auto& pass = passes[static_cast<std::size_t>(i)];
    pass.sCode = formatted("%03d", i);
    pass.sSub1 = pass.sSub2 = formatted("%02d", i);
  }
}

int passesOf(const ProcessStyle& style) {
  const auto last = std::abs(static_cast<std::int64_t>(style.nPassLast));
  return static_cast<int>(std::min<std::int64_t>(last, kMostPasses - 1)) + 1;
}

bool sameStyle(const ProcessStyle& a, const ProcessStyle& b) {
  return a.sName == b.sName && a.dValueC == b.dValueC && a.dValueA == b.dValueA && a.nPassLast == b.nPassLast;
}

std::vector<std::string> holdStyle(ProcessStyle& style) {
  std::vector<std::string> told;
  const int held = std::clamp(style.nPassLast, 1 - kMostPasses, kMostPasses - 1);
  if (held != style.nPassLast) told.push_back(formatted("last pass %d, taken as %d", style.nPassLast, held));
  style.nPassLast = held;
  int broken = 0;
  const auto finite = [&](double& v) {
    if (std::isfinite(v)) return;
    v = 0;
    ++broken;
  };
  for (double* v : {&style.dValueA, &style.dValueB, &style.dValueC, &style.dValueD}) finite(*v);
  for (double& v : style.passOffset) finite(v);
  for (auto& pass : style.passes) {
    finite(pass.dValue1);
    finite(pass.dValue2);
  }
  if (broken > 0)
    told.push_back(formatted("%d value%s no number, taken as 0", broken, broken == 1 ? " is" : "s are"));
  return told;
}

std::vector<std::string> styleFaults(const ProcessStyle& style) {
  std::vector<std::string> faults;
  const auto check = [&](const std::string& what, const std::string& text, std::size_t most) {
    if (text.empty()) faults.push_back(what + " is empty");
    if (text.find_first_of(" \t\n\r\v\f") != std::string::npos)
      faults.push_back(what + " \"" + text + "\" has a blank in it");
    if (text.size() > most)
      faults.push_back(
          formatted("%s \"%s\" has %zu bytes, at most %zu", what.c_str(), text.c_str(), text.size(), most));
  };
  check("name", style.sName, 19);
  if (style.nPassLast < 1 - kMostPasses || style.nPassLast >= kMostPasses)
    faults.push_back(formatted("last pass %d: at most %d passes, so at most %d", style.nPassLast, kMostPasses,
                               kMostPasses - 1));
  for (std::size_t g = 0; g < style.passes.size() && g < static_cast<std::size_t>(passesOf(style)); ++g) {
    const std::string pass = formatted("pass %zu: ", g + 1);
    check(pass + "offset number", style.passes[g].sCode, 7);
    check(pass + "condition", style.passes[g].sSub1, 4);
    check(pass + "second text", style.passes[g].sSub2, 10);
  }
  return faults;
}

SharedStyle::SharedStyle() {
  static const auto defaults = std::make_shared<const ProcessStyle>();
  style_ = defaults;
}

void SharedStyle::set(const ProcessStyle& style) {
  if (!(*style_ == style)) style_ = std::make_shared<const ProcessStyle>(style);
}

double largestOffset(const ProcessStyle& style, int nSide) {
  double largest = 0;
  for (int g = 0; g < passesOf(style); ++g)
    largest = std::max(largest, style.passes[static_cast<std::size_t>(g)].dValue1 - nSide * style.dValueA);
  return largest;
}

}  // namespace tarnex
