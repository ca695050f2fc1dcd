// Conditions of selection filters.
// Knows no prompt.
#include "host/editor/filter.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "host/editor/answers.h"

namespace tarnex {

namespace {

constexpr int kOperator = -4, kApplication = -3;

bool sameLetter(char a, char b) {
  return equalIgnoringCase({&a, 1}, {&b, 1});
}

// One alternative. Goes back to the last star alone, so the time is at most the product of both lengths.
bool matchesOne(std::string_view text, std::string_view pattern) {
  std::size_t t = 0, p = 0, star = std::string_view::npos, resume = 0;
  while (t < text.size()) {
    const bool literal = p + 1 < pattern.size() && pattern[p] == '`';
    const std::size_t letter = p + (literal ? 1 : 0);
    if (p < pattern.size() && !literal && pattern[p] == '*') {
      star = p++;
      resume = t;
    } else if (letter < pattern.size() &&
               ((!literal && pattern[letter] == '?') || sameLetter(pattern[letter], text[t]))) {
      p = letter + 1;
      ++t;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      t = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

std::string textOf(const ResBuf& item) {
  const auto* text = std::get_if<std::string>(&item.value);
  return text ? *text : std::string();
}

std::optional<long long> wholeOf(const ResBuf& item) {
  if (const auto* n = std::get_if<long long>(&item.value)) return *n;
  if (const auto* r = std::get_if<double>(&item.value)) return static_cast<long long>(*r);
  return std::nullopt;
}

}  // namespace

bool matchesWildcard(std::string_view text, std::string_view pattern) {
  std::size_t start = 0;
  for (std::size_t i = 0; i <= pattern.size(); ++i) {
    if (i < pattern.size() && pattern[i] == '`')
      ++i;
    else if (i == pattern.size() || pattern[i] == ',') {
      if (matchesOne(text, pattern.substr(start, i - start))) return true;
      start = i + 1;
    }
  }
  return false;
}

struct SelectionFilter::Node {
  std::string group;  // "and", "or", "not", "xor"; "" for a condition
  std::vector<std::unique_ptr<Node>> members;
  ResBuf item;
  std::string text;                              // the condition's
  std::unordered_map<std::uint32_t, bool> byId;  // answers for layers, line types and blocks met before
};

SelectionFilter::SelectionFilter(const AcDbDatabase& drawing, const ResBufChain& chain) : drawing_(drawing) {
  std::size_t at = 0;
  root_ = parse(chain, at, "");
}

SelectionFilter::~SelectionFilter() = default;

std::unique_ptr<SelectionFilter::Node> SelectionFilter::parse(const ResBufChain& chain, std::size_t& at,
                                                              std::string_view group) {
  auto node = std::make_unique<Node>();
  node->group = group.empty() ? "and" : std::string(group);
  while (at < chain.size()) {
    const ResBuf& item = chain[at++];
    if (item.code != kOperator) {
      auto leaf = std::make_unique<Node>();
      leaf->item = item;
      leaf->text = textOf(item);
      node->members.push_back(std::move(leaf));
      continue;
    }
    const std::string word = textOf(item);
    if (!group.empty() && equalIgnoringCase(word, std::string(group) + ">")) return node;
    const auto* known = word.size() < 2 || word[0] != '<' ? nullptr : word.c_str() + 1;
    if (!known || !matchesWildcard(known, "and,or,not,xor")) {
      wellFormed_ = false;
      return node;
    }
    std::string inner = word.substr(1);
    for (auto& c : inner) c = static_cast<char>(c | 0x20);
    node->members.push_back(parse(chain, at, inner));
  }
  if (!group.empty()) wellFormed_ = false;  // never closed
  return node;
}

bool SelectionFilter::accepts(const AcDbEntity& entity) {
  return wellFormed_ && holds(*root_, entity);
}

bool SelectionFilter::holds(Node& node, const AcDbEntity& entity) {
  if (node.group.empty()) return holdsItem(node, entity);
  const auto fits = [&](const std::unique_ptr<Node>& member) { return holds(*member, entity); };
  if (node.group == "and") return std::all_of(node.members.begin(), node.members.end(), fits);
  if (node.group == "or") return std::any_of(node.members.begin(), node.members.end(), fits);
  if (node.group == "not") return std::none_of(node.members.begin(), node.members.end(), fits);
  return std::count_if(node.members.begin(), node.members.end(), fits) == 1;
}

bool SelectionFilter::holdsItem(Node& node, const AcDbEntity& entity) {
  const auto named = [&](AcDbObjectId id, const auto& name) {
    const auto [it, isNew] = node.byId.try_emplace(id.index, false);
    if (isNew) it->second = matchesWildcard(name(), node.text);
    return it->second;
  };
  const auto nameOf = [&](AcDbObjectId id, const char* otherwise) {
    const auto* record = drawing_.peek<AcDbSymbolTableRecord>(id);
    return record ? record->getName() : std::string(otherwise);
  };
  const auto whole = wholeOf(node.item);
  switch (node.item.code) {
    case 0:
      return matchesWildcard(entity.dxfName(), node.text);
    case 2: {
      const auto* reference = dynamic_cast<const AcDbBlockReference*>(&entity);
      if (!reference) return false;
      const auto block = reference->blockTableRecord();
      return named(block, [&] { return nameOf(block, ""); });
    }
    case 5:
      return equalIgnoringCase(handleText(entity.handle()).substr(1), node.text);
    case 6:
      return named(entity.linetypeId(), [&] { return nameOf(entity.linetypeId(), "BYLAYER"); });
    case 8:
      return named(entity.layerId(), [&] { return drawing_.layerName(entity.layerId()); });
    case 60:
      return whole == (entity.isInvisible() ? 1 : 0);
    case 62:
      return whole == entity.colorIndex();
    case 67:
      return whole == 0;
    case kApplication:
      return !entity.xData(node.text).empty();
    default:
      return false;
  }
}

}  // namespace tarnex
