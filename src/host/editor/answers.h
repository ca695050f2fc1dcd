// What the text of an answer means: points, numbers, handles, and the words of a line.
// Knows no drawing, no coordinate system and no prompt.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/geometry/values.h"

namespace tarnex {

// No coordinate beyond this is taken for a point of a drawing, mm; fourth powers of it still stay far from
// overflow.
inline constexpr double kLargestCoordinate = 1e12;

// `10,20` and `10,20,5` of the user coordinate system, `*10,20` of the world, `@dx,dy` and `@distance<angle`
// from the point before, `distance<angle` from the origin; angles in degrees. `@` alone is the point before.
struct PointText {
  enum class Frame { kUser, kWorld, kRelative };
  Frame frame = Frame::kUser;
  AcGePoint3d value;  // cartesian, also when it was written with an angle
};
[[nodiscard]] std::optional<PointText> parsePoint(std::string_view text);

// `&1F` names an entity, `&1F*10,20` an entity at a point (world).
struct HandleText {
  std::uint64_t handle = 0;
  std::optional<AcGePoint3d> at;
};
[[nodiscard]] std::optional<HandleText> parseHandle(std::string_view text);

// A finite number with nothing behind it.
[[nodiscard]] std::optional<double> parseReal(std::string_view text);
[[nodiscard]] std::optional<int> parseInt(std::string_view text);

// Texts that read back as the very same value.
[[nodiscard]] std::string worldPointText(const AcGePoint3d& p);
[[nodiscard]] std::string handleText(std::uint64_t handle);
[[nodiscard]] std::string realText(double v);

[[nodiscard]] std::string_view trimmed(std::string_view text);
// `^C`, the escape and interrupt characters, and the menu macros' "(command)(princ)".
[[nodiscard]] bool isCancel(std::string_view text);
[[nodiscard]] bool equalIgnoringCase(std::string_view a, std::string_view b);  // ASCII
[[nodiscard]] std::string upperCase(std::string_view text);                    // ASCII

// Takes the first word off `line`. Words end at blanks; quotes hold one together ("" is an empty word), and a
// blank after a comma doesn't part it ("10, 20"). Nothing when only blanks are left.
[[nodiscard]] std::optional<std::string> takeWord(std::string_view& line);

}  // namespace tarnex
