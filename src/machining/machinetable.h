// The machine file of the fast-wire machines: names, and the texts of pause and stop lines.
// Knows the profile file; which machine is used is the command's business.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

struct Machine3b {
  std::string name, pause, stop;
  int type = 0;
};

class MachineTable {
 public:
  // "<install folder>\KZS\KZS<suffix>.ini" of the language: En, Gb, Big5, or nothing. The shipped file takes
  // the place of one that the install folder lacks.
  void load(const std::string& installFolder, int language);
  // False, outputs left alone, when no machine of that name exists (compared exactly).
  bool find(std::string_view name, std::string& pause, std::string& stop) const;
  [[nodiscard]] const std::vector<Machine3b>& machines() const { return machines_; }
  [[nodiscard]] const std::vector<std::string>& pauseCodes() const { return pauseCodes_; }
  [[nodiscard]] int version() const { return version_; }
  [[nodiscard]] int sendPort() const { return sendPort_; }
  [[nodiscard]] const std::vector<std::string>& sendRows() const { return sendRows_; }

 private:
  int version_ = 0, sendPort_ = 0;
  std::vector<Machine3b> machines_;
  std::vector<std::string> pauseCodes_, sendRows_;
};

[[nodiscard]] std::string machineFilePath(const std::string& installFolder, int language);

}  // namespace tarnex
