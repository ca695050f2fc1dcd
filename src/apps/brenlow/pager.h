// A text page by page on a terminal, with line numbers and search.
// Knows no file and no terminal: lines come in as a text, commands from a stream, pages go to another.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

struct PageSize {
  int columns = 80, lines = 24;
};

class Pager {
 public:
  Pager(std::string_view text, std::string title, PageSize size);
  // Shows the first page and obeys commands, one a line, until `q` or the end of `commands`:
  // Enter next page, `b` back, `g` first, `G` last page, a number goes to that line, `/text` searches on from
  // the page's second line and round the end (ASCII case doesn't matter), `n` the same again, `h` the list of
  // these.
  void run(std::istream& commands, std::ostream& out);

 private:
  void show(std::ostream& out) const;
  std::string obey(const std::string& command);  // what is to be told
  std::string search();
  void goTo(long long line);
  [[nodiscard]] long long pageLines() const;

  std::vector<std::string_view> lines_;
  std::string title_, wanted_;
  PageSize size_;
  long long top_ = 0;  // index of the page's first line
};

// The line as a terminal can show it, at most `columns` wide: control characters as '.', bytes that aren't
// UTF-8 read as GB18030.
std::string shownLine(std::string_view line, int columns);

}  // namespace tarnex
