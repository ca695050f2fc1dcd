// The job in the drawing: one key per value, styles as lines of text.
// Knows drawing variables; the job's file is in joblayout.cpp.
#include <charconv>
#include <cmath>

#include "frame/drawingvars.h"
#include "host/platform/format.h"
#include "machining/joblayout.h"

namespace tarnex {

namespace {

struct IntKey {
  const char* key;
  std::int32_t JobLayout::*member;
};
struct RealKey {
  const char* key;
  double JobLayout::*member;
};
struct TextKey {
  const char* key;
  std::string JobLayout::*member;
};

constexpr TextKey kTextKeys[] = {{"ISO_PCFPATH", &JobLayout::sPostPath},
                                 {"ISO_MACHINE", &JobLayout::sMachine},
                                 {"ISO_MATERIAL", &JobLayout::sMaterial}};
constexpr IntKey kIntKeys[] = {{"ISO_SORTMODE", &JobLayout::nSortMode},
                               {"ISO_CUTTYPE", &JobLayout::nCutType},
                               {"ISO_DBF", &JobLayout::nDbf},
                               {"ISO_STYLENUM", &JobLayout::nStyleCount},
                               {"ISO_LEADERTYPE", &JobLayout::nLeaderType}};
constexpr RealKey kRealKeys[] = {{"ISO_THICK", &JobLayout::dThick},
                                 {"ISO_WIRERAD", &JobLayout::dWireRad},
                                 {"ISO_THICKAUX", &JobLayout::dThickAux},
                                 {"ISO_THICKPROG", &JobLayout::dThickProg}};
constexpr std::size_t kJobText = 19;  // bytes that the job's file keeps of a text

// The front of a text, at most so many bytes and no character parted.
std::string_view cutTo(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
  return text.substr(0, most);
}

// Fields of a line, parted by blanks; once a field isn't of its kind, that one and all behind it are left
// alone.
class Fields {
 public:
  explicit Fields(std::string_view text) : rest_(text) {}

  Fields& text(std::string& to, std::size_t most) {
    skip();
    if (!sound_ || rest_.empty()) return fail();
    const std::size_t end = std::min(rest_.find_first_of(" \t\n\r"), rest_.size());
    to = cutTo(rest_.substr(0, end), most);
    rest_.remove_prefix(end);
    return *this;
  }
  Fields& real(double& to) {
    double v = 0;
    if (take(v) && std::isfinite(v))
      to = v;
    else
      fail();
    return *this;
  }
  Fields& whole(std::int32_t& to) {
    std::int32_t v = 0;
    if (take(v))
      to = v;
    else
      fail();
    return *this;
  }

 private:
  void skip() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\n\r"), rest_.size())); }
  Fields& fail() {
    sound_ = false;
    return *this;
  }
  template <class T>
  bool take(T& v) {
    skip();
    if (!rest_.empty() && rest_.front() == '+') rest_.remove_prefix(1);
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), v);
    if (!sound_ || error != std::errc()) return false;
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    return true;
  }
  std::string_view rest_;
  bool sound_ = true;
};

std::string styleKey(int style) {
  return formatted("ISO_STYLE%d", style);
}

std::string passKey(int style, int pass) {
  return formatted("ISO_STYLEGROUP%d%d", style, pass);
}

// The last pass that has a key: the one behind the style's last, where the table has it. nPassLast counts as
// it stands, so below -1 there is none.
int lastKeyedPass(const ProcessStyle& style) {
  return std::min(style.nPassLast, kMostPasses - 2) + 1;
}

}  // namespace

std::string styleKeyText(const ProcessStyle& s) {
  return formatted("%s %f %f %d %f %f %d", s.sName.c_str(), s.dValueC, s.dValueD, s.nPassLast, s.dValueA,
                   s.dValueB, s.nCode);
}

std::string passKeyText(const ProcessStyle& style, int pass) {
  const auto g = static_cast<std::size_t>(pass);
  const auto& p = style.passes[g];
  return formatted("%s %f %s %s %f %f", p.sCode.c_str(), p.dValue1, p.sSub1.c_str(), p.sSub2.c_str(),
                   p.dValue2, style.passOffset[g]);
}

void readStyleKey(std::string_view text, ProcessStyle& s) {
  std::int32_t last = s.nPassLast, code = s.nCode;
  Fields(text)
      .text(s.sName, 23)
      .real(s.dValueC)
      .real(s.dValueD)
      .whole(last)
      .real(s.dValueA)
      .real(s.dValueB)
      .whole(code);
  s.nPassLast = last;
  s.nCode = code;
}

void readPassKey(std::string_view text, ProcessStyle& style, int pass) {
  const auto g = static_cast<std::size_t>(pass);
  auto& p = style.passes[g];
  Fields(text)
      .text(p.sCode, 7)
      .real(p.dValue1)
      .text(p.sSub1, 4)
      .text(p.sSub2, 10)
      .real(p.dValue2)
      .real(style.passOffset[g]);
}

bool readJobKeys(const DrawingVars& vars, JobLayout& job, std::string* told) {
  const bool known = !vars.getString("ISO_MACHINE").value_or("").empty();
  for (const auto& [key, member] : kTextKeys)
    if (const auto text = vars.getString(key)) job.*member = cutTo(*text, kJobText);
  for (const auto& [key, member] : kIntKeys) job.*member = vars.getInt(key).value_or(job.*member);
  for (const auto& [key, member] : kRealKeys) job.*member = vars.getDouble(key).value_or(job.*member);
  for (int i = 0; i < std::min(job.nStyleCount, kMostStyles); ++i) {
    auto& style = job.styles[static_cast<std::size_t>(i)];
    if (const auto text = vars.getString(styleKey(i))) readStyleKey(*text, style);
    for (int g = 0; g <= lastKeyedPass(style); ++g)
      if (const auto text = vars.getString(passKey(i, g))) readPassKey(*text, style, g);
  }
  const auto held = job.hold();
  if (told) *told = held.empty() ? "" : "the drawing's job: " + JobLayout::sentence(held);
  return known;
}

void writeJobKeys(DrawingVars& vars, const JobLayout& given) {
  JobLayout job = given;
  (void)job.hold();
  for (const auto& [key, member] : kTextKeys) vars.setString(key, job.*member);
  for (const auto& [key, member] : kIntKeys) vars.setInt(key, job.*member);
  for (const auto& [key, member] : kRealKeys) vars.setDouble(key, job.*member);
  for (int i = 0; i < job.nStyleCount; ++i) {
    const auto& style = job.styles[static_cast<std::size_t>(i)];
    vars.setString(styleKey(i), styleKeyText(style));
    for (int g = 0; g <= lastKeyedPass(style); ++g) vars.setString(passKey(i, g), passKeyText(style, g));
  }
}

}  // namespace tarnex
