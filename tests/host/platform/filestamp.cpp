// File stamps: equal as long as a file is untouched, different after each way of changing it.
#include "host/platform/filestamp.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/platform/files.h"

namespace tarnex {
namespace {

TEST(FileStamps, ChangeWithTheFile) {
  const std::string folder = temporaryFolder("tarnex-stamp"), path = folder + "/file";
  EXPECT_FALSE(fileStamp(path));
  std::ofstream(path) << "one";
  const auto first = fileStamp(path);
  ASSERT_TRUE(first);
  EXPECT_EQ(fileStamp(path), first);

  std::ofstream(path, std::ios::app) << "more";
  const auto grown = fileStamp(path);
  EXPECT_NE(grown, first);
  std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) - std::chrono::hours(1));
  const auto older = fileStamp(path);
  EXPECT_NE(older, grown);

  std::ofstream(folder + "/other") << "onemore";  // same size, same time, renamed over it
  std::filesystem::last_write_time(folder + "/other", std::filesystem::last_write_time(path));
  std::filesystem::rename(folder + "/other", path);
  EXPECT_NE(fileStamp(path), older);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace tarnex
