// The judge's reader of ISO programs: text in, blocks of words with their line numbers out.
// Knows how a control takes a block, and of the post what its number style and its words say; nothing of how
// programs are written here, and no drawing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machining/machinepost.h"

namespace tarnex::truth {

// A letter, or several, with the number behind it: "X12.5", "G41", "M60", "C001".
struct IsoWord {
  std::string letters, number;  // as they stand
  // Capital letters and the number without leading noughts, plus sign and a lone point: G1 and g01 are "G1".
  std::string key;
};
[[nodiscard]] std::string isoKey(std::string_view word);
// Blanks between words are nothing. Digits without a letter are left out.
[[nodiscard]] std::vector<IsoWord> isoWords(std::string_view text);

// What a control knows of the post: how numbers look, and its words.
struct IsoDialect {
  explicit IsoDialect(const MachinePost& post, int family);

  enum class Numbers { kDecimal, kMicrometres, kSigned };  // "12.5", "12500", "+012500"
  Numbers numbers = Numbers::kDecimal;
  double unit =
      0.0005;  // mm that one printed number may be off: half a step of it, a whole one where it is cut
  bool absolute = true, modal = false, absoluteCentre = false;
  // The first span of a pass stands ahead of its lead, marked by G44: the wire runs it behind the lead, in
  // front of the next block that is marked so.
  bool spanAhead = false;
  bool offsetByNumber = true;
  std::string offset, condition;  // what stands ahead of their numbers; empty: none
  std::vector<IsoWord> rapid, taperLeft, taperRight, taperCancel;
  bool taperSigned = false;  // no words for the two directions, the angle has a sign
  std::string angle;         // ahead of a taper's angle; empty: not told
  double angleUnit = 0;      // degrees that a printed angle may be off
  bool lineNumbers = false;
  std::string lineFormat, lineFront, lineEnd;
  bool headTable = false;       // the head lists the offsets
  bool headConditions = false;  // and the conditions
  // How the post has figures cut.
  int overcutRule = 0;  // 0 in every pass, 1 the first, 2 the last of several
  bool returnsEachPass = false;
  int tabRecord = 0;      // as the post says it
  bool oneTaper = false;  // all passes have the taper of the first
};

struct IsoNumber {
  bool ok = false;  // false: it isn't of the post's style
  double mm = 0;
};
[[nodiscard]] IsoNumber isoNumber(const IsoDialect& dialect, std::string_view text);

struct IsoBlock {
  int line = 0;  // of the text, 1 is the first
  std::vector<IsoWord> words;
};
// A line "key=value" of the head: a condition with its settings, an offset with its value.
struct IsoDefinition {
  int line = 0;
  std::string key, value;
};
struct IsoComplaint {
  int line = 0;
  bool numbering = false;  // a line number; else a line that no control reads
  std::string text;        // one sentence, without the line
};
struct IsoText {
  int lines = 0;
  std::vector<IsoBlock> blocks;  // with words; comments, definitions and empty lines are left out
  std::vector<IsoDefinition> definitions;
  std::vector<IsoComplaint> complaints;
};
// Reads any text; lines end with LF or CR LF. What stands in round brackets is a comment.
[[nodiscard]] IsoText readIso(std::string_view text, const IsoDialect& dialect);

}  // namespace tarnex::truth
