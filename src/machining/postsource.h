// A post as text: TOML with names in place of slot numbers, to a record and back.
// Knows the names and the limits; what a post makes of a program, the writers know.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machining/machinepost.h"

namespace tarnex {

struct CompiledPost {
  MachinePost post;
  std::vector<std::string> faults;  // "NAME:LINE: what, which value, which limit"; empty: the post stands
};

// What the source leaves out is empty or 0; sHeadA "D", sHeadB "DD", all 48 parameters and 80 words in use.
[[nodiscard]] CompiledPost compilePost(std::string_view source, const std::string& name);
// The source of a record that readPost or compilePost gave: compiled again it gives the same record, byte for
// byte. Only what differs from an empty post is written, each with a comment on what it is for.
[[nodiscard]] std::string decompilePost(const MachinePost& post);

// What would not do as its author meant, a sentence each: formats that don't fit what is printed with them,
// words above the last known number, an empty extension, a taper direction with one word alone.
[[nodiscard]] std::vector<std::string> postAdvice(const MachinePost& post);

}  // namespace tarnex
