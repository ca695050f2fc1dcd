// The command line and scripts.
// Knows terminals and files of lines.
#include "apps/tarnex/prompt.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/tarnex/job3b.h"
#include "contour/hosthelpers.h"
#include "frame/folders.h"
#include "host/editor/drawingfile.h"
#include "host/editor/terminal.h"
#include "host/platform/files.h"
#include "module/commandtable.h"

namespace tarnex {

namespace {

// Reads the drawing named on the command line as `open` would.
bool openFirst(Session& session, const std::string& drawing, int& exitCode) {
  if (drawing.empty()) return true;
  auto load = loadDrawing(drawing, &session.editor.classes());
  if (!load.drawing) {
    std::fprintf(stderr, "%s\n", load.failure.c_str());
    exitCode = kUnreadable;
    return false;
  }
  for (const auto& note : load.report.notes)
    session.editor.print(noteText(drawing, note, load.report.binary) + "\n");
  session.editor.setDatabase(std::move(load.drawing));
  return true;
}

}  // namespace

int runScript(const std::string& script, const std::string& drawing, Pace pace) {
  const auto text = readFile(script);
  if (!text) {
    std::fprintf(stderr, "%s\n", text.error.text().c_str());
    return kUnreadable;
  }
  Session session(std::make_unique<StreamSink>(), installFolder());
  int exitCode = kDone;
  if (!openFirst(session, drawing, exitCode)) return exitCode;
  (void)session.editor.acedSetVar("CMDDIA", 0LL);
  session.editor.setPaced(pace == Pace::kPaced);
  session.editor.pushInput(std::make_shared<ScriptInput>(script, *text.value));
  exitCode = session.editor.runLoop() == 0 ? kDone : kFailed;
  session.editor.print("\n");
  return exitCode;
}

int runCommandLine(const std::string& drawing, Pace pace) {
  const bool person = isTerminal(0);
  Session session(std::make_unique<StreamSink>(), installFolder(),
                  person ? terminalInput(usualHistoryFile()) : nullptr);
  int exitCode = kDone;
  if (!openFirst(session, drawing, exitCode)) return exitCode;
  if (!person) {
    (void)session.editor.acedSetVar("CMDDIA", 0LL);
    session.editor.setPaced(pace == Pace::kPaced);
    session.editor.pushInput(terminalInput(""));
  }
  exitCode = session.editor.runLoop() == 0 ? kDone : kFailed;
  session.editor.print("\n");
  // At a terminal a command that failed has been seen; only scripts are judged by the exit code.
  return person ? kDone : exitCode;
}

int listCommands(bool json) {
  Session session(std::make_unique<StringSink>(), installFolder());
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  int number = 0;
  if (!json)
    std::printf("%3s  %-11s %-11s %-5s %-9s %s\n", "#", "global", "local", "flags", "", "what it does");
  for (const auto& row : commandTable()) {
    const std::string role = session.module().message(kFirstRoleText + ++number);
    if (json)
      list.push_back({{"number", number},
                      {"global", row.globalName},
                      {"local", row.localName},
                      {"flags", row.flags},
                      {"built", row.run != nullptr},
                      {"role", role}});
    else
      std::printf("%3d  %-11s %-11s %-5d %-9s %s\n", number, row.globalName, row.localName, row.flags,
                  row.run ? "built" : "not yet", role.c_str());
  }
  if (json) std::printf("%s\n", list.dump(2).c_str());
  if (json) return kDone;
  std::printf("\nThe host's own:\n");
  for (const auto& command : session.editor.commands())
    if (command.group == "HOST")
      std::printf("     %-11s %-11s       %s\n", command.globalName.c_str(), command.localName.c_str(),
                  command.help.c_str());
  return kDone;
}

}  // namespace tarnex
