// Line patterns of technical drawing: the ISO 128 set and the usual inch-born ones.
// Knows patterns only.
#include "host/database/linetypes.h"

#include <algorithm>
#include <initializer_list>

namespace tarnex {

namespace {

struct Row {
  const char* name;
  const char* description;
  std::initializer_list<double> dashes;
};

const Row kRows[] = {
    {"Continuous", "Solid line", {}},
    {"Acad_iso02W100", "ISO dash", {12, -3}},
    {"Acad_iso03W100", "ISO dash, wide gap", {12, -18}},
    {"Acad_iso04W100", "ISO long dash, dot", {24, -3, 0.5, -3}},
    {"Acad_iso05W100", "ISO long dash, two dots", {24, -3, 0.5, -3, 0.5, -3}},
    {"Acad_iso06W100", "ISO long dash, three dots", {24, -3, 0.5, -3, 0.5, -3, 0.5, -3}},
    {"Acad_iso07W100", "ISO dot", {0.5, -3}},
    {"Acad_iso08W100", "ISO long dash, short dash", {24, -3, 6, -3}},
    {"Acad_iso09W100", "ISO long dash, two short dashes", {24, -3, 6, -3, 6, -3}},
    {"Acad_iso10W100", "ISO dash, dot", {12, -3, 0.5, -3}},
    {"Acad_iso11W100", "ISO two dashes, dot", {12, -3, 12, -3, 0.5, -3}},
    {"Acad_iso12W100", "ISO dash, two dots", {12, -3, 0.5, -3, 0.5, -3}},
    {"Acad_iso13W100", "ISO two dashes, two dots", {12, -3, 12, -3, 0.5, -3, 0.5, -3}},
    {"Acad_iso14W100", "ISO dash, three dots", {12, -3, 0.5, -3, 0.5, -3, 0.5, -3}},
    {"Acad_iso15W100", "ISO two dashes, three dots", {12, -3, 12, -3, 0.5, -3, 0.5, -3, 0.5, -3}},
    {"Border", "Border", {12.7, -6.35, 12.7, -6.35, 0, -6.35}},
    {"Center", "Centre line", {31.75, -6.35, 6.35, -6.35}},
    {"Dashdot", "Dash, dot", {12.7, -6.35, 0, -6.35}},
    {"Dashed", "Dashed", {12.7, -6.35}},
    {"Divide", "Dash, two dots", {12.7, -6.35, 0, -6.35, 0, -6.35}},
    {"Dot", "Dots", {0, -6.35}},
    {"Hidden", "Hidden edge", {6.35, -3.175}},
    {"Phantom", "Long dash, two short dashes", {31.75, -6.35, 6.35, -6.35, 6.35, -6.35}},
};

bool sameIgnoringCase(std::string_view a, std::string_view b) {
  const auto low = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return low(x) == low(y); });
}

}  // namespace

std::optional<LinetypePattern> hostLinetype(std::string_view name) {
  for (const Row& row : kRows)
    if (sameIgnoringCase(row.name, name)) return LinetypePattern{row.name, row.description, row.dashes};
  return {};
}

}  // namespace tarnex
