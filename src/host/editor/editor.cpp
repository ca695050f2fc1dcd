// The editor's drawing, output, view, variables and dialogs.
// Knows no prompt and no command.
#include "host/editor/editor.h"

#include <algorithm>
#include <cstdarg>
#include <vector>

#include "host/editor/hostcommands.h"
#include "host/editor/sysvars.h"
#include "host/editor/terminalframe.h"
#include "host/platform/format.h"
#include "host/platform/system.h"

namespace tarnex {

// ---- state

bool EditorState::silent() const {
  return !programs.empty() && integer("CMDECHO") == 0;
}

int EditorState::integer(const char* name) const {
  const auto* row = findSysVar(name);
  const SysVar value = row ? sysVarValue(*this, *row) : SysVar(0LL);
  const auto* n = std::get_if<long long>(&value);
  return n ? static_cast<int>(*n) : 0;
}

void EditorState::write(std::string_view text) {
  if (lineJustEnded && !text.empty() && text[0] == '\n') text.remove_prefix(1);
  if (text.empty()) return;
  lineJustEnded = false;
  const auto end = text.rfind('\n');
  if (end == std::string_view::npos)
    outputLine += text;
  else
    outputLine = text.substr(end + 1);
  // A carriage return starts the line over.
  if (const auto back = outputLine.rfind('\r'); back != std::string::npos) outputLine.erase(0, back + 1);
  sink->print(text);
}

void EditorState::writePrompt(std::string_view prompt) {
  if (outputLine.empty() && !prompt.empty() && prompt[0] == '\n') prompt.remove_prefix(1);
  lineJustEnded = false;
  write(prompt);
}

// ---- making

AcEditor::AcEditor(std::unique_ptr<OutputSink> sink) : state_(std::make_unique<State>()) {
  state_->sink = std::move(sink);
  state_->drawing = std::make_unique<AcDbDatabase>();
  state_->frame = std::make_unique<TerminalFrame>(*this, *state_);
  addHostCommands(*this);
  state_->ownCommands = state_->commands.size();
}

AcEditor::~AcEditor() = default;

// ---- drawing

AcDbDatabase& AcEditor::database() {
  return *state_->drawing;
}

void AcEditor::setDatabase(std::unique_ptr<AcDbDatabase> drawing) {
  state_->drawing = std::move(drawing);
  state_->previous.clear();
  state_->draggedPick.reset();
  state_->namedInsteadOfCorner.reset();
  state_->lastPoint = {};
  state_->nearby.forget();
  acedRedraw();
  state_->view = {};
  zoomExtents();
  const bool modified = state_->drawing->modifiedSinceSave();
  for (const auto& hook : drawingLoaded) hook();
  // What the hooks put right is no work of the user.
  state_->drawing->forgetUndo();
  if (!modified) state_->drawing->markSaved();
}

AcRxClassDictionary& AcEditor::classes() {
  return state_->classes;
}

// ---- output

void AcEditor::acutPrintf(const char* pattern, ...) {
  va_list args;
  va_start(args, pattern);
  print(formattedList(pattern, args));
  va_end(args);
}

void AcEditor::print(std::string_view utf8) {
  if (!state_->silent()) state_->write(utf8);
}

void AcEditor::messageBox(std::string_view text, int style) {
  if (!state_->outputLine.empty()) state_->sink->print("\n");
  state_->outputLine.clear();
  state_->sink->messageBox(text, style);
  state_->lineJustEnded = true;
}

bool AcEditor::askYesNo(std::string_view text) {
  if (!state_->outputLine.empty()) print("\n");
  print(std::string(text) + "\n");
  acedInitGet(1, "Yes No");
  const auto answer = acedGetKword("[Yes/No]: ");
  return answer && answer.value == "Yes";
}

void AcEditor::acedSetStatusBarProgressMeter(std::string_view title, long low, long high) {
  state_->meterTitle = title;
  state_->meterLow = low;
  state_->meterHigh = high;
  acedSetStatusBarProgressMeterPos(low);
}

void AcEditor::acedSetStatusBarProgressMeterPos(long position) {
  checkInterrupt();
  if (!state_->meterTitle.empty())
    state_->sink->meter(state_->meterTitle, position - state_->meterLow,
                        state_->meterHigh - state_->meterLow);
}

void AcEditor::acedRestoreStatusBar() {
  if (!state_->meterTitle.empty()) state_->sink->meter({}, 0, 0);
  state_->meterTitle.clear();
}

void AcEditor::checkInterrupt() {
  if (!interruptPending()) return;
  clearInterrupt();
  throw CommandInterrupted{};
}

void AcEditor::setSink(std::unique_ptr<OutputSink> sink) {
  state_->sink = std::move(sink);
}

OutputSink& AcEditor::sink() {
  return *state_->sink;
}

// ---- input

void AcEditor::pushInput(std::shared_ptr<InputSource> source) {
  state_->sources.push_back(std::move(source));
}

std::size_t AcEditor::inputDepth() const {
  return state_->sources.size();
}

bool AcEditor::hasInput() const {
  return !state_->sources.empty() || !state_->restOfLine.empty();
}

// ---- variables and view

std::optional<SysVar> AcEditor::acedGetVar(std::string_view name) const {
  const auto* row = findSysVar(name);
  return row ? std::optional<SysVar>(sysVarValue(*state_, *row)) : std::nullopt;
}

bool AcEditor::acedSetVar(std::string_view name, const SysVar& value) {
  const auto* row = findSysVar(name);
  return row && setSysVar(*state_, *row, value);
}

double AcEditor::realVar(std::string_view name) const {
  const auto value = acedGetVar(name);
  if (!value) return 0;
  if (const auto* r = std::get_if<double>(&*value)) return *r;
  const auto* n = std::get_if<long long>(&*value);
  return n ? static_cast<double>(*n) : 0;
}

int AcEditor::intVar(std::string_view name) const {
  return static_cast<int>(realVar(name));
}

AcGePoint2d AcEditor::viewCentre() const {
  return state_->view.centre;
}

void AcEditor::setView(AcGePoint2d centre, double height) {
  state_->view.centre = centre;
  state_->view.height = std::max(height, kLeastViewHeight);
  acedRedraw();
}

void AcEditor::setViewDirection(const AcGePoint3d& from) {
  state_->view.direction = from;
  acedRedraw();
}

void AcEditor::zoomExtents() {
  const Extents2d box = state_->drawing->drawingExtents();
  if (box.empty()) return;
  setView(midpoint(box.low, box.high),
          std::max(box.high.y - box.low.y, (box.high.x - box.low.x) * kViewAspect));
}

// ---- dialogs

DialogFrame& AcEditor::acedGetAcadFrame() {
  return *state_->frame;
}

void AcEditor::setFrameTexts(std::function<std::string(int)> text, std::function<std::string()> installFolder,
                             int language) {
  state_->frameLanguage = language;
  state_->frameText = std::move(text);
  state_->frameFolder = std::move(installFolder);
}

void AcEditor::preset(std::string field, std::string value) {
  state_->presets[std::move(field)] = std::move(value);
}

std::optional<std::string> AcEditor::presetOf(const std::string& field) const {
  const auto it = state_->presets.find(field);
  return it == state_->presets.end() ? std::nullopt : std::optional<std::string>(it->second);
}

}  // namespace tarnex
