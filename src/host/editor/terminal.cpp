// Printing on a terminal and reading plain lines.
// Knows no prompt's meaning.
#include "host/editor/terminal.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "host/editor/answers.h"
#include "host/platform/system.h"

namespace tarnex {

StreamSink::StreamSink() : terminal_(isTerminal(1)) {}

StreamSink::~StreamSink() {
  meter({}, 0, 0);
}

void StreamSink::print(std::string_view utf8) {
  if (meterWidth_ > 0) meter({}, 0, 0);
  std::fwrite(utf8.data(), 1, utf8.size(), stdout);
  if (terminal_) std::fflush(stdout);
}

void StreamSink::messageBox(std::string_view text, int style) {
  if (meterWidth_ > 0) meter({}, 0, 0);
  std::fflush(stdout);
  FILE* const stream = style & MB_ICONSTOP ? stderr : stdout;
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fputc('\n', stream);
  std::fflush(stream);
}

void StreamSink::meter(std::string_view title, long position, long total) {
  if (!terminal_) return;
  const std::string standing(meterWidth_, ' ');
  if (title.empty()) {
    if (meterWidth_ > 0) std::fwrite(("\r" + standing + "\r").data(), 1, standing.size() + 2, stdout);
    meterWidth_ = 0;
    shownPercent_ = -1;
    std::fflush(stdout);
    return;
  }
  const int percent = total > 0 ? static_cast<int>(std::clamp(100.0 * position / total, 0.0, 100.0)) : 100;
  if (percent == shownPercent_) return;
  shownPercent_ = percent;
  std::string line = std::string(title) + " " + std::to_string(percent) + "%";
  line.resize(std::max(line.size(), meterWidth_), ' ');  // over what stands
  std::fwrite(("\r" + line).data(), 1, line.size() + 1, stdout);
  meterWidth_ = std::max(meterWidth_, line.size());
  std::fflush(stdout);
}

namespace {

class PlainInput : public InputSource {
 public:
  PlainInput() {
    if (terminal_) std::setvbuf(stdin, nullptr, _IONBF, 0);  // so that waiting sees all that was typed
  }
  std::optional<std::string> next(const PromptShown& prompt) override {
    // What a terminal shows; the editor prints the prompt where it is none.
    if (showsPrompt()) {
      std::fputs(("\r" + prompt.text).c_str(), stdout);
      std::fflush(stdout);
    }
    std::string line;
    if (showsPrompt() && !waitForTyping(0)) return std::nullopt;
    if (!std::getline(std::cin, line)) {
      if (interruptPending()) std::cin.clear();
      return std::nullopt;
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
  }
  [[nodiscard]] bool showsPrompt() const override { return terminal_; }

 private:
  bool terminal_ = isTerminal(0) && isTerminal(1);
};

}  // namespace

#ifdef TARNEX_HAS_LIBEDIT
std::shared_ptr<InputSource> lineEditorInput(const std::string& historyFile);  // terminal_libedit.cpp
#endif

bool hasLineEditor() {
#ifdef TARNEX_HAS_LIBEDIT
  return true;
#else
  return false;
#endif
}

std::shared_ptr<InputSource> terminalInput([[maybe_unused]] const std::string& historyFile) {
#ifdef TARNEX_HAS_LIBEDIT
  if (isTerminal(0) && isTerminal(1)) return lineEditorInput(historyFile);
#endif
  return std::make_shared<PlainInput>();
}

std::string usualHistoryFile() {
  return userDataFolder() + "/history";
}

Completion completionsOf(const std::vector<std::string>& words, std::string_view start) {
  Completion result;
  for (const auto& word : words)
    if (word.size() >= start.size() &&
        equalIgnoringCase(std::string_view(word).substr(0, start.size()), start))
      result.candidates.push_back(word);
  if (result.candidates.empty()) return result;
  std::size_t length = result.candidates[0].size();
  for (const auto& word : result.candidates) {
    length = std::min(length, word.size());
    while (!equalIgnoringCase(std::string_view(word).substr(0, length),
                              std::string_view(result.candidates[0]).substr(0, length)))
      --length;
  }
  result.common = result.candidates[0].substr(0, length);
  return result;
}

}  // namespace tarnex
