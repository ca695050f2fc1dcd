// Where answers come from: a terminal, a script, a program's queue. A prompt doesn't know which.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarnex {

// What a prompt shows to its source, so that a terminal can complete words.
struct PromptShown {
  std::string text;                      // as printed, without a line end
  std::vector<std::string> completions;  // keywords, or command names at the command prompt
  bool commandPrompt = false;
};

class InputSource {
 public:
  virtual ~InputSource() = default;
  // The next line without its line end. Nothing: the source is at its end.
  virtual std::optional<std::string> next(const PromptShown& prompt) = 0;
  // Place of the line last given, "job.scr:12", for error messages; empty for a terminal.
  [[nodiscard]] virtual std::string place() const { return {}; }
  // True when a person sees the prompt there already, so that it needn't be printed.
  [[nodiscard]] virtual bool showsPrompt() const { return false; }
};

// Lines that a program or a test puts in.
class QueueInput : public InputSource {
 public:
  QueueInput() = default;
  explicit QueueInput(std::vector<std::string> lines) : lines_(lines.begin(), lines.end()) {}
  void push(std::string line) { lines_.push_back(std::move(line)); }
  std::optional<std::string> next(const PromptShown& prompt) override;

 private:
  std::deque<std::string> lines_;
};

// A script file, line by line what one would type: an empty line is Enter; a line that starts with ';' is a
// comment.
class ScriptInput : public InputSource {
 public:
  ScriptInput(std::string name, const std::string& text);
  std::optional<std::string> next(const PromptShown& prompt) override;
  [[nodiscard]] std::string place() const override;

 private:
  std::string name_;
  std::vector<std::string> lines_;
  std::size_t at_ = 0;
};

}  // namespace tarnex
