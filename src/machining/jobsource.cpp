// The job's source.
// Knows TOML as plain values.
#include "machining/jobsource.h"

#include <algorithm>
#include <cmath>

#include "host/platform/format.h"
#include "machining/textcode.h"
#include "machining/tomlfile.h"

namespace tarnex {

namespace {

constexpr const char* kOrders[] = {"nearest", "style", "number"};
constexpr const char* kCuts[] = {"figure", "pass"};

class Reader {
 public:
  Reader(std::string name, JobSource& to) : name_(std::move(name)), to_(to) {}

  void run(const TomlValue& root) {
    bool styles = false;
    for (const auto& [key, value] : *root.table()) {
      if (key == "style")
        styles = each(value, key, [&](std::size_t i, const auto& v) { aStyle(i, v); });
      else if (key == "rule")
        each(value, key, [&](std::size_t, const auto& v) { aRule(v); });
      else if (!aField(key, value))
        fault(value.line, key + ": there is no such key");
    }
    if (styles && !root.find("styles_in_use")) to_.job.nStyleCount = given_;
    checkRules(root);
  }

  void fault(int line, const std::string& text) {
    to_.faults.push_back(formatted("%s:%d: %s", name_.c_str(), line, text.c_str()));
  }

 private:
  template <class Do>
  bool each(const TomlValue& value, const std::string& key, Do what) {
    const auto* list = value.list();
    if (!list) {
      fault(value.line, key + ": [[" + key + "]] is meant");
      return false;
    }
    for (std::size_t i = 0; i < list->size(); ++i)
      if ((*list)[i].table())
        what(i, (*list)[i]);
      else
        fault((*list)[i].line, key + ": a table is meant");
    return true;
  }

  void put(std::string& to, const TomlValue& v, std::size_t most, const std::string& what,
           bool oneWord = false) {
    std::string text;
    if (const auto* t = v.text())
      text = *t;
    else if (const auto* n = v.whole())
      text = std::to_string(*n);
    else
      return fault(v.line, what + ": a text is meant");
    std::string wrong = textFault(text, most, "UTF-8");
    if (wrong.empty() && oneWord && text.empty()) wrong = "is empty";
    if (wrong.empty() && oneWord && text.find_first_of(" \t\r\n\v\f") != std::string::npos)
      wrong = "has a blank in it";
    if (!wrong.empty()) return fault(v.line, what + ": " + tomlText(text) + " " + wrong);
    to = std::move(text);
  }

  void put(double& to, const TomlValue& v, const std::string& what) {
    const auto real = v.real();
    if (!real || !std::isfinite(*real)) return fault(v.line, what + ": a number is meant");
    to = *real;
  }

  void put(std::int32_t& to, const TomlValue& v, const std::string& what, int from, int most) {
    const auto* n = v.whole();
    if (!n) return fault(v.line, what + ": a whole number is meant");
    if (*n < from || *n > most)
      return fault(v.line, formatted("%s: %lld, but %d to %d is meant", what.c_str(), *n, from, most));
    to = static_cast<std::int32_t>(*n);
  }

  // One of the words, or its number.
  void choice(std::int32_t& to, const TomlValue& v, const std::string& what,
              std::span<const char* const> words) {
    const auto* text = v.text();
    if (!text) return put(to, v, what, INT32_MIN, INT32_MAX);
    std::string all;
    for (std::size_t i = 0; i < words.size(); ++i) {
      if (*text == words[i]) return void(to = static_cast<std::int32_t>(i));
      all += (i == 0 ? "" : ", ") + std::string(words[i]);
    }
    fault(v.line, what + ": " + tomlText(*text) + " is none of " + all);
  }

  bool aField(const std::string& key, const TomlValue& v) {
    JobLayout& j = to_.job;
    if (key == "folder")
      put(j.sPostPath, v, 19, key);
    else if (key == "machine")
      put(j.sMachine, v, 19, key);
    else if (key == "material")
      put(j.sMaterial, v, 19, key);
    else if (key == "order")
      choice(j.nSortMode, v, key, kOrders);
    else if (key == "cut")
      choice(j.nCutType, v, key, kCuts);
    else if (key == "condition_file")
      put(j.nDbf, v, key, 0, 1);
    else if (key == "thickness")
      put(j.dThick, v, key);
    else if (key == "wire")
      put(j.dWireRad, v, key);
    else if (key == "lead_kind")
      put(j.nLeaderType, v, key, INT32_MIN, INT32_MAX);
    else if (key == "height_auxiliary")
      put(j.dThickAux, v, key);
    else if (key == "height_programmed")
      put(j.dThickProg, v, key);
    else if (key == "styles_in_use")
      put(j.nStyleCount, v, key, 0, kMostStyles);
    else
      return false;
    return true;
  }

  void aStyle(std::size_t i, const TomlValue& v) {
    if (i == kMostStyles) fault(v.line, formatted("style: at most %d styles", kMostStyles));
    if (i >= kMostStyles) return;
    if (i == 0) to_.job.styles.fill(ProcessStyle());
    given_ = static_cast<int>(i) + 1;
    auto& s = to_.job.styles[i];
    s.sName = formatted("STYLE%zu", i + 1);
    int colour = colourOf(s), kind = kindOf(s);
    const TomlValue* lastPass = nullptr;
    std::size_t passes = 1;
    for (const auto& [key, value] : *v.table()) {
      const std::string what = "style." + key;
      if (key == "name")
        put(s.sName, value, 19, what, true);
      else if (key == "taper_outer")
        put(s.dValueC, value, what);
      else if (key == "fit")
        put(s.dValueA, value, what);
      else if (key == "value_b")
        put(s.dValueB, value, what);
      else if (key == "value_d")
        put(s.dValueD, value, what);
      else if (key == "colour")
        put(colour, value, what, -1000000, 1000000);
      else if (key == "kind")
        put(kind, value, what, -99, 99);
      else if (key == "last_pass")
        lastPass = &value;
      else if (key == "pass")
        each(value, what, [&](std::size_t g, const auto& p) { aPass(s, g, p), passes = g + 1; });
      else
        fault(value.line, what + ": there is no such key");
    }
    s.nCode = colour * 100 + kind;
    s.nPassLast = static_cast<std::int32_t>(std::min<std::size_t>(passes, kMostPasses)) - 1;
    if (lastPass) put(s.nPassLast, *lastPass, "style.last_pass", 1 - kMostPasses, kMostPasses - 1);
  }

  void aPass(ProcessStyle& s, std::size_t g, const TomlValue& v) {
    if (g == kMostPasses) fault(v.line, formatted("style.pass: at most %d passes", kMostPasses));
    if (g >= kMostPasses) return;
    auto& p = s.passes[g];
    for (const auto& [key, value] : *v.table()) {
      const std::string what = "style.pass." + key;
      if (key == "offset")
        put(p.dValue1, value, what);
      else if (key == "offset_number")
        put(p.sCode, value, 7, what, true);
      else if (key == "condition")
        put(p.sSub1, value, 4, what, true);
      else if (key == "second")
        put(p.sSub2, value, 10, what, true);
      else if (key == "value")
        put(p.dValue2, value, what);
      else if (key == "taper")
        put(s.passOffset[g], value, what);
      else
        fault(value.line, what + ": there is no such key");
    }
  }

  void aRule(const TomlValue& v) {
    StyleRule rule;
    for (const auto& [key, value] : *v.table()) {
      const std::string what = "rule." + key;
      if (key == "style")
        put(rule.style, value, 19, what, true);
      else if (key == "layer")
        put(rule.layer.emplace(), value, 255, what);
      else if (key == "colour")
        put(rule.colour.emplace(), value, what, 0, 256);
      else if (key == "figure" && value.text() && (*value.text() == "outer" || *value.text() == "hole"))
        rule.outer = *value.text() == "outer";
      else
        fault(value.line, what + ": style, layer, colour, and figure = \"hole\" or \"outer\" are meant");
    }
    if (rule.style.empty()) fault(v.line, "rule: it names no style");
    to_.rules.push_back(std::move(rule));
  }

  void checkRules(const TomlValue& root) {
    const auto* rules = root.find("rule");
    for (std::size_t i = 0; i < to_.rules.size(); ++i) {
      const auto& style = to_.rules[i].style;
      const auto end = to_.job.styles.begin() + std::clamp(to_.job.nStyleCount, 0, kMostStyles);
      if (!style.empty() &&
          std::find_if(to_.job.styles.begin(), end, [&](const auto& s) { return s.sName == style; }) == end)
        fault(rules->line, "rule: the job has no style " + tomlText(style));
    }
  }

  std::string name_;
  JobSource& to_;
  int given_ = 0;
};

void line(std::string& out, const char* key, const std::string& value, const char* about = "") {
  std::string text = std::string(key) + " = " + value;
  if (*about) text.append(text.size() < 30 ? 30 - text.size() : 1, ' ').append("# ").append(about);
  out += text + "\n";
}

template <std::size_t N>
std::string wordOr(const char* const (&words)[N], std::int32_t n) {
  return n >= 0 && n < static_cast<std::int32_t>(N) ? tomlText(words[n]) : std::to_string(n);
}

std::string passText(const ProcessStyle& s, std::size_t g) {
  const auto& p = s.passes[g];
  std::string out = "  { offset = " + tomlReal(p.dValue1) + ", offset_number = " + tomlText(p.sCode) +
                    ", condition = " + tomlText(p.sSub1) + ", second = " + tomlText(p.sSub2);
  if (p.dValue2 != 0) out += ", value = " + tomlReal(p.dValue2);
  if (s.passOffset[g] != 0) out += ", taper = " + tomlReal(s.passOffset[g]);
  return out + " },\n";
}

void listStyle(std::string& out, const ProcessStyle& s) {
  out += "\n[[style]]\n";
  line(out, "name", tomlText(s.sName));
  line(out, "fit", tomlReal(s.dValueA), "clearance, mm: a hole's offsets shrink by it, a punch's grow");
  line(out, "taper_outer", tomlReal(s.dValueC), "degrees, of outer figures");
  if (s.dValueB != 0) line(out, "value_b", tomlReal(s.dValueB));
  if (s.dValueD != 0) line(out, "value_d", tomlReal(s.dValueD));
  line(out, "colour", std::to_string(colourOf(s)));
  line(out, "kind", std::to_string(kindOf(s)));
  // Passes behind the last are told where they aren't what they would be without a word.
  const ProcessStyle standing;
  auto count = static_cast<std::size_t>(passesOf(s));
  for (std::size_t g = count; g < s.passes.size(); ++g)
    if (s.passes[g] != standing.passes[g] || s.passOffset[g] != 0) count = g + 1;
  if (s.nPassLast + 1 != static_cast<int>(count))
    line(out, "last_pass", std::to_string(s.nPassLast), "0 is the first");
  out += "pass = [\n";
  for (std::size_t g = 0; g < count; ++g) out += passText(s, g);
  out += "]\n";
}

}  // namespace

JobSource readJobSource(std::string_view source, const std::string& name, const JobLayout& base) {
  JobSource result{base, {}, {}};
  Reader reader(name, result);
  const auto parsed = parseToml(source);
  if (const auto* error = std::get_if<TomlError>(&parsed))
    reader.fault(error->line, error->cause);
  else
    reader.run(std::get<TomlValue>(parsed));
  return result;
}

std::string jobSource(const JobLayout& j) {
  std::string out;
  line(out, "folder", tomlText(j.sPostPath), "of the machine's post, under MZS");
  line(out, "machine", tomlText(j.sMachine));
  line(out, "material", tomlText(j.sMaterial), "as Main.dat spells it");
  line(out, "wire", tomlReal(j.dWireRad));
  line(out, "thickness", tomlReal(j.dThick), "mm");
  line(out, "condition_file", std::to_string(j.nDbf), "0 or 1: which of the post's two");
  line(out, "order", wordOr(kOrders, j.nSortMode), "nearest, style or number");
  line(out, "cut", wordOr(kCuts, j.nCutType), "figure by figure, or pass by pass");
  line(out, "lead_kind", std::to_string(j.nLeaderType), "1: lead arcs");
  line(out, "height_programmed", tomlReal(j.dThickProg), "mm");
  line(out, "height_auxiliary", tomlReal(j.dThickAux), "mm");
  std::size_t count = 0;
  for (std::size_t i = 0; i < j.styles.size(); ++i) {
    if (static_cast<int>(i) < j.nStyleCount || j.styles[i] != ProcessStyle()) count = i + 1;
  }
  if (static_cast<int>(count) != j.nStyleCount) line(out, "styles_in_use", std::to_string(j.nStyleCount));
  for (std::size_t i = 0; i < count; ++i) listStyle(out, j.styles[i]);
  return out;
}

}  // namespace tarnex
