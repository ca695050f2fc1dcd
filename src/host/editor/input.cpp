// Queues and scripts as sources of answers.
// Knows no prompt's meaning.
#include "host/editor/input.h"

namespace tarnex {

std::optional<std::string> QueueInput::next(const PromptShown&) {
  if (lines_.empty()) return std::nullopt;
  std::string line = std::move(lines_.front());
  lines_.pop_front();
  return line;
}

ScriptInput::ScriptInput(std::string name, const std::string& text) : name_(std::move(name)) {
  std::size_t at = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;  // byte order mark
  while (at < text.size()) {
    auto end = text.find('\n', at);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(at, end - at);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines_.push_back(std::move(line));
    at = end + 1;
  }
}

std::optional<std::string> ScriptInput::next(const PromptShown&) {
  while (at_ < lines_.size()) {
    const std::string& line = lines_[at_++];
    if (line.empty() || line[0] != ';') return line;
  }
  return std::nullopt;
}

std::string ScriptInput::place() const {
  return name_ + ":" + std::to_string(at_);
}

}  // namespace tarnex
