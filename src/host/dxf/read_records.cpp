// Items of chains and extended data, and applications' records that become objects again.
// Knows stored records and classes; nothing of what a record holds.
#include <cmath>

#include "host/dxf/reader.h"

namespace tarnex {
namespace {

// Vertices that went through a file in another unit differ by rounding alone.
bool same(const PolylineCurve& a, const PolylineCurve& b) {
  if (a.closed != b.closed || a.vertices.size() != b.vertices.size()) return false;
  const auto near = [](double u, double v) { return std::abs(u - v) <= 1e-12 + 4 * roundoff(u); };
  for (std::size_t i = 0; i < a.vertices.size(); ++i) {
    const BulgeVertex &v = a.vertices[i], &w = b.vertices[i];
    if (!near(v.point.x, w.point.x) || !near(v.point.y, w.point.y) || !near(v.bulge, w.bulge)) return false;
  }
  return true;
}

std::unique_ptr<AcDbEntity> withPropertiesOf(std::unique_ptr<AcDbEntity> made, const AcDbEntity& shown,
                                             const std::string& without) {
  for (const std::string& application : shown.xDataApplications())
    if (application != without) made->setXData(application, shown.xData(application));
  return made;
}

}  // namespace

ResBuf readItem(TagReader& tags, const TextCodec& codec) {
  ResBuf item;
  item.code = tags.code();
  const bool point = (item.code >= 10 && item.code <= 18) || (item.code >= 110 && item.code <= 112) ||
                     item.code == 210 || (item.code >= 1010 && item.code <= 1013);
  if (point) {
    AcGePoint3d p{tags.real().value_or(0), 0, 0};
    for (double* part : {&p.y, &p.z}) {
      const int expected = item.code + (part == &p.y ? 10 : 20);
      if (!tags.next()) break;
      if (tags.code() != expected) {
        tags.stepBack();
        break;
      }
      *part = tags.real().value_or(0);
    }
    item.value = p;
    return item;
  }
  switch (kindOfCode(item.code)) {
    case TagKind::kReal:
      item.value = tags.real().value_or(0);
      break;
    case TagKind::kText:
      item.value = codec.decode(tags.raw());
      break;
    case TagKind::kChunk:
      item.value = tags.chunk();
      break;
    default:
      item.value = tags.integer();
      break;
  }
  return item;
}

std::vector<std::pair<std::string, ResBufChain>> readExtendedData(TagReader tags, std::size_t offset,
                                                                  const TextCodec& codec) {
  std::vector<std::pair<std::string, ResBufChain>> all;
  tags.seek(offset);
  while (tags.next() && tags.code() >= 1000) {
    if (tags.code() == 1001 && all.size() == kMostApplications) break;
    if (tags.code() == 1001)
      all.emplace_back(codec.decode(tags.word()), ResBufChain{});
    else if (!all.empty())
      all.back().second.push_back(readItem(tags, codec));
  }
  return all;
}

// The application's object when its record is whole and still describes the polyline that the file shows; a
// polyline when another program has changed it since; a proxy when this program can't read the record.
std::unique_ptr<AcDbEntity> DxfReader::readRecord(std::unique_ptr<AcDbEntity> shown, std::size_t begin,
                                                  std::size_t end) {
  std::optional<StoredRecord> record = findRecord(doc_.reader(), parser_.head().xdataAt, end, doc_.codec);
  if (!record) return shown;
  if (record->xrecord) {
    const std::size_t at = offsetOfObject(record->xrecord);
    if (at != kNowhere) record->bytes = xrecordBytes(doc_.reader(), at);
  }
  const std::string what = record->className + " of " + record->application;
  if (!record->whole()) {
    note(begin, what + ": its record is damaged or incomplete, the polyline is read alone");
    return shown;
  }
  const auto proxy = [&] {
    note(begin, what + ": a kind of object that this program can't read, kept as it is");
    auto kept = std::make_unique<AcDbProxyEntity>(record->className, shown->getGeomExtents());
    return withPropertiesOf(std::move(kept), *shown, {});
  };
  const AcRxClass* known = options_.classes ? options_.classes->at(record->className) : nullptr;
  if (!known || !known->create) return proxy();
  std::unique_ptr<AcDbObject> made = known->create();
  if (!made || !made->isKindOf(AcDbPolyline::desc())) return proxy();
  AcDbDwgFiler filer(record->bytes);
  const ErrorStatus status = made->dwgInFields(filer);
  if (status == ErrorStatus::eMakeMeProxy) return proxy();
  if (status != ErrorStatus::eOk) {
    note(begin, what + ": its record can't be read, the polyline is read alone");
    return shown;
  }
  const PolylineCurve now = shown->isKindOf(AcDbPolyline::desc())
                                ? static_cast<const AcDbPolyline&>(*shown).polyline()
                                : static_cast<const AcDb2dPolyline&>(*shown).drawn();
  if (!same(static_cast<const AcDbPolyline&>(*made).polyline(), now)) {
    note(begin, what + ": another program has changed its polyline, which is read alone");
    return shown;
  }
  recordPlace_ = record->xrecord;
  std::unique_ptr<AcDbEntity> entity(static_cast<AcDbEntity*>(made.release()));
  return withPropertiesOf(std::move(entity), *shown, record->application);
}

}  // namespace tarnex
