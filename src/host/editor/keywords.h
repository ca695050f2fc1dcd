// The words that a prompt takes besides its values, and how an answer finds one.
// Knows no prompt and no catalogue.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

// A keyword and the part of it that its writer put in capitals (digits count as such): "UNdo" is found by
// "un", "und" and "undo"; "eXit" by "x" and "exit"; a word all in one case only whole.
struct Keyword {
  std::string whole;
  std::string capitals;
};

[[nodiscard]] std::vector<Keyword> parseKeywords(std::string_view list);  // words at blanks
// The keyword as the list has it, or nothing. A leading underscore of the answer is skipped. Ignoring case;
// whole words go before abbreviations, then the earlier before the later.
[[nodiscard]] std::optional<std::string> matchKeyword(const std::vector<Keyword>& keywords,
                                                      std::string_view answer);

}  // namespace tarnex
