// The names of a post's slots and rows.
// Knows what the writers ask of each; how they do it, they know.
#include "machining/postnames.h"

namespace tarnex {

namespace {

constexpr SlotName kParameters[] = {
    {2, "line_front", "ahead of every line; needs the switch of that name"},
    {3, "line_end", "behind every line; needs the switch of that name"},
    {4, "integer_micrometres", "1: 1.5 mm is written 1500"},
    {5, "modal", "not 0: a word that says what stands already is left out"},
    {6, "offset_by_number", "1: V2 is the offset's number, else its value"},
    {7, "number_offsets", "1: the program gives the offsets their numbers"},
    {9, "rapid", "code of a rapid move"},
    {10, "decimals", "of coordinates; only 3 rounds, other counts cut"},
    {11, "extension", "of the program's file"},
    {12, "return_each_pass", "not 0: back to the threading point after each pass of a hole"},
    {13, "return_to_first", "1: from the last figure back to the first"},
    {14, "two_motions", "four axes, 1: lower and upper motion in one block, parted by a colon"},
    {15, "upper_as_change", "four axes, 0: U V are the upper end's offset, else the offset's change"},
    {16, "arc_corner_line", "line ahead of a taper cancel at an arc corner; not in family 0"},
    {22, "tab_record", "pass that cuts the tab: 0 first, 1 last trim pass, -1 the one behind it"},
    {23, "taper_left", "taper direction word; empty: the control has none"},
    {24, "taper_right", "the other"},
    {26, "text_26", "free text; old files keep their condition file here"},
    {28, "overcut", "0 in every pass, 1 in the first only, 2 in the last only"},
    {29, "centre", "0: I J from the arc's start, else the absolute centre"},
    {30, "heights_four_axes", "1: height lines in the head of a job with four axes"},
    {31, "height_programmed", "text ahead of the programmed plane's height"},
    {32, "height_auxiliary", "text ahead of the auxiliary plane's height"},
    {33, "heights_taper", "1: height lines in the head of a job with tapers"},
    {34, "upper_left", "four axes: compensation left"},
    {35, "upper_right", "four axes: compensation right"},
    {36, "upper_off", "four axes: compensation off"},
    {37, "one_taper", "1: all passes take the taper of the first"},
};

constexpr SlotName kSwitches[] = {
    {0, "header", "write the header"},
    {1, "footer", "write the footer"},
    {2, "line_front", "write line_front ahead of every line"},
    {3, "line_end", "write line_end behind every line"},
    {8, "line_numbers", "1: number the lines; \"/\" stays ahead of the number"},
};

constexpr SlotName kWords[] = {
    {0, "coordinates", "V0. G90: absolute, anything else: incremental"},
    {2, "offset", "V2: this word and the offset"},
    {3, "condition", "V3: this word and the condition's number"},
    {6, "angle_format", "V6, V106: printf format of an angle"},
    {7, "taper_cancel", "V7, and where a taper ends"},
    {8, "first_pass_word", "V8, styles of kind 4. V9: first_pass_end behind every block of the first pass"},
    {9, "first_pass_end", "see first_pass_word"},
    {17, "value_format", "V17: printf format of a pass's second value"},
    {22, "figure_format", "V22: printf format of the figure's number"},
    {23, "passes_format", "V23: printf format of the number of passes"},
};

constexpr SlotName kHoleByFigure[] = {
    {1, "program_start", "ahead of the first figure"},
    {2, "lead", "lead up to where compensation comes on, at rapid"},
    {3, "lead_compensated", "the rest of the lead"},
    {8, "to_stop_point", "the contour's last span up to the stop point"},
    {9, "contour_end", "the rest of the contour"},
    {10, "overcut", "past the entry point"},
    {11, "retreat", "off the contour, first pass"},
    {13, "later_pass_start", "onto the contour again"},
    {18, "later_pass_end", "off the contour, later passes"},
    {19, "figure_end", "back to the threading point"},
    {21, "connection", "from this figure to the next"},
    {22, "next_figure", "ahead of every figure but the first"},
};

constexpr SlotName kOuterByFigure[] = {
    {1, "program_start", "ahead of the first figure"},
    {2, "lead", "lead up to where compensation comes on, at rapid"},
    {3, "lead_compensated", "the rest of the lead"},
    {8, "to_break_point", "first pass, the span that ends at the tab"},
    {9, "off_break_point", "first pass, off the contour"},
    {11, "trim_start", "trim pass, onto the contour"},
    {16, "trim_end", "trim pass, the last contour block"},
    {17, "trim_retreat", "trim pass, off the contour"},
    {19, "onto_tab", "onto the contour for the tab"},
    {20, "tab_to_stop_point", "tab, up to the stop point"},
    {21, "tab_end", "tab, the rest: the part comes free"},
    {22, "tab_retreat", "off the contour behind the tab"},
    {24, "extra_start", "punch, trim of the tab: onto it"},
    {25, "extra_end", "punch, trim of the tab: its last piece"},
    {26, "extra_retreat", "punch, trim of the tab: off it"},
    {27, "return", "back to the threading point"},
    {29, "connection", "from this figure to the next"},
    {30, "next_figure", "ahead of every figure but the first"},
};

constexpr SlotName kHoleByPass[] = {
    {1, "program_start", "ahead of the first figure"},
    {2, "lead", "lead up to where compensation comes on, at rapid"},
    {3, "lead_compensated", "the rest of the lead"},
    {8, "to_stop_point", "the contour's last span up to the stop point"},
    {9, "contour_end", "the rest of the contour"},
    {10, "overcut", "past the entry point"},
    {11, "retreat", "off the contour, first pass"},
    {13, "connection", "from this figure to the next"},
    {14, "next_figure", "ahead of every figure but the first, and ahead of the later passes but in family 5"},
    {17, "later_pass_start", "onto the contour again"},
    {22, "later_pass_end", "off the contour, later passes"},
    {23, "figure_end", "back to the threading point; also from the last figure back to the first"},
};

constexpr SlotName kOuterByPass[] = {
    {1, "program_start", "ahead of the first figure"},
    {2, "lead", "lead up to where compensation comes on, at rapid"},
    {3, "lead_compensated", "the rest of the lead"},
    {8, "to_break_point", "first pass, the span that ends at the tab"},
    {9, "off_break_point", "first pass, off the contour"},
    {11, "connection", "from this figure to the next"},
    {12, "next_figure", "ahead of every figure but the first, and ahead of the later passes but in family 5"},
    {15, "trim_start", "trim pass, onto the contour"},
    {20, "trim_retreat", "trim pass, off the contour"},
    {22, "onto_tab", "onto the contour for the tab"},
    {23, "tab_to_stop_point", "tab, up to the stop point"},
    {24, "tab_end", "tab, the rest: the part comes free"},
    {25, "tab_retreat", "off the contour behind the tab"},
    {27, "extra_start", "punch, trim of the tab: onto it"},
    {28, "extra_end", "punch, trim of the tab: its last piece"},
    {29, "extra_retreat", "punch, trim of the tab: off it"},
    {30, "return", "back to the threading point; also from the last figure back to the first"},
};

constexpr RowSet kRowSets[] = {
    {0, "hole_by_figure", "Holes and open cuts, each with all its passes", kHoleByFigure},
    {40, "outer_by_figure", "Outer shapes, each with all its passes", kOuterByFigure},
    {80, "hole_by_pass", "Holes and open cuts: first the first pass of all figures", kHoleByPass},
    {120, "outer_by_pass", "Outer shapes: first the first pass of all figures", kOuterByPass},
};

}  // namespace

std::span<const SlotName> parameterNames() {
  return kParameters;
}

std::span<const SlotName> switchNames() {
  return kSwitches;
}

std::span<const SlotName> wordNames() {
  return kWords;
}

std::span<const RowSet> rowSets() {
  return kRowSets;
}

}  // namespace tarnex
