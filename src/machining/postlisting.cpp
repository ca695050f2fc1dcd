// From a post's record to its source, and what a reader should know of a post.
// Knows the names; the way from source to record is in postsource.cpp.
#include <algorithm>

#include "host/platform/format.h"
#include "machining/postnames.h"
#include "machining/postsource.h"
#include "machining/tomlfile.h"

namespace tarnex {

namespace {

// Numbers as numbers where compiling them gives the same text again.
std::string slotText(const std::string& text) {
  long long n = 0;
  return parseInteger(text, n) && std::to_string(n) == text ? text : tomlText(text);
}

std::string hexText(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const auto b : bytes) text += formatted("%02x", b);
  return tomlText(text);
}

bool anyOf(std::span<const std::uint8_t> bytes) {
  return std::ranges::any_of(bytes, [](auto b) { return b != 0; });
}

class Lister {
 public:
  explicit Lister(const MachinePost& post) : p_(post) {}

  std::string run() {
    top();
    switches();
    slots("parameters", parameterNames(), p_.param, "slot_");
    slots("words", wordNames(), p_.word, "V");
    for (const auto& set : rowSets()) rows(set);
    more();
    editor();
    return std::move(out_);
  }

 private:
  void line(const std::string& key, const std::string& value, std::string_view about = "") {
    std::string text = key + " = " + value;
    if (!about.empty())
      text.append(std::max<std::size_t>(30, text.size() + 2) - text.size(), ' ').append("# ").append(about);
    out_ += text + "\n";
  }

  void lines(const std::string& key, const std::string& text) {
    if (text.empty()) return;
    out_ += key + " = [\n";
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find('$', at), text.size() - 1) + 1;
      out_ += "  " + tomlText(text.substr(at, end - at)) + ",\n";
      at = end;
    }
    out_ += "]\n";
  }

  void top() {
    line("format", std::to_string(MachinePost::kVersion));
    if (p_.sTextCode != "UTF-8") line("text_code", tomlText(p_.sTextCode), "of the texts in the .pc file");
    line("family", std::to_string(p_.nFamily),
         "0, 1 and 5 have ways of their own; the folder's family goes first");
    if (p_.nParamCount != 48) line("parameter_count", std::to_string(p_.nParamCount));
    if (p_.nWordCount != 79) line("word_count", std::to_string(p_.nWordCount), "higher words print nothing");
    if (!p_.lineFormat.empty())
      line("line_format", tomlText(p_.lineFormat), "printf format of a line's number");
    if (!p_.subFormat.empty())
      line("subprogram_format", tomlText(p_.subFormat), "V14: of the figure's and the pass's number");
    if (p_.conditionFile != std::array<std::string, 2>())
      line("conditions", "[" + tomlText(p_.conditionFile[0]) + ", " + tomlText(p_.conditionFile[1]) + "]");
    lines("header", p_.headerText);
    lines("footer", p_.footerText);
  }

  void switches() {
    std::string head = "\n[switches]\n";
    for (std::size_t i = 0; i < p_.paramOn.size(); ++i) {
      if (p_.paramOn[i] == 0) continue;
      out_ += std::exchange(head, "");
      named(switchNames(), i, "slot_", std::to_string(p_.paramOn[i]));
    }
  }

  template <std::size_t N>
  void slots(const char* table, std::span<const SlotName> names, const std::array<std::string, N>& texts,
             const char* prefix) {
    std::string head = std::string("\n[") + table + "]\n";
    for (std::size_t i = 0; i < texts.size(); ++i) {
      if (texts[i].empty() || (N == MachinePost::kWords && (i == 1 || i == 5))) continue;
      out_ += std::exchange(head, "");
      named(names, i, prefix, slotText(texts[i]));
    }
  }

  void named(std::span<const SlotName> names, std::size_t i, const char* prefix, const std::string& value) {
    const auto known = std::ranges::find(names, static_cast<int>(i), &SlotName::slot);
    if (known != names.end())
      line(known->name, value, known->about);
    else
      line(prefix + std::to_string(i), value);
  }

  // A row's texts as they stand in its line; empty when it has none.
  std::string rowValue(int row) {
    constexpr const char* kTexts[] = {"before", "inside", "after"};
    std::string value;
    for (int which = 0; which < 3; ++which) {
      const auto text = p_.rowText(row, which);
      if (!text.empty())
        value += (value.empty() ? "" : ", ") + std::string(kTexts[which]) + " = " + tomlText(text);
    }
    return value.empty() ? value : "{ " + value + " }";
  }

  void rows(const RowSet& set) {
    std::string head = std::string("\n# ") + set.about + "\n[rows." + set.name + "]\n";
    for (int i = 0; i < kRowsOfASet; ++i) {
      const std::string value = rowValue(set.base + i);
      if (value.empty()) continue;
      out_ += std::exchange(head, "");
      named(set.rows, static_cast<std::size_t>(i), "row_", value);
    }
  }

  void more() {
    std::string head = "\n[rows.more]\n";
    for (int row = 160; row <= 266; ++row) {
      const std::string value = rowValue(row);
      if (value.empty()) continue;
      out_ += std::exchange(head, "");
      line("row_" + std::to_string(row), value);
    }
  }

  void editorText(const char* key, const std::string& text, const char* standing = "") {
    if (text != standing) line(key, tomlText(text));
  }

  void editorDate(const char* key, const std::array<std::int32_t, 6>& date) {
    if (date == std::array<std::int32_t, 6>()) return;
    std::string list;
    for (const auto n : date) list += (list.empty() ? "" : ", ") + std::to_string(n);
    line(key, "[" + list + "]");
  }

  void editor() {
    const std::size_t before = out_.size();
    const std::string head =
        "\n# No program is changed by these: the editor of posts reads them.\n[editor]\n";
    out_ += head;
    if (p_.nHeadA != 0) line("number_a", std::to_string(p_.nHeadA));
    if (p_.nHeadB != 0) line("number_b", std::to_string(p_.nHeadB));
    editorText("title_a", p_.sHeadA, "D");
    editorText("title_b", p_.sHeadB, "DD");
    editorText("extra_a", p_.sExtraA);
    editorText("extra_b", p_.sExtraB);
    editorText("owner", p_.sOwner);
    editorDate("created", p_.dateCreated);
    editorDate("changed", p_.dateChanged);
    editorText("tail_a", p_.sTailA);
    editorText("tail_b", p_.sTailB);
    if (anyOf(p_.reserved)) line("reserved", hexText(p_.reserved));
    if (anyOf(p_.padding)) line("padding", hexText(p_.padding));
    if (out_.size() == before + head.size()) out_.resize(before);
  }

  const MachinePost& p_;
  std::string out_;
};

void adviseFormat(std::vector<std::string>& advice, const char* what, const std::string& pattern,
                  const char* kinds, const char* prints) {
  if (pattern.empty()) return;
  bool known = true;
  if (conversionsOf(pattern, known) == kinds && known) return;
  advice.push_back(std::string(what) + ": " + tomlText(pattern) + " doesn't fit " + prints +
                   ", so it is printed as it stands");
}

// The highest word that a template asks for, other than those that are known whatever the count is.
int highestWord(std::string_view text) {
  int highest = -1;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != 'V' && text[i] != 'v') continue;
    int n = 0;
    std::size_t digit = i + 1;
    for (; digit < text.size() && digit <= i + 5 && text[digit] >= '0' && text[digit] <= '9'; ++digit)
      n = 10 * n + (text[digit] - '0');
    if (digit > i + 1 && n != 105 && n != 106) highest = std::max(highest, n);
  }
  return highest;
}

}  // namespace

std::string decompilePost(const MachinePost& post) {
  return Lister(post).run();
}

std::vector<std::string> postAdvice(const MachinePost& post) {
  std::vector<std::string> advice;
  adviseFormat(advice, "line_format", post.lineFormat, "i", "one number");
  adviseFormat(advice, "subprogram_format", post.subFormat, "ii", "two whole numbers");
  adviseFormat(advice, "words.angle_format", post.word[6], "f", "an angle (%.3f)");
  adviseFormat(advice, "words.value_format", post.word[17], "f", "a value (%.3f)");
  adviseFormat(advice, "words.figure_format", post.word[22], "i", "a whole number (%d)");
  adviseFormat(advice, "words.passes_format", post.word[23], "i", "a whole number (%d)");
  int highest = std::max(highestWord(post.headerText), highestWord(post.footerText));
  for (const auto& text : post.blockRow) highest = std::max(highest, highestWord(text));
  if (highest > post.nWordCount)
    advice.push_back(formatted("V%d is used, but the last known word is V%d, so it prints nothing", highest,
                               post.nWordCount));
  if (post.param[11].empty()) advice.push_back("parameters.extension is empty: programs get no extension");
  if (post.param[9].empty())
    advice.push_back("parameters.rapid is empty: moves between figures have no code");
  if (post.param[23].empty() != post.param[24].empty())
    advice.push_back("of parameters.taper_left and taper_right one is empty");
  if (!post.conditionFile[0].empty() && post.conditionFile[1].empty())
    advice.push_back("conditions names one file: a job with condition_file 1 finds none");
  if (post.paramOn[0] != 0 && post.headerText.find("SPRK") == std::string::npos)
    advice.push_back("the header has no SPRK: programs list neither conditions nor offsets");
  return advice;
}

}  // namespace tarnex
