// Offset numbers and their table.
// Knows one style at a time; which styles a program uses, its driver knows.
#include "outputiso/offsets.h"

#include <algorithm>

#include "host/platform/format.h"
#include "output3b/segment.h"
#include "outputiso/postslots.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

std::string offsetText(const MachinePost& post, double mm) {
  if (post.paramInt(PostParam::kIntegerMicrometres) == 0) return formatted("%.3f", mm);
  return formatted("%lld", static_cast<long long>(round1000(mm)));
}

}  // namespace

int passesWithOffset(const MachinePost& post, const ProcessStyle& style, int nSide) {
  const bool tab = post.paramInt(PostParam::kNumberOffsets) == 1 &&
                   post.paramInt(PostParam::kTabRecord) == 1 && nSide == kInnerHole;
  return std::min(passesOf(style) + (tab ? 1 : 0), kMostPasses);
}

void numberOffsets(const MachinePost& post, ProcessStyle& style, int nSide, int& next) {
  const int count = passesWithOffset(post, style, nSide);
  for (int i = 0; i < count; ++i) style.passes[static_cast<std::size_t>(i)].sCode = formatted("%03d", next++);
}

std::string offsetLines(const MachinePost& post, const ProcessStyle& style, int nSide, int& next) {
  const bool counted = post.paramInt(PostParam::kNumberOffsets) != 0;
  const int count = passesWithOffset(post, style, nSide);
  std::string lines;
  for (int i = 0; i < count; ++i) {
    const PassRecord& pass = style.passes[static_cast<std::size_t>(i)];
    // The record behind the passes serves tabs, and tabs are those of outer shapes.
    const int side = i < passesOf(style) ? nSide : -nSide;
    lines += post.word[PostWord::kOffset] + (counted ? formatted("%03d", next++) : pass.sCode) + "=";
    lines += offsetText(post, pass.dValue1 - side * style.dValueA) + "\n";
  }
  return lines;
}

std::vector<OffsetMismatch> offsetMismatches(const MachinePost& post, std::string_view table,
                                             const ProcessStyle& style, int nSide) {
  const bool behind = nSide == kOuterShape && post.paramInt(PostParam::kTabRecord) == -1;
  const int count = std::min(passesOf(style) + (behind ? 1 : 0), kMostPasses);
  const std::string lines = "\n" + std::string(table);
  std::vector<OffsetMismatch> found;
  for (int i = 0; i < count; ++i) {
    const PassRecord& pass = style.passes[static_cast<std::size_t>(i)];
    const std::string head = "\n" + post.word[PostWord::kOffset] + pass.sCode + "=";
    const std::string own = offsetText(post, pass.dValue1 - nSide * style.dValueA);
    const auto at = lines.find(head);
    std::string listed;
    if (at != std::string::npos) {
      const auto value = at + head.size();
      listed = lines.substr(value, lines.find('\n', value) - value);
    }
    if (listed != own) found.push_back({pass.sCode, own, listed});
  }
  return found;
}

}  // namespace tarnex
