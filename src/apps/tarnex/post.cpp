// `tarnex post`.
// Knows files and the console; names and limits are the machining room's.
#include "apps/tarnex/post.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/tarnex/job3b.h"
#include "frame/catalog.h"
#include "frame/folders.h"
#include "host/platform/files.h"
#include "machining/machines.h"
#include "machining/postsource.h"

namespace tarnex {

namespace {

void tell(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
}

int write(const std::string& path, const std::string& bytes) {
  const auto failure = writeFileAtomically(path, bytes);
  if (!failure) return kDone;
  tell(failure->text());
  return kFailed;
}

bool isSource(const std::string& path) {
  return path.size() > 5 && path.substr(path.size() - 5) == ".toml";
}

// The post of a source, its faults told; nothing when it can't be read or has any.
std::optional<MachinePost> compiled(const std::string& path, int& exitCode) {
  const auto text = readFile(path);
  if (!text) {
    tell(text.error.text());
    exitCode = kUnreadable;
    return std::nullopt;
  }
  auto made = compilePost(*text.value, path);
  for (const auto& fault : made.faults) tell(fault);
  exitCode = made.faults.empty() ? kDone : kFailed;
  if (!made.faults.empty()) return std::nullopt;
  return std::move(made.post);
}

std::optional<MachinePost> readOrTell(const std::string& path, int& exitCode) {
  MachinePost post;
  const auto reading = readPost(path, post);
  if (!reading.problem.empty()) tell(reading.problem);
  exitCode = reading.read ? kDone : kUnreadable;
  return reading.read ? std::optional(std::move(post)) : std::nullopt;
}

std::string numberStyle(const MachinePost& p) {
  if (p.nFamily == 5) return "six digits with a sign";
  if (p.paramInt(4) == 1) return "whole micrometres";
  return std::to_string(p.paramInt(10)) + " decimals";
}

std::string summary(const MachinePost& p) {
  std::string text = "family " + std::to_string(p.nFamily) + ", " + numberStyle(p);
  text += p.word[0] == "G90" ? ", absolute" : ", incremental";
  if (p.paramInt(5) != 0) text += ", modal";
  text += p.conditionFile[0].empty() ? ", no conditions" : ", conditions " + p.conditionFile[0];
  if (!p.conditionFile[1].empty() && p.conditionFile[1] != p.conditionFile[0])
    text += ", " + p.conditionFile[1];
  return text;
}

}  // namespace

int listPosts(bool json) {
  const std::string install = installFolder();
  nlohmann::json all = nlohmann::json::array();
  MessageCatalog catalog;
  if (const auto problem = catalog.open(messageFilePath(install, language()), language())) tell(*problem);
  int exitCode = kDone;
  for (const auto& machine : machinesOf(install)) {
    int code = kDone;
    auto post = readOrTell(postPath(install, machine.folder, machine.name), code);
    exitCode = std::max(exitCode, code);
    if (!post) continue;
    post->nFamily = familyOfFolder(catalog, machine.folder).value_or(post->nFamily);
    if (json)
      all.push_back({{"machine", machine.text()},
                     {"family", post->nFamily},
                     {"numbers", numberStyle(*post)},
                     {"absolute", post->word[0] == "G90"},
                     {"modal", post->paramInt(5) != 0},
                     {"conditions", post->conditionFile}});
    else
      std::printf("%-28s %s\n", machine.text().c_str(), summary(*post).c_str());
  }
  if (json) std::printf("%s\n", all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
  return exitCode;
}

int showPost(const std::string& machine) {
  MachineName name;
  std::string error;
  if (!parseMachine(machine, name, error)) {
    tell(error);
    return kUsage;
  }
  int exitCode = kDone;
  if (const auto post = readOrTell(postPath(installFolder(), name.folder, name.name), exitCode))
    std::fputs(decompilePost(*post).c_str(), stdout);
  return exitCode;
}

int compilePostFile(const std::string& source, const std::string& post) {
  int exitCode = kDone;
  const auto made = compiled(source, exitCode);
  if (!made) return exitCode;
  for (const auto& advice : postAdvice(*made)) tell(source + ": note: " + advice);
  const std::string name = fileNameOf(post);
  if (name.size() > 19 + 3)
    tell(post + ": note: a job holds 19 bytes of a machine's name, so it can't name this one");
  return write(post, encodePost(*made));
}

int compileMachine(const std::string& source, const std::string& machine) {
  MachineName name;
  std::string error;
  if (!parseMachine(machine, name, error)) {
    tell(error);
    return kUsage;
  }
  const std::string folder = realPath(installFolder() + "\\MZS\\" + name.folder);
  if (const auto failure = makeFolders(folder)) {
    tell(failure->text());
    return kFailed;
  }
  return compilePostFile(source, realPath(folder + "\\" + name.name + ".pc"));
}

int decompilePostFile(const std::string& post, const std::string& source) {
  int exitCode = kDone;
  const auto read = readOrTell(post, exitCode);
  return read ? write(source, decompilePost(*read)) : exitCode;
}

int checkPostFile(const std::string& file) {
  int exitCode = kDone;
  MachinePost post;
  if (isSource(file)) {
    const auto made = compiled(file, exitCode);
    if (!made) return exitCode;
    post = *made;
  } else {
    const auto reading = readPost(file, post);
    if (!reading.problem.empty()) {
      tell(reading.problem);
      exitCode = reading.read ? kFailed : kUnreadable;
    }
    if (!reading.read) return exitCode;
  }
  const auto advice = postAdvice(post);
  for (const auto& text : advice) tell(file + ": note: " + text);
  std::printf("%s: %s\n", file.c_str(), summary(post).c_str());
  return exitCode;
}

}  // namespace tarnex
