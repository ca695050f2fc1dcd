// Code pages by the C library's iconv.
// Knows no language; which page a text is in is the caller's knowledge.
#include "host/platform/codepage.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

namespace tarnex {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

bool isPlain(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

bool isAscii(std::string_view bytes) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  for (std::uint64_t eight = 0; bytes.size() >= sizeof eight; bytes.remove_prefix(sizeof eight)) {
    std::memcpy(&eight, bytes.data(), sizeof eight);
    if ((eight & kHighBits) != 0) return false;
  }
  return std::all_of(bytes.begin(), bytes.end(), isPlain);
}

// The start of `in` that is ASCII, or that isn't; it is taken off.
std::string_view takeRun(std::string_view& in, bool plain) {
  const auto end = std::find_if(in.begin(), in.end(), [plain](char c) { return isPlain(c) != plain; });
  const auto run = in.substr(0, static_cast<std::size_t>(end - in.begin()));
  in.remove_prefix(run.size());
  return run;
}

// Pages whose bytes below 0x80 are ASCII on their own, so that plain texts need no conversion.
bool keepsAscii(std::string_view page) {
  for (std::string_view begin :
       {"GB18030", "GBK", "GB2312", "BIG5", "CP125", "CP9", "CP8", "UTF-8", "ISO-8859"})
    if (page.substr(0, begin.size()) == begin) return true;
  return false;
}

// Length of the well-formed UTF-8 character that begins at `at`; 0 when there is none.
std::size_t characterLength(std::string_view s, std::size_t at) {
  const auto byte = [&](std::size_t i) {
    return at + i < s.size() ? static_cast<unsigned char>(s[at + i]) : 0u;
  };
  const auto follows = [&](std::size_t i) { return (byte(i) & 0xC0) == 0x80; };
  const unsigned lead = byte(0), second = byte(1);
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return follows(1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool tooLong = lead == 0xE0 && second < 0xA0, surrogate = lead == 0xED && second >= 0xA0;
    return follows(1) && follows(2) && !tooLong && !surrogate ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool tooLong = lead == 0xF0 && second < 0x90, tooHigh = lead == 0xF4 && second >= 0x90;
    return follows(1) && follows(2) && follows(3) && !tooLong && !tooHigh ? 4 : 0;
  }
  return 0;
}

// An open conversion; `ok()` is false when the C library lacks one of the pages.
class Conversion {
 public:
  Conversion(const std::string& to, const std::string& from)
      : handle_(iconv_open(to.c_str(), from.c_str())) {}
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;
  ~Conversion() {
    if (ok()) iconv_close(handle_);
  }
  [[nodiscard]] bool ok() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  // Appends what `in` holds up to the first piece that has no counterpart, and takes it off `in`.
  void run(std::string_view& in, std::string& out) {
    char* from = const_cast<char*>(in.data());  // iconv leaves its input alone
    std::size_t left = in.size();
    pump(&from, &left, out);
    in.remove_prefix(in.size() - left);
  }
  // What a stateful page needs to come to rest.
  void finish(std::string& out) { pump(nullptr, nullptr, out); }

 private:
  void pump(char** from, std::size_t* left, std::string& out) {
    char room[1024];
    std::size_t result = 0;
    do {
      char* to = room;
      std::size_t space = sizeof room;
      result = iconv(handle_, from, left, &to, &space);
      out.append(room, to - room);
    } while (result == static_cast<std::size_t>(-1) && errno == E2BIG);
  }
  iconv_t handle_;
};

// Without a known page only ASCII can be told.
std::string asciiOf(std::string_view bytes, std::string_view instead, bool& replaced) {
  std::string out;
  for (char c : bytes) {
    if (static_cast<unsigned char>(c) < 0x80) {
      out += c;
    } else {
      out += instead;
      replaced = true;
    }
  }
  return out;
}

}  // namespace

std::string toUtf8(std::string_view bytes, const std::string& page, bool* damaged) {
  bool bad = false;
  std::string out;
  if ((keepsAscii(page) && isAscii(bytes)) || (page == "UTF-8" && isUtf8(bytes))) {
    out = bytes;
  } else if (Conversion conversion("UTF-8", page); conversion.ok()) {
    for (conversion.run(bytes, out); !bytes.empty(); conversion.run(bytes, out)) {
      out += kReplacement;
      bytes.remove_prefix(1);
      bad = true;
    }
  } else {
    out = asciiOf(bytes, kReplacement, bad);
  }
  if (damaged) *damaged = bad;
  return out;
}

std::string fromUtf8(std::string_view utf8, const std::string& page, bool* lossy) {
  bool lost = false;
  std::string out;
  const bool plainStays = keepsAscii(page);
  if (plainStays && isAscii(utf8)) {
    out = utf8;
  } else if (Conversion conversion(page, "UTF-8"); conversion.ok()) {
    while (!utf8.empty()) {
      // Programs and drawings are plain for the most part, and copying is quick.
      if (plainStays) out += takeRun(utf8, true);
      std::string_view run = plainStays ? takeRun(utf8, false) : std::exchange(utf8, {});
      for (conversion.run(run, out); !run.empty(); conversion.run(run, out)) {
        std::string_view question = "?";
        conversion.run(question, out);
        run.remove_prefix(std::max<std::size_t>(characterLength(run, 0), 1));
        lost = true;
      }
    }
    conversion.finish(out);
  } else {
    out = asciiOf(utf8, "?", lost);
  }
  if (lossy) *lossy = lost;
  return out;
}

std::string convertedFromUtf8(std::string utf8, const std::string& page, bool* lossy) {
  if (!keepsAscii(page) || !isAscii(utf8)) return fromUtf8(utf8, page, lossy);
  if (lossy) *lossy = false;
  return utf8;
}

bool isUtf8(std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t length = characterLength(bytes, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

bool isKnownCodePage(const std::string& page) {
  return !page.empty() && Conversion("UTF-8", page).ok();
}

}  // namespace tarnex
