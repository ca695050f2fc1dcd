// `tarnex conditions`.
// Knows files and the console; how condition files are read, the machining room knows.
#include "apps/tarnex/conditions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

#include "apps/tarnex/job3b.h"
#include "frame/folders.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "machining/conditiontable.h"
#include "machining/joblayout.h"
#include "machining/machinepost.h"
#include "machining/machines.h"

namespace tarnex {

namespace {

void tell(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
}

// The condition file that a program of this machine would take.
std::optional<std::string> fileOf(const ConditionOptions& o, int& exitCode) {
  const std::string install = installFolder();
  JobLayout job;
  job.setFolder(install);
  job.load();
  MachineName machine{job.sPostPath, job.sMachine};
  std::string error;
  if (!o.machine.empty() && !parseMachine(o.machine, machine, error)) {
    tell(error);
    exitCode = kUsage;
    return std::nullopt;
  }
  MachinePost post;
  const auto reading = readPost(postPath(install, machine.folder, machine.name), post);
  if (!reading.problem.empty()) tell(reading.problem);
  if (!reading.read) {
    exitCode = kUnreadable;
    return std::nullopt;
  }
  const auto dbf = static_cast<std::size_t>(std::clamp(o.dbf < 0 ? job.nDbf : o.dbf, 0, 1));
  return conditionPath(install, machine.folder, post.conditionFile[dbf]);
}

std::string joined(const std::vector<ConditionTable::Value>& values) {
  std::string text;
  for (const auto& v : values) text += (text.empty() ? "" : ", ") + v.text;
  return text;
}

std::string nearest(const std::vector<ConditionTable::Value>& values, double wanted) {
  const auto far = [&](const auto& v) { return std::abs(v.value - wanted); };
  const auto best = std::ranges::min_element(values, {}, far);
  return best == values.end() ? "none" : best->text;
}

int tellMissing(const ConditionTable& table, const ConditionOptions& o, double wire, double thickness) {
  std::string materials;
  bool known = false;
  for (std::size_t m = 0; m < table.materialCount(); ++m) {
    materials += (m == 0 ? "" : ", ") + table.materialName(m);
    for (std::size_t r = 0; r < table.radCount(m); ++r)
      for (std::size_t t = 0; t < table.thickCount(m, r); ++t)
        known = known || table.find(o.material, table.radValue(m, r), table.thickValue(m, r, t));
  }
  if (!known) tell("no material " + o.material + "; there are " + materials);
  if (std::ranges::find(table.rads(), wire, &ConditionTable::Value::value) == table.rads().end())
    tell("no wire " + o.wire + "; the nearest is " + nearest(table.rads(), wire));
  if (std::ranges::find(table.thicks(), thickness, &ConditionTable::Value::value) == table.thicks().end())
    tell("no thickness " + o.thickness + "; the nearest is " + nearest(table.thicks(), thickness));
  return kFailed;
}

bool endsWithIni(const std::string& file) {
  return file.size() > 4 && (file.ends_with(".ini") || file.ends_with(".INI"));
}

}  // namespace

int listConditions(const ConditionOptions& o) {
  int exitCode = kDone;
  const auto file = fileOf(o, exitCode);
  if (!file) return exitCode;
  ConditionTable table;
  table.load(*file, conditionListsPath(installFolder()));
  std::printf("%s: Ver %d\n", realPath(*file).c_str(), table.version());
  std::printf("wires: %s\nthicknesses: %s\n", joined(table.rads()).c_str(), joined(table.thicks()).c_str());
  for (ConditionTable::Cell c; c.material < table.materialCount(); ++c.material) {
    std::size_t cells = 0, filled = 0;
    for (c.rad = 0; c.rad < table.radCount(c.material); ++c.rad)
      for (c.thick = 0; c.thick < table.thickCount(c.material, c.rad); ++c.thick) {
        ++cells;
        filled += table.lineCount(c) > 0 ? 1 : 0;
      }
    std::printf("%s: %zu of %zu cells have conditions\n", table.materialName(c.material).c_str(), filled,
                cells);
  }
  return kDone;
}

int showConditions(const ConditionOptions& o) {
  double wire = 0, thickness = 0;
  if (!parseNumber(o.wire, wire) || !parseNumber(o.thickness, thickness)) {
    tell("wire and thickness are numbers, such as 0.2 and 40");
    return kUsage;
  }
  int exitCode = kDone;
  const auto file = fileOf(o, exitCode);
  if (!file) return exitCode;
  ConditionTable table;
  table.load(*file, conditionListsPath(installFolder()));
  if (table.version() <= 0) tell(realPath(*file) + ": no Ver above 0, so programs take nothing from it");
  const auto cell = table.find(o.material, wire, thickness);
  if (!cell) return tellMissing(table, o, wire, thickness);
  std::printf("[%s]\n", table.sectionOf(*cell).c_str());
  for (const auto& line : table.linesOf(*cell)) std::printf("%s\n", line.c_str());
  if (!table.cornerCode(*cell).empty()) std::printf("corner code: %s\n", table.cornerCode(*cell).c_str());
  if (table.lineCount(*cell) == 0) tell("the cell has no conditions");
  return table.lineCount(*cell) > 0 ? kDone : kFailed;
}

int checkConditions(const ConditionOptions& o) {
  std::set<std::string> files;
  if (!o.machine.empty()) {
    int exitCode = kDone;
    const auto file = fileOf(o, exitCode);
    if (!file) return exitCode;
    files.insert(realPath(*file));
  } else {
    for (const auto& machine : machinesOf(installFolder())) {
      const std::string post = realPath(postPath(installFolder(), machine.folder, machine.name));
      const std::string folder = post.substr(0, post.find_last_of('/'));
      for (const auto& name : folderEntries(folder))
        if (endsWithIni(name)) files.insert(folder + "/" + name);
    }
  }
  int exitCode = kDone;
  for (const auto& file : files) {
    ConditionTable table;
    table.load(file, conditionListsPath(installFolder()));
    const auto faults = table.faults();
    for (const auto& fault : faults) tell(file + ": " + fault);
    if (!faults.empty()) exitCode = kFailed;
    std::printf("%s: %s\n", file.c_str(), faults.empty() ? "nothing amiss" : "see above");
  }
  return exitCode;
}

}  // namespace tarnex
