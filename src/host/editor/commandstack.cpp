// The command stack: finding commands, running each as one undo step, the loop that reads them, and
// acedCommand. Knows no single command.
#include <algorithm>
#include <exception>

#include "host/editor/answers.h"
#include "host/editor/hostcommands.h"
#include "host/editor/reader.h"
#include "host/editor/state.h"
#include "host/editor/sysvars.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

// What may stand before a name: ' for transparent use, _ and . as macros have them.
std::string_view bareName(std::string_view name) {
  name = trimmed(name);
  while (name.size() > 1 && (name[0] == '\'' || name[0] == '_' || name[0] == '.')) name.remove_prefix(1);
  return name;
}

using Rows = std::pair<std::size_t, std::size_t>;  // from, behind the last

template <class Same>
const Command* findIn(const std::vector<Command>& commands, Rows rows, std::string_view name, Same same) {
  for (std::size_t i = rows.first; i < rows.second; ++i)
    if (same(commands[i].globalName, name) || same(commands[i].localName, name)) return &commands[i];
  return nullptr;
}

const Command* findAmong(const std::vector<Command>& commands, std::initializer_list<Rows> order,
                         std::string_view name) {
  if (name.empty()) return nullptr;
  for (const auto& rows : order)
    if (const auto* c =
            findIn(commands, rows, name, [](std::string_view a, std::string_view b) { return a == b; }))
      return c;
  for (const auto& rows : order)
    if (const auto* c = findIn(commands, rows, name, equalIgnoringCase)) return c;
  return nullptr;
}

// Sets a variable by its name typed as a command.
void askVariable(AcEditor& editor, const SysVarRow& row, EditorState& state) {
  if (isReadOnly(row)) {
    editor.print(std::string(row.name) + " = " + sysVarText(sysVarValue(state, row)) + " (read-only)\n");
    return;
  }
  editor.acedCommand({std::string("SETVAR"), std::string(row.name), std::string(kPause)});
}

}  // namespace

void AcEditor::addCommand(Command command) {
  state_->commands.push_back(std::move(command));
}

void AcEditor::removeGroup(std::string_view group) {
  std::erase_if(state_->commands, [&](const Command& c) { return c.group == group; });
  state_->ownCommands = std::min(state_->ownCommands, state_->commands.size());
}

const std::vector<Command>& AcEditor::commands() const {
  return state_->commands;
}

const Command* AcEditor::findCommand(std::string_view name) const {
  const std::size_t own = state_->ownCommands, all = state_->commands.size();
  return findAmong(state_->commands, {{own, all}, {0, own}}, bareName(name));
}

// ---- running

namespace {

// Variables and coordinate system, which a command changes for its own time and would have put back.
class Surroundings {
 public:
  explicit Surroundings(const EditorState& state)
      : drawing_(state.drawing.get()),
        variables_(state.variables),
        origin_(drawing_->ucsorg),
        x_(drawing_->ucsXDir),
        y_(drawing_->ucsYDir) {}
  void restore(EditorState& state) const {
    state.variables = variables_;
    if (state.drawing.get() != drawing_) return;
    state.drawing->ucsorg = origin_;
    state.drawing->ucsXDir = x_;
    state.drawing->ucsYDir = y_;
  }

 private:
  const AcDbDatabase* drawing_;
  std::map<std::string, SysVar> variables_;
  AcGePoint3d origin_;
  AcGeVector3d x_, y_;
};

// What the outermost command leaves behind when it doesn't come to its end.
void undoBroken(AcEditor& editor, EditorState& state, const Surroundings& before, const std::string& why) {
  before.restore(state);
  state.programs.clear();
  state.restOfLine.clear();
  state.initGet = {};
  editor.acedRestoreStatusBar();
  if (!state.outputLine.empty()) state.write("\n");
  state.write(why + "\n");
  state.lineJustEnded = true;
  state.failed = true;
  if (state.drawing) state.drawing->rollBack();
  for (const auto& hook : editor.afterUndo) hook();
}

// After an interrupt no script goes on.
void dropScripts(EditorState& state) {
  std::erase_if(state.sources, [](const auto& source) { return !source->place().empty(); });
}

void runOutermost(AcEditor& editor, EditorState& state, const Command& command) {
  const bool marks = !(command.flags & ACRX_CMD_NO_UNDO_MARKER);
  const Surroundings before(state);
  if (marks) state.drawing->startUndoMark(command.globalName);
  try {
    command.run();
  } catch (const CommandInterrupted&) {
    dropScripts(state);
    undoBroken(editor, state, before, "*Cancel*");
  } catch (const std::exception& broken) {
    undoBroken(editor, state, before, command.globalName + " broke off and was undone: " + broken.what());
  }
  if (marks) state.drawing->endUndoMark();
  state.initGet = {};
}

class Depth {
 public:
  explicit Depth(EditorState& state, std::string name) : state_(state) {
    ++state_.depth;
    state_.running.push_back(std::move(name));
  }
  ~Depth() {
    --state_.depth;
    state_.running.pop_back();
  }
  Depth(const Depth&) = delete;
  Depth& operator=(const Depth&) = delete;

 private:
  EditorState& state_;
};

}  // namespace

bool AcEditor::runCommand(std::string_view name) {
  const Command* found = findCommand(name);
  if (!found) {
    if (const auto* row = findSysVar(bareName(name))) {
      Command setting{"", std::string(row->name), "", ACRX_CMD_NO_UNDO_MARKER, {}, {}};
      setting.run = [this, row] { askVariable(*this, *row, *state_); };
      return runFound(setting);
    }
    print(state_->placePrefix() + "Unknown command \"" + std::string(trimmed(name)) +
          "\". HELP lists the commands.\n");
    state_->lineJustEnded = true;
    state_->restOfLine.clear();
    state_->anyFailed = true;
    return false;
  }
  return runFound(*found);
}

bool AcEditor::runFound(const Command& command) {
  const Command running = command;  // a copy: a command may add or remove commands
  const bool outermost = state_->depth == 0;
  const bool failedBefore = std::exchange(state_->failed, false);
  const InitGet pending = std::exchange(state_->initGet, {});
  {
    const Depth depth(*state_, running.globalName);
    if (!running.run) {
      print(state_->placePrefix() + running.globalName + " is not built yet.\n");
      state_->lineJustEnded = true;
      state_->failed = true;
      if (outermost) state_->restOfLine.clear();
    } else if (outermost) {
      runOutermost(*this, *state_, running);
    } else {
      running.run();
    }
  }
  const bool failed = state_->failed;
  if (failed && state_->programs.empty()) state_->anyFailed = true;
  state_->failed = failedBefore;
  state_->initGet = pending;
  if (outermost && !state_->outputLine.empty()) {
    print("\n");
    state_->lineJustEnded = true;
  }
  return !failed;
}

void AcEditor::commandFailed() {
  state_->failed = true;
  if (state_->depth == 0) state_->anyFailed = true;
}

bool AcEditor::anyCommandFailed() const {
  return state_->anyFailed;
}

Reply AcEditor::acedCommand(const std::vector<CommandArg>& args) {
  if (args.empty()) return Reply::RTNORM;
  const auto* name = std::get_if<std::string>(&args[0]);
  const std::size_t own = state_->ownCommands, all = state_->commands.size();
  const Command* command =
      name ? findAmong(state_->commands, {{0, own}, {own, all}}, bareName(*name)) : nullptr;
  if (!command) return Reply::RTERROR;
  ProgramAnswers answers;
  for (std::size_t i = 1; i < args.size(); ++i) answers.texts.push_back(argumentText(args[i]));
  state_->programs.push_back(std::move(answers));
  const std::size_t level = state_->programs.size();
  const bool done = runFound(*command);
  // An interrupt that ended an outermost command has emptied the stack of programs.
  const bool ranDry = state_->programs.size() == level && state_->programs.back().ranDry;
  if (state_->programs.size() == level) state_->programs.pop_back();
  return done && !ranDry ? Reply::RTNORM : Reply::RTERROR;
}

std::string AcEditor::argumentText(const CommandArg& arg) const {
  const auto handleOf = [&](AcDbObjectId id) {
    const auto* object = state_->drawing->peek<AcDbObject>(id);
    return handleText(object ? object->handle() : 0);
  };
  if (const auto* text = std::get_if<std::string>(&arg)) return *text;
  if (const auto* n = std::get_if<long long>(&arg)) return std::to_string(*n);
  if (const auto* r = std::get_if<double>(&arg)) return realText(*r);
  if (const auto* p = std::get_if<AcGePoint3d>(&arg)) return worldPointText(*p);
  if (const auto* id = std::get_if<AcDbObjectId>(&arg)) return handleOf(*id);
  const auto& pick = std::get<EntityPick>(arg);
  return handleOf(pick.entity) + worldPointText(pick.point);
}

// ---- the loop

void AcEditor::sendText(std::string_view text) {
  state_->sentText += text;
}

void AcEditor::quit() {
  state_->quitting = true;
}

namespace {

void takeSentText(AcEditor& editor, EditorState& state) {
  auto answers = takeSentAnswers(state.sentText);
  if (!answers.empty()) editor.pushInput(std::make_shared<QueueInput>(std::move(answers)));
}

std::vector<std::string> commandNames(const std::vector<Command>& commands) {
  std::vector<std::string> names;
  for (const auto& c : commands) {
    names.push_back(c.globalName);
    if (!c.localName.empty() && c.localName != c.globalName) names.push_back(c.localName);
  }
  return names;
}

}  // namespace

int AcEditor::runLoop() {
  state_->quitting = false;
  while (!state_->quitting) {
    takeSentText(*this, *state_);
    try {
      const Question question{"\nCommand: ", commandNames(state_->commands), Extent::kWord, true};
      const Reading reading = readAnswer(*state_, question, journal);
      if (reading.kind == Reading::Kind::kEnd) break;
      if (reading.kind == Reading::Kind::kCancel) continue;
      runTyped(std::string(trimmed(reading.text)));
    } catch (const CommandInterrupted&) {
      dropScripts(*state_);
      state_->restOfLine.clear();
      state_->write("*Cancel*\n");
      state_->lineJustEnded = true;
    }
  }
  return state_->anyFailed ? 1 : 0;
}

void AcEditor::runTyped(const std::string& name) {
  if (name.empty() && !(state_->personAnswers && !state_->lastCommand.empty())) return;
  const std::string command = name.empty() ? state_->lastCommand : name;
  const std::string place = state_->placePrefix();
  const bool done = runCommand(command);
  state_->lastCommand = command;
  if (!done || state_->quitting) state_->restOfLine.clear();
  if (state_->restOfLine.empty()) return;
  print(place + command + " did not ask for \"" + state_->restOfLine.take() + "\".\n");
  state_->lineJustEnded = true;
  state_->anyFailed = true;
}

}  // namespace tarnex
