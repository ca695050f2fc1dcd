// The terminal as a place to print on and to take answers from.
// Knows no prompt's meaning.
#pragma once

#include <memory>
#include <string>

#include "host/editor/editor.h"

namespace tarnex {

// Standard output; boxes with the stop sign go to standard error. Where standard output is a terminal the
// meter is a line that is drawn over, otherwise there is none.
class StreamSink : public OutputSink {
 public:
  StreamSink();
  ~StreamSink() override;
  void print(std::string_view utf8) override;
  void messageBox(std::string_view text, int style) override;
  void meter(std::string_view title, long position, long total) override;

 private:
  bool terminal_;
  std::size_t meterWidth_ = 0;  // of the line that stands, 0: none
  int shownPercent_ = -1;
};

// Lines typed on standard input. On a terminal, and where the line editor is built in, with editing,
// completion and a history kept in `historyFile` ("": none); otherwise plain lines.
[[nodiscard]] std::shared_ptr<InputSource> terminalInput(const std::string& historyFile);
// `history` in the folder of the user's data.
[[nodiscard]] std::string usualHistoryFile();
[[nodiscard]] bool hasLineEditor();

// Of the words, those that begin with `start`, ignoring case; and what they have in common beyond it.
struct Completion {
  std::vector<std::string> candidates;
  std::string common;  // as the first candidate writes it, at least as long as `start`
};
[[nodiscard]] Completion completionsOf(const std::vector<std::string>& words, std::string_view start);

}  // namespace tarnex
