// Takes the next answer from whoever's turn it is: a program, the rest of a line, or the newest source.
// Knows no kinds of answers.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/editor/state.h"

namespace tarnex {

struct Question {
  std::string_view prompt;
  std::vector<std::string> completions;
  Extent extent = Extent::kWord;
  bool commandPrompt = false;
};

// Throws CommandInterrupted when the user broke in. `journal` gets what a user answered.
[[nodiscard]] Reading readAnswer(EditorState& state, const Question& question,
                                 const std::function<void(std::string_view)>& journal);

// The finished answers of a sent text, taken off it: as typed, blanks and line ends finish an answer. What
// isn't finished stays.
[[nodiscard]] std::vector<std::string> takeSentAnswers(std::string& text);

}  // namespace tarnex
