// A slow-wire machine's post in memory, and the file that holds it.
// Knows the bytes; what templates and switches do, the writers know, and what they are called, postnames.h.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

// Texts are UTF-8 here. In the file they are bytes of `sTextCode`, the page that all of them are written in,
// and at most one byte shorter than their field: the limits below count bytes of the file.
struct MachinePost {
  static constexpr std::size_t kFileSize = 35480;
  static constexpr std::int32_t kVersion = 117, kOldVersion = 104;
  static constexpr std::size_t kParams = 48, kWords = 80, kRowTexts = 800;
  static constexpr std::size_t kTemplateLimit = 40, kSlotLimit = 9;  // of blockRow; of param and word

  // What stands where no file could be read, before migration.
  std::int32_t nVersion = 100, nHeadA = 0, nHeadB = 0;
  std::string sHeadA = "D", sHeadB = "DD";  // 29 each; the editor of posts alone reads them
  std::int32_t nParamCount = 0;
  std::array<std::int32_t, kParams> paramOn{};
  std::array<std::string, kParams> param;       // 9 each
  std::int32_t nWordCount = 0;                  // the last number that the expander knows
  std::array<std::string, kWords> word;         // 9 each
  std::string headerText, footerText;           // 599, 199
  std::array<std::string, kRowTexts> blockRow;  // 40 each; row r: 3r before, 3r + 1 inside, 3r + 2 after
  std::string lineFormat, subFormat;            // 40 each: printf formats of one number, of two
  std::string sExtraA, sExtraB;                 // 19 each; the editor's
  std::array<std::string, 2> conditionFile;     // 19 each, without folder and extension
  std::string sOwner;                           // 19; the editor's
  // Year, month, day, hour, minute, second; the editor's.
  std::array<std::int32_t, 6> dateCreated{}, dateChanged{};
  std::int32_t nFamily = 0;
  std::string sTailA, sTailB;  // 19, 31; the editor's
  // Bytes 72 to 111 and 35354 to 35355 of the file: nobody's, kept as they were read.
  std::array<std::uint8_t, 40> reserved{};
  std::array<std::uint8_t, 2> padding{};
  std::string sTextCode = "UTF-8";  // UTF-8, GB18030, BIG5 or ISO-8859-1

  bool operator==(const MachinePost&) const = default;

  // The leading whole number of a parameter, 0 for a text without one.
  [[nodiscard]] int paramInt(std::size_t slot) const;
  // One of a row's three texts (0 before, 1 inside, 2 after); empty for a row that the post doesn't have.
  [[nodiscard]] std::string_view rowText(int row, int which) const;
};

struct PostReading {
  bool read = false;  // false: no such file, the post is blank
  // For the user, one sentence: what the file lacks, or that it isn't quite what it should be. The post holds
  // what could be read.
  std::string problem;
};

// Reads a file of either layout and brings it up to date; whatever the version, words 1 and 5 are
// placeholders, words 18 and 19 empty, and nVersion is 117 afterwards. What a short file doesn't reach keeps
// what `post` held.
PostReading readPost(const std::string& path, MachinePost& post);
// The same from bytes; `name` stands at the front of `problem`.
PostReading decodePost(std::string_view bytes, const std::string& name, MachinePost& post);
// The present layout, kFileSize bytes. A text longer than its field is cut, a character that sTextCode lacks
// becomes
// '?': whoever takes texts from a user asks textFault first.
[[nodiscard]] std::string encodePost(const MachinePost& post);

// "<install folder>\MZS\<folder>\<name>.pc", a path of the system; the shipped one when the install folder
// has none.
[[nodiscard]] std::string postPath(std::string_view installFolder, std::string_view folder,
                                   std::string_view name);

}  // namespace tarnex
