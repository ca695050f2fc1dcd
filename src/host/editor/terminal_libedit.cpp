// Line editing, history and completion on a terminal, by libedit. Empty where it isn't built in.
// Knows no prompt's meaning.
#ifdef TARNEX_HAS_LIBEDIT

#include <histedit.h>

#include <cstdio>
#include <cwchar>

#include "host/editor/terminal.h"
#include "host/platform/files.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

constexpr int kHistoryLines = 1000;

class LineEditor : public InputSource {
 public:
  explicit LineEditor(std::string historyFile);
  ~LineEditor() override;
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;
  std::optional<std::string> next(const PromptShown& prompt) override;
  [[nodiscard]] bool showsPrompt() const override { return true; }

 private:
  static LineEditor& of(EditLine* editor);
  static char* promptText(EditLine* editor);
  static unsigned char complete(EditLine* editor, int key);
  static int readLetter(EditLine* editor, wchar_t* letter);

  EditLine* editor_;
  History* history_;
  std::string historyFile_;
  std::string prompt_;
  std::vector<std::string> completions_;
};

LineEditor& LineEditor::of(EditLine* editor) {
  void* self = nullptr;
  el_get(editor, EL_CLIENTDATA, &self);
  return *static_cast<LineEditor*>(self);
}

char* LineEditor::promptText(EditLine* editor) {
  return of(editor).prompt_.data();
}

// The library's own reading goes on after an interrupt; this one ends the line.
int LineEditor::readLetter(EditLine*, wchar_t* letter) {
  std::mbstate_t state{};
  for (;;) {
    if (!waitForTyping(0)) return 0;
    const int byte = std::fgetc(stdin);
    if (byte == EOF) {
      if (std::feof(stdin) || interruptPending()) return 0;
      std::clearerr(stdin);  // some other signal
      continue;
    }
    const char c = static_cast<char>(byte);
    const std::size_t used = std::mbrtowc(letter, &c, 1, &state);
    if (used == static_cast<std::size_t>(-2)) continue;  // more bytes to come
    if (used == static_cast<std::size_t>(-1)) *letter = L'?';
    return 1;
  }
}

unsigned char LineEditor::complete(EditLine* editor, int) {
  const LineInfo* line = el_line(editor);
  const std::string before(line->buffer, static_cast<std::size_t>(line->cursor - line->buffer));
  const std::string start = before.substr(before.find_last_of(' ') + 1);
  const auto& self = of(editor);
  const Completion found = completionsOf(self.completions_, start);
  if (found.candidates.empty()) return CC_REFRESH_BEEP;
  if (found.common.size() > start.size() || found.candidates.size() == 1) {
    el_deletestr(editor, static_cast<int>(start.size()));
    el_insertstr(editor, (found.common + (found.candidates.size() == 1 ? " " : "")).c_str());
    return CC_REFRESH;
  }
  std::fputc('\n', stdout);
  for (const auto& word : found.candidates) std::fputs((word + "  ").c_str(), stdout);
  std::fputc('\n', stdout);
  return CC_REDISPLAY;
}

LineEditor::LineEditor(std::string historyFile) : historyFile_(std::move(historyFile)) {
  useTypedLetters();
  std::setvbuf(stdin, nullptr, _IONBF, 0);  // so that waiting sees all that was typed
  editor_ = el_init("tarnex", stdin, stdout, stderr);
  history_ = history_init();
  HistEvent event;
  history(history_, &event, H_SETSIZE, kHistoryLines);
  history(history_, &event, H_SETUNIQUE, 1);
  if (!historyFile_.empty()) history(history_, &event, H_LOAD, historyFile_.c_str());
  el_set(editor_, EL_CLIENTDATA, this);
  el_set(editor_, EL_PROMPT, promptText);
  el_set(editor_, EL_EDITOR, "emacs");
  el_set(editor_, EL_HIST, history, history_);
  el_set(editor_, EL_GETCFN, readLetter);
  el_set(editor_, EL_ADDFN, "tarnex-complete", "completes a word", complete);
  el_set(editor_, EL_BIND, "^I", "tarnex-complete", nullptr);
}

LineEditor::~LineEditor() {
  HistEvent event;
  const auto slash = historyFile_.rfind('/');
  if (!historyFile_.empty() && (slash == std::string::npos || !makeFolders(historyFile_.substr(0, slash))))
    history(history_, &event, H_SAVE, historyFile_.c_str());
  history_end(history_);
  el_end(editor_);
}

std::optional<std::string> LineEditor::next(const PromptShown& prompt) {
  prompt_ = prompt.text;
  completions_ = prompt.completions;
  std::fputc('\r', stdout);  // the prompt begins with what stands on the line already
  int length = 0;
  const char* text = el_gets(editor_, &length);
  if (!text || length <= 0) {
    std::fputc('\n', stdout);
    return std::nullopt;
  }
  std::string line(text, static_cast<std::size_t>(length));
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  HistEvent event;
  if (!line.empty()) history(history_, &event, H_ENTER, line.c_str());
  return line;
}

}  // namespace

std::shared_ptr<InputSource> lineEditorInput(const std::string& historyFile) {
  return std::make_shared<LineEditor>(historyFile);
}

}  // namespace tarnex

#endif
