// Writing out objects field by field.
// Knows every class of the room; numbers go out in hexadecimal so that none is rounded.
#include "host/database/dump.h"

#include <sstream>

namespace tarnex {

namespace {

class Out {
 public:
  Out() { text_ << std::hexfloat; }
  Out& operator<<(double v) { return put(v); }
  Out& operator<<(const std::string& s) { return put('"' + s + '"'); }
  Out& operator<<(const char* s) { return put(s); }
  Out& operator<<(int v) { return put(v); }
  Out& operator<<(long long v) { return put(v); }
  Out& operator<<(std::uint64_t v) { return put(v); }
  Out& operator<<(bool v) { return put(v ? "yes" : "no"); }
  Out& operator<<(AcDbObjectId id) { return put('#' + std::to_string(id.index)); }
  Out& operator<<(AcGePoint2d p) { return *this << p.x << p.y; }
  Out& operator<<(AcGeVector2d p) { return *this << p.x << p.y; }
  Out& operator<<(const AcGePoint3d& p) { return *this << p.x << p.y << p.z; }
  std::string text() const { return text_.str(); }

  void operator()(const LineCurve& c) { *this << "line" << c.start << c.end; }
  void operator()(const RayCurve& c) { *this << "ray" << c.start << c.direction; }
  void operator()(const ArcCurve& c) { *this << "arc" << c.centre << c.radius << c.startAngle << c.sweep; }
  void operator()(const EllipseCurve& c) {
    *this << "ellipse" << c.centre << c.major << c.ratio << c.startParam << c.sweep;
  }
  void operator()(const NurbsCurve& c) {
    *this << "nurbs" << c.degree;
    for (const AcGePoint2d p : c.control) *this << p;
    for (const double w : c.weights) *this << w;
    for (const double k : c.knots) *this << k;
  }
  void operator()(const PolylineCurve& c) {
    *this << "polyline" << c.closed;
    for (const BulgeVertex& v : c.vertices) *this << v.point << v.bulge;
  }

 private:
  template <class T>
  Out& put(const T& v) {
    text_ << v << ' ';
    return *this;
  }
  std::ostringstream text_;
};

void putChain(Out& out, const ResBufChain& chain) {
  for (const ResBuf& item : chain) {
    out << item.code;
    std::visit([&](const auto& v) { out << v; }, item.value);
  }
}

void putEntity(Out& out, const AcDbEntity& e) {
  out << e.dxfName() << e.layerId() << e.colorIndex() << e.linetypeId() << e.isInvisible();
  if (const auto* c = dynamic_cast<const AcDbCurve*>(&e)) {
    out << c->getStartPoint().z;
    std::visit([&](const auto& curve) { out(curve); }, c->geometry());
  } else if (const auto* t = dynamic_cast<const AcDbText*>(&e)) {
    out << t->position() << t->textString() << t->height() << t->rotation();
  } else if (const auto* p = dynamic_cast<const AcDbPoint*>(&e)) {
    out << p->position();
  } else if (const auto* r = dynamic_cast<const AcDbBlockReference*>(&e)) {
    out << r->blockTableRecord() << r->position() << r->scaleX << r->scaleY << r->scaleZ << r->rotation
        << r->columns << r->rows << r->columnSpacing << r->rowSpacing << r->mirroredPlane;
  }
}

void putRecord(Out& out, const AcDbObject& object) {
  if (const auto* record = dynamic_cast<const AcDbSymbolTableRecord*>(&object)) out << record->getName();
  if (const auto* l = dynamic_cast<const AcDbLayerTableRecord*>(&object)) {
    out << l->isOff() << l->isFrozen() << l->isLocked() << l->isPlottable() << l->colorIndex()
        << l->linetypeId();
  } else if (const auto* b = dynamic_cast<const AcDbBlockTableRecord*>(&object)) {
    out << b->origin;
    for (const AcDbObjectId id : b->entities()) out << id;
  } else if (const auto* d = dynamic_cast<const AcDbDictionary*>(&object)) {
    for (const auto& entry : d->entries()) out << entry.key << entry.id;
  } else if (const auto* x = dynamic_cast<const AcDbXrecord*>(&object)) {
    putChain(out, x->rbChain());
  }
}

}  // namespace

std::string dump(const AcDbObject& object) {
  Out out;
  out << object.isA().name << object.objectId() << object.ownerId() << object.handle() << object.isErased()
      << object.changedSinceRead() << object.source().offset
      << static_cast<std::uint64_t>(object.source().length);
  for (const std::string& application : object.xDataApplications()) {
    out << application;
    putChain(out, object.xData(application));
  }
  if (const auto* e = dynamic_cast<const AcDbEntity*>(&object))
    putEntity(out, *e);
  else
    putRecord(out, object);
  return out.text();
}

std::string dump(const AcDbDatabase& database, std::uint32_t lastId) {
  Out out;
  out << database.nextHandle() << "\n";
  for (const auto* table : {&database.layers(), &database.linetypes(), &database.blocks()}) {
    for (const AcDbObjectId id : *table) out << id;
    out << "\n";
  }
  std::string all = out.text();
  for (std::uint32_t i = 1; i <= lastId; ++i)
    if (const auto* object = database.peek<AcDbObject>({i})) {
      all += dump(*object) + "\n";
      if (database.idOfHandle(object->handle()) != AcDbObjectId{i}) all += "handle leads elsewhere\n";
    }
  return all;
}

}  // namespace tarnex
