// From a post's source to its record.
// Knows TOML as plain values; the way back is in postlisting.cpp.
#include "machining/postsource.h"

#include <charconv>
#include <set>

#include "host/platform/codepage.h"
#include "host/platform/format.h"
#include "machining/postnames.h"
#include "machining/textcode.h"
#include "machining/tomlfile.h"

namespace tarnex {

namespace {

using Table = TomlValue::Table;

// "slot_12" after "slot_": 12; nothing for another name or a number not below `end`.
std::optional<int> numberBehind(std::string_view prefix, std::string_view name, int end) {
  if (!name.starts_with(prefix)) return std::nullopt;
  name.remove_prefix(prefix.size());
  int n = 0;
  const auto [stop, error] = std::from_chars(name.data(), name.data() + name.size(), n);
  if (error != std::errc() || stop != name.data() + name.size() || n < 0 || n >= end) return std::nullopt;
  if (name.size() > 1 && name.front() == '0') return std::nullopt;
  return n;
}

std::optional<int> slotNamed(std::span<const SlotName> names, std::string_view name) {
  for (const auto& n : names)
    if (name == n.name) return n.slot;
  return std::nullopt;
}

constexpr bool isFilledByProgram(int word) {
  return word == 1 || word == 5 || word == 18 || word == 19;
}

class Compiler {
 public:
  Compiler(std::string name, CompiledPost& to) : name_(std::move(name)), post_(to.post), faults_(to.faults) {}

  void run(const TomlValue& root) {
    start();
    if (const auto* code = root.find("text_code")) textCode(*code);
    for (const auto& [key, value] : *root.table()) {
      if (key == "switches")
        each(value, key, [&](const auto& k, const auto& v, const auto& what) { aSwitch(k, v, what); });
      else if (key == "parameters")
        each(value, key, [&](const auto& k, const auto& v, const auto& what) { aParameter(k, v, what); });
      else if (key == "words")
        each(value, key, [&](const auto& k, const auto& v, const auto& what) { aWord(k, v, what); });
      else if (key == "rows")
        each(value, key, [&](const auto& k, const auto& v, const auto&) { aRowSet(k, v); });
      else if (key == "editor")
        each(value, key, [&](const auto& k, const auto& v, const auto& what) { anEditorField(k, v, what); });
      else if (!aTopField(key, value))
        fault(value, key + ": there is no such key");
    }
  }

  void fault(const TomlValue& at, const std::string& text) { fault(at.line, text); }
  void fault(int line, const std::string& text) {
    faults_.push_back(formatted("%s:%d: %s", name_.c_str(), line, text.c_str()));
  }

 private:
  void start() {
    post_ = MachinePost();
    post_.nVersion = MachinePost::kVersion;
    post_.nParamCount = static_cast<std::int32_t>(MachinePost::kParams);
    post_.nWordCount = static_cast<std::int32_t>(MachinePost::kWords) - 1;
    post_.word[1] = "G4x";
    post_.word[5] = "Gx";
  }

  template <class Do>
  void each(const TomlValue& table, const std::string& name, Do what) {
    if (!table.table()) return fault(table, name + ": a table is meant, [" + name + "]");
    for (const auto& [key, value] : *table.table()) what(key, value, name + "." + key);
  }

  void textCode(const TomlValue& v) {
    const auto* code = v.text();
    if (code && (*code == "UTF-8" || isKnownCodePage(*code)))
      post_.sTextCode = *code;
    else
      fault(v, "text_code: no code page of that name");
  }

  void put(std::string& to, const TomlValue& v, std::size_t most, const std::string& what) {
    std::string text;
    if (const auto* t = v.text())
      text = *t;
    else if (const auto* n = v.whole())
      text = std::to_string(*n);
    else
      return fault(v, what + ": a text is meant, or a whole number");
    const std::string wrong = textFault(text, most, post_.sTextCode);
    if (!wrong.empty()) return fault(v, what + ": " + tomlText(text) + " " + wrong);
    to = std::move(text);
  }

  void put(std::int32_t& to, const TomlValue& v, const std::string& what) {
    const auto* n = v.whole();
    if (!n) return fault(v, what + ": a whole number is meant");
    if (*n < INT32_MIN || *n > INT32_MAX)
      return fault(v, formatted("%s: %lld is beyond what the file holds", what.c_str(), *n));
    to = static_cast<std::int32_t>(*n);
  }

  // A text in one piece or in lines that are put one behind the other.
  void putLines(std::string& to, const TomlValue& v, std::size_t most, const std::string& what) {
    const auto* list = v.list();
    if (!list) return put(to, v, most, what);
    TomlValue whole;
    whole.line = v.line;
    std::string all;
    for (const auto& line : *list) {
      if (!line.text()) return fault(line, what + ": a list of texts is meant");
      all += *line.text();
    }
    const std::string wrong = textFault(all, most, post_.sTextCode);
    if (!wrong.empty()) return fault(v, what + ": " + wrong);
    to = std::move(all);
  }

  bool once(std::set<int>& seen, int slot, const TomlValue& v, const std::string& what) {
    if (seen.insert(slot).second) return true;
    fault(v, formatted("%s: number %d is given twice", what.c_str(), slot));
    return false;
  }

  void aSwitch(const std::string& key, const TomlValue& v, const std::string& what) {
    auto slot = slotNamed(switchNames(), key);
    if (!slot) slot = numberBehind("slot_", key, static_cast<int>(MachinePost::kParams));
    if (!slot)
      return fault(v, what + ": there is no such switch; those without a name are slot_0 to slot_47");
    if (!once(switches_, *slot, v, what)) return;
    auto& to = post_.paramOn[static_cast<std::size_t>(*slot)];
    if (const auto* yes = v.yes())
      to = *yes ? 1 : 0;
    else
      put(to, v, what);
  }

  void aParameter(const std::string& key, const TomlValue& v, const std::string& what) {
    auto slot = slotNamed(parameterNames(), key);
    if (!slot) slot = numberBehind("slot_", key, static_cast<int>(MachinePost::kParams));
    if (!slot)
      return fault(v, what + ": there is no such parameter; those without a name are slot_0 to slot_47");
    if (once(parameters_, *slot, v, what))
      put(post_.param[static_cast<std::size_t>(*slot)], v, MachinePost::kSlotLimit, what);
  }

  void aWord(const std::string& key, const TomlValue& v, const std::string& what) {
    auto slot = slotNamed(wordNames(), key);
    if (!slot) slot = numberBehind("V", key, static_cast<int>(MachinePost::kWords));
    if (!slot) return fault(v, what + ": there is no such word; those without a name are V0 to V79");
    if (isFilledByProgram(*slot)) return fault(v, what + ": this word is filled while a program is written");
    if (once(words_, *slot, v, what))
      put(post_.word[static_cast<std::size_t>(*slot)], v, MachinePost::kSlotLimit, what);
  }

  void aRowSet(const std::string& name, const TomlValue& v) {
    const std::string set = "rows." + name;
    if (name == "more")
      return each(v, set, [&](const auto& k, const auto& row, const auto& what) {
        const auto number = numberBehind("row_", k, kLastRow + 1);
        if (!number || *number < kFirstMore) return fault(row, what + ": row_160 to row_266 are meant");
        aRow(*number, row, what);
      });
    for (const auto& known : rowSets())
      if (name == known.name)
        return each(v, set, [&](const auto& k, const auto& row, const auto& what) {
          auto number = slotNamed(known.rows, k);
          if (!number) number = numberBehind("row_", k, kRowsOfASet);
          if (!number)
            return fault(row, what + ": there is no such moment; rows without a name are row_0 to row_39");
          aRow(known.base + *number, row, what);
        });
    fault(v, set + ": rows are in hole_by_figure, outer_by_figure, hole_by_pass, outer_by_pass and more");
  }

  void aRow(int row, const TomlValue& v, const std::string& what) {
    if (!once(rows_, row, v, what)) return;
    if (!v.table()) return fault(v, what + ": {before = \"\", inside = \"\", after = \"\"} is meant");
    constexpr std::string_view kTexts[] = {"before", "inside", "after"};
    for (const auto& [key, text] : *v.table()) {
      std::size_t i = 0;
      while (i < 3 && key != kTexts[i]) ++i;
      const auto at = static_cast<std::size_t>(3 * row) + i;
      if (i == 3 || at >= MachinePost::kRowTexts)
        fault(text, what + "." + key + ": a row has before, inside and after; row_266 has no after");
      else
        put(post_.blockRow[at], text, MachinePost::kTemplateLimit, what + "." + key);
    }
  }

  bool aTopField(const std::string& key, const TomlValue& v) {
    if (key == "text_code") return true;
    if (key == "format") {
      if (!v.whole() || *v.whole() != MachinePost::kVersion)
        fault(v, formatted("format: %d is the one that is known", MachinePost::kVersion));
    } else if (key == "family")
      put(post_.nFamily, v, key);
    else if (key == "parameter_count")
      put(post_.nParamCount, v, key);
    else if (key == "word_count")
      put(post_.nWordCount, v, key);
    else if (key == "line_format")
      put(post_.lineFormat, v, 40, key);
    else if (key == "subprogram_format")
      put(post_.subFormat, v, 40, key);
    else if (key == "header")
      putLines(post_.headerText, v, 599, key);
    else if (key == "footer")
      putLines(post_.footerText, v, 199, key);
    else if (key == "conditions")
      conditions(v);
    else
      return false;
    return true;
  }

  void conditions(const TomlValue& v) {
    const auto* list = v.list();
    if (!list || list->empty() || list->size() > 2)
      return fault(v, "conditions: a list of one or two file names is meant, [\"steel\", \"copper\"]");
    for (std::size_t i = 0; i < list->size(); ++i) put(post_.conditionFile[i], (*list)[i], 19, "conditions");
  }

  void anEditorField(const std::string& key, const TomlValue& v, const std::string& what) {
    struct Text {
      const char* key;
      std::string MachinePost::*member;
      std::size_t most;
    };
    constexpr Text kTexts[] = {{"title_a", &MachinePost::sHeadA, 29},  {"title_b", &MachinePost::sHeadB, 29},
                               {"extra_a", &MachinePost::sExtraA, 19}, {"extra_b", &MachinePost::sExtraB, 19},
                               {"owner", &MachinePost::sOwner, 19},    {"tail_a", &MachinePost::sTailA, 19},
                               {"tail_b", &MachinePost::sTailB, 31}};
    for (const auto& text : kTexts)
      if (key == text.key) return put(post_.*text.member, v, text.most, what);
    if (key == "number_a")
      put(post_.nHeadA, v, what);
    else if (key == "number_b")
      put(post_.nHeadB, v, what);
    else if (key == "created")
      date(post_.dateCreated, v, what);
    else if (key == "changed")
      date(post_.dateChanged, v, what);
    else if (key == "reserved")
      hex(post_.reserved, v, what);
    else if (key == "padding")
      hex(post_.padding, v, what);
    else
      fault(v, what + ": there is no such key");
  }

  void date(std::array<std::int32_t, 6>& to, const TomlValue& v, const std::string& what) {
    const auto* list = v.list();
    if (!list || list->size() != to.size())
      return fault(v, what + ": six whole numbers are meant, [year, month, day, hour, minute, second]");
    for (std::size_t i = 0; i < to.size(); ++i) put(to[i], (*list)[i], what);
  }

  template <std::size_t N>
  void hex(std::array<std::uint8_t, N>& to, const TomlValue& v, const std::string& what) {
    const auto* text = v.text();
    bool sound = text && text->size() == 2 * N;
    for (std::size_t i = 0; sound && i < N; ++i) {
      const char* at = text->data() + 2 * i;
      const auto [stop, error] = std::from_chars(at, at + 2, to[i], 16);
      sound = error == std::errc() && stop == at + 2;
    }
    if (!sound) fault(v, formatted("%s: a text of %zu hexadecimal digits is meant", what.c_str(), 2 * N));
  }

  static constexpr int kFirstMore = 160, kLastRow = 266;
  std::string name_;
  MachinePost& post_;
  std::vector<std::string>& faults_;
  std::set<int> switches_, parameters_, words_, rows_;
};

}  // namespace

CompiledPost compilePost(std::string_view source, const std::string& name) {
  CompiledPost result;
  Compiler compiler(name, result);
  const auto parsed = parseToml(source);
  if (const auto* error = std::get_if<TomlError>(&parsed))
    compiler.fault(error->line, error->cause);
  else
    compiler.run(std::get<TomlValue>(parsed));
  return result;
}

}  // namespace tarnex
