// Commands on files: open, save, saveas, new, quit, script. And the prompt for a file name.
// Knows no application.
#include <algorithm>

#include "host/editor/answers.h"
#include "host/editor/drawingfile.h"
#include "host/editor/hostcommands.h"
#include "host/editor/reader.h"
#include "host/platform/files.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr std::size_t kNotesShown = 20;
constexpr std::size_t kMostScripts = 100;  // one that calls itself has an end so

bool hasExtension(const std::string& name) {
  const auto dot = name.rfind('.');
  return dot != std::string::npos && dot + 1 < name.size() &&
         name.find_first_of("/\\", dot) == std::string::npos;
}

// The file that a typed name means: as written, or with the extension.
std::string fileFor(const std::string& typed, const std::string& extension, bool save) {
  const std::string path = realPath(typed);
  const std::string longer = realPath(typed + "." + extension);
  if (extension.empty()) return path;
  if (save) return hasExtension(typed) ? path : longer;
  return fileExists(path) || (hasExtension(typed) && !fileExists(longer)) ? path : longer;
}

std::string unquoted(std::string_view text) {
  text = trimmed(text);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
  return std::string(text);
}

void fail(AcEditor& editor, const std::string& why) {
  editor.print(why + "\n");
  editor.commandFailed();
}

void tellNotes(AcEditor& editor, const std::string& path, const DxfReport& report) {
  if (report.unitFactor != 1)
    editor.print(path + ": drawn in " + report.units + ", " + shortestNumber(report.unitFactor) +
                 " mm each\n");
  const std::size_t shown = std::min(report.notes.size(), kNotesShown);
  for (std::size_t i = 0; i < shown; ++i) editor.print(noteText(path, report.notes[i], report.binary) + "\n");
  if (report.notes.size() > shown)
    editor.print(path + ": and " + std::to_string(report.notes.size() - shown) + " more of that kind\n");
}

std::string standingFile(AcDbDatabase& db) {
  return db.dwgPrefix + db.dwgName;
}

void saveTo(AcEditor& editor, const std::string& path) {
  if (const auto failure = saveDrawing(editor.database(), path))
    fail(editor, "Not saved: " + *failure);
  else
    editor.print("Saved as " + path + "\n");
}

}  // namespace

Answer<std::string> AcEditor::acedGetFileD(std::string_view prompt, const std::string& standing,
                                           const std::string& extension, bool save) {
  const std::string shown = std::string(prompt) + (standing.empty() ? "" : " <" + standing + ">") + ": ";
  const auto answer = acedGetString(true, shown);
  if (answer.reply != Reply::RTNORM) return {answer.reply, {}};
  std::string typed = unquoted(answer.value);
  if (typed.empty()) typed = standing;
  if (typed.empty()) return {Reply::RTNONE, {}};
  const std::string path = fileFor(typed, extension, save);
  if (save && typed != standing && fileExists(path) && state_->personAnswers && state_->programs.empty() &&
      !askYesNo(path + " is there already. Replace it?"))
    return {Reply::RTCAN, {}};
  return {Reply::RTNORM, path};
}

// Only a person is asked; a script that says open or quit means it.
bool AcEditor::mayDropChanges() {
  if (!state_->personAnswers || !state_->drawing->modifiedSinceSave()) return true;
  return askYesNo("The drawing has changes that are not saved. Drop them?");
}

void openCommand(AcEditor& editor) {
  const auto file = editor.acedGetFileD("Drawing to open", "", "dxf", false);
  if (!file || !editor.mayDropChanges()) return;
  const double factor = editor.realVar("OPENUNITS");
  auto load = loadDrawing(file.value, &editor.classes(), factor > 0 ? std::optional(factor) : std::nullopt);
  if (!load.drawing) return fail(editor, load.failure);
  tellNotes(editor, file.value, load.report);
  editor.setDatabase(std::move(load.drawing));
}

void saveCommand(AcEditor& editor) {
  auto& db = editor.database();
  if (db.dwgPrefix.empty()) return saveAsCommand(editor);  // never read nor saved yet
  saveTo(editor, standingFile(db));
}

void saveAsCommand(AcEditor& editor) {
  const auto file = editor.acedGetFileD("Save drawing as", standingFile(editor.database()), "dxf", true);
  if (file) saveTo(editor, file.value);
}

void newCommand(AcEditor& editor) {
  if (editor.mayDropChanges()) editor.setDatabase(std::make_unique<AcDbDatabase>());
}

void quitCommand(AcEditor& editor) {
  if (editor.mayDropChanges()) editor.quit();
}

void scriptCommand(AcEditor& editor) {
  const auto file = editor.acedGetFileD("Script file", "", "scr", false);
  if (!file) return;
  if (editor.inputDepth() >= kMostScripts) return fail(editor, "Scripts call one another too deep.");
  const auto text = readFile(file.value);
  if (!text) return fail(editor, text.error.text());
  editor.pushInput(std::make_shared<ScriptInput>(file.value, *text.value));
}

}  // namespace tarnex
