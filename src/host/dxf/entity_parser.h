// One entity of the file turned into an entity of the drawing: geometry and head, nothing of the database.
// Reading uses it for every entity, writing again for changed ones, to know what the file's own tags mean.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "host/database/entities.h"
#include "host/dxf/tags.h"
#include "host/dxf/text_codec.h"

namespace tarnex {

enum class EntityKind {
  kLine,
  kArc,
  kCircle,
  kLwPolyline,
  kPolyline,
  kPoint,
  kText,
  kMText,
  kInsert,
  kEllipse,
  kSpline,
  kRay,
  kDimension,
  kHatch,
  kSolid3d,
  kOther
};
[[nodiscard]] EntityKind kindOfEntity(std::string_view typeWord);
inline constexpr int kEntityKinds = static_cast<int>(EntityKind::kOther) + 1;
[[nodiscard]] const char* entityKindName(EntityKind kind);  // the type word; "" where a kind covers several

// How the entity's plane lies: normal (0,0,1), (0,0,-1) or any other.
enum class Plane { kFlat, kMirrored, kTilted };

// What all entities have. Views go into the file's bytes.
struct EntityHead {
  std::string_view type, layer, lineType;  // as they stand; an empty layer is "0", an empty linetype by layer
  std::uint64_t handle = 0, owner = 0, extensionDictionary = 0;
  std::size_t xdataAt = 0;       // first 1001 tag, 0: none
  std::uint64_t lastHandle = 0;  // largest handle, of children too
  AcGeVector3d normal{0, 0, 1};
  int color = kColorByLayer;
  bool hasHandle = false, badHandle = false, invisible = false, paper = false;
  bool hasColor = false;
  // What was wrong with it:
  bool cut = false;          // the file ended or broke within it
  bool notUsable = false;    // a number that is none, or beyond any drawing
  std::string_view missing;  // what it can't do without
  std::string remark;        // repaired or not usable: why
  [[nodiscard]] Plane plane() const;
};

// Largest coordinate or length that is taken for one, in drawing units.
inline constexpr double kLargestNumber = 1e15;

inline constexpr long long kMostCopies = 32767;  // columns or rows of a reference
inline constexpr double kFlatNormal =
    1e-9;  // sideways part of a unit normal that is still the drawing's plane

class EntityParser {
 public:
  // The block of a name (as it stands in the file), for references; called while an INSERT or DIMENSION is
  // parsed.
  using BlockOf = std::function<AcDbObjectId(std::string_view name)>;
  EntityParser(const TagReader& tags, const TextCodec& codec, double factor, BlockOf blockOf)
      : tags_(tags), codec_(codec), factor_(factor), blockOf_(std::move(blockOf)) {}

  // With the "0 TYPE" tag as the present one: the entity, or nothing when it can't be made (head().missing,
  // cut). Behind it, next() gives the "0" that follows the entity and its children.
  [[nodiscard]] std::unique_ptr<AcDbEntity> parse();
  [[nodiscard]] const EntityHead& head() const { return head_; }
  [[nodiscard]] EntityKind kind() const { return kind_; }
  [[nodiscard]] TagReader& tags() { return tags_; }
  void setFactor(double mmPerUnit) { factor_ = mmPerUnit; }

 private:
  bool body();  // next tag of the entity's own data; false at its end
  void bodyGroup();
  double number();
  double length() { return number() * factor_; }
  bool point(AcGePoint3d& p, int code, unsigned bit);
  bool has(unsigned bits) const { return (seen_ & bits) == bits; }
  std::unique_ptr<AcDbEntity> missing(std::string_view what);
  std::unique_ptr<AcDbEntity> kept();
  std::unique_ptr<AcDbEntity> keptFlat(std::string remark);
  std::unique_ptr<AcDbEntity> make();
  std::unique_ptr<AcDbEntity> line();
  std::unique_ptr<AcDbEntity> arc();
  std::unique_ptr<AcDbEntity> circle();
  std::unique_ptr<AcDbEntity> ellipse();
  std::unique_ptr<AcDbEntity> ray();
  std::unique_ptr<AcDbEntity> pointEntity();
  std::unique_ptr<AcDbEntity> text();
  std::unique_ptr<AcDbEntity> mtext();
  std::unique_ptr<AcDbEntity> lwPolyline();
  std::unique_ptr<AcDbEntity> polyline();
  std::unique_ptr<AcDbEntity> insert();
  std::unique_ptr<AcDbEntity> spline();
  std::unique_ptr<AcDbEntity> other();
  struct HeavyVertex {
    BulgeVertex vertex;
    int flags = 0;
  };
  HeavyVertex heavyVertex();
  std::unique_ptr<AcDbEntity> heavyOf(const std::vector<HeavyVertex>& all, int flags, int fit,
                                      double elevation);
  bool childBody();  // as body(), of a VERTEX, ATTRIB or SEQEND
  template <class Each>
  void children(std::string_view childType, Each each);
  void skipChildren();
  struct InsertTags;
  void insertTag(InsertTags& i);
  std::unique_ptr<AcDbEntity> reference(const InsertTags& i, AcDbObjectId block) const;
  struct SplineTags;
  bool splinePoint(SplineTags& s);
  std::unique_ptr<AcDbEntity> planeSpline(SplineTags& s, double elevation);
  void addKeptPoint();

  TagReader tags_;
  const TextCodec& codec_;
  double factor_;
  BlockOf blockOf_;
  EntityHead head_;
  EntityKind kind_ = EntityKind::kOther;
  unsigned seen_ = 0;  // bits of the codes that an entity must have
  bool inEmbedded_ = false;
  Extents2d keptExtents_;
  AcGePoint2d keptPoint_;
  std::vector<BulgeVertex> vertices_;
};

}  // namespace tarnex
