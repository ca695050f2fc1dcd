// Reading and writing the `.tgf` layout, byte by byte and little-endian on every machine.
// Knows nothing of languages, and believes no count or offset that a file states.
#include "frame/tgf.h"

#include <algorithm>

namespace tarnex {

namespace {

constexpr std::size_t kHeaderBytes = 8;
constexpr std::size_t kRecordBytes = 8;
constexpr std::int32_t kSaltRange = 800;
constexpr std::int32_t kSalt = 1607;  // free to choose, but fixed, so that equal texts give equal files

std::int32_t int32At(std::string_view bytes, std::size_t at) {
  std::uint32_t v = 0;
  for (std::size_t i = 4; i-- > 0;) v = v << 8 | static_cast<unsigned char>(bytes[at + i]);
  return static_cast<std::int32_t>(v);
}

void appendInt32(std::string& out, std::int32_t value) {
  auto v = static_cast<std::uint32_t>(value);
  for (int i = 0; i < 4; ++i, v >>= 8) out += static_cast<char>(v & 0xFF);
}

// Records that the header claims and the file holds. The claim may be negative or run past 32 bits.
std::size_t recordCount(std::string_view file) {
  if (file.size() < kHeaderBytes) return 0;
  const std::int64_t claimed = std::int64_t{int32At(file, 4)} + int32At(file, 0) % kSaltRange;
  const auto held = static_cast<std::int64_t>((file.size() - kHeaderBytes) / kRecordBytes);
  return static_cast<std::size_t>(std::clamp<std::int64_t>(claimed, 0, held));
}

std::size_t recordAt(std::size_t i) {
  return kHeaderBytes + i * kRecordBytes;
}

}  // namespace

std::optional<std::string> tgfTextFault(std::string_view text) {
  if (text.size() > kLongestTgfText)
    return "the text takes " + std::to_string(text.size()) + " bytes, the limit is " +
           std::to_string(kLongestTgfText);
  if (text.find('\0') != text.npos) return "the text holds a byte 00, which would end it";
  if (text.find('\xFF') != text.npos) return "the text holds a byte FF, which would end it";
  return {};
}

std::optional<std::string> writeTgf(const std::vector<TgfText>& texts) {
  std::string out, stored;
  appendInt32(out, kSalt);
  appendInt32(out, static_cast<std::int32_t>(texts.size()) - kSalt % kSaltRange);
  const std::size_t textsBegin = recordAt(texts.size());
  for (const TgfText& entry : texts) {
    if (tgfTextFault(entry.text)) return {};
    appendInt32(out, entry.id);
    appendInt32(out, static_cast<std::int32_t>(textsBegin + stored.size()));
    for (const char c : entry.text) stored += static_cast<char>(~c);
    stored += '\0';
  }
  return out + stored;
}

std::string tgfTextAt(std::string_view file, std::int32_t offset) {
  if (offset < 0 || static_cast<std::size_t>(offset) >= file.size()) return {};
  const std::string_view stored = file.substr(static_cast<std::size_t>(offset), kTgfTextBytes);
  std::string text(stored.substr(0, stored.find('\0')));
  for (char& c : text) c = static_cast<char>(~c);
  return text;
}

std::string lookUpTgf(std::string_view file, std::int32_t id) {
  const std::size_t count = recordCount(file);
  for (std::size_t i = 0; i < count; ++i)
    if (int32At(file, recordAt(i)) == id) return tgfTextAt(file, int32At(file, recordAt(i) + 4));
  return {};
}

std::vector<TgfRecord> readTgfIndex(std::string_view file) {
  std::vector<TgfRecord> records(recordCount(file));
  for (std::size_t i = 0; i < records.size(); ++i)
    records[i] = {int32At(file, recordAt(i)), int32At(file, recordAt(i) + 4)};
  return records;
}

TgfIndex::TgfIndex(std::string_view file) : records_(readTgfIndex(file)) {
  std::stable_sort(records_.begin(), records_.end(),
                   [](const TgfRecord& a, const TgfRecord& b) { return a.id < b.id; });
  const auto last = std::unique(records_.begin(), records_.end(),
                                [](const TgfRecord& a, const TgfRecord& b) { return a.id == b.id; });
  records_.erase(last, records_.end());
}

std::string TgfIndex::lookUp(std::string_view file, std::int32_t id) const {
  const auto found = std::lower_bound(records_.begin(), records_.end(), id,
                                      [](const TgfRecord& r, std::int32_t wanted) { return r.id < wanted; });
  return found != records_.end() && found->id == id ? tgfTextAt(file, found->offset) : std::string();
}

}  // namespace tarnex
