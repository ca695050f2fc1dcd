// `tarnex conditions`: the condition files of the machines, listed, shown and checked.
// Knows files; how they are read, the machining room knows.
#pragma once

#include <string>

namespace tarnex {

struct ConditionOptions {
  std::string machine;  // FOLDER/NAME; empty: the job's
  int dbf = -1;         // which of its two files; -1: the job's
  std::string material, wire, thickness;
};

// Exit codes of the program (job3b.h): 0 done, 1 no such cell or faults, 2 not a number, 3 unreadable.
int listConditions(const ConditionOptions& options);
int showConditions(const ConditionOptions& options);
int checkConditions(const ConditionOptions& options);  // no machine: the files of all machines

}  // namespace tarnex
