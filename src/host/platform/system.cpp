// Clock, environment, the user's folders and the registry's stand-in.
// Knows no meaning of a registry value.
#include "host/platform/system.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>

#include "host/platform/files.h"
#include "host/platform/format.h"
#include "host/platform/profile.h"

namespace tarnex {
namespace {

LocalTime fieldsOf(const std::tm& t) {
  return {t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
}

std::string homeFolder() {
  if (auto home = environment("HOME"); home && !home->empty()) return *home;
  const passwd* user = getpwuid(getuid());
  return user && user->pw_dir ? user->pw_dir : "";
}

// The folder that the variable names, if it is an absolute one, else `usual` under the home folder.
std::string userFolder(const std::string& variable, const std::string& usual) {
  if (auto named = environment(variable); named && !named->empty() && named->front() == '/') return *named;
  return homeFolder() + "/" + usual;
}

bool sameName(std::string_view a, std::string_view b) {
  const auto same = [](char x, char y) { return std::tolower(x & 0x7F) == std::tolower(y & 0x7F); };
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), same);
}

}  // namespace

LocalTime localTime() {
  std::tm fields{};
  long long seconds = 0;
  if (auto fixed = environment("SOURCE_DATE_EPOCH"); fixed && parseInteger(*fixed, seconds)) {
    const std::time_t moment = seconds;
    if (gmtime_r(&moment, &fields)) return fieldsOf(fields);
  }
  const std::time_t now = std::time(nullptr);
  localtime_r(&now, &fields);
  return fieldsOf(fields);
}

double steadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void sleepMilliseconds(int ms) {
  if (ms <= 0) return;
  timespec left{ms / 1000, ms % 1000 * 1000000L};
  while (nanosleep(&left, &left) != 0 && errno == EINTR && !interruptPending()) continue;
}

std::optional<std::string> environment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value ? std::optional<std::string>(value) : std::nullopt;
}

std::string configurationFile() {
  if (auto named = environment("TARNEX_CONFIG"); named && !named->empty()) return *named;
  return userFolder("XDG_CONFIG_HOME", ".config") + "/tarnex/tarnex.ini";
}

std::string userDataFolder() {
  return userFolder("XDG_DATA_HOME", ".local/share") + "/tarnex";
}

std::optional<std::string> registryValue(std::string_view section, std::string_view name) {
  const char* variable = sameName(name, "Path")       ? "TARNEX_INSTALL"
                         : sameName(name, "Language") ? "TARNEX_LANGUAGE"
                                                      : nullptr;
  if (variable)
    if (auto value = environment(variable); value && !value->empty()) return value;
  const Profile profile = Profile::load(configurationFile());
  const auto value = profile.find(section, name);
  return value ? std::optional<std::string>(*value) : std::nullopt;
}

std::string systemLocale() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const auto value = environment(name);
    if (!value || value->empty()) continue;
    const std::string locale = value->substr(0, value->find_first_of(".@"));
    return locale == "C" || locale == "POSIX" ? "" : locale;
  }
  return {};
}

}  // namespace tarnex
