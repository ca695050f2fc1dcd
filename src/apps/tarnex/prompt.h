// The command line and scripts.
// Knows terminals and files of lines.
#pragma once

#include <string>

namespace tarnex {

int runScript(const std::string& script, const std::string& drawing);
int runCommandLine(const std::string& drawing);
int listCommands(bool json);

}  // namespace tarnex
