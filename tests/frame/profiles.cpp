// Profile files full of damage: the shipped machine files with bytes changed, cut and doubled.
// Knows what must hold of any bytes; what a good file means is tested elsewhere.
#include "host/platform/profile.h"

#include <random>

#include "frame/environment.h"

namespace tarnex {
namespace {

std::string damaged(std::string bytes, std::mt19937& random) {
  for (int k = static_cast<int>(random() % 20); k > 0 && !bytes.empty(); --k) {
    const std::size_t at = random() % bytes.size(), count = random() % 40;
    switch (random() % 4) {
      case 0:
        bytes[at] = static_cast<char>(random());
        break;
      case 1:
        bytes.erase(at, count);
        break;
      case 2:
        bytes.insert(at, bytes.substr(random() % bytes.size(), count));
        break;
      default:
        bytes.insert(at, 1, "[]=;\"\n\r\0"[random() % 8]);
    }
  }
  return bytes;
}

TEST(ProfileDamage, AnyBytesAreReadAndWhatWasReadIsWrittenBack) {
  std::mt19937 random(3021);
  const int rounds = environment("TARNEX_LONG") ? 100000 : 500;
  const std::string machines = readFile(TARNEX_SOURCE_DIR "/data/KZS/KZSGb.ini").value.value_or("");
  ASSERT_GT(machines.size(), 300u);
  for (int i = 0; i < rounds; ++i) {
    const auto profile = Profile::parse(damaged(machines, random));
    const auto back = Profile::parse(profile.text());
    for (const char* section : {"MAIN", "Pause", "Stop", "Type", "PAUSECODE", "SEND"}) {
      const auto keys = profile.keysOf(section);
      EXPECT_EQ(back.keysOf(section), keys) << section << " in round " << i;
      for (const auto& key : keys) {
        EXPECT_EQ(back.stringOf(section, key, "?", 100000), profile.stringOf(section, key, "?", 100000))
            << section << " " << key << " in round " << i;
        EXPECT_LT(profile.stringOf(section, key, "", 128).size(), 128u);
        (void)profile.intOf(section, key, 0);
      }
    }
  }
}

}  // namespace
}  // namespace tarnex
