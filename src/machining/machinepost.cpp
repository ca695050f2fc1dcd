// The post's file: two layouts, the steps that bring an old file up to date, and what a damaged one lacks.
// Knows no template language.
#include "machining/machinepost.h"

#include <algorithm>
#include <cstring>

#include "frame/folders.h"
#include "frame/record.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "machining/textcode.h"

namespace tarnex {

namespace {

using P = MachinePost;
using Rows = std::span<const RecordRow<P>>;

// Offset, member, bytes of one field, name; for newer fields the first version that has it and what a file of
// an older version gets.
constexpr RecordRow<P> kPresentRows[] = {
    {0, &P::nVersion, 4, "version", 100},
    {4, &P::nHeadA, 4, "head numbers", 0},
    {8, &P::nHeadB, 4, "head numbers", 0},
    {12, &P::sHeadA, 30, "head texts", "D"},
    {42, &P::sHeadB, 30, "head texts", "DD"},
    {112, &P::nParamCount, 4, "parameter count", 0},
    {116, itemsOf<&P::paramOn>, 4, "switches", 0},
    {308, itemsOf<&P::param, 0, 23>, 10, "parameters", ""},
    {538, itemsOf<&P::param, 23, 1>, 10, "parameters", "", 107, "G51"},
    {548, itemsOf<&P::param, 24, 1>, 10, "parameters", "", 107, "G52"},
    {558, itemsOf<&P::param, 25>, 10, "parameters", ""},
    {788, &P::nWordCount, 4, "word count", 0},
    {792, itemsOf<&P::word, 0, 26>, 10, "words", ""},
    {1052, itemsOf<&P::word, 26, 1>, 10, "words", "", 108, ""},
    {1062, itemsOf<&P::word, 27>, 10, "words", ""},
    {1592, &P::headerText, 600, "header", ""},
    {2192, &P::footerText, 200, "footer", ""},
    {2392, itemsOf<&P::blockRow>, 41, "block rows", ""},
    {35192, &P::lineFormat, 41, "line number format", ""},
    {35233, &P::subFormat, 41, "sub-program format", ""},
    {35274, &P::sExtraA, 20, "extra texts", "", 106, ""},
    {35294, &P::sExtraB, 20, "extra texts", "", 106, ""},
    {35314, itemsOf<&P::conditionFile>, 20, "condition files", ""},
    {35356, &P::sOwner, 20, "owner", "", 111, "科星技术"},
    {35376, itemsOf<&P::dateCreated>, 4, "dates", 0},
    {35400, itemsOf<&P::dateChanged>, 4, "dates", 0},
    {35424, &P::nFamily, 4, "family", 0, 114, -1},
    {35428, &P::sTailA, 20, "tail texts", "", 114, ""},
    {35448, &P::sTailB, 32, "tail texts", "", 114, ""},
};

constexpr RecordRow<P> kOldRows[] = {
    {0, &P::nVersion, 4, "version", 0},
    {4, &P::nHeadA, 4, "head numbers", 0},
    {16, itemsOf<&P::paramOn>, 4, "switches", 0},
    {520, &P::nParamCount, 4, "parameter count", 0},
    {524, &P::nWordCount, 4, "word count", 0},
    {528, itemsOf<&P::word, 0, 48>, 5, "words", ""},  // 80 lie there; the last 32 aren't taken
    {928, itemsOf<&P::param>, 5, "parameters", ""},
    {1176, &P::headerText, 600, "header", ""},
    {1776, &P::footerText, 200, "footer", ""},
    {1984, &P::nHeadB, 4, "head numbers", 0},
    {1988, &P::sHeadA, 30, "head texts", ""},
    {2018, &P::sHeadB, 30, "head texts", ""},
    {2128, itemsOf<&P::blockRow, 0, 400>, 41, "block rows", ""},
    {18528, &P::lineFormat, 41, "line number format", ""},
    {18569, &P::subFormat, 41, "sub-program format", ""},
};
constexpr std::size_t kOldSize = 18651;  // with one more text that isn't used
constexpr std::size_t kReservedAt = 72, kPaddingAt = 35354;

static_assert(35448 + 32 == P::kFileSize && 2128 + 403 * 41 == kOldSize && 2392 + 800 * 41 == 35192);

template <class Do>
void eachText(P& post, Rows rows, Do what) {
  for (const auto& row : rows)
    std::visit(
        [&](const auto& member) {
          for (auto& value : valuesOf(post, member))
            if constexpr (std::is_same_v<std::remove_reference_t<decltype(value)>, std::string>)
              what(value, row);
        },
        row.member);
}

void textsToBytes(P& post) {
  eachText(post, kPresentRows, [&](std::string& t, const auto&) { t = bytesFromText(t, post.sTextCode); });
}

void bytesToTexts(P& post) {
  std::vector<const std::string*> texts;
  eachText(post, kPresentRows, [&](const std::string& t, const auto&) { texts.push_back(&t); });
  post.sTextCode = textCodeOf(texts);
  eachText(post, kPresentRows, [&](std::string& t, const auto&) { t = textFromBytes(t, post.sTextCode); });
}

// Texts that fill their field without an end lose their last byte. How many there were.
int endTexts(P& post, Rows rows) {
  int endless = 0;
  eachText(post, rows, [&](std::string& t, const auto& row) {
    if (t.size() < row.size) return;
    t.resize(row.size - 1);
    ++endless;
  });
  return endless;
}

// What a file of `size` bytes lacks: "part of the words, all of the header and footer".
std::string lacking(Rows rows, std::size_t size) {
  std::string part, all;
  const char* last = "";
  for (const auto& row : rows) {
    const P none;
    const auto count = std::visit([&](const auto& m) { return valuesOf(none, m).size(); }, row.member);
    if (row.offset + count * row.size <= size || std::string_view(last) == row.name) continue;
    last = row.name;
    if (row.offset < size)
      part = row.name;
    else if (part != row.name)
      all += (all.empty() ? "" : ", ") + std::string(row.name);
  }
  if (!part.empty()) part = "part of the " + part;
  if (all.empty()) return part;
  return part + (part.empty() ? "all of: " : ", all of: ") + all;
}

void add(std::string& problem, const std::string& more) {
  problem += (problem.empty() ? "" : "; ") + more;
}

// Steps that copy, or that a row of the table can't say; `version` as it was read.
void bringUpToDate(P& post, int version) {
  post.word[1] = "G4x";
  post.word[5] = "Gx";
  migrate(post, Rows(kPresentRows), version);
  if (version < 111) {
    bool lossy = false;
    const auto bytes = bytesFromText(post.sOwner, post.sTextCode, &lossy);
    // A page that lacks the characters takes the bytes that the owner has in the files of that time.
    if (lossy) post.sOwner = textFromBytes(bytesFromText(post.sOwner, "GB18030"), post.sTextCode);
    post.dateCreated = post.dateChanged = {2002, 1, 1, 12, 0, 0};
  }
  if (version < 113) {
    post.conditionFile[0] = post.param[26];
    post.param[26] = "More";
  }
  post.word[18].clear();
  post.word[19].clear();
  if (version < 116) {
    post.paramOn[8] = post.paramOn[7];
    post.param[8] = post.param[7];
    post.param[7] = post.param[27];
  }
  if (version < 117) post.conditionFile[1] = post.conditionFile[0];
  post.nVersion = P::kVersion;
}

template <std::size_t N>
void copyRaw(std::array<std::uint8_t, N>& to, std::string_view bytes, std::size_t at) {
  if (bytes.size() >= at + N) std::memcpy(to.data(), bytes.data() + at, N);
}

}  // namespace

int MachinePost::paramInt(std::size_t slot) const {
  const std::string& text = param.at(slot);
  if (text.size() == 1) return text[0] >= '0' && text[0] <= '9' ? text[0] - '0' : 0;  // as most are
  std::size_t end = text.find_first_not_of(" \t");
  if (end == std::string::npos) return 0;
  const std::size_t start = end;
  if (text[end] == '-' || text[end] == '+') ++end;
  while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
  long long n = 0;
  const std::size_t digits = text[start] == '+' ? start + 1 : start;
  if (!parseInteger(std::string_view(text).substr(digits, end - digits), n)) return 0;
  return static_cast<int>(std::clamp<long long>(n, INT32_MIN, INT32_MAX));
}

std::string_view MachinePost::rowText(int row, int which) const {
  if (row < 0 || which < 0 || which > 2 || row > static_cast<int>(kRowTexts) / 3) return {};
  const auto i = 3 * static_cast<std::size_t>(row) + static_cast<std::size_t>(which);
  return i < kRowTexts ? std::string_view(blockRow[i]) : std::string_view();
}

PostReading decodePost(std::string_view bytes, const std::string& name, MachinePost& post) {
  PostReading result{true, {}};
  textsToBytes(post);
  const bool old =
      bytes.size() >= 4 && readInt32(reinterpret_cast<const unsigned char*>(bytes.data())) == P::kOldVersion;
  const Rows rows = old ? Rows(kOldRows) : Rows(kPresentRows);
  const std::size_t size = old ? kOldSize : P::kFileSize;
  decode(post, rows, bytes);
  if (!old) {
    copyRaw(post.reserved, bytes, kReservedAt);
    copyRaw(post.padding, bytes, kPaddingAt);
  }
  if (const int endless = endTexts(post, rows); endless > 0)
    add(result.problem, formatted("%d text%s without an end in the field", endless, endless == 1 ? "" : "s"));
  bytesToTexts(post);
  if (bytes.size() >= 4 && (post.nVersion < 100 || post.nVersion > P::kVersion))
    add(result.problem, formatted("version %d, known are 100 to %d", post.nVersion, P::kVersion));
  if (bytes.size() < size)
    if (const std::string missing = lacking(rows, bytes.size()); !missing.empty())
      add(result.problem, formatted("%zu of %zu bytes, missing is %s", bytes.size(), size, missing.c_str()));
  bringUpToDate(post, post.nVersion);
  if (post.sTextCode != "UTF-8") {  // a step may have replaced the text that asked for the page
    textsToBytes(post);
    bytesToTexts(post);
  }
  if (!result.problem.empty()) result.problem = name + ": " + result.problem;
  return result;
}

PostReading readPost(const std::string& path, MachinePost& post) {
  const auto bytes = readFile(realPath(path));
  if (bytes) return decodePost(*bytes.value, realPath(path), post);
  post = MachinePost();
  bringUpToDate(post, post.nVersion);
  return {false, bytes.error.text()};
}

std::string encodePost(const MachinePost& post) {
  std::string image(P::kFileSize, '\0');
  MachinePost raw = post;
  textsToBytes(raw);
  raw.nVersion = P::kVersion;
  encode(raw, Rows(kPresentRows), reinterpret_cast<unsigned char*>(image.data()));
  std::memcpy(image.data() + kReservedAt, post.reserved.data(), post.reserved.size());
  std::memcpy(image.data() + kPaddingAt, post.padding.data(), post.padding.size());
  return image;
}

std::string postPath(std::string_view installFolder, std::string_view folder, std::string_view name) {
  std::string file = "MZS\\";
  file.append(folder).append("\\").append(name).append(".pc");
  return dataFile(installFolder, file);
}

}  // namespace tarnex
