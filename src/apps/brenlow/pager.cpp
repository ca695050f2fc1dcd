// The pager's commands and pages.
// Knows no file and no terminal.
#include "apps/brenlow/pager.h"

#include <algorithm>
#include <istream>
#include <ostream>

#include "host/platform/codepage.h"
#include "host/platform/format.h"

namespace tarnex {
namespace {

constexpr std::string_view kHelp =
    "Enter next page, b back, g first, G last, NUMBER line, /TEXT search, n again, q quit";

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool holds(std::string_view line, std::string_view wanted) {
  const auto same = [](char a, char b) { return lower(a) == lower(b); };
  return std::search(line.begin(), line.end(), wanted.begin(), wanted.end(), same) != line.end();
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    auto line = text.substr(0, end);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.push_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

}  // namespace

std::string shownLine(std::string_view line, int columns) {
  const std::string text = isUtf8(line) ? std::string(line) : toUtf8(line, "GB18030");
  std::string out;
  int used = 0;
  for (std::size_t at = 0; at < text.size();) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t length = 1;
    while (lead >= 0xC0 && at + length < text.size() && (text[at + length] & 0xC0) == 0x80) ++length;
    const int wide = lead >= 0xE1 ? 2 : 1;  // near enough: what lies above is mostly Chinese
    if (used + wide > columns) break;
    const bool control = lead < 0x20 || lead == 0x7F || (lead == 0xC2 && (text[at + 1] & 0xFF) < 0xA0);
    out += control ? "." : text.substr(at, length);
    used += wide;
    at += length;
  }
  return out;
}

Pager::Pager(std::string_view text, std::string title, PageSize size)
    : lines_(linesOf(text)), title_(std::move(title)), size_(size) {}

long long Pager::pageLines() const {
  return std::max(size_.lines - 1, 1);
}

void Pager::goTo(long long line) {
  top_ = std::clamp<long long>(line, 0, std::max<long long>(static_cast<long long>(lines_.size()) - 1, 0));
}

void Pager::show(std::ostream& out) const {
  const long long end = std::min<long long>(top_ + pageLines(), static_cast<long long>(lines_.size()));
  for (long long i = top_; i < end; ++i) {
    const std::string number = formatted("%6lld  ", i + 1);
    out << number << shownLine(lines_[i], std::max(size_.columns - static_cast<int>(number.size()), 1))
        << '\n';
  }
}

std::string Pager::search() {
  if (wanted_.empty()) return "nothing to search for";
  const auto count = static_cast<long long>(lines_.size());
  for (long long step = 1; step <= count; ++step) {
    const long long at = (top_ + step) % count;
    if (!holds(lines_[at], wanted_)) continue;
    goTo(at);
    return {};
  }
  return "not found: " + wanted_;
}

std::string Pager::obey(const std::string& command) {
  long long line = 0;
  if (command.empty()) {
    if (top_ + pageLines() < static_cast<long long>(lines_.size())) goTo(top_ + pageLines());
  } else if (command[0] == '/') {
    if (command.size() > 1) wanted_ = command.substr(1);
    return search();
  } else if (command == "n") {
    return search();
  } else if (command == "b") {
    goTo(top_ - pageLines());
  } else if (command == "g") {
    goTo(0);
  } else if (command == "G") {
    goTo(static_cast<long long>(lines_.size()) - pageLines());
  } else if (parseInteger(command, line)) {
    goTo(std::max<long long>(line, 1) - 1);
  } else {
    return std::string(kHelp);
  }
  return {};
}

void Pager::run(std::istream& commands, std::ostream& out) {
  std::string told, command;
  for (;;) {
    if (told.empty()) show(out);
    const long long last = std::min<long long>(top_ + pageLines(), static_cast<long long>(lines_.size()));
    const auto place = formatted(" %lld/%lld ", last, static_cast<long long>(lines_.size()));
    out << (told.empty() ? title_ + place + "(h help, q quit)" : told) << ": " << std::flush;
    if (!std::getline(commands, command) || command == "q") break;
    told = obey(command);
  }
}

}  // namespace tarnex
