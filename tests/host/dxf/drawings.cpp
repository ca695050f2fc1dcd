// Drawings for the tests, put together from tags, and what several tests ask of them.
#include "host/dxf/drawings.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tarnex::test {
namespace {

void bytes(std::string& out, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i) out += static_cast<char>(value >> (8 * i));
}

bool between(int code, int from, int to) {
  return code >= from && code <= to;
}

}  // namespace

Tags tagsOf(std::string_view text) {
  Tags tags;
  while (!text.empty()) {
    const std::size_t bar = text.find('|');
    const std::string_view one = text.substr(0, bar);
    const std::size_t gap = one.find(' ');
    tags.emplace_back(std::atoi(std::string(one.substr(0, gap)).c_str()),
                      gap == std::string_view::npos ? "" : std::string(one.substr(gap + 1)));
    text.remove_prefix(bar == std::string_view::npos ? text.size() : bar + 1);
  }
  return tags;
}

std::string ascii(const Tags& tags, std::string_view lineEnd) {
  std::string out;
  for (const auto& [code, value] : tags) {
    const std::string digits = std::to_string(code);
    out += std::string(digits.size() < 3 ? 3 - digits.size() : 0, ' ') + digits;
    out += lineEnd;
    out += value;
    out += lineEnd;
  }
  return out;
}

std::string ascii(std::string_view text, std::string_view lineEnd) {
  return ascii(tagsOf(text), lineEnd);
}

std::string binary(const Tags& tags, bool wide) {
  std::string out("AutoCAD Binary DXF\r\n\x1a\0", 22);
  for (const auto& [code, value] : tags) {
    if (wide) {
      bytes(out, static_cast<std::uint64_t>(code), 2);
    } else if (code >= 255) {
      out += '\xff';
      bytes(out, static_cast<std::uint64_t>(code), 2);
    } else {
      out += static_cast<char>(code);
    }
    if (between(code, 10, 59) || between(code, 110, 149) || between(code, 210, 239) ||
        between(code, 1010, 1059)) {
      const double v = std::atof(value.c_str());
      std::uint64_t bits = 0;
      std::memcpy(&bits, &v, 8);
      bytes(out, bits, 8);
    } else if (between(code, 60, 79) || between(code, 170, 179) || between(code, 270, 289) || code == 1070 ||
               between(code, 370, 389)) {
      bytes(out, static_cast<std::uint64_t>(std::atoll(value.c_str())), 2);
    } else if (between(code, 90, 99) || code == 1071 || between(code, 420, 429)) {
      bytes(out, static_cast<std::uint64_t>(std::atoll(value.c_str())), 4);
    } else if (between(code, 290, 299)) {
      out += value == "0" ? '\0' : '\1';
    } else if (between(code, 310, 319) || code == 1004) {
      out += static_cast<char>(value.size() / 2);
      for (std::size_t i = 0; i + 1 < value.size(); i += 2)
        out += static_cast<char>(std::strtol(value.substr(i, 2).c_str(), nullptr, 16));
    } else {
      out += value + '\0';
    }
  }
  return out;
}

Tags parsed(std::string_view file) {
  Tags tags;
  std::vector<std::string> lines;
  while (!file.empty()) {
    const std::size_t end = file.find('\n');
    std::string line(file.substr(0, end));
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
    line.erase(0,
               line.find_first_not_of(' ') == std::string::npos ? line.size() : line.find_first_not_of(' '));
    lines.push_back(line);
    file.remove_prefix(end == std::string_view::npos ? file.size() : end + 1);
  }
  for (std::size_t i = 0; i + 1 < lines.size(); i += 2)
    tags.emplace_back(std::atoi(lines[i].c_str()), lines[i + 1]);
  return tags;
}

std::string section(std::string_view name, std::string_view content) {
  return "0 SECTION|2 " + std::string(name) + "|" + std::string(content) + (content.empty() ? "" : "|") +
         "0 ENDSEC|";
}

std::string drawing(std::string_view version, std::string_view entities, std::string_view moreHeader) {
  std::string header = "9 $ACADVER|1 " + std::string(version);
  if (!moreHeader.empty()) header += "|" + std::string(moreHeader);
  return ascii(section("HEADER", header) + section("ENTITIES", entities) + "0 EOF");
}

std::string completeDrawing() {
  const std::string head = "330 0|100 AcDbSymbolTable|70 1|";
  const std::string record = "100 AcDbSymbolTableRecord|100 ";
  std::string tables =
      "0 TABLE|2 LTYPE|5 5|" + head + "0 LTYPE|5 15|330 5|" + record +
      "AcDbLinetypeTableRecord|2 Continuous|70 0|3 Solid|72 65|73 0|40 0.0|0 ENDTAB|" +
      "0 TABLE|2 LAYER|5 2|" + head + "0 LAYER|5 10|330 2|" + record +
      "AcDbLayerTableRecord|2 0|70 0|62 7|6 Continuous|390 F|" + "0 LAYER|5 40|330 2|" + record +
      "AcDbLayerTableRecord|2 CUT|70 0|62 -3|6 Continuous|999 odd|0 ENDTAB|" + "0 TABLE|2 APPID|5 9|" + head +
      "0 APPID|5 12|330 9|" + record + "AcDbRegAppTableRecord|2 ACAD|70 0|0 ENDTAB|" +
      "0 TABLE|2 ODDTABLE|5 99|" + head + "0 ODD|5 98|2 X|70 0|0 ENDTAB|" + "0 TABLE|2 BLOCK_RECORD|5 1|" +
      head + "0 BLOCK_RECORD|5 1F|330 1|" + record + "AcDbBlockTableRecord|2 *Model_Space|340 0|" +
      "0 BLOCK_RECORD|5 1B|330 1|" + record + "AcDbBlockTableRecord|2 *Paper_Space|340 0|0 ENDTAB";
  const auto block = [](const char* name, const char* record5, const char* a, const char* b) {
    const std::string r = record5;
    return "0 BLOCK|5 " + std::string(a) + "|330 " + r + "|100 AcDbEntity|8 0|100 AcDbBlockBegin|2 " + name +
           "|70 0|10 0.0|20 0.0|30 0.0|3 " + name + "|1 |0 ENDBLK|5 " + b + "|330 " + r +
           "|100 AcDbEntity|8 0|100 AcDbBlockEnd";
  };
  const std::string entities =
      "0 LINE|5 50|330 1F|100 AcDbEntity|8 CUT|370 25|100 AcDbLine|10 1.50|20 2.0|30 0.0|11 4.0|21 2.0|31 "
      "0.0|"
      "0 ODDTHING|5 51|330 1F|100 AcDbEntity|8 0|100 AcDbOdd|10 1.0|20 1.0|1 text|"
      "0 LINE|5 52|330 1F|100 AcDbEntity|8 0|62 1|100 AcDbLine|10 +4.0|20 2.0|30 0.0|11 4.0|21 9.0|31 "
      "0.0|1001 ACAD|1000 kept|1070 7";
  const std::string objects =
      "0 DICTIONARY|5 C|330 0|100 AcDbDictionary|281 1|3 ACAD_GROUP|350 D|3 NOTES|350 60|3 GONE|350 77|"
      "0 DICTIONARY|5 D|330 C|100 AcDbDictionary|281 1|"
      "0 DICTIONARY|5 60|330 C|100 AcDbDictionary|281 1|3 FIRST|350 61|"
      "0 XRECORD|5 61|330 60|100 AcDbXrecord|280 1|1 hello|70 5|40 2.50|10 1.0|20 2.0|30 3.0|"
      "0 ODDOBJECT|5 62|330 C|1 whatever";
  const std::string all =
      section("HEADER",
              "9 $ACADVER|1 AC1015|9 $ODDVAR|70 5|9 $INSUNITS|70 4|9 $HANDSEED|5 100|9 $LTSCALE|40 1.0") +
      section("CLASSES", "0 CLASS|1 ODDOBJECT|2 AcDbOdd|3 app|90 0|280 0|281 0") + section("TABLES", tables) +
      section("BLOCKS",
              block("*Model_Space", "1F", "20", "21") + "|" + block("*Paper_Space", "1B", "1C", "1D")) +
      section("ENTITIES", entities) + section("OBJECTS", objects) + section("ODDSECTION", "1 kept as it is") +
      "0 EOF";
  return ascii(all, "\r\n");
}

std::unique_ptr<ReadBack> read(std::string bytes, DxfReadOptions options) {
  auto r = std::make_unique<ReadBack>();
  r->failure = readDxf(r->db, std::move(bytes), options, r->report);
  return r;
}

}  // namespace tarnex::test
