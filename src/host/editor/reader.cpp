// Where the next answer comes from.
// Knows no kinds of answers.
#include "host/editor/reader.h"

#include "host/editor/answers.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

// The answer of the innermost program whose turn it is; nothing when it is the user's.
std::optional<Reading> programAnswer(EditorState& state, std::string_view prompt) {
  for (auto program = state.programs.rbegin(); program != state.programs.rend(); ++program) {
    if (program->texts.empty()) {
      program->ranDry = true;
      return Reading{Reading::Kind::kCancel, {}};
    }
    std::string text = std::move(program->texts.front());
    program->texts.pop_front();
    if (text == kPause) continue;  // the one that runs that program answers
    if (!state.silent()) {
      state.writePrompt(prompt);
      state.write(text + "\n");
      state.lineJustEnded = true;
    }
    return Reading{isCancel(text) ? Reading::Kind::kCancel : Reading::Kind::kText, std::move(text)};
  }
  return std::nullopt;
}

std::optional<std::string> nextLine(EditorState& state, const Question& question) {
  while (!state.sources.empty()) {
    const auto source = state.sources.back();
    const std::string_view shown = question.prompt;
    PromptShown prompt{{}, question.completions, question.commandPrompt};
    if (source->showsPrompt()) {
      const auto lastLine = shown.rfind('\n');
      if (lastLine != std::string_view::npos) state.writePrompt(shown.substr(0, lastLine + 1));
      prompt.text = state.outputLine + std::string(shown.substr(lastLine + 1));
    } else {
      prompt.text = shown;
    }
    auto line = source->next(prompt);
    if (interruptPending()) {
      clearInterrupt();
      throw CommandInterrupted{};
    }
    if (line) {
      state.place = source->place();
      state.personAnswers = source->showsPrompt();
      if (!state.personAnswers) {
        state.writePrompt(shown);
        state.write(*line + "\n");
      }
      state.outputLine.clear();
      state.lineJustEnded = true;
      return line;
    }
    // A source may have put another above itself while it was asked.
    std::erase(state.sources, source);
  }
  return std::nullopt;
}

std::string takeExtent(EditorState& state, Extent extent) {
  if (extent == Extent::kWholeLine) return state.restOfLine.take();
  std::string_view rest = state.restOfLine.view();
  std::string word = takeWord(rest).value_or("");
  if (extent == Extent::kHandles && !word.empty() && word[0] == '&')  // further handles belong to the first
    while (!rest.empty() && rest[0] == '&') word += " " + *takeWord(rest);
  state.restOfLine.keep(rest);
  return word;
}

// So that a script takes the word as one and not for a comment.
std::string quotedWord(const std::string& word) {
  const bool plain = word.empty() || (word[0] != ';' && word.find_first_of(" \t") == std::string::npos);
  return plain ? word : "\"" + word + "\"";
}

}  // namespace

Reading readAnswer(EditorState& state, const Question& question,
                   const std::function<void(std::string_view)>& journal) {
  if (interruptPending()) {
    clearInterrupt();
    throw CommandInterrupted{};
  }
  if (auto answer = programAnswer(state, question.prompt)) return *answer;
  if (state.restOfLine.empty()) {
    auto line = nextLine(state, question);
    if (!line) return {Reading::Kind::kEnd, {}};
    state.restOfLine.set(std::move(*line));
  }
  std::string text = takeExtent(state, question.extent);
  if (journal) journal(question.extent == Extent::kWord ? quotedWord(text) : text);
  if (isCancel(text)) {
    state.restOfLine.clear();
    state.write("*Cancel*\n");
    state.lineJustEnded = true;
    return {Reading::Kind::kCancel, {}};
  }
  return {Reading::Kind::kText, std::move(text)};
}

std::vector<std::string> takeSentAnswers(std::string& text) {
  std::vector<std::string> answers;
  for (auto end = text.find_first_of(" \r\n"); end != std::string::npos; end = text.find_first_of(" \r\n")) {
    answers.push_back(text.substr(0, end));
    text.erase(0, end + 1);
  }
  return answers;
}

}  // namespace tarnex
