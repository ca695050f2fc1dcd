// Texts of a drawing file: code page or UTF-8, with \U+XXXX and \M+nXXXX, to and from the UTF-8 of the
// drawing. Knows no tags.
#include "host/dxf/text_codec.h"

#include <charconv>
#include <cstdint>

#include "host/platform/codepage.h"

namespace tarnex {
namespace {

struct PageName {
  std::string_view word, page;
};
constexpr PageName kPages[] = {
    {"ansi_874", "CP874"},
    {"ansi_932", "CP932"},
    {"ansi_936", "GBK"},
    {"ansi_949", "CP949"},
    {"ansi_950", "CP950"},
    {"ansi_1250", "CP1250"},
    {"ansi_1251", "CP1251"},
    {"ansi_1252", "CP1252"},
    {"ansi_1253", "CP1253"},
    {"ansi_1254", "CP1254"},
    {"ansi_1255", "CP1255"},
    {"ansi_1256", "CP1256"},
    {"ansi_1257", "CP1257"},
    {"ansi_1258", "CP1258"},
    {"ansi_1361", "JOHAB"},
    {"johab", "JOHAB"},
    {"dos437", "CP437"},
    {"dos850", "CP850"},
    {"dos852", "CP852"},
    {"dos855", "CP855"},
    {"dos857", "CP857"},
    {"dos860", "CP860"},
    {"dos861", "CP861"},
    {"dos863", "CP863"},
    {"dos864", "CP864"},
    {"dos865", "CP865"},
    {"dos866", "CP866"},
    {"dos869", "CP869"},
    {"dos932", "CP932"},
    {"dos950", "CP950"},
    {"iso8859-1", "ISO-8859-1"},
    {"iso_8859_1", "ISO-8859-1"},
    {"mac-roman", "MACINTOSH"},
    {"macintosh", "MACINTOSH"},
    {"gb2312", "GBK"},
    {"gbk", "GBK"},
    {"big5", "BIG5"},
    {"ksc5601", "CP949"},
    {"ascii", "CP1252"},
    {"utf-8", "UTF-8"},
    {"utf8", "UTF-8"},
};
// The pages of \M+nXXXX by n.
constexpr std::string_view kMultiByte[] = {"", "CP932", "CP950", "CP949", "JOHAB", "GBK"};

bool isAscii(std::string_view s) {
  for (const char c : s)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

void appendUtf8(std::string& out, std::uint32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | c >> 12);
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | c >> 18);
    out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// Four hexadecimal digits, or -1.
int hex4(std::string_view s) {
  unsigned value = 0;
  if (s.size() < 4) return -1;
  const auto r = std::from_chars(s.data(), s.data() + 4, value, 16);
  return r.ec == std::errc() && r.ptr == s.data() + 4 ? static_cast<int>(value) : -1;
}

// The character of the escape at the front of `s`; its length in `used`, 0 when there is none.
std::string escapeAt(std::string_view s, std::size_t& used) {
  used = 0;
  std::string out;
  if (s.size() >= 7 && (s[1] == 'U' || s[1] == 'u') && s[2] == '+') {
    const int unit = hex4(s.substr(3));
    if (unit < 0) return out;
    used = 7;
    auto c = static_cast<std::uint32_t>(unit);
    if (c >= 0xD800 && c < 0xDC00 && s.size() >= 14 && s[7] == '\\' && s[9] == '+') {
      const int low = hex4(s.substr(10));
      if (low >= 0xDC00 && low < 0xE000) {
        c = 0x10000 + ((c - 0xD800) << 10) + static_cast<std::uint32_t>(low - 0xDC00);
        used = 14;
      }
    }
    appendUtf8(out, c >= 0xD800 && c < 0xE000 ? 0xFFFD : c);
  } else if (s.size() >= 8 && (s[1] == 'M' || s[1] == 'm') && s[2] == '+' && s[3] >= '1' && s[3] <= '5') {
    const int code = hex4(s.substr(4));
    if (code < 0) return out;
    used = 8;
    std::string bytes;
    if (code > 0xff) bytes += static_cast<char>(code >> 8);
    bytes += static_cast<char>(code & 0xff);
    out = toUtf8(bytes, std::string(kMultiByte[s[3] - '0']));
  }
  return out;
}

std::string withoutEscapes(std::string text) {
  std::size_t at = text.find("+");
  if (at == std::string::npos || text.find('\\') == std::string::npos) return text;
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    std::size_t used = 0;
    if (text[i] == '\\') {
      const std::string c = escapeAt(std::string_view(text).substr(i), used);
      if (used) out += c;
    }
    if (!used) out += text[i];
    i += used ? used : 1;
  }
  return out;
}

void appendEscape(std::string& out, std::uint32_t c) {
  const auto unit = [&out](std::uint32_t u) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    out += "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[u >> shift & 15];
  };
  if (c < 0x10000) return unit(c);
  unit(0xD800 + ((c - 0x10000) >> 10));
  unit(0xDC00 + ((c - 0x10000) & 0x3ff));
}

// Length of the UTF-8 sequence at the front and its code point (a stray byte counts as itself).
std::size_t firstPoint(std::string_view s, std::uint32_t& c) {
  const auto lead = static_cast<unsigned char>(s[0]);
  const std::size_t n = lead < 0x80 ? 1 : lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (n == 1 || n > s.size()) {
    c = lead;
    return 1;
  }
  c = lead & (0xFFu >> (n + 1));
  for (std::size_t i = 1; i < n; ++i) c = c << 6 | (static_cast<unsigned char>(s[i]) & 0x3F);
  return n;
}

}  // namespace

std::string codePageName(std::string_view word) {
  std::string low;
  for (const char c : word) low += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  for (const PageName& p : kPages)
    if (low == p.word) return isKnownCodePage(std::string(p.page)) ? std::string(p.page) : std::string();
  return {};
}

std::string TextCodec::decode(std::string_view bytes) const {
  if (isAscii(bytes)) return withoutEscapes(std::string(bytes));
  if (page_ == "UTF-8" && isUtf8(bytes)) return withoutEscapes(std::string(bytes));
  bool damaged = false;
  std::string text;
  if (page_ != "UTF-8") text = toUtf8(bytes, page_, &damaged);
  if (page_ == "UTF-8" || damaged) text = isUtf8(bytes) ? std::string(bytes) : toUtf8(bytes, "CP1252");
  return withoutEscapes(std::move(text));
}

std::string TextCodec::encode(std::string_view utf8) const {
  if (isAscii(utf8) || page_ == "UTF-8") return std::string(utf8);
  bool lossy = false;
  std::string whole = fromUtf8(utf8, page_, &lossy);
  if (!lossy) return whole;
  std::string out;
  while (!utf8.empty()) {
    std::uint32_t c = 0;
    const std::size_t n = firstPoint(utf8, c);
    lossy = false;
    const std::string one = fromUtf8(utf8.substr(0, n), page_, &lossy);
    if (lossy)
      appendEscape(out, c);
    else
      out += one;
    utf8.remove_prefix(n);
  }
  return out;
}

}  // namespace tarnex
