// The two small cost settings files, `NotePrice.set` under MZS and under KZS.
// Knows their bytes; what a cost note says is the business of the rooms above.
#pragma once

#include <cstdint>
#include <string>

namespace tarnex {

// MZS\NotePrice.set: 120 bytes, version 100.
struct NotePriceMzs {
  static constexpr std::size_t kFileSize = 120;
  std::int32_t nVersion;
  std::string sCompany, sPart, sCurrency;
  double dPrice;
  std::int32_t nCount;
  std::int32_t nUnused = 0;
  NotePriceMzs();
  void load(const std::string& installFolder);  // a missing file gives the defaults
  [[nodiscard]] bool save(const std::string& installFolder) const;
};

// KZS\NotePrice.set: 248 bytes, version 105. Fields are named by their offset where only the dialogs know
// them.
struct NotePriceKzs {
  static constexpr std::size_t kFileSize = 248;
  std::int32_t nVersion;
  std::int32_t n4, n8, n12, n16, n20;
  double d24, d32, d40, d48;
  std::string sMaterial;
  std::int32_t n96;
  double d104, d112;
  std::int32_t n120;
  double d128, d136, d144, d152, d160, d168, d176;
  std::string s184;
  std::int32_t n196;
  double d208, d216;
  std::string s224;
  std::string bytes;  // the file as read, for the bytes that no field names
  NotePriceKzs();
  void load(const std::string& installFolder);
  [[nodiscard]] bool save(const std::string& installFolder) const;
};

}  // namespace tarnex
