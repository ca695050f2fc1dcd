// What was found wrong with a drawing: findings, and the numbered marks under which a user reads them.
// Knows kinds, places and words; how things are found and drawn is its neighbours' matter.
#include "apps/tarnex/marks.h"

#include <algorithm>
#include <tuple>

#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr std::size_t kMostAlike = 12;  // single marks of one kind on one layer

struct KindWords {
  const char *one, *many;
  const char* measure;  // what the values of many are, behind the numbers; empty: not told
  int decimals = 3;
};
constexpr KindWords kWords[] = {
    {"gap", "gaps", " mm wide", 4},
    {"open chain", "open chains", " mm long"},
    {"branch point", "branch points", " ends meet", 0},
    {"doubled curve", "places where curves lie over each other", ""},
    {"self-crossing", "places where contours cross or touch themselves", ""},
    {"crossing contours", "pairs of contours that cross or touch", ""},
    {"no shape", "contours that enclose nothing or too much", ""},
    {"radius below offset", "radii below the wire offset", " mm"},
    {"vanishes", "contours too small for the wire", ""},
    {"falls apart", "contours that fall apart under the wire offset", ""},
    {"wire overlap", "places where wires come too near to other contours", " mm"},
    {"lead-in crosses", "lead-ins that cross a contour", ""},
    {"sharp corner", "corners so sharp that the wire runs out before it turns", " mm out"},
    {"offset by corners", "offsets made corner by corner, look at them before cutting", ""},
};
const KindWords& wordsOf(MarkKind kind) {
  return kWords[static_cast<std::size_t>(kind)];
}

Mark single(const Finding& f) {
  return {0, f.kind, f.layer, f.places, 1, f.value, f.value, f.limit, f.text};
}

std::string rangeText(const KindWords& words, double least, double most) {
  if (*words.measure == '\0') return {};
  const std::string low = formatted("%.*f", words.decimals, least),
                    high = formatted("%.*f", words.decimals, most);
  return ", " + (low == high ? low : low + " to " + high) + words.measure;
}

Mark together(std::vector<Finding>::const_iterator from, std::vector<Finding>::const_iterator to) {
  Mark m = single(*from);
  m.places.clear();
  m.count = static_cast<std::size_t>(to - from);
  for (auto f = from; f != to; ++f) {
    m.least = std::min(m.least, f->value);
    m.most = std::max(m.most, f->value);
    m.places.insert(m.places.end(), f->places.begin(), f->places.end());
  }
  const KindWords& words = wordsOf(m.kind);
  m.text = formatted("%zu %s", m.count, words.many) + rangeText(words, m.least, m.most);
  return m;
}

}  // namespace

const char* nameOf(MarkKind kind) {
  return wordsOf(kind).one;
}

std::vector<Mark> marksOf(std::vector<Finding> findings) {
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    return std::tie(a.kind, a.layer) < std::tie(b.kind, b.layer);
  });
  std::vector<Mark> marks;
  for (auto from = findings.begin(); from != findings.end();) {
    const auto to = std::find_if(from, findings.end(), [&](const Finding& f) {
      return f.kind != from->kind || f.layer != from->layer;
    });
    if (static_cast<std::size_t>(to - from) > kMostAlike)
      marks.push_back(together(from, to));
    else
      std::transform(from, to, std::back_inserter(marks), single);
    from = to;
  }
  for (std::size_t i = 0; i < marks.size(); ++i) marks[i].number = static_cast<int>(i) + 1;
  return marks;
}

}  // namespace tarnex
