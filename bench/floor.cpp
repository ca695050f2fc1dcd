// The floor: the least that any reader of a drawing does.
// Knows nothing of the program that is measured.
#include "floor.h"

#include <charconv>
#include <string_view>
#include <vector>

#include "host/platform/files.h"
#include "host/platform/usage.h"

namespace tarnex::bench {

namespace {

struct Record {
  unsigned long handle = 0;
  double values[6] = {};
  int type = 0, layer = 0;
};
static_assert(sizeof(Record) == 64);

class Splitter {
 public:
  explicit Splitter(std::string_view bytes) : rest_(bytes) {}
  bool next(int& code, std::string_view& value) {
    std::string_view number;
    if (!line(number) || !line(value)) return false;
    number.remove_prefix(std::min(number.find_first_not_of(' '), number.size()));
    code = 0;
    std::from_chars(number.data(), number.data() + number.size(), code);
    return true;
  }

 private:
  bool line(std::string_view& out) {
    const auto end = rest_.find('\n');
    if (end == std::string_view::npos) return false;
    out = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    if (out.ends_with('\r')) out.remove_suffix(1);
    return true;
  }
  std::string_view rest_;
};

bool isReal(int code) {
  return (code >= 10 && code <= 59) || (code >= 140 && code <= 149) || (code >= 210 && code <= 239);
}

void keep(Record& record, int code, double number) {
  switch (code) {
    case 10:
      record.values[0] = number;
      break;
    case 20:
      record.values[1] = number;
      break;
    case 11:
    case 40:
      record.values[2] = number;
      break;
    case 21:
    case 50:
      record.values[3] = number;
      break;
    case 51:
      record.values[4] = number;
      break;
    default:
      break;
  }
}

}  // namespace

Floor readingFloor(const std::string& path) {
  const double start = processorSeconds();
  Floor floor;
  const auto bytes = readFile(path);
  if (!bytes) return floor;
  std::vector<Record> records;
  Record current;
  Splitter tags(*bytes.value);
  int code = 0;
  for (std::string_view value; tags.next(code, value);) {
    double number = 0;
    if (isReal(code)) std::from_chars(value.data(), value.data() + value.size(), number);
    floor.sum += number;
    if (code == 0) {
      if (current.type != 0) records.push_back(current);
      current = {};
      current.type = value == "LINE" ? 1 : value == "ARC" ? 2 : 0;
    } else if (current.type != 0 && code == 5) {
      std::from_chars(value.data(), value.data() + value.size(), current.handle, 16);
    } else if (current.type != 0) {
      keep(current, code, number);
    }
  }
  floor.entities = records.size();
  floor.seconds = processorSeconds() - start;
  return floor;
}

}  // namespace tarnex::bench
