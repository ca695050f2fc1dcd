// Checked formatting: texts that come from data files are printed with arguments whose kinds the caller
// declares.
#pragma once

#include <cstdarg>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

namespace tarnex {

using FormatArg = std::variant<long long, double, std::string_view>;

// Prints `pattern` (printf conversions %d %i %u %c %x %f %e %g %s with flags, width, precision) with `args`,
// in the "C" locale whatever the user's is. Integer conversions take a long long, %f %e %g a double, %s a
// string. A pattern whose conversions don't match the arguments in number and kind is returned as it stands
// ("%%" included).
[[nodiscard]] std::string formatChecked(std::string_view pattern, std::initializer_list<FormatArg> args);
// The kinds that a pattern's conversions ask for, as letters: 'i' integer, 'f' real, 's' string; nothing when
// the pattern holds a conversion that formatChecked doesn't know. `*` widths and %n are unknown.
[[nodiscard]] std::string conversionsOf(std::string_view pattern, bool& known);

// printf for patterns that are literals of the code, in the "C" locale. Checked by the compiler.
[[nodiscard]] std::string formatted(const char* pattern, ...) __attribute__((format(printf, 1, 2)));
// The same for a function that has such a list of arguments itself.
[[nodiscard]] std::string formattedList(const char* pattern, va_list args)
    __attribute__((format(printf, 1, 0)));

// Text of a number in the "C" locale: the shortest that reads back the same.
[[nodiscard]] std::string shortestNumber(double v);
// The whole text as a number (blanks around it allowed, "C" locale); false and `out` unchanged otherwise.
[[nodiscard]] bool parseNumber(std::string_view text, double& out);
[[nodiscard]] bool parseInteger(std::string_view text, long long& out);

}  // namespace tarnex
