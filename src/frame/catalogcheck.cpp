// The rules that the sources of the message catalogue are held to.
// Knows neither how a source is written nor where a text is used.
#include "frame/catalogcheck.h"

#include <algorithm>
#include <map>

#include "frame/tgf.h"
#include "host/platform/codepage.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

using Declared = std::map<int, const CatalogArgument*>;

std::string shown(const std::string& kinds) {
  return kinds.empty() ? "none" : "'" + kinds + "'";
}

std::string joined(const std::vector<std::string>& words) {
  std::string out;
  for (const std::string& word : words) out += (out.empty() ? "" : " ") + word;
  return out.empty() ? "none" : out;
}

std::vector<std::string> sorted(std::vector<std::string> words) {
  std::sort(words.begin(), words.end());
  return words;
}

// The characters of `text` that `page` lacks, each once.
std::string lackingIn(const std::string& page, std::string_view text) {
  std::string lacking;
  for (std::size_t i = 0; i < text.size();) {
    std::size_t n = 1;
    while (i + n < text.size() && (static_cast<unsigned char>(text[i + n]) & 0xC0) == 0x80) ++n;
    const std::string_view character = text.substr(i, n);
    bool lossy = false;
    (void)fromUtf8(character, page, &lossy);
    if (lossy && lacking.find(character) == lacking.npos) lacking += character;
    i += n;
  }
  return lacking;
}

// A text without arguments is printed as it stands, so that a '%' in it could only be a conversion gone
// astray.
std::string conversionFault(const CatalogEntry& entry, const std::string& declared) {
  bool known = true;
  const bool any = entry.text.find('%') != entry.text.npos;
  const std::string found = any ? conversionsOf(entry.text, known) : "";
  if (!known) return "the text holds a conversion that can't be printed";
  if (found != declared) return "conversions are " + shown(found) + ", declared are " + shown(declared);
  if (any && declared.empty()) return "a text without arguments must not hold '%'";
  return "";
}

std::string storageFault(const CatalogEntry& entry, const CatalogLanguage& language) {
  const std::string lacking = lackingIn(language.writePage, entry.text);
  if (!lacking.empty()) return std::string(language.writePage) + " lacks '" + lacking + "'";
  const std::string bytes = fromUtf8(entry.text, language.writePage);
  if (const auto fault = tgfTextFault(bytes)) return *fault;
  if (toUtf8(bytes, language.readPage) != entry.text) return "the text doesn't come back from its code page";
  return "";
}

std::string keywordFault(const CatalogEntry& entry, const CatalogArgument& declared) {
  if (declared.keywords.empty()) return "";
  const auto offered = offeredKeywords(entry.text);
  if (sorted(offered) == sorted(declared.keywords)) return "";
  return "keywords offered are " + joined(offered) + ", declared are " + joined(declared.keywords);
}

std::string layoutFault(const CatalogEntry& entry, const CatalogEntry& english) {
  if (entry.text.starts_with('\n') != english.text.starts_with('\n'))
    return "the line end in front differs from English";
  if (entry.text.ends_with('\n') != english.text.ends_with('\n'))
    return "the last line end differs from English";
  return "";
}

class Checker {
 public:
  explicit Checker(const CatalogSet& set) : set_(set) {
    for (const CatalogArgument& argument : set.arguments.entries)
      if (!declared_.emplace(argument.id, &argument).second)
        report(set.arguments.file, argument.line, argument.id, "stands twice");
    if (!set.languages.empty())
      for (const CatalogEntry& entry : set.languages.front().entries) english_.emplace(entry.id, &entry);
  }

  std::vector<SourceFault> run() {
    for (const CatalogSource& source : set_.languages) checkLanguage(source);
    return std::move(faults_);
  }

 private:
  void report(const std::string& file, int line, int id, const std::string& what) {
    if (!what.empty()) faults_.push_back({file, line, std::to_string(id) + ": " + what});
  }

  void checkLanguage(const CatalogSource& source) {
    std::map<int, int> lines;  // by number, where it stands first
    for (const CatalogEntry& entry : source.entries) {
      const auto [first, isNew] = lines.emplace(entry.id, entry.line);
      if (!isNew)
        report(source.file, entry.line, entry.id, "stands at line " + std::to_string(first->second) + " too");
      checkEntry(source, entry);
    }
    for (const auto& [id, argument] : declared_)
      if (!lines.contains(id)) report(source.file, 0, id, "is missing (" + argument->note + ")");
  }

  void checkEntry(const CatalogSource& source, const CatalogEntry& entry) {
    const auto say = [&](const std::string& what) { report(source.file, entry.line, entry.id, what); };
    if (entry.text.empty()) say("the text is empty");
    say(storageFault(entry, catalogLanguage(source.language)));
    if (const auto english = english_.find(entry.id); english != english_.end())
      say(layoutFault(entry, *english->second));
    const auto found = declared_.find(entry.id);
    if (found == declared_.end()) return say("is not declared in " + set_.arguments.file);
    const CatalogArgument& declared = *found->second;
    if (entry.kinds != declared.kinds)
      say("kinds are " + shown(entry.kinds) + ", declared are " + shown(declared.kinds));
    say(conversionFault(entry, declared.kinds));
    say(keywordFault(entry, declared));
  }

  const CatalogSet& set_;
  Declared declared_;
  std::map<int, const CatalogEntry*> english_;
  std::vector<SourceFault> faults_;
};

// The keyword of one option: what stands in its parentheses, else its capitals and digits.
std::string keywordOf(std::string_view option) {
  const auto open = option.rfind('('), close = option.rfind(')');
  if (open != option.npos && close != option.npos && open < close)
    return std::string(option.substr(open + 1, close - open - 1));
  std::string capitals;
  for (const char c : option)
    if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) capitals += c;
  return capitals;
}

}  // namespace

std::vector<std::string> offeredKeywords(std::string_view text) {
  const auto open = text.rfind('['), close = text.rfind(']');
  if (open == text.npos || close == text.npos || close < open) return {};
  std::string_view options = text.substr(open + 1, close - open - 1);
  std::vector<std::string> keywords;
  while (!options.empty()) {
    const auto end = std::min(options.find('/'), options.size());
    keywords.push_back(keywordOf(options.substr(0, end)));
    options.remove_prefix(std::min(end + 1, options.size()));
  }
  return keywords;
}

std::vector<SourceFault> checkCatalogs(const CatalogSet& set) {
  return Checker(set).run();
}

}  // namespace tarnex
