// The shortest way from one program to another: E. W. Myers, "An O(ND) difference algorithm and its
// variations", 1986. Knows lines as numbers, equal ones alike.
#include "exchange/programdiff.h"

#include <algorithm>
#include <optional>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr std::size_t kContext = 3;  // lines around a change

bool fits(std::string_view text, std::string_view pattern) {  // 9: a digit, _: a digit or a blank
  if (text.size() < pattern.size()) return false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (pattern[i] == '9' ? !digit : pattern[i] == '_' ? !digit && text[i] != ' ' : text[i] != pattern[i])
      return false;
  }
  return true;
}

struct Clock {
  std::string_view pattern;
  std::size_t mark;  // of the first character that is no digit
};
constexpr Clock kClocks[] = {{"9999-99-_9", 4}, {"99:99:99", 2}};  // V18, V19

// The same text, as long, with every date and time blotted out.
std::string withoutClock(std::string_view text) {
  std::string out(text);
  for (const auto& [pattern, mark] : kClocks)
    for (std::size_t at = out.find(pattern[mark]); at != std::string::npos;
         at = out.find(pattern[mark], at + 1))
      if (at >= mark && fits(std::string_view(out).substr(at - mark), pattern))
        out.replace(at - mark, pattern.size(), pattern.size(), '#');
  return out;
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

// Lines of either program that don't stand in the other.
struct Change {
  std::size_t before = 0, removed = 0, after = 0, added = 0;  // first lines from 0, and counts
};

using Numbers = std::span<const int>;

// The edit script from `a` to `b`, the last change first; nothing when it takes more than `most` lines.
class ShortestScript {
 public:
  ShortestScript(Numbers a, Numbers b, int most) : a_(a), b_(b), most_(most) {}

  std::optional<std::vector<Change>> changes() {
    const int n = static_cast<int>(a_.size()), m = static_cast<int>(b_.size());
    std::vector<int> furthest;  // line of `a`, by diagonal
    for (int d = 0; d <= most_; ++d) {
      std::vector<int> next(at(2 * d + 1));
      for (int k = -d; k <= d; k += 2) {
        int x = startOf(furthest, d, k);
        while (x < n && x - k < m && a_[at(x)] == b_[at(x - k)]) ++x;
        next[at(k + d)] = x;
        if (x < n || x - k < m) continue;
        steps_.push_back(std::move(furthest));
        return walkedBack(d);
      }
      steps_.push_back(std::exchange(furthest, std::move(next)));
    }
    return std::nullopt;
  }

 private:
  static std::size_t at(int i) { return static_cast<std::size_t>(i); }

  // What step d - 1 reached on diagonal k, one of its own.
  static int reached(const std::vector<int>& furthest, int d, int k) { return furthest[at(k + d - 1)]; }
  // One more line added comes from the diagonal above, one removed from the one below.
  static bool comesDown(const std::vector<int>& furthest, int d, int k) {
    return k == -d || (k != d && reached(furthest, d, k - 1) < reached(furthest, d, k + 1));
  }
  static int startOf(const std::vector<int>& furthest, int d, int k) {
    if (d == 0) return 0;
    return comesDown(furthest, d, k) ? reached(furthest, d, k + 1) : reached(furthest, d, k - 1) + 1;
  }

  std::vector<Change> walkedBack(int d) const {
    std::vector<Change> changes;
    int k = static_cast<int>(a_.size()) - static_cast<int>(b_.size());
    for (; d > 0; --d) {
      const auto& furthest = steps_[at(d)];
      const bool down = comesDown(furthest, d, k);
      k += down ? 1 : -1;
      const int x = reached(furthest, d, k);
      add(changes, {at(x), down ? 0u : 1u, at(x - k), down ? 1u : 0u});
    }
    return changes;
  }
  static void add(std::vector<Change>& changes, Change step) {
    if (!changes.empty() && changes.back().before == step.before + step.removed &&
        changes.back().after == step.after + step.added) {
      Change& last = changes.back();
      last = {step.before, last.removed + step.removed, step.after, last.added + step.added};
    } else {
      changes.push_back(step);
    }
  }

  Numbers a_, b_;
  int most_;
  std::vector<std::vector<int>> steps_;  // what each step began with
};

class Comparison {
 public:
  Comparison(std::string_view before, std::string_view after)
      : before_(linesOf(before)), after_(linesOf(after)) {
    const std::string a = withoutClock(before), b = withoutClock(after);
    std::unordered_map<std::string_view, int> known;
    const auto numbered = [&](std::string_view text) {
      std::vector<int> numbers;
      for (const auto line : linesOf(text))
        numbers.push_back(known.try_emplace(line, int(known.size())).first->second);
      return numbers;
    };
    a_ = numbered(a);
    b_ = numbered(b);
  }

  ProgramDiff result() {
    const auto same = std::ranges::mismatch(a_, b_).in1 - a_.begin();
    const auto rest = std::min(a_.size(), b_.size()) - static_cast<std::size_t>(same);
    std::size_t end = 0;
    while (end < rest && a_[a_.size() - 1 - end] == b_[b_.size() - 1 - end]) ++end;
    const auto start = static_cast<std::size_t>(same);
    const Numbers a(a_.data() + start, a_.size() - start - end),
        b(b_.data() + start, b_.size() - start - end);
    ProgramDiff diff;
    if (auto changes = ShortestScript(a, b, kMostChangedLines).changes()) {
      std::ranges::reverse(*changes);
      for (Change& c : *changes) count(diff, c = {c.before + start, c.removed, c.after + start, c.added});
      put(diff.text, *changes);
      return diff;
    }
    const Change all{start, a.size(), start, b.size()};
    count(diff, all);
    diff.isShortened = true;
    putHead(diff.text, all);
    if (all.removed > 0) putLine(diff.text, '-', before_[start]);
    if (all.added > 0) putLine(diff.text, '+', after_[start]);
    return diff;
  }

 private:
  static void count(ProgramDiff& diff, const Change& c) {
    diff.removed += c.removed;
    diff.added += c.added;
    diff.changed += std::max(c.removed, c.added);
  }

  // Changes whose contexts meet share a head.
  void put(std::string& text, std::span<const Change> changes) const {
    while (!changes.empty()) {
      std::size_t n = 1;
      while (n < changes.size() && changes[n].before - endOf(changes[n - 1]) <= 2 * kContext) ++n;
      putTogether(text, changes.first(n));
      changes = changes.subspan(n);
    }
  }
  static std::size_t endOf(const Change& c) { return c.before + c.removed; }

  void putTogether(std::string& text, std::span<const Change> changes) const {
    const Change &first = changes.front(), &last = changes.back();
    const std::size_t lead = std::min(first.before, kContext);
    const std::size_t trail = std::min(before_.size() - endOf(last), kContext);
    putHead(text, {first.before - lead, endOf(last) + trail - first.before + lead, first.after - lead,
                   last.after + last.added + trail - first.after + lead});
    std::size_t at = first.before - lead;
    for (const Change& c : changes) {
      for (; at < c.before; ++at) putLine(text, ' ', before_[at]);
      for (; at < endOf(c); ++at) putLine(text, '-', before_[at]);
      for (std::size_t i = 0; i < c.added; ++i) putLine(text, '+', after_[c.after + i]);
    }
    for (std::size_t i = 0; i < trail; ++i) putLine(text, ' ', before_[at + i]);
  }

  // Lines are counted from 1; an empty side stands behind the line of its number.
  static void putHead(std::string& text, const Change& c) {
    const auto first = [](std::size_t at, std::size_t count) { return count == 0 ? at : at + 1; };
    text += formatted("@@ -%zu,%zu +%zu,%zu @@\n", first(c.before, c.removed), c.removed,
                      first(c.after, c.added), c.added);
  }
  static void putLine(std::string& text, char mark, std::string_view line) {
    text += mark;
    text += line;
    text += '\n';
  }

  std::vector<std::string_view> before_, after_;
  std::vector<int> a_, b_;
};

}  // namespace

ProgramDiff compareProgram(std::string_view before, std::string_view after) {
  return Comparison(before, after).result();
}

}  // namespace tarnex
