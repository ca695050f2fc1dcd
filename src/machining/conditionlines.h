// Which lines of a condition cell a program asks for, and which family a post's folder belongs to.
// Knows texts alone; where they are written, the program's head knows.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

// Equal but for the case of Latin letters.
[[nodiscard]] bool sameLetters(std::string_view a, std::string_view b);

// The lines ahead of the first that begins with "C": they are copied as they are.
[[nodiscard]] std::size_t headLineCount(const std::vector<std::string>& lines);
// The line of condition 0, behind the head lines; null when there is none.
[[nodiscard]] const std::string* startConditionLine(const std::vector<std::string>& lines);
// The first line that begins with "C" and this number, ignoring case; null when there is none.
[[nodiscard]] const std::string* conditionLine(const std::vector<std::string>& lines,
                                               std::string_view number);

// Families whose programs list conditions.
inline constexpr int kFamilyCellOfJob = 0, kFamilyFirstCell = 1;
// The family of the posts in a folder under MZS, ignoring case, by the catalogue's texts "LABEL|FOLDER";
// nothing when they don't name it.
[[nodiscard]] std::optional<int> machineFamily(std::string_view folder,
                                               const std::function<std::string(int)>& message);

}  // namespace tarnex
