// Geometry of the drawing's entities as group codes, in the file's unit and plane.
// Knows entity classes; polylines, which have lists of vertices, are written elsewhere.
#include "host/dxf/fields.h"

#include <charconv>
#include <cmath>

#include "host/database/database.h"

namespace tarnex {
namespace {

template <class Back>
double shortest(double exact, Back&& same) {
  char text[40];
  for (const int digits : {15, 16, 17}) {
    const auto w = std::to_chars(text, text + sizeof text, exact, std::chars_format::general, digits);
    double v = 0;
    std::from_chars(text, w.ptr, v);
    if (same(v)) return v;
  }
  for (const double v : {std::nextafter(exact, HUGE_VAL), std::nextafter(exact, -HUGE_VAL)})
    if (same(v)) return v;
  return exact;
}

class Fields {
 public:
  explicit Fields(const FileSpace& space) : space_(space) {}
  void marker(const char* m) { marker_ = m; }
  void real(int code, double v, std::optional<double> omit = {}) { add(code, v, omit); }
  void whole(int code, long long v, std::optional<double> omit = {}) { add(code, v, omit); }
  void text(int code, std::string v) { add(code, std::move(v), {}); }
  void length(int code, double mm, std::optional<double> omit = {}) { add(code, space_.length(mm), omit); }
  void angle(int code, double rad, std::optional<double> omit = {}) {
    add(code, FileSpace::degrees(rad), omit);
  }
  // A point in the entity's own plane, or (world) one that stays as it is.
  void ownPoint(int code, const AcGePoint3d& p) {
    const double turn = space_.mirrored ? -1 : 1;
    point(code, {turn * p.x, p.y, turn * p.z});
  }
  void point(int code, const AcGePoint3d& p) {
    length(code, p.x);
    length(code + 10, p.y);
    length(code + 20, p.z, 0);
  }
  FieldList take() { return std::move(list_); }

 private:
  template <class T>
  void add(int code, T v, std::optional<double> omit) {
    Field& f = list_.emplace_back();
    f.code = code;
    f.value = std::move(v);
    f.omit = omit;
    f.marker = marker_;
    marker_ = nullptr;
  }
  const FileSpace& space_;
  FieldList list_;
  const char* marker_ = nullptr;
};

void arc(Fields& f, const AcDbArc& a, const FileSpace& space) {
  f.marker("AcDbCircle");
  f.ownPoint(10, a.center());
  f.length(40, a.radius());
  f.marker("AcDbArc");
  f.angle(50, space.mirrored ? normalizedAngle(kPi - a.endAngle()) : a.startAngle());
  f.angle(51, space.mirrored ? normalizedAngle(kPi - a.startAngle()) : a.endAngle());
}

void ellipse(Fields& f, const AcDbEllipse& e, const FileSpace& space) {
  f.marker("AcDbEllipse");
  f.point(10, e.center());
  f.point(11, solid({e.majorAxis().x, e.majorAxis().y}));
  f.real(40, e.radiusRatio());
  double start = e.startAngle(), end = e.endAngle();
  const bool whole = std::abs(end - start - 2 * kPi) < 1e-12;
  if (space.mirrored && !whole) {
    std::swap(start, end);
    start = normalizedAngle(-start);
    end = normalizedAngle(-end);
  }
  f.real(41, start);
  f.real(42, end);
}

void spline(Fields& f, const AcDbSpline& s) {
  constexpr int kClosed = 1, kRational = 4, kPlanar = 8;
  const NurbsCurve& c = s.nurbs();
  f.marker("AcDbSpline");
  f.whole(70, kPlanar | (c.weights.empty() ? 0 : kRational) | (s.isClosed() ? kClosed : 0));
  f.whole(71, c.degree);
  f.whole(72, static_cast<long long>(c.knots.size()));
  f.whole(73, static_cast<long long>(c.control.size()));
  f.whole(74, s.numFitPoints());
  for (const double k : c.knots) f.real(40, k);
  for (std::size_t i = 0; i < c.control.size(); ++i) {
    f.point(10, solid(c.control[i], s.elevation()));
    if (!c.weights.empty()) f.real(41, c.weights[i]);
  }
  for (int i = 0; i < s.numFitPoints(); ++i)
    if (const auto p = s.getFitPointAt(i)) f.point(11, *p);
}

void text(Fields& f, const AcDbText& t, const FileSpace& space) {
  f.marker("AcDbText");
  f.ownPoint(10, t.position());
  f.length(40, t.height());
  f.text(1, t.textString());
  f.angle(50, space.mirrored ? normalizedAngle(kPi - t.rotation()) : t.rotation(), 0);
}

void mtext(Fields& f, const AcDbMText& t) {
  f.marker("AcDbMText");
  f.point(10, t.position());
  f.length(40, t.height());
  f.angle(50, t.rotation(), 0);
}

void insert(Fields& f, const AcDbBlockReference& r, const FileSpace& space, const AcDbDatabase& db) {
  const double turn = space.mirrored ? -1 : 1;
  const auto* block = db.peek<AcDbBlockTableRecord>(r.blockTableRecord());
  f.marker("AcDbBlockReference");
  f.text(2, block ? block->getName() : std::string());
  f.ownPoint(10, r.position());
  f.real(41, turn * r.scaleX, 1);
  f.real(42, r.scaleY, 1);
  f.real(43, turn * r.scaleZ, 1);
  f.angle(50, normalizedAngle(turn * r.rotation), 0);
  f.whole(70, r.columns, 1);
  f.whole(71, r.rows, 1);
  f.length(44, turn * r.columnSpacing, 0);
  f.length(45, r.rowSpacing, 0);
}

}  // namespace

double FileSpace::length(double mm) const {
  if (factor == 1) return mm;
  return shortest(mm / factor, [&](double v) { return v * factor == mm; });
}

double FileSpace::degrees(double radians) {
  return shortest(radians * 180 / kPi, [&](double v) { return v * kPi / 180 == radians; });
}

FieldList fieldsOf(const AcDbEntity& e, const FileSpace& space, const AcDbDatabase& db) {
  Fields f(space);
  if (e.isKindOf(AcDbLine::desc())) {
    f.marker("AcDbLine");
    f.point(10, static_cast<const AcDbLine&>(e).getStartPoint());
    f.point(11, static_cast<const AcDbLine&>(e).getEndPoint());
  } else if (e.isKindOf(AcDbArc::desc())) {
    arc(f, static_cast<const AcDbArc&>(e), space);
  } else if (e.isKindOf(AcDbCircle::desc())) {
    f.marker("AcDbCircle");
    f.ownPoint(10, static_cast<const AcDbCircle&>(e).center());
    f.length(40, static_cast<const AcDbCircle&>(e).radius());
  } else if (e.isKindOf(AcDbEllipse::desc())) {
    ellipse(f, static_cast<const AcDbEllipse&>(e), space);
  } else if (e.isKindOf(AcDbSpline::desc())) {
    spline(f, static_cast<const AcDbSpline&>(e));
  } else if (e.isKindOf(AcDbRay::desc())) {
    const auto& r = static_cast<const AcDbRay&>(e);
    f.marker("AcDbRay");
    f.point(10, r.basePoint());
    f.real(11, r.unitDir().x);
    f.real(21, r.unitDir().y);
    f.real(31, 0, 0);
  } else if (e.isKindOf(AcDbPoint::desc())) {
    f.marker("AcDbPoint");
    f.point(10, static_cast<const AcDbPoint&>(e).position());
  } else if (e.isKindOf(AcDbMText::desc())) {
    mtext(f, static_cast<const AcDbMText&>(e));
  } else if (e.isKindOf(AcDbText::desc())) {
    text(f, static_cast<const AcDbText&>(e), space);
  } else if (e.isKindOf(AcDbBlockReference::desc())) {
    insert(f, static_cast<const AcDbBlockReference&>(e), space, db);
  }
  return f.take();
}

}  // namespace tarnex
