// Every catalogue number that stands in the code as a literal is declared, with as many arguments as are
// passed. Reads the sources as text: a number worked out at run time is seen by its first literal only.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>

#include "frame/catalogsource.h"
#include "host/platform/files.h"

namespace tarnex {
namespace {

struct Use {
  int id = 0;
  int arguments = -1;  // -1: not a call that fills arguments, or their count isn't plain
  int line = 0;
};

// Commas at the top level of the braces that open at `at`, plus one; 0 for empty braces.
int countedArguments(std::string_view code, std::size_t at) {
  int depth = 0, count = 0;
  bool any = false, inText = false;
  for (; at < code.size(); ++at) {
    const char c = code[at];
    if (c == '"' && code[at - 1] != '\\') inText = !inText;
    if (inText) any = true;
    if (inText) continue;
    if (c == '(' || c == '{' || c == '[') ++depth;
    if (c == ')' || c == '}' || c == ']') --depth;
    if (depth == 0) break;
    if (c == ',' && depth == 1) ++count;
    if (depth > 1 || (c != '{' && !std::isspace(static_cast<unsigned char>(c)))) any = true;
  }
  return any ? count + 1 : 0;
}

bool isNamePart(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

int lineOf(std::string_view code, std::size_t at) {
  return 1 + static_cast<int>(std::count(code.begin(), code.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

// The integer literal at `at`, which moves behind it; nothing when there is none or more than a number stands
// there.
std::optional<int> literalAt(std::string_view code, std::size_t& at) {
  int value = 0;
  const std::size_t begin = at;
  for (; at < code.size() && std::isdigit(static_cast<unsigned char>(code[at])) && value < 1'000'000; ++at)
    value = value * 10 + (code[at] - '0');
  const bool plain =
      at > begin && (at == code.size() || (!isNamePart(code[at]) && code[at] != '.' && code[at] != '\''));
  return plain ? std::optional(value) : std::nullopt;
}

// Calls with a literal first argument. `text` is a common name, so that only a member of that name counts.
std::vector<Use> usesIn(std::string_view code) {
  std::vector<Use> uses;
  for (const std::string_view call : {"getMessage(", "message(", "format(", ".text(", ">text("})
    for (std::size_t at = code.find(call); at != code.npos; at = code.find(call, at + 1)) {
      if (at > 0 && isNamePart(call[0]) && isNamePart(code[at - 1])) continue;
      std::size_t end = at + call.size();
      const auto id = literalAt(code, end);
      if (!id) continue;
      const bool fills = code.substr(end).starts_with(", {");
      uses.push_back({*id, fills ? countedArguments(code, end + 2) : -1, lineOf(code, at)});
    }
  return uses;
}

// Literals of the range that captions of forms have, wherever they stand.
std::vector<Use> captionsIn(std::string_view code) {
  std::vector<Use> uses;
  for (std::size_t at = 0; at < code.size(); ++at) {
    if (!std::isdigit(static_cast<unsigned char>(code[at]))) continue;
    if (at > 0 && (isNamePart(code[at - 1]) || code[at - 1] == '.' || code[at - 1] == '\'')) continue;
    const std::size_t begin = at;
    const auto id = literalAt(code, at);
    if (id && *id >= 20000 && *id < 22000) uses.push_back({*id, -1, lineOf(code, begin)});
  }
  return uses;
}

std::vector<std::string> shown(const std::vector<Use>& uses) {
  std::vector<std::string> out;
  for (const Use& use : uses)
    out.push_back(std::to_string(use.id) + ':' + std::to_string(use.arguments) + ':' +
                  std::to_string(use.line));
  return out;
}

TEST(CatalogNumbers, AreFoundInCode) {
  EXPECT_THAT(
      shown(usesIn(
          "print(catalog.getMessage(74));\nask(c.format(29, {no}));\n"
          "x = message(30 + side) + m.message(4, {1, text(a, b), 2, \"a,b\"}) + c.format(540, {});\n"
          "frame.text(20110); std::format(\"{}\", 5); exitMessage(12); v.format(1.5); string text(5, c);\n")),
      ::testing::UnorderedElementsAre("74:-1:1", "29:1:2", "30:-1:3", "4:4:3", "540:0:3", "20110:-1:4"));
  EXPECT_THAT(shown(captionsIn("{\"dLeadLen\", 20110},\n{x20111, 20112.5, 120000, 20113}")),
              ::testing::ElementsAre("20110:-1:1", "20113:-1:2"));
}

TEST(CatalogNumbers, OfTheCodeAreDeclared) {
  std::vector<SourceFault> faults;
  std::map<int, std::size_t> declared;  // number of arguments
  const std::string root = TARNEX_SOURCE_DIR;
  for (const CatalogArgument& a : loadCatalogSet(root + "/data/catalog", faults).arguments.entries)
    declared[a.id] = a.kinds.size();
  int files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root + "/src")) {
    const std::string path = entry.path().string();
    if (!path.ends_with(".cpp") && !path.ends_with(".h")) continue;
    if (path.find("/src/host/") != path.npos) continue;  // knows no catalogue; its .text() is something else
    ++files;
    const std::string code = readFile(path).value.value_or("");
    auto uses = usesIn(code);
    if (path.find("/harbec/") != path.npos) std::ranges::copy(captionsIn(code), std::back_inserter(uses));
    for (const Use& use : uses) {
      const auto found = declared.find(use.id);
      const bool isDeclared = found != declared.end();
      EXPECT_TRUE(isDeclared) << path << ':' << use.line << ": text " << use.id
                              << " is not in data/catalog/arguments.txt";
      if (isDeclared && use.arguments >= 0) {
        EXPECT_EQ(static_cast<std::size_t>(use.arguments), found->second) << path << ':' << use.line;
      }
    }
  }
  EXPECT_GT(files, 10) << "the sources are not there";
}

}  // namespace
}  // namespace tarnex
