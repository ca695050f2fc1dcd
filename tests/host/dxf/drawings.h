// Drawings for the tests, put together from tags, and what several tests ask of them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/dxf/dxf.h"

namespace tarnex::test {

using Tags = std::vector<std::pair<int, std::string>>;

// "0 LINE|8 CUT|10 1.5" as tags: code, blank, value; parted by '|'.
Tags tagsOf(std::string_view text);
std::string ascii(const Tags& tags, std::string_view lineEnd = "\n");
std::string ascii(std::string_view text, std::string_view lineEnd = "\n");
// The same tags as a binary file, written from the format's description; `wide`: two-byte group codes.
std::string binary(const Tags& tags, bool wide);
// Code and value of each line pair, values without blanks around.
Tags parsed(std::string_view file);

// A section around tags given as text.
std::string section(std::string_view name, std::string_view content);
// HEADER with the version (and more variables), then ENTITIES.
std::string drawing(std::string_view version, std::string_view entities, std::string_view moreHeader = {});
// A complete AC1015 file with tables, blocks, two lines, one xrecord and things that no program knows.
std::string completeDrawing();

struct ReadBack {
  AcDbDatabase db;
  DxfReport report;
  std::optional<DxfFailure> failure;
};
std::unique_ptr<ReadBack> read(std::string bytes, DxfReadOptions options = {});

// The n-th entity of model space that stands, as a T.
template <class T>
const T& nth(const AcDbDatabase& db, std::size_t n = 0) {
  const auto ids = db.modelSpaceEntities();
  const T* e = n < ids.size() ? db.peek<T>(ids[n]) : nullptr;
  if (!e) throw std::runtime_error("no entity " + std::to_string(n) + " of the expected kind");
  return *e;
}

}  // namespace tarnex::test
