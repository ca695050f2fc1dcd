// Named dictionaries in files of the kinds that have no OBJECTS section: kept as points with extended data in
// a block that nothing refers to. Knows the form of one entry.
#pragma once

#include <optional>
#include <string>

#include "host/database/resbuf.h"

namespace tarnex {

inline constexpr const char* kPlainDictionaries = "TARNEX_DICTIONARIES";  // the block
inline constexpr const char* kPlainApplication = "TARNEX";                // of the extended data

// One xrecord of one dictionary of the named objects dictionary.
struct PlainEntry {
  std::string dictionary, key;
  ResBufChain chain;
};
[[nodiscard]] std::optional<PlainEntry> plainEntryOf(const ResBufChain& data);
[[nodiscard]] ResBufChain dataOfPlainEntry(const PlainEntry& e);

}  // namespace tarnex
