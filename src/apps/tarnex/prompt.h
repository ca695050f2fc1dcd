// The command line and scripts.
// Knows terminals and files of lines.
#pragma once

#include <string>

namespace tarnex {

enum class Pace { kPaced, kNoWait };  // of commands that wait for the eye

int runScript(const std::string& script, const std::string& drawing, Pace pace = Pace::kPaced);
int runCommandLine(const std::string& drawing, Pace pace = Pace::kPaced);
int listCommands(bool json);

}  // namespace tarnex
