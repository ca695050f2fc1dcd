// Finding a keyword for an answer.
// Knows no prompt and no catalogue.
#include "host/editor/keywords.h"

#include <algorithm>

#include "host/editor/answers.h"

namespace tarnex {

namespace {

bool isCapital(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}
bool isSmall(char c) {
  return c >= 'a' && c <= 'z';
}

// Capitals at the front may be followed by as much of the word as one likes.
bool abbreviates(std::string_view answer, const Keyword& k) {
  if (k.capitals.empty()) return false;
  if (equalIgnoringCase(answer, k.capitals)) return true;
  const bool leading = k.whole.compare(0, k.capitals.size(), k.capitals) == 0;
  return leading && answer.size() > k.capitals.size() && answer.size() < k.whole.size() &&
         equalIgnoringCase(answer, std::string_view(k.whole).substr(0, answer.size()));
}

}  // namespace

std::vector<Keyword> parseKeywords(std::string_view list) {
  std::vector<Keyword> result;
  while (auto word = takeWord(list)) {
    Keyword k{*word, {}};
    if (std::any_of(word->begin(), word->end(), isSmall))
      std::copy_if(word->begin(), word->end(), std::back_inserter(k.capitals), isCapital);
    if (!word->empty()) result.push_back(std::move(k));
  }
  return result;
}

std::optional<std::string> matchKeyword(const std::vector<Keyword>& keywords, std::string_view answer) {
  answer = trimmed(answer);
  if (answer.size() > 1 && answer[0] == '_') answer.remove_prefix(1);
  if (answer.empty()) return std::nullopt;
  for (const auto& k : keywords)
    if (equalIgnoringCase(answer, k.whole)) return k.whole;
  for (const auto& k : keywords)
    if (abbreviates(answer, k)) return k.whole;
  return std::nullopt;
}

}  // namespace tarnex
