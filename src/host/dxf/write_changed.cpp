// Entities that changed since they were read, and copies of such: their own tags, with what changed put in.
// Knows heads, texts, references and extended data; vertex lists are patched elsewhere.
#include <algorithm>
#include <cmath>

#include "host/dxf/reader.h"
#include "host/dxf/records.h"
#include "host/dxf/writer.h"

namespace tarnex {
namespace {

constexpr int kTrueColor = 420, kColorName = 430;

}  // namespace

std::uint64_t DxfWriter::extensionDictionaryOf(const AcDbEntity& e) const {
  TagReader r = doc_.reader(static_cast<std::size_t>(e.source().offset));
  EntityParser parser(r, doc_.codec, doc_.factor, [](std::string_view) { return AcDbObjectId{}; });
  if (!parser.tags().next()) return 0;
  static_cast<void>(parser.parse());
  return parser.head().extensionDictionary;
}

// The handle under which the entity stands in the file, which may differ from the drawing's in a damaged
// file.
std::uint64_t DxfWriter::fileHandleOfEntity(const AcDbEntity& e) {
  if (!isFileObject(e)) return fileHandle(e);
  TagReader r = doc_.reader(static_cast<std::size_t>(e.source().offset));
  if (r.next())
    while (r.next() && r.code() != 0)
      if (r.code() == 5) return r.handle();
  return e.handle();
}

void DxfWriter::patchedEntity(std::string& out, const Template& t) {
  const auto begin = static_cast<std::size_t>(t.place.offset);
  EntityParser parser(doc_.reader(begin), doc_.codec, doc_.factor,
                      [this](std::string_view name) { return db_.block(doc_.codec.decode(name)); });
  if (!parser.tags().next()) return;
  const std::unique_ptr<AcDbEntity> before = parser.parse();
  const EntityHead head = parser.head();
  // A path shown by a heavy polyline of an old version is written anew.
  if (!t.entity.isA().appName.empty() && before && !before->isKindOf(AcDbPolyline::desc())) {
    TagWriter w = tags(out);
    return newPolyline(w, static_cast<const AcDbCurve&>(t.entity), head.handle);
  }
  TagPatch patch(doc_.reader(), begin, begin + t.place.length);
  if (patch.size() == 0) return;
  patchHead(patch, t, head);
  if (before) patchGeometry(patch, *before, t.entity, head);
  patchExtendedData(patch, t, head);
  if (t.copy) patchCopy(patch, t);
  patch.appendTo(out);
}

// Layer (of vertices too), linetype, colour and visibility.
void DxfWriter::patchHead(TagPatch& patch, const Template& t, const EntityHead& head) {
  const AcDbEntity& e = t.entity;
  const auto layerAt = patch.find(8);
  const std::size_t behind = layerAt.value_or(patch.find(100).value_or(patch.find(5).value_or(0)));
  const std::string layerBefore = head.layer.empty() ? "0" : doc_.codec.decode(head.layer);
  const std::string layer = db_.layerName(e.layerId());
  const auto put = [&](int code, const std::variant<double, long long, std::string>& value) {
    if (const auto at = patch.find(code))
      patch.replace(*at, style().one(code, value));
    else
      patch.insertBehind(behind, style().one(code, value));
  };
  if (capitals(layer) != capitals(layerBefore)) {
    put(8, layer);
    for (std::size_t i = patch.ownEnd(); i < patch.size(); ++i)
      if (patch.tag(i).code == 8 && patch.at(i).word() == head.layer) patch.replace(i, style().one(8, layer));
  }
  const auto* line = db_.peek<AcDbLinetypeTableRecord>(e.linetypeId());
  const std::string name = line ? line->getName() : "BYLAYER";
  if (capitals(name) != capitals(head.lineType.empty() ? "BYLAYER" : doc_.codec.decode(head.lineType)))
    put(6, name);
  const int colorBefore = head.color >= 0 && head.color <= 257 ? head.color : kColorByLayer;
  if (e.colorIndex() != colorBefore) {
    put(62, static_cast<long long>(e.colorIndex()));
    for (const int code : {kTrueColor, kColorName})
      if (const auto at = patch.find(code)) patch.drop(*at);
  }
  if (e.isInvisible() != head.invisible) put(60, e.isInvisible() ? 1LL : 0LL);
  const auto placed = placedRecords_.find(e.objectId().index);
  if (t.copy || placed == placedRecords_.end()) return;
  std::string group;
  TagWriter w = tags(group);
  extensionGroup(w, placed->second);
  patch.insertBehind(patch.find(5).value_or(0), group);
}

void DxfWriter::patchGeometry(TagPatch& patch, const AcDbEntity& before, const AcDbEntity& now,
                              const EntityHead& head) {
  const FileSpace space{doc_.factor, head.plane() == Plane::kMirrored};
  if (before.isKindOf(AcDbPolyline::desc()) && now.isKindOf(AcDbPolyline::desc()))
    return patchLight(patch, static_cast<const AcDbPolyline&>(before), static_cast<const AcDbPolyline&>(now),
                      space);
  if (before.isKindOf(AcDb2dPolyline::desc()) && now.isKindOf(AcDb2dPolyline::desc()))
    return patchHeavy(patch, static_cast<const AcDb2dPolyline&>(before),
                      static_cast<const AcDb2dPolyline&>(now), space);
  if (&before.isA() != &now.isA()) return;
  FieldList old = fieldsOf(before, space, db_), fields = fieldsOf(now, space, db_);
  if (now.isKindOf(AcDbMText::desc())) patchDirection(patch, old, fields, static_cast<const AcDbMText&>(now));
  patchFields(patch, old, fields, style());
  if (now.isKindOf(AcDbText::desc()))
    patchTextExtras(patch, static_cast<const AcDbText&>(before), static_cast<const AcDbText&>(now), space);
  if (now.isKindOf(AcDbBlockReference::desc()))
    patchAttributes(patch, static_cast<const AcDbBlockReference&>(before),
                    static_cast<const AcDbBlockReference&>(now), space);
}

// Texts turn either by an angle or by an axis, which goes first: the one that the file has is the one that is
// written.
void DxfWriter::patchDirection(TagPatch& patch, FieldList& before, FieldList& now,
                               const AcDbMText& text) const {
  const auto without = [](FieldList& list, auto&& which) {
    list.erase(std::remove_if(list.begin(), list.end(), which), list.end());
  };
  // The text itself never changes, and stands in several tags.
  const bool byAxis = patch.find(11).has_value();
  const bool turned = std::any_of(before.begin(), before.end(), [&](const Field& f) {
    return std::any_of(now.begin(), now.end(),
                       [&](const Field& g) { return f.code == 50 && g.code == 50 && f.value != g.value; });
  });
  if (!byAxis) return;
  for (FieldList* list : {&before, &now}) without(*list, [](const Field& f) { return f.code == 50; });
  if (!turned) return;
  for (const auto& [code, value] :
       {std::pair{11, std::cos(text.rotation())}, std::pair{21, std::sin(text.rotation())}}) {
    Field f;
    f.code = code;
    f.value = value;
    now.push_back(f);
  }
}

namespace {

// How the plane was moved, as the place, turn and size of one text or reference tell.
struct Motion {
  AcGePoint2d from, to;
  double turn = 0, scale = 1;
  [[nodiscard]] AcGePoint2d apply(AcGePoint2d p) const {
    const AcGeVector2d d = p - from;
    const double c = std::cos(turn) * scale, s = std::sin(turn) * scale;
    return {to.x + c * d.x - s * d.y, to.y + s * d.x + c * d.y};
  }
  [[nodiscard]] bool none() const { return from == to && turn == 0 && scale == 1; }
};

}  // namespace

// The point and the width of a text that the drawing doesn't hold move with it.
void DxfWriter::patchTextExtras(TagPatch& patch, const AcDbText& before, const AcDbText& now,
                                const FileSpace& space) {
  const Motion motion{before.position().flat(), now.position().flat(), now.rotation() - before.rotation(),
                      before.height() > 0 ? now.height() / before.height() : 1};
  if (motion.none()) return;
  if (now.isKindOf(AcDbMText::desc())) {
    if (const auto width = patch.find(41); width && motion.scale != 1)
      patch.replace(*width, style().one(41, patch.at(*width).real().value_or(0) * motion.scale));
    return;
  }
  const auto x = patch.find(11), y = patch.find(21);
  if (!x || !y) return;
  movePoint(patch, *x, *y, space, [&](AcGePoint2d p) { return motion.apply(p); });
}

// A point of the file taken through a motion of the drawing.
template <class Map>
void DxfWriter::movePoint(TagPatch& patch, std::size_t x, std::size_t y, const FileSpace& space, Map map) {
  const double side = space.mirrored ? -1 : 1;
  const AcGePoint2d old{side * patch.at(x).real().value_or(0) * space.factor,
                        patch.at(y).real().value_or(0) * space.factor};
  const AcGePoint2d p = map(old);
  patch.replace(x, style().one(patch.tag(x).code, space.length(side * p.x)));
  patch.replace(y, style().one(patch.tag(y).code, space.length(p.y)));
}

// Attributes behind a reference go where the reference goes.
void DxfWriter::patchAttributes(TagPatch& patch, const AcDbBlockReference& before,
                                const AcDbBlockReference& now, const FileSpace& space) {
  const AcGeMatrix3d from = before.blockTransform(), to = now.blockTransform();
  if (from == to) return;
  const double det = from(0, 0) * from(1, 1) - from(0, 1) * from(1, 0);
  if (det == 0) return;
  const auto map = [&](AcGePoint2d p) {
    const double dx = p.x - from(0, 3), dy = p.y - from(1, 3);
    return to.apply(
        AcGePoint2d{(from(1, 1) * dx - from(0, 1) * dy) / det, (from(0, 0) * dy - from(1, 0) * dx) / det});
  };
  const double scale = std::sqrt(std::abs(to.determinant2d() / det));
  const double turn = now.rotation - before.rotation;
  bool attribute = false;
  for (std::size_t i = patch.extendedEnd(); i < patch.size(); ++i) {
    const int code = patch.tag(i).code;
    if (code == 0) attribute = patch.at(i).is("ATTRIB");
    if (!attribute) continue;
    const bool pointWithY =
        (code == 10 || code == 11) && i + 1 < patch.size() && patch.tag(i + 1).code == code + 10;
    if (pointWithY) movePoint(patch, i, i + 1, space, map);
    if (code == 40 && scale != 1) patch.replace(i, style().one(40, patch.at(i).real().value_or(0) * scale));
    if (code == 50 && turn != 0) {
      const double degrees = patch.at(i).real().value_or(0) + (space.mirrored ? -turn : turn) * 180 / kPi;
      patch.replace(i, style().one(50, degrees));
    }
  }
}

// Applications whose data is still what the file has keep their bytes.
void DxfWriter::patchExtendedData(TagPatch& patch, const Template& t, const EntityHead& head) {
  const std::optional<Record> record = recordOf(t.entity);
  std::vector<std::string> done;
  std::string added;
  TagWriter w = tags(added);
  const auto chains = head.xdataAt ? readExtendedData(doc_.reader(), head.xdataAt, doc_.codec)
                                   : std::vector<std::pair<std::string, ResBufChain>>{};
  std::size_t chain = 0;
  bool dropping = false;
  for (std::size_t i = patch.ownEnd(); i < patch.extendedEnd(); ++i) {
    if (patch.tag(i).code == 1001) dropping = false;
    if (patch.tag(i).code == 1001 && chain < chains.size()) {
      const std::string& name = chains[chain].first;
      const bool own = record && name == record->application;
      dropping = own || t.entity.xData(name) != chains[chain].second;
      if (!dropping) done.push_back(name);
      ++chain;
    }
    if (dropping) patch.drop(i);
  }
  for (const std::string& name : t.entity.xDataApplications())
    if (std::find(done.begin(), done.end(), name) == done.end()) extendedData(w, name, t.entity.xData(name));
  if (record) recordData(w, *record, record->bytes);
  if (!added.empty()) patch.insertBehind(patch.extendedEnd() - 1, added);
}

// The tags of another entity under a new handle: what tied that one to others is left out.
void DxfWriter::patchCopy(TagPatch& patch, const Template& t) {
  bool group = false;
  for (std::size_t i = 0; i < patch.size(); ++i) {
    const int code = patch.tag(i).code;
    const bool own = i < patch.ownEnd();
    if (code == 102) group = patch.at(i).word().substr(0, 1) == "{";
    if (code == 102 || group) {
      patch.drop(i);
    } else if (code == 5) {
      patch.replace(i, handleTag(5, own ? t.handle : freshHandle()));
    } else if (code == 330 && doc_.isModern() && (own ? i == patch.find(330) : true)) {
      patch.replace(i, handleTag(330, own ? ownerHandle(t.entity.ownerId()) : t.handle));
    } else if (code == 67 && own && t.entity.ownerId() != db_.paperSpace()) {
      patch.drop(i);
    }
  }
  if (usesHandles() && !patch.find(5)) patch.insertBehind(0, handleTag(5, t.handle));
  if (t.entity.ownerId() == db_.paperSpace() && !patch.find(67))
    patch.insertBehind(patch.find(100).value_or(patch.find(5).value_or(0)), style().one(67, 1LL));
}

}  // namespace tarnex
