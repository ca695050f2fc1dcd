// Reading and writing the text form of catalogues, and compiling it into the `.tgf` layout and back.
// Knows nothing of which numbers are used; a line is judged by itself.
#include "frame/catalogsource.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "frame/tgf.h"
#include "host/platform/codepage.h"
#include "host/platform/files.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view s) {
  const auto begin = s.find_first_not_of(kBlanks);
  if (begin == s.npos) return {};
  return s.substr(begin, s.find_last_not_of(kBlanks) - begin + 1);
}

// The first word of `rest`, which loses it and the blanks round it.
std::string_view takeWord(std::string_view& rest) {
  rest = trimmed(rest);
  const auto end = std::min(rest.find_first_of(kBlanks), rest.size());
  const std::string_view word = rest.substr(0, end);
  rest = trimmed(rest.substr(end));
  return word;
}

std::optional<int> parsedId(std::string_view word) {
  long long v = 0;
  if (word.empty() || word.find_first_not_of("0123456789") != word.npos || !parseInteger(word, v)) return {};
  if (v > std::numeric_limits<int>::max()) return {};
  return static_cast<int>(v);
}

std::optional<std::string> parsedKinds(std::string_view word) {
  if (word == "-") return std::string();
  if (word.empty() || word.find_first_not_of("ifs") != word.npos) return {};
  return std::string(word);
}

std::vector<std::string> parsedKeywords(std::string_view word) {
  std::vector<std::string> keywords;
  while (word != "-" && !word.empty()) {
    const auto end = std::min(word.find(','), word.size());
    keywords.emplace_back(word.substr(0, end));
    word.remove_prefix(std::min(end + 1, word.size()));
  }
  return keywords;
}

// The text between the quotes that open and close `quoted`; nothing when a quote is missing or an escape is
// unknown.
std::optional<std::string> unquoted(std::string_view quoted) {
  if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') return {};
  quoted = quoted.substr(1, quoted.size() - 2);
  std::string out;
  for (std::size_t i = 0; i < quoted.size(); ++i) {
    if (quoted[i] == '"') return {};
    if (quoted[i] != '\\') {
      out += quoted[i];
      continue;
    }
    constexpr std::string_view kLetters = "nt\"\\", kMeant = "\n\t\"\\";
    const auto which = ++i < quoted.size() ? kLetters.find(quoted[i]) : kLetters.npos;
    if (which == kLetters.npos) return {};
    out += kMeant[which];
  }
  return out;
}

std::string quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '\n')
      out += "\\n";
    else if (c == '\t')
      out += "\\t";
    else if (c == '"' || c == '\\')
      (out += '\\') += c;
    else
      out += c;
  }
  return out + '"';
}

// Calls `line(number, text)` for every line that isn't empty or a comment, blanks cut.
template <class F>
void forEachLine(std::string_view text, F line) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  for (int number = 1; !text.empty(); ++number) {
    const auto end = std::min(text.find('\n'), text.size());
    const std::string_view content = trimmed(text.substr(0, end));
    if (!content.empty() && content.front() != '#') line(number, content);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

// The number and the kinds that begin every line; `rest` loses them.
std::optional<CatalogEntry> parsedHead(std::string_view& rest, SourceFault& fault) {
  const std::string_view number = takeWord(rest), letters = takeWord(rest);
  const auto id = parsedId(number);
  const auto kinds = parsedKinds(letters);
  if (!id)
    fault.what = "'" + std::string(number) + "' is not a number";
  else if (!kinds)
    fault.what = std::to_string(*id) + ": kinds '" + std::string(letters) + "' are not of i, f, s or -";
  if (!id || !kinds) return {};
  return CatalogEntry{*id, *kinds, "", fault.line};
}

std::string readSource(const std::string& path, const std::string& file, std::vector<SourceFault>& faults) {
  auto read = readFile(path);
  if (!read)
    faults.push_back({file, 0, "can't be read: " + read.error.cause});
  else if (!isUtf8(*read))
    faults.push_back({file, 0, "is not UTF-8"});
  return read ? std::move(*read) : std::string();
}

}  // namespace

std::string SourceFault::text() const {
  return file + (line > 0 ? ":" + std::to_string(line) : "") + ": " + what;
}

CatalogSource parseCatalogSource(std::string_view text, const std::string& file, int language,
                                 std::vector<SourceFault>& faults) {
  CatalogSource source{file, language, {}};
  forEachLine(text, [&](int number, std::string_view line) {
    SourceFault fault{file, number, ""};
    auto entry = parsedHead(line, fault);
    const auto content = entry ? unquoted(line) : std::nullopt;
    if (entry && !content)
      fault.what =
          std::to_string(entry->id) + ": a text in quotes is expected, escapes are \\n \\t \\\" \\\\";
    if (!content) return faults.push_back(fault);
    entry->text = *content;
    source.entries.push_back(*entry);
  });
  return source;
}

CatalogArguments parseCatalogArguments(std::string_view text, const std::string& file,
                                       std::vector<SourceFault>& faults) {
  CatalogArguments arguments{file, {}};
  forEachLine(text, [&](int number, std::string_view line) {
    SourceFault fault{file, number, ""};
    const auto head = parsedHead(line, fault);
    const std::string_view keywords = takeWord(line);
    if (head && line.empty()) fault.what = std::to_string(head->id) + ": keywords and a note are expected";
    if (!fault.what.empty()) return faults.push_back(fault);
    arguments.entries.push_back({head->id, head->kinds, parsedKeywords(keywords), std::string(line), number});
  });
  return arguments;
}

CatalogSet loadCatalogSet(const std::string& folder, std::vector<SourceFault>& faults) {
  CatalogSet set;
  const std::string arguments = "arguments.txt";
  set.arguments =
      parseCatalogArguments(readSource(folder + "/" + arguments, arguments, faults), arguments, faults);
  for (const CatalogLanguage& language : kCatalogLanguages) {
    const std::string file = std::string(language.stem) + ".txt";
    set.languages.push_back(
        parseCatalogSource(readSource(folder + "/" + file, file, faults), file, language.number, faults));
  }
  return set;
}

std::string buildCatalog(const CatalogSource& source, std::vector<SourceFault>& faults) {
  std::vector<TgfText> texts;
  const std::string page = catalogLanguage(source.language).writePage;
  for (const CatalogEntry& entry : source.entries) {
    bool lossy = false;
    const std::string bytes = fromUtf8(entry.text, page, &lossy);
    auto cause = tgfTextFault(bytes);
    if (lossy) cause = "the text has characters that " + page + " lacks";
    if (cause)
      faults.push_back({source.file, entry.line, std::to_string(entry.id) + ": " + *cause});
    else
      texts.push_back({entry.id, bytes});
  }
  return writeTgf(texts).value_or("");
}

std::string decompileCatalog(std::string_view tgf, int language) {
  std::vector<TgfRecord> records = readTgfIndex(tgf);
  const auto before = [](const TgfRecord& a, const TgfRecord& b) { return a.id < b.id; };
  std::stable_sort(records.begin(), records.end(), before);
  std::string out;
  std::optional<int> previous;
  for (const TgfRecord& record : records) {
    if (previous == record.id) continue;
    previous = record.id;
    CatalogEntry entry{record.id, "",
                       toUtf8(tgfTextAt(tgf, record.offset), catalogLanguage(language).readPage), 0};
    bool known = true;
    if (entry.text.find('%') != entry.text.npos) entry.kinds = conversionsOf(entry.text, known);
    if (!known) entry.kinds = "?";
    out += catalogLine(entry) + "\n";
  }
  return out;
}

std::string catalogLine(const CatalogEntry& entry) {
  return std::to_string(entry.id) + "  " + (entry.kinds.empty() ? "-" : entry.kinds) + "  " +
         quoted(entry.text);
}

}  // namespace tarnex
