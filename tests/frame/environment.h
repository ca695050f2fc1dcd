// Environment variables for the length of a test, and a private folder.
// Knows no test.
#pragma once

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/platform/files.h"
#include "host/platform/system.h"

namespace tarnex {

class InFolder : public ::testing::Test {
 protected:
  ~InFolder() override {
    for (auto& [name, value] : before_) change(name, value);
    std::filesystem::remove_all(folder);
  }
  // Nothing takes the variable away.
  void surround(const std::string& name, std::optional<std::string> value) {
    before_.emplace(before_.begin(), name, environment(name));
    change(name, value);
  }
  void write(const std::string& name, const std::string& bytes) {
    const std::string path = folder + "/" + name;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    ASSERT_FALSE(writeFileAtomically(path, bytes));
  }
  [[nodiscard]] std::string read(const std::string& name) {
    return readFile(folder + "/" + name).value.value_or("(no file)");
  }
  const std::string folder = temporaryFolder("tarnex-frame-");

 private:
  static void change(const std::string& name, const std::optional<std::string>& value) {
    if (value)
      setenv(name.c_str(), value->c_str(), 1);
    else
      unsetenv(name.c_str());
  }
  std::vector<std::pair<std::string, std::optional<std::string>>> before_;
};

}  // namespace tarnex
