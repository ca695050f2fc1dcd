// The language of a post's texts: words by number, offset positions, line breaks; and blocks, which are such
// texts around a motion. Knows what each word prints; when a text is printed, writers decide.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "host/platform/format.h"
#include "host/platform/system.h"
#include "outputiso/isopost.h"
#include "outputiso/postslots.h"
#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

enum class Byte : unsigned char { kPlain, kSkipped, kBreak, kAxisU, kOffset, kWord };

constexpr auto kBytes = [] {
  std::array<Byte, 256> bytes{};
  bytes[8] = Byte::kSkipped;
  bytes['$'] = Byte::kBreak;
  bytes['U'] = Byte::kAxisU;
  bytes['#'] = Byte::kOffset;
  bytes['V'] = bytes['v'] = Byte::kWord;
  return bytes;
}();

constexpr Byte byteKind(char c) {
  return kBytes[static_cast<unsigned char>(c)];
}

std::size_t plainEnd(std::string_view text, std::size_t at) {
  while (at < text.size() && byteKind(text[at]) == Byte::kPlain) ++at;
  return at;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// The number that the text begins with, 0 where there is none.
double leadingNumber(std::string_view text) {
  if (text.substr(0, 1) == "+" && text.substr(1, 1) != "-") text.remove_prefix(1);
  double v = 0;
  std::from_chars(text.data(), text.data() + text.size(), v);
  return v;
}

// "\n\n" becomes "\n" behind `start`, in one run: three line feeds become two.
void halveLineFeeds(std::string& text, std::size_t start) {
  std::size_t read = text.find("\n\n", start);
  if (read == std::string::npos) return;
  std::size_t write = read;
  for (; read < text.size(); ++write) {
    const bool twice = text[read] == '\n' && read + 1 < text.size() && text[read + 1] == '\n';
    text[write] = text[read];
    read += twice ? 2 : 1;
  }
  text.resize(write);
}

// Fills in one template behind `out`.
class Expander {
 public:
  Expander(const IsoPost& iso, std::string_view sep, std::string& out) : iso_(iso), sep_(sep), out_(out) {}

  void run(std::string_view text) {
    if (text.empty()) return;
    const std::size_t start = out_.size();
    text_ = text;
    for (at_ = 0; at_ < text_.size();) step();
    halveLineFeeds(out_, start);
  }

 private:
  void step() {
    const std::size_t at = at_++;
    switch (byteKind(text_[at])) {
      case Byte::kSkipped:
        return;
      case Byte::kBreak:
        if (lineHasText_ || at == 0) out_ += sep_;
        lineHasText_ = false;
        return;
      case Byte::kOffset:
        return offset();
      case Byte::kWord:
        if (!afterU_) return word();
        afterU_ = false;
        return put(text_.substr(at, 1));
      case Byte::kAxisU:
        afterU_ = true;
        return put("U");
      case Byte::kPlain:
        at_ = plainEnd(text_, at);
        return put(text_.substr(at, at_ - at));
    }
  }

  void put(std::string_view text) {
    out_ += text;
    lineHasText_ = true;
  }
  void putNumber(double mm) { appendNumber(out_, mm, iso_.numberStyle()); }
  // A word that takes the line's text away where it prints nothing.
  void putOrClear(bool prints, std::string_view text) {
    if (prints) out_ += text;
    lineHasText_ = prints;
  }
  // A pattern of the post with what it may ask for.
  void putPattern(std::string_view pattern, std::initializer_list<FormatArg> args) {
    put(formatChecked(pattern, args));
  }

  void offset() {
    const char axis = at_ < text_.size() ? text_[at_++] : 0;
    if (axis != 'X' && axis != 'x' && axis != 'Y' && axis != 'y') return;
    constexpr std::size_t kMostCharacters = 7;
    const std::string_view rest = text_.substr(at_, kMostCharacters);
    const std::string_view number = rest.substr(0, rest.find_first_not_of("0123456789-+."));
    at_ += number.size();
    if (number.empty()) return;
    const double d = leadingNumber(number);
    const double last = axis == 'X' || axis == 'x' ? iso_.ptLast.x : iso_.ptLast.y;
    putNumber(last < 0.0 ? last - d : last + d);
  }

  void word() {
    constexpr std::size_t kMostDigits = 5;
    int n = 0;
    std::size_t digits = 0;
    for (; digits < kMostDigits && at_ < text_.size() && isDigit(text_[at_]); ++digits, ++at_)
      n = n * 10 + (text_[at_] - '0');
    if (digits == 0) return;
    if (n > iso_.post.nWordCount && n != 105 && n != 106) return;
    if (!putMachiningWord(n) && !putFigureWord(n) && static_cast<std::size_t>(n) < MachinePost::kWords)
      put(iso_.post.word[static_cast<std::size_t>(n)]);
  }

  // Words of pass and style.
  bool putMachiningWord(int n) {
    const auto& words = iso_.post.word;
    switch (n) {
      case 2:
        putOffset();
        break;
      case 3:
        putCondition();
        break;
      case 5:
        putOrClear(taper() != 0.0, words[PostWord::kTaper]);
        break;
      case 6:
        putTaperAngle();
        break;
      case 7:
        if (iso_.passTaper() != 0.0) put(words[PostWord::kTaperCancel]);
        break;
      case 8:
        if (kindOf(iso_.figure.styleNow) == StyleKind::kFirstPassWord)
          put(iso_.marksBlocks() ? "" : words[PostWord::kFirstPassWord]);
        break;
      case 17:
        putPattern(words[PostWord::kValueFormat], {iso_.passRecord().dValue2});
        break;
      case 21:
      case 105:
        putDirection();
        break;
      case 106:
        put(angleText(iso_.dTaperNow));
        break;
      default:
        return false;
    }
    return true;
  }

  // Words of program and figure.
  bool putFigureWord(int n) {
    switch (n) {
      case 14:
        if (!iso_.post.subFormat.empty())
          putPattern(iso_.post.subFormat, {whole(iso_.figure.nFigureNo), whole(iso_.nPass)});
        break;
      case 15:
        put(formatted("%.3f", iso_.dPathLength));
        break;
      case 16:
        put("X");
        putNumber(iso_.figure.ptFigureStart.x - iso_.ptOriginCopy.x);
        put("Y");
        putNumber(iso_.figure.ptFigureStart.y - iso_.ptOriginCopy.y);
        break;
      case 18:
      case 19:
        putClock(n == 18);
        break;
      case 22:
        putPattern(iso_.post.word[PostWord::kFigureFormat], {whole(iso_.figure.nFigureNo)});
        break;
      case 23:
        putPattern(iso_.post.word[PostWord::kPassesFormat], {whole(iso_.figure.styleNow.nPassLast) + 1});
        break;
      default:
        return false;
    }
    return true;
  }

  static long long whole(int v) { return v; }

  // The taper that the style asks for in this pass, degrees.
  [[nodiscard]] double taper() const {
    return iso_.figure.nSide == kOuterShape ? iso_.figure.styleNow.dValueC : iso_.passTaper();
  }
  [[nodiscard]] bool signedFamily() const { return iso_.post.nFamily == kFamilySignedUnits; }
  [[nodiscard]] std::string angleText(double degrees) const {
    const double shown = iso_.nTaperSign == 0 ? std::abs(degrees) : iso_.nTaperSign * degrees;
    return formatChecked(iso_.post.word[PostWord::kAngleFormat], {shown});
  }

  void putOffset() {
    put(iso_.post.word[PostWord::kOffset]);
    if (iso_.post.paramInt(PostParam::kOffsetByNumber) == 1)
      put(iso_.passRecord().sCode);
    else
      putNumber(iso_.passOffsetNow());
  }
  void putCondition() {
    put(iso_.post.word[PostWord::kCondition]);
    put(iso_.passRecord().sSub1);
    if (!signedFamily()) return;
    put("T");
    put(iso_.passRecord().sSub1);
  }
  void putTaperAngle() {
    const double v = taper();
    if (signedFamily()) out_ += v != 0.0 ? "P11" : "P01";
    putOrClear(v != 0.0, signedFamily() ? "" : angleText(v));
  }
  void putDirection() {
    const double w = iso_.nPassDir * iso_.figure.nDirection * iso_.dTaperNow;
    const auto& left = iso_.post.param[PostParam::kTaperLeft];
    const auto& right = iso_.post.param[PostParam::kTaperRight];
    put(w > 0.0 ? left : right);
    if (sidesSwap(iso_.figure.styleNow, iso_.figure.nSide)) put(w > 0.0 ? right : left);
  }
  // Date and time don't count as text on the line.
  void putClock(bool date) {
    const LocalTime t = localTime();
    out_ += date ? formatted("%d-%02d-%2d", t.year, t.month, t.day)
                 : formatted("%02d:%02d:%02d", t.hour, t.minute, t.second);
  }

  const IsoPost& iso_;
  std::string_view sep_, text_;
  std::string& out_;
  std::size_t at_ = 0;
  bool lineHasText_ = false, afterU_ = false;
};

constexpr std::size_t kInsideAt = 3;  // behind a code such as G01

}  // namespace

std::string IsoPost::expand(std::string_view text, std::string_view sep) const {
  std::string out;
  Expander(*this, sep, out).run(text);
  return out;
}

void IsoPost::appendBlock(std::string& out, std::string_view motion, int row, std::string_view sep,
                          int parts) const {
  const std::size_t start = out.size();
  const auto rowText = [&](RowParts part, int which) {
    return row > 0 && (parts & part) != 0 ? post.rowText(row + rowBase, which) : std::string_view();
  };
  const auto append = [&](std::string& to, std::string_view text) { Expander(*this, sep, to).run(text); };
  const std::string_view before = rowText(kRowBefore, 0), inside = rowText(kRowInside, 1);
  std::string_view after = rowText(kRowAfter, 2);
  append(out, before);
  if (inside.empty()) {
    append(out, motion);
  } else {
    std::string whole(motion.substr(0, kInsideAt));
    append(whole, inside);
    whole += motion.substr(std::min(kInsideAt, motion.size()));
    append(out, whole);
  }
  if (out.size() == start && after.starts_with('$')) after.remove_prefix(1);
  append(out, after);
  if (!sep.empty())
    while (out.size() > start && sep.find(out.back()) != std::string_view::npos) out.pop_back();
  out += sep;
}

std::string IsoPost::block(std::string_view motion, int row, std::string_view sep, int parts) const {
  std::string text;
  appendBlock(text, motion, row, sep, parts);
  return text;
}

std::string IsoPost::textBlock(int which, std::string_view sep) const {
  if (post.paramOn.at(static_cast<std::size_t>(which)) == 0) return {};
  std::string text = which == 0 ? post.headerText : post.footerText;
  // Editors show these texts in fields of several lines; their lines aren't the program's.
  for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;) text.erase(at, 2);
  return expand(text, sep);
}

}  // namespace tarnex
