// brenlow: stands in for the NC editor. Started by the hand-over it saves the program's text; at a terminal
// it shows a file. Knows no NC format.
#include <cstring>
#include <iostream>

#include "apps/brenlow/pager.h"
#include "host/platform/files.h"
#include "host/platform/system.h"

namespace tarnex {
namespace {

enum Exit { kDone = 0, kNotWritten = 1, kUsage = 2, kUnreadable = 3 };

constexpr const char* kUsageText =
    "usage: brenlow FILE\n"
    "       brenlow --help\n"
    "\n"
    "Shows an NC program: page by page on a terminal (h lists the keys), as it stands elsewhere.\n"
    "\n"
    "Started by tarnex, which names a text area in TARNEX_TEXT_AREA, it saves the area's text under\n"
    "FILE instead: the old file or the whole new one, never half. Without a text in the area a FILE\n"
    "that holds something is left alone.\n"
    "\n"
    "Exit codes: 0 done, 1 not written, 2 wrong usage, 3 FILE can't be read.\n";

int complain(Exit code, const std::string& text) {
  std::cerr << "brenlow: " << text << '\n';
  return code;
}

bool holdsSomething(const std::string& path) {
  const auto bytes = readFile(path);
  return bytes && !bytes.value->empty();
}

// The text goes to the file; where there is none to be had, what the file holds is all that there is.
int takeOver(const std::string& path) {
  const auto area = SharedTextArea::openFromEnvironment();
  const std::size_t length = area ? strnlen(area->data(), SharedTextArea::kSize) : 0;
  if (length == SharedTextArea::kSize)
    return complain(kNotWritten, path + ": the text area has no end, not saved");
  if (length == 0) {
    if (holdsSomething(path)) return kDone;
    return complain(kNotWritten,
                    path + (area ? ": the text area is empty" : ": the text area can't be opened"));
  }
  if (auto error = writeFileAtomically(path, {area->data(), length}))
    return complain(kNotWritten, error->text());
  return kDone;
}

int show(const std::string& path) {
  const auto bytes = readFile(path);
  if (!bytes) return complain(kUnreadable, bytes.error.text());
  if (isTerminal(1)) {
    const auto size = terminalSize();
    Pager(*bytes.value, fileNameOf(path), {size.columns, size.lines}).run(std::cin, std::cout);
    return kDone;
  }
  std::cout << *bytes.value << std::flush;
  return std::cout ? kDone : complain(kNotWritten, "the output can't be written");
}

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() == 1 && (arguments[0] == "--help" || arguments[0] == "-h")) {
    std::cout << kUsageText;
    return kDone;
  }
  const bool handedOver = environment("TARNEX_TEXT_AREA").has_value();
  const std::string path = arguments.empty() ? "" : arguments[0];
  if (handedOver && path.empty()) return kDone;  // opened without a program: nothing to save
  const bool option = path.size() > 1 && path[0] == '-';
  if (arguments.size() != 1 || path.empty() || option) {
    std::cerr << kUsageText;
    return kUsage;
  }
  return handedOver ? takeOver(path) : show(path);
}

}  // namespace
}  // namespace tarnex

int main(int count, char** arguments) {
  return tarnex::run({arguments + (count > 0), arguments + count});
}
