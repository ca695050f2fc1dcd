// The machine file of the fast-wire machines.
// Knows the profile file alone.
#include "machining/machinetable.h"

#include "frame/folders.h"
#include "host/platform/files.h"
#include "host/platform/profile.h"

namespace tarnex {

namespace {

// Values of the keys "1", "2", ... up to the first empty one.
std::vector<std::string> numbered(const Profile& file, const char* section, int most) {
  std::vector<std::string> values;
  for (int i = 1; i <= most; ++i) {
    auto value = file.stringOf(section, std::to_string(i), "");
    if (value.empty()) break;
    values.push_back(std::move(value));
  }
  return values;
}

constexpr int kMostMachines = 20, kMostPauseCodes = 20, kMostSendRows = 256;

}  // namespace

std::string machineFilePath(const std::string& installFolder, int language) {
  const char* suffix = language == 1 ? "En" : language == 2 ? "Gb" : language == 3 ? "Big5" : "";
  return dataFile(installFolder, std::string("KZS\\KZS") + suffix + ".ini");
}

void MachineTable::load(const std::string& installFolder, int language) {
  const Profile file = Profile::load(realPath(machineFilePath(installFolder, language)));
  version_ = file.intOf("Main", "Ver", 0);
  machines_.clear();
  for (auto& name : numbered(file, "MAIN", kMostMachines)) {
    const std::string number = std::to_string(machines_.size() + 1);
    machines_.push_back({std::move(name), file.stringOf("Pause", number, ""),
                         file.stringOf("Stop", number, ""), file.intOf("Type", number, 0)});
  }
  pauseCodes_ = numbered(file, "PAUSECODE", kMostPauseCodes);
  sendPort_ = file.intOf("SEND", "Port", 0);
  sendRows_ = numbered(file, "SEND", kMostSendRows);
}

bool MachineTable::find(std::string_view name, std::string& pause, std::string& stop) const {
  for (const auto& machine : machines_)
    if (machine.name == name) {
      pause = machine.pause;
      stop = machine.stop;
      return true;
    }
  return false;
}

}  // namespace tarnex
