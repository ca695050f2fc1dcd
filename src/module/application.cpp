// Start-up, unload, and the drawings' comings and goings, in their order.
// Knows the frame, the classes and the table; no machining.
#include "module/application.h"

#include <cstdlib>

#include "contour/hosthelpers.h"
#include "frame/folders.h"
#include "host/platform/files.h"
#include "module/commandtable.h"
#include "pathcmd/makepath.h"
#include "pathcmd/showcommands.h"
#include "toolpath/display.h"

namespace tarnex {

namespace {

// A class of that name that isn't ours means that two builds are mixed up: nothing read with it could be
// trusted.
void registerClass(AcRxClassDictionary& classes, const AcRxClass& c) {
  if (classes.add(c) || classes.at(c.name) == &c) return;
  std::fputs("Class mismatch\n", stderr);
  std::abort();
}

}  // namespace

Application::Application(AcEditor& editor, Overrides overrides)
    : editor_(editor), overrides_(std::move(overrides)) {}

Application::~Application() {
  if (module_) unload();
}

int Application::acrxEntryPoint(AppMessage message) {
  switch (message) {
    case AppMessage::kInitAppMsg:
      if (!module_) start();
      break;
    case AppMessage::kUnloadAppMsg:
      if (module_) unload();
      break;
    case AppMessage::kLoadDwgMsg:
      if (!module_) break;
      RR(*module_);
      TTT(*module_);
      break;
    case AppMessage::kUnloadDwgMsg:
      if (module_) module_->bLastDocClosed = true;
      break;
  }
  return kRetOK;
}

void Application::start() {
  std::string problem;
  const std::string folder =
      overrides_.installFolder.empty() ? installFolder(&problem) : overrides_.installFolder;
  module_ = std::make_shared<Module>(editor_, folder, overrides_.language.value_or(language()));
  if (!problem.empty()) editor_.messageBox(problem);
  openCatalogue();
  module_->loadSettings();
  registerClass(editor_.classes(), CToolPathBase::desc());
  registerClass(editor_.classes(), CToolPath::desc());
  registerCommands();
  module_->textArea = SharedTextArea::create("VornlineWEDM");
  hookDrawings();
  editor_.print(module_->message(5051));
  askDisplay();
}

// Once at each start. Where nobody can answer nothing is asked and nothing written: what stands goes on.
void Application::askDisplay() {
  if (!editor_.hasInput()) return;
  const bool modified = editor_.database().modifiedSinceSave();
  editor_.runCommand("Vorn");
  if (!modified) editor_.database().markSaved();  // no work that would have to be saved
}

void Application::openCatalogue() {
  if (const auto failure = module_->catalog.open(
          realPath(messageFilePath(module_->installFolder, module_->language)), module_->language))
    editor_.messageBox(*failure, MB_ICONINFORMATION);
  const std::weak_ptr<Module> module = module_;
  editor_.setFrameTexts(
      [module](int number) {
        const auto m = module.lock();
        return m ? m->message(number) : std::string();
      },
      [module] {
        const auto m = module.lock();
        return m ? m->installFolder : std::string();
      },
      module_->language);
}

void Application::registerCommands() {
  Module* module = module_.get();
  int number = kFirstRoleText;
  for (const auto& row : commandTable()) {
    Command command;
    command.group = kCommandGroup;
    command.globalName = row.globalName;
    command.localName = row.localName;
    command.flags = row.flags;
    command.help = module->message(++number);
    if (row.run) command.run = [module, run = row.run] { run(*module); };
    editor_.addCommand(std::move(command));
  }
}

void Application::hookDrawings() {
  // The host keeps these after an unload; they are to do nothing then.
  const std::weak_ptr<Module> module = module_;
  editor_.drawingLoaded.push_back([this, module] {
    if (!module.expired()) acrxEntryPoint(AppMessage::kLoadDwgMsg);
  });
  editor_.afterUndo.push_back([module] {
    if (const auto m = module.lock()) followPaths(*m);
  });
  editor_.listHooks.push_back([module](const AcDbEntity& entity, std::vector<std::string>& lines) {
    const auto m = module.lock();
    if (!m || !entity.isKindOf(CToolPath::desc())) return false;
    entity.AcDbEntity::list(lines);
    const auto text = [&](int id, std::initializer_list<FormatArg> args) { return m->message(id, args); };
    for (auto& line : pathListLines(static_cast<const CToolPath&>(entity), text))
      lines.push_back(std::move(line));
    return true;
  });
  editor_.displayContext = [module]() -> std::shared_ptr<const void> {
    const auto m = module.lock();
    return m ? std::make_shared<PathDisplay>(pathDisplay(*m)) : nullptr;
  };
  editor_.setHooks.push_back([module](const std::string& name, const std::string& value, std::string& error) {
    const auto m = module.lock();
    if (!m || !m->settings.textOf(name)) return false;
    if (m->settings.setFromText(name, value, error)) m->saveSettings();
    return true;
  });
}

void Application::unload() {
  editor_.removeGroup(kCommandGroup);
  waitForStarted(*module_);
  editor_.classes().remove(CToolPath::desc());
  editor_.classes().remove(CToolPathBase::desc());
  module_.reset();
}

std::optional<std::string> textOfControlKey(int character) {
  switch (character) {
    case 1:
      return "'zoom a ";
    case 4:
      return "'zoom 2x ";
    case 5:
      return "'zoom e ";
    case 17:
      return "'zoom 0.5x ";
    case 23:
      return "'zoom w ";
    case 26:
      return "u ";
    default:
      return std::nullopt;
  }
}

}  // namespace tarnex
