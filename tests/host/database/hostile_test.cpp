// Numbers that no drawing should hold: everything that can be asked of an entity answers, none crashes or
// hangs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "host/database/drawn.h"

namespace tarnex {
namespace {

class Hostile {
 public:
  explicit Hostile(unsigned seed) : random_(seed) {}
  int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
  double real() {
    static constexpr double kValues[] = {0,
                                         -0.0,
                                         1,
                                         -1,
                                         5,
                                         1e-300,
                                         1e-6,
                                         1e9,
                                         -1e9,
                                         1e150,
                                         1e300,
                                         -1e308,
                                         std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::quiet_NaN()};
    return number(3) ? std::uniform_real_distribution<double>(-20, 20)(random_) : kValues[number(14)];
  }
  AcGePoint2d flat() { return {real(), real()}; }
  AcGePoint3d point() { return {real(), real(), real()}; }
  AcGeMatrix3d matrix() {
    AcGeMatrix3d m;
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 4; ++c)
        if (number(3) == 0) m.entry(r, c) = real();
    return m;
  }
  PolylineCurve polyline() {
    PolylineCurve c{{}, number(2) == 0};
    for (int i = number(6); i > 0; --i) c.vertices.push_back({flat(), number(2) ? real() : 0});
    return c;
  }
  NurbsCurve nurbs() {
    NurbsCurve c;
    c.degree = number(6) - 1;
    for (int i = number(8); i > 0; --i) c.control.push_back(flat());
    for (int i = number(14); i > 0; --i) c.knots.push_back(number(4) ? c.knots.size() * 0.5 : real());
    if (number(2)) c.weights.assign(c.control.size(), number(2) ? 1 : real());
    return c;
  }
  std::unique_ptr<AcDbEntity> entity(AcDbObjectId block) {
    switch (number(11)) {
      case 0:
        return std::make_unique<AcDbLine>(point(), point());
      case 1:
        return std::make_unique<AcDbRay>(point(), AcGeVector2d{real(), real()});
      case 2:
        return std::make_unique<AcDbArc>(point(), real(), real(), real());
      case 3:
        return std::make_unique<AcDbCircle>(point(), real());
      case 4:
        return std::make_unique<AcDbEllipse>(point(), AcGeVector2d{real(), real()}, real(), real(), real());
      case 5:
        return std::make_unique<AcDbSpline>(nurbs());
      case 6:
        return std::make_unique<AcDbPolyline>(polyline());
      case 7:
        return std::make_unique<AcDb2dPolyline>(polyline(), polyline(), Poly2dType::k2dFitCurvePoly);
      case 8:
        return std::make_unique<AcDbText>(point(), "text", real(), real());
      case 9:
        return std::make_unique<AcDbMText>(point(), "\\H1;{a\\Pb\\", real(), real());
      default:
        return reference(block);
    }
  }

 private:
  std::unique_ptr<AcDbEntity> reference(AcDbObjectId block) {
    auto r = std::make_unique<AcDbBlockReference>(block, point());
    r->scaleX = real();
    r->scaleY = real();
    r->rotation = real();
    r->columns = number(4) - 1;
    r->rows = number(4) - 1;
    r->columnSpacing = real();
    r->mirroredPlane = number(2) == 0;
    return r;
  }
  std::mt19937 random_;
};

void askCurve(const AcDbCurve& c, Hostile& h) {
  (void)c.isClosed();
  double distance = 0;
  (void)c.getDistAtPoint(h.point(), distance);
  (void)c.getPointAtDist(h.real());
  (void)c.length();
  (void)c.getClosestPointTo(h.point(), h.number(2) == 0);
  std::vector<std::unique_ptr<AcDbCurve>> made;
  (void)c.getSplitCurves({h.real(), h.real()}, made);
  (void)c.getOffsetCurves(h.real(), made);
}

void askEverything(const AcDbEntity& e, const AcDbEntity& other, Hostile& h) {
  Drawn drawn;
  e.worldDraw(drawn);
  std::vector<std::string> lines;
  e.list(lines);
  std::vector<AcGePoint3d> points;
  for (int mode = 1; mode <= 512; mode *= 2)
    e.getOsnapPoints(static_cast<OsnapMode>(mode), h.point(), h.point(), points);
  e.getGripPoints(points);
  (void)e.intersectWith(other, Extend::kExtendBoth, points);
  std::vector<std::unique_ptr<AcDbEntity>> parts;
  (void)e.explode(parts);
  if (e.isKindOf(AcDbCurve::desc())) askCurve(static_cast<const AcDbCurve&>(e), h);
}

TEST(Hostile, EveryQuestionIsAnswered) {
  const unsigned rounds = std::getenv("TARNEX_LONG") ? 20'000 : 300;
  for (unsigned seed = 1; seed <= rounds; ++seed) {
    Hostile h(seed);
    AcDbDatabase db;
    auto record = std::make_unique<AcDbBlockTableRecord>();
    record->setName("B");
    record->origin = h.point();
    const auto block = db.addBlock(std::move(record));
    for (int i = 0; i < 3; ++i) db.appendAcDbEntity(block, h.entity({}));
    for (int i = 0; i < 6; ++i) db.appendAcDbEntity(db.modelSpace(), h.entity(block));
    const auto ids = db.modelSpaceEntities();
    for (const AcDbObjectId id : ids) {
      askEverything(*db.peek<AcDbEntity>(id), *db.peek<AcDbEntity>(ids[0]), h);
      (void)db.open<AcDbEntity>(id, OpenMode::kForWrite)->transformBy(h.matrix());
    }
    Extents2d everywhere;
    everywhere.add(AcGePoint2d{-1e308, -1e308});
    everywhere.add(AcGePoint2d{1e308, 1e308});
    EXPECT_LE(db.entitiesTouching(everywhere).size(), 6u);
    (void)db.drawingExtents();
  }
}

}  // namespace
}  // namespace tarnex
