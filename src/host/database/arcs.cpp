// Arcs, circles and ellipses.
// Knows their own geometry; the kernel does the rest.
#include "host/database/entities.h"
#include "host/database/entitytools.h"

namespace tarnex {

namespace {

// Counter-clockwise way from one angle to the other, (0, 2π].
double sweepBetween(double start, double end) {
  const double way = end - start;
  if (std::abs(way) >= 2 * kPi - 1e-12) return 2 * kPi;
  const double sweep = way < 0 ? way + 2 * kPi : way;
  return sweep > 0 ? sweep : 2 * kPi;
}

struct RoundMove {
  double scale = 1, turn = 0;  // turn in radians
  bool mirrored = false;
};

// What a matrix does to circles; a mirrored one turns by the angle that its x axis gets.
ErrorStatus roundMove(const AcGeMatrix3d& m, RoundMove& move) {
  if (const ErrorStatus s = checkPlaneMatrix(m); s != ErrorStatus::eOk) return s;
  const auto scale = m.uniformScale();
  if (!scale) return ErrorStatus::eCannotScaleNonUniformly;
  const bool same = std::abs(*scale - 1) <= 1e-15;  // a turn by sine and cosine is off by that much
  move = {same ? 1 : *scale, m.apply(AcGeVector2d{1, 0}).angle(), m.determinant2d() < 0};
  return ErrorStatus::eOk;
}

}  // namespace

// ---- AcDbArc

const AcRxClass& AcDbArc::desc() {
  static const AcRxClass kClass = hostClass("AcDbArc", &AcDbCurve::desc(), "ARC", makeObject<AcDbArc>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbArc::clone() const {
  return std::make_unique<AcDbArc>(*this);
}
const char* AcDbArc::dxfName() const {
  return "ARC";
}

Curve AcDbArc::geometry() const {
  return ArcCurve{centre_.flat(), radius_, startAngle_, sweepBetween(startAngle_, endAngle_)};
}
AcGePoint3d AcDbArc::getStartPoint() const {
  return solid(acutPolar(centre_.flat(), startAngle_, radius_), centre_.z);
}
AcGePoint3d AcDbArc::getEndPoint() const {
  return solid(acutPolar(centre_.flat(), endAngle_, radius_), centre_.z);
}

ErrorStatus AcDbArc::transformBy(const AcGeMatrix3d& m) {
  RoundMove move;
  if (const ErrorStatus s = roundMove(m, move); s != ErrorStatus::eOk) return s;
  assertWriteEnabled();
  centre_ = m.apply(centre_);
  radius_ *= move.scale;
  if (move.mirrored) {
    // The angle a goes to turn - a; what ran counter-clockwise from start to end now does so from end to
    // start.
    const double start = startAngle_;
    startAngle_ = normalizedAngle(move.turn - endAngle_);
    endAngle_ = normalizedAngle(move.turn - start);
  } else if (move.turn != 0) {
    startAngle_ = normalizedAngle(startAngle_ + move.turn);
    endAngle_ = normalizedAngle(endAngle_ + move.turn);
  }
  return ErrorStatus::eOk;
}

void AcDbArc::worldDraw(AcGiWorldDraw& draw) const {
  drawCurve(draw, geometry(), centre_.z);
}

void AcDbArc::list(std::vector<std::string>& lines) const {
  AcDbCurve::list(lines);
  lines.push_back("  Center: " + pointText(centre_));
  lines.push_back("  Radius: " + numberText(radius_) + "  Start angle: " + degreesText(startAngle_) +
                  "  End angle: " + degreesText(endAngle_));
  lines.push_back("  Length: " + numberText(length()));
}

// ---- AcDbCircle

const AcRxClass& AcDbCircle::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbCircle", &AcDbCurve::desc(), "CIRCLE", makeObject<AcDbCircle>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbCircle::clone() const {
  return std::make_unique<AcDbCircle>(*this);
}
const char* AcDbCircle::dxfName() const {
  return "CIRCLE";
}

ErrorStatus AcDbCircle::transformBy(const AcGeMatrix3d& m) {
  RoundMove move;
  if (const ErrorStatus s = roundMove(m, move); s != ErrorStatus::eOk) return s;
  assertWriteEnabled();
  centre_ = m.apply(centre_);
  radius_ *= move.scale;
  return ErrorStatus::eOk;
}

void AcDbCircle::worldDraw(AcGiWorldDraw& draw) const {
  drawCurve(draw, geometry(), centre_.z);
}

void AcDbCircle::list(std::vector<std::string>& lines) const {
  AcDbCurve::list(lines);
  lines.push_back("  Center: " + pointText(centre_));
  lines.push_back("  Radius: " + numberText(radius_) + "  Circumference: " + numberText(2 * kPi * radius_) +
                  "  Area: " + numberText(kPi * radius_ * radius_));
}

// ---- AcDbEllipse

const AcRxClass& AcDbEllipse::desc() {
  static const AcRxClass kClass =
      hostClass("AcDbEllipse", &AcDbCurve::desc(), "ELLIPSE", makeObject<AcDbEllipse>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbEllipse::clone() const {
  return std::make_unique<AcDbEllipse>(*this);
}
const char* AcDbEllipse::dxfName() const {
  return "ELLIPSE";
}

Curve AcDbEllipse::geometry() const {
  return EllipseCurve{centre_.flat(), major_, ratio_, start_, sweepBetween(start_, end_)};
}
AcGePoint3d AcDbEllipse::getStartPoint() const {
  return solid(startPoint(geometry()), centre_.z);
}
AcGePoint3d AcDbEllipse::getEndPoint() const {
  return solid(endPoint(geometry()), centre_.z);
}

ErrorStatus AcDbEllipse::transformBy(const AcGeMatrix3d& m) {
  if (const ErrorStatus s = checkPlaneMatrix(m); s != ErrorStatus::eOk) return s;
  const Curve before = geometry();
  if (!isValid(before)) return ErrorStatus::eInvalidInput;
  const auto after = transformed(before, m);
  if (!after) return ErrorStatus::eInvalidInput;
  assertWriteEnabled();
  centre_ = m.apply(centre_);
  if (const auto* e = std::get_if<EllipseCurve>(&*after)) {
    major_ = e->major;
    ratio_ = e->ratio;
    start_ = e->sweep < 0 ? e->startParam + e->sweep : e->startParam;
    end_ = start_ + std::abs(e->sweep);
  } else if (const auto* arc = std::get_if<ArcCurve>(&*after)) {
    major_ = {arc->radius, 0};
    ratio_ = 1;
    start_ = arc->sweep < 0 ? arc->startAngle + arc->sweep : arc->startAngle;
    end_ = start_ + std::abs(arc->sweep);
  }
  if (end_ - start_ >= 2 * kPi - 1e-12) start_ = 0, end_ = 2 * kPi;
  return ErrorStatus::eOk;
}

void AcDbEllipse::worldDraw(AcGiWorldDraw& draw) const {
  drawCurve(draw, geometry(), centre_.z);
}

void AcDbEllipse::list(std::vector<std::string>& lines) const {
  AcDbCurve::list(lines);
  lines.push_back("  Center: " + pointText(centre_));
  lines.push_back("  Major axis: " + pointText({major_.x, major_.y, 0}) + "  Ratio: " + numberText(ratio_));
  lines.push_back("  Start parameter: " + degreesText(start_) + "  End parameter: " + degreesText(end_));
  if (!isNull()) lines.push_back("  Length: " + numberText(length()));
}

}  // namespace tarnex
