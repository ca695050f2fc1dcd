// The command line of `tarnex post`, `tarnex job` and `tarnex conditions`.
// Knows options; what they do is next door.
#pragma once

namespace CLI {
class App;
}

namespace tarnex {

// `exitCode` takes what the chosen subcommand gives.
void addMachining(CLI::App& app, int& exitCode);

}  // namespace tarnex
