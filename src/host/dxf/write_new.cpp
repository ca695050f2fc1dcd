// Entities that the file didn't hold: head, subclass markers and geometry as the file's version wants them.
// Knows entity classes; changed entities are patched elsewhere.
#include <algorithm>
#include <cmath>

#include "host/dxf/records.h"
#include "host/dxf/writer.h"

namespace tarnex {
namespace {

constexpr double kChord = 0.001;  // mm between a curve and the polyline that stands for it in old versions

// Points along a curve, close enough for kChord or as many as may be.
PolylineCurve asChords(const Curve& c) {
  PolylineCurve out;
  const double from = startParam(c), to = endParam(c);
  std::vector<std::pair<double, AcGePoint2d>> points;
  std::vector<std::pair<double, AcGePoint2d>> open;
  constexpr int kFirst = 16;
  for (int i = kFirst; i >= 0; --i) {
    const double t = from + (to - from) * i / kFirst;
    open.emplace_back(t, pointAtParam(c, t));
  }
  points.push_back(open.back());
  open.pop_back();
  while (!open.empty()) {
    const double t = (points.back().first + open.back().first) / 2;
    const AcGePoint2d p = pointAtParam(c, t);
    const bool flat = p.distanceTo(midpoint(points.back().second, open.back().second)) <= kChord;
    if (flat || points.size() + open.size() >= kMostOldVertices ||
        !(t > points.back().first && t < open.back().first)) {
      points.push_back(open.back());
      open.pop_back();
    } else {
      open.emplace_back(t, p);
    }
  }
  out.closed = isClosed(c);
  for (std::size_t i = 0; i + (out.closed ? 1 : 0) < points.size(); ++i)
    out.vertices.push_back({points[i].second, 0});
  return out;
}

const char* typeWord(const AcDbEntity& e) {
  struct Word {
    const AcRxClass& kind;
    const char* word;
  };
  const Word kWords[] = {{AcDbLine::desc(), "LINE"},     {AcDbArc::desc(), "ARC"},
                         {AcDbCircle::desc(), "CIRCLE"}, {AcDbEllipse::desc(), "ELLIPSE"},
                         {AcDbSpline::desc(), "SPLINE"}, {AcDbRay::desc(), "RAY"},
                         {AcDbPoint::desc(), "POINT"},   {AcDbMText::desc(), "MTEXT"},
                         {AcDbText::desc(), "TEXT"},     {AcDbBlockReference::desc(), "INSERT"}};
  for (const Word& w : kWords)
    if (e.isKindOf(w.kind)) return w.word;
  return nullptr;
}

}  // namespace

void DxfWriter::newHead(TagWriter& w, const char* type, const AcDbEntity& e, std::uint64_t handle) {
  w.text(0, type);
  if (usesHandles()) w.handle(5, handle);
  if (doc_.isModern()) {
    if (const auto it = placedRecords_.find(e.objectId().index); it != placedRecords_.end())
      extensionGroup(w, it->second);
    if (const std::uint64_t owner = ownerHandle(e.ownerId())) w.handle(330, owner);
    w.text(100, "AcDbEntity");
  }
  if (e.ownerId() == db_.paperSpace()) w.integer(67, 1);
  w.text(8, text(db_.layerName(e.layerId())));
  if (const auto* line = db_.peek<AcDbLinetypeTableRecord>(e.linetypeId())) w.text(6, text(line->getName()));
  if (e.colorIndex() != kColorByLayer) w.integer(62, e.colorIndex());
  if (e.isInvisible()) w.integer(60, 1);
}

void DxfWriter::newEntity(std::string& out, const AcDbEntity& e) {
  TagWriter w = tags(out);
  if (e.isKindOf(AcDbPolyline::desc()) || e.isKindOf(AcDb2dPolyline::desc()))
    if (e.source().length == 0 || !e.isA().appName.empty())
      return newPolyline(w, static_cast<const AcDbCurve&>(e), usesHandles() ? fileHandle(e) : 0);
  if (hasTemplate(e))
    return patchedEntity(out, {e, {e.source().offset, e.source().length, e.objectId()}, true, fileHandle(e)});
  const char* type = typeWord(e);
  if (!type) return;  // a kept entity always has its tags
  const bool old = !doc_.isModern();
  if (old && (e.isKindOf(AcDbEllipse::desc()) || e.isKindOf(AcDbSpline::desc()) ||
              e.isKindOf(AcDbRay::desc()) || e.isKindOf(AcDbMText::desc())))
    return newInOldForm(out, e);
  newHead(w, type, e, usesHandles() ? fileHandle(e) : 0);
  for (const Field& f : fieldsOf(e, {doc_.factor, false}, db_)) {
    if (f.marker && doc_.isModern()) w.text(100, f.marker);
    const auto* real = std::get_if<double>(&f.value);
    const auto* whole = std::get_if<long long>(&f.value);
    const double number = real ? *real : whole ? static_cast<double>(*whole) : 0;
    const bool height = f.code == 30 || f.code == 31;  // points are written whole
    if (f.omit && number == *f.omit && !height && (real || whole)) continue;
    w.raw(style().one(f.code, f.value));
  }
  if (doc_.isModern() && e.isA().name == AcDbText::desc().name) w.text(100, "AcDbText");
  if (doc_.isModern() && e.isKindOf(AcDbMText::desc()))
    mtextContent(w, static_cast<const AcDbMText&>(e).textString());
  extendedData(w, e);
}

// 3 for pieces of 250 bytes, 1 for the last.
void DxfWriter::mtextContent(TagWriter& w, const std::string& utf8) const {
  constexpr std::size_t kPieceOfText = 250;
  std::string bytes = text(utf8);
  std::size_t at = 0;
  while (bytes.size() - at > kPieceOfText) {
    std::size_t n = kPieceOfText;
    while (n > 1 && (static_cast<unsigned char>(bytes[at + n]) & 0xC0) == 0x80) --n;
    w.text(3, std::string_view(bytes).substr(at, n));
    at += n;
  }
  w.text(1, std::string_view(bytes).substr(at));
}

// What versions before R13 have no entity for: curves as polylines, texts line by line joined, rays as long
// lines.
void DxfWriter::newInOldForm(std::string& out, const AcDbEntity& e) {
  TagWriter w = tags(out);
  const std::uint64_t handle = usesHandles() ? fileHandle(e) : 0;
  if (e.isKindOf(AcDbEllipse::desc())) {
    const auto& ellipse = static_cast<const AcDbEllipse&>(e);
    const PolylineCurve arcs = ellipse.isClosed() ? ellipseAsArcs(ellipse.center().flat(),
                                                                  ellipse.majorAxis(), ellipse.radiusRatio())
                                                  : asChords(ellipse.geometry());
    return newHeavyPolyline(w, e, arcs, ellipse.center().z, handle);
  }
  if (e.isKindOf(AcDbSpline::desc())) {
    const auto& spline = static_cast<const AcDbSpline&>(e);
    return newHeavyPolyline(w, e, asChords(spline.geometry()), spline.elevation(), handle);
  }
  const FileSpace space{doc_.factor, false};
  if (e.isKindOf(AcDbRay::desc())) {
    constexpr double kRayLength = 1e6;  // mm
    const auto& ray = static_cast<const AcDbRay&>(e);
    const AcGePoint2d far = ray.basePoint().flat() + kRayLength * ray.unitDir();
    newHead(w, "LINE", e, handle);
    w.point(10, space.length(ray.basePoint().x), space.length(ray.basePoint().y),
            space.length(ray.basePoint().z));
    w.point(11, space.length(far.x), space.length(far.y), space.length(ray.basePoint().z));
    return extendedData(w, e);
  }
  const auto& t = static_cast<const AcDbText&>(e);
  newHead(w, "TEXT", e, handle);
  w.point(10, space.length(t.position().x), space.length(t.position().y), space.length(t.position().z));
  w.real(40, space.length(t.height()));
  w.text(1, text(t.textString()));
  if (t.rotation() != 0) w.real(50, FileSpace::degrees(t.rotation()));
  extendedData(w, e);
}

// Any polyline of ours: light where the version has it, with the application's record if there is one.
void DxfWriter::newPolyline(TagWriter& w, const AcDbCurve& e, std::uint64_t handle) {
  constexpr int kLightPolylines = 1014;  // R14
  const bool light = e.isKindOf(AcDbPolyline::desc());
  const PolylineCurve& c =
      light ? static_cast<const AcDbPolyline&>(e).polyline() : static_cast<const AcDb2dPolyline&>(e).drawn();
  const double elevation = light ? static_cast<const AcDbPolyline&>(e).elevation()
                                 : static_cast<const AcDb2dPolyline&>(e).elevation();
  if (doc_.version < kLightPolylines) return newHeavyPolyline(w, e, c, elevation, handle);
  const FileSpace space{doc_.factor, false};
  newHead(w, "LWPOLYLINE", e, handle);
  w.text(100, "AcDbPolyline");
  w.integer(90, static_cast<long long>(c.vertices.size()));
  w.integer(70, c.closed ? 1 : 0);
  if (elevation != 0) w.real(38, space.length(elevation));
  for (const BulgeVertex& v : c.vertices) {
    w.real(10, space.length(v.point.x));
    w.real(20, space.length(v.point.y));
    if (v.bulge != 0) w.real(42, v.bulge);
  }
  extendedData(w, e);
  if (const std::optional<Record> record = recordOf(e)) recordData(w, *record, record->bytes);
}

void DxfWriter::newHeavyPolyline(TagWriter& w, const AcDbEntity& e, const PolylineCurve& c, double elevation,
                                 std::uint64_t handle) {
  const FileSpace space{doc_.factor, false};
  const double z = space.length(elevation);
  newHead(w, "POLYLINE", e, handle);
  if (doc_.isModern()) w.text(100, "AcDb2dPolyline");
  w.integer(66, 1);
  w.point(10, 0, 0, z);
  w.integer(70, c.closed ? 1 : 0);
  extendedData(w, e);
  const std::optional<Record> record = recordOf(e);
  std::string_view rest;  // of the record, for the vertices
  if (record) {
    const std::string_view all = record->bytes;
    recordData(w, *record, all.substr(0, kLargestExtendedRecord));
    if (!record->xrecord) rest = all.substr(std::min(all.size(), kLargestExtendedRecord));
  }
  const auto child = [&](const char* type, const char* marker) {
    w.text(0, type);
    if (usesHandles()) w.handle(5, freshHandle());
    if (doc_.isModern()) {
      w.handle(330, handle);
      w.text(100, "AcDbEntity");
    }
    w.text(8, text(db_.layerName(e.layerId())));
    if (doc_.isModern() && *marker) {
      w.text(100, "AcDbVertex");
      w.text(100, marker);
    }
  };
  for (const BulgeVertex& v : c.vertices) {
    const std::size_t share =
        &v == &c.vertices.back() ? rest.size() : std::min(rest.size(), kRecordPerVertex);
    child("VERTEX", "AcDb2dVertex");
    w.point(10, space.length(v.point.x), space.length(v.point.y), z);
    if (v.bulge != 0) w.real(42, v.bulge);
    if (rest.empty()) continue;
    w.text(1001, text(record->application));
    recordChunks(w, rest.substr(0, share));
    rest.remove_prefix(share);
  }
  child("SEQEND", "");
}

}  // namespace tarnex
