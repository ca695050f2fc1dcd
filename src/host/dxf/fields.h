// The tags of an entity's geometry as the drawing has it now, in the file's own unit and plane; and how a
// changed one is brought into the tags that the file had. Knows entity classes and their group codes.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/database/entities.h"
#include "host/dxf/entity_parser.h"
#include "host/dxf/tags.h"

namespace tarnex {

struct Field {
  int code = 0;
  std::variant<double, long long, std::string> value;
  std::optional<double> omit;    // the value that a missing tag stands for
  const char* marker = nullptr;  // subclass marker that goes before it in a new entity
};
using FieldList = std::vector<Field>;

// How lengths, angles and planes of the drawing stand in the file.
struct FileSpace {
  double factor = 1;      // mm per drawing unit
  bool mirrored = false;  // normal (0,0,-1)
  // The number with the fewest digits that reads back as the same value of the drawing.
  [[nodiscard]] double length(double mm) const;
  [[nodiscard]] static double degrees(double radians);
};

// Geometry of a line, arc, circle, ellipse, spline, ray, point, text or block reference; empty for other
// kinds. `blockName` and text are given decoded (UTF-8) and go out through the codec.
[[nodiscard]] FieldList fieldsOf(const AcDbEntity& e, const FileSpace& space, const AcDbDatabase& db);

// One tag of the source with its bytes.
struct SourceTag {
  int code = 0;
  std::string_view bytes;
};

// The tags of an entity, on their way out again: kept, replaced, dropped, or with new ones behind them.
class TagPatch {
 public:
  TagPatch(TagReader tags, std::size_t begin, std::size_t end);
  [[nodiscard]] std::size_t size() const { return tags_.size(); }
  [[nodiscard]] const SourceTag& tag(std::size_t i) const { return tags_[i]; }
  // Index of the first tag that no longer belongs to the entity's own head and geometry: extended data or a
  // child.
  [[nodiscard]] std::size_t ownEnd() const { return ownEnd_; }
  [[nodiscard]] std::size_t extendedEnd() const { return extendedEnd_; }  // behind the extended data
  [[nodiscard]] bool isGeometry(std::size_t i) const { return i < ownEnd_ && !inGroup_[i]; }
  [[nodiscard]] std::optional<std::size_t> find(int code, std::size_t from = 0) const;  // among the own tags

  [[nodiscard]] const TagReader& at(std::size_t i);  // a reader with tag i as the present one
  void replace(std::size_t i, std::string bytes);
  void drop(std::size_t i) { replace(i, {}); }
  void insertBehind(std::size_t i, std::string_view bytes) { behind_[i] += bytes; }
  void insertInFront(std::size_t i, std::string_view bytes) { inFront_[i] += bytes; }
  void appendTo(std::string& out) const;

 private:
  static constexpr std::size_t kOpen = static_cast<std::size_t>(-1);
  TagReader reader_;
  std::vector<SourceTag> tags_;
  std::vector<char> inGroup_, changed_;
  std::vector<std::string> replaced_, behind_, inFront_;
  std::size_t ownEnd_ = 0, extendedEnd_ = 0;
};

// What a patch writes with.
struct TagStyle {
  TagForm form = TagForm::kAscii;
  std::string_view lineEnd;
  const TextCodec* codec = nullptr;
  [[nodiscard]] std::string one(int code, const std::variant<double, long long, std::string>& value) const;
};

// Brings the new values into the patch: tags whose value didn't change keep their bytes.
void patchFields(TagPatch& patch, const FieldList& before, const FieldList& now, const TagStyle& style);

}  // namespace tarnex
