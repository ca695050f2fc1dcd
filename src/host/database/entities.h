// The kinds of entities that the program knows. All lie in planes parallel to the drawing's: those read with
// the normal (0,0,-1) are turned into their equal with (0,0,1); tilted ones are kept as AcDbKeptEntity.
#pragma once

#include <string>
#include <vector>

#include "host/database/entity.h"

namespace tarnex {

// The boilerplate that every concrete entity class has.
#define TARNEX_ENTITY_CLASS(Class)                         \
  static const AcRxClass& desc();                          \
  const AcRxClass& isA() const override {                  \
    return desc();                                         \
  }                                                        \
  std::unique_ptr<AcDbObject> clone() const override;      \
  const char* dxfName() const override;                    \
  ErrorStatus transformBy(const AcGeMatrix3d& m) override; \
  void worldDraw(AcGiWorldDraw& draw) const override;      \
  void list(std::vector<std::string>& lines) const override

class AcDbLine : public AcDbCurve {
 public:
  AcDbLine() = default;
  AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : start_(start), end_(end) {}
  TARNEX_ENTITY_CLASS(AcDbLine);
  Curve geometry() const override { return LineCurve{start_.flat(), end_.flat()}; }
  AcGePoint3d getStartPoint() const override { return start_; }
  AcGePoint3d getEndPoint() const override { return end_; }
  void setStartPoint(const AcGePoint3d& p) { change(start_, p); }
  void setEndPoint(const AcGePoint3d& p) { change(end_, p); }

 private:
  AcGePoint3d start_, end_;
};

class AcDbRay : public AcDbCurve {
 public:
  AcDbRay() = default;
  AcDbRay(const AcGePoint3d& base, AcGeVector2d direction) : base_(base), direction_(direction) {}
  TARNEX_ENTITY_CLASS(AcDbRay);
  Curve geometry() const override { return RayCurve{base_.flat(), direction_}; }
  AcGePoint3d getStartPoint() const override { return base_; }
  AcGePoint3d getEndPoint() const override { return base_; }
  [[nodiscard]] AcGePoint3d basePoint() const { return base_; }
  [[nodiscard]] AcGeVector2d unitDir() const { return direction_; }

 private:
  AcGePoint3d base_;
  AcGeVector2d direction_{1, 0};
};

// Runs counter-clockwise from startAngle to endAngle, radians in [0, 2π); equal angles are the full circle,
// since files write it so.
class AcDbArc : public AcDbCurve {
 public:
  AcDbArc() = default;
  AcDbArc(const AcGePoint3d& centre, double radius, double startAngle, double endAngle)
      : centre_(centre), radius_(radius), startAngle_(startAngle), endAngle_(endAngle) {}
  TARNEX_ENTITY_CLASS(AcDbArc);
  Curve geometry() const override;
  AcGePoint3d getStartPoint() const override;
  AcGePoint3d getEndPoint() const override;
  [[nodiscard]] AcGePoint3d center() const { return centre_; }
  [[nodiscard]] double radius() const { return radius_; }
  [[nodiscard]] double startAngle() const { return startAngle_; }
  [[nodiscard]] double endAngle() const { return endAngle_; }
  void setCenter(const AcGePoint3d& p) { change(centre_, p); }
  void setRadius(double r) { change(radius_, r); }
  void setStartAngle(double a) { change(startAngle_, a); }
  void setEndAngle(double a) { change(endAngle_, a); }

 private:
  AcGePoint3d centre_;
  double radius_ = 0, startAngle_ = 0, endAngle_ = 0;
};

class AcDbCircle : public AcDbCurve {
 public:
  AcDbCircle() = default;
  AcDbCircle(const AcGePoint3d& centre, double radius) : centre_(centre), radius_(radius) {}
  TARNEX_ENTITY_CLASS(AcDbCircle);
  Curve geometry() const override { return ArcCurve{centre_.flat(), radius_, 0, 2 * kPi}; }
  AcGePoint3d getStartPoint() const override { return {centre_.x + radius_, centre_.y, centre_.z}; }
  AcGePoint3d getEndPoint() const override { return getStartPoint(); }
  [[nodiscard]] AcGePoint3d center() const { return centre_; }
  [[nodiscard]] double radius() const { return radius_; }
  void setCenter(const AcGePoint3d& p) { change(centre_, p); }
  void setRadius(double r) { change(radius_, r); }

 private:
  AcGePoint3d centre_;
  double radius_ = 0;
};

class AcDbEllipse : public AcDbCurve {  // counter-clockwise from startParam to endParam, radians
 public:
  AcDbEllipse() = default;
  AcDbEllipse(const AcGePoint3d& centre, AcGeVector2d major, double ratio, double startParam, double endParam)
      : centre_(centre), major_(major), ratio_(ratio), start_(startParam), end_(endParam) {}
  TARNEX_ENTITY_CLASS(AcDbEllipse);
  Curve geometry() const override;
  AcGePoint3d getStartPoint() const override;
  AcGePoint3d getEndPoint() const override;
  [[nodiscard]] AcGePoint3d center() const { return centre_; }
  [[nodiscard]] AcGeVector2d majorAxis() const { return major_; }
  [[nodiscard]] double radiusRatio() const { return ratio_; }
  // The parameters that the host calls angles here: 0 to 2π is the full ellipse.
  [[nodiscard]] double startAngle() const { return start_; }
  [[nodiscard]] double endAngle() const { return end_; }
  [[nodiscard]] bool isNull() const { return !(major_.length() > 0) || !(ratio_ > 0); }

 private:
  AcGePoint3d centre_;
  AcGeVector2d major_{1, 0};
  double ratio_ = 1, start_ = 0, end_ = 2 * kPi;
};

class AcDbSpline : public AcDbCurve {
 public:
  AcDbSpline() = default;
  explicit AcDbSpline(NurbsCurve curve, std::vector<AcGePoint2d> fitPoints = {}, double elevation = 0)
      : curve_(std::move(curve)), fit_(std::move(fitPoints)), elevation_(elevation) {}
  TARNEX_ENTITY_CLASS(AcDbSpline);
  Curve geometry() const override { return curve_; }
  AcGePoint3d getStartPoint() const override;
  AcGePoint3d getEndPoint() const override;
  [[nodiscard]] const NurbsCurve& nurbs() const { return curve_; }
  [[nodiscard]] double elevation() const { return elevation_; }
  [[nodiscard]] bool hasFitData() const { return !fit_.empty(); }
  [[nodiscard]] int numFitPoints() const { return static_cast<int>(fit_.size()); }
  [[nodiscard]] int numControlPoints() const { return static_cast<int>(curve_.control.size()); }
  [[nodiscard]] std::optional<AcGePoint3d> getFitPointAt(int i) const;
  [[nodiscard]] std::optional<AcGePoint3d> getControlPointAt(int i) const;

 private:
  NurbsCurve curve_;
  std::vector<AcGePoint2d> fit_;
  double elevation_ = 0;
};

class AcDbPolyline : public AcDbCurve {
 public:
  AcDbPolyline() = default;
  explicit AcDbPolyline(PolylineCurve c) : curve_(std::move(c)) {}
  TARNEX_ENTITY_CLASS(AcDbPolyline);
  Curve geometry() const override { return curve_; }
  AcGePoint3d getStartPoint() const override;
  AcGePoint3d getEndPoint() const override;  // of a closed one: where it starts
  bool isClosed() const override { return curve_.closed; }
  Extents2d getGeomExtents() const override;
  ErrorStatus getOffsetCurves(double distance,
                              std::vector<std::unique_ptr<AcDbCurve>>& curves) const override;
  ErrorStatus explode(std::vector<std::unique_ptr<AcDbEntity>>& parts) const override;
  void getGripPoints(std::vector<AcGePoint3d>& out) const override;
  ErrorStatus moveGripPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset) override;
  ErrorStatus dwgInFields(AcDbDwgFiler& filer) override;  // closed, elevation, count, vertices with bulges
  ErrorStatus dwgOutFields(AcDbDwgFiler& filer) const override;

  [[nodiscard]] const PolylineCurve& polyline() const { return curve_; }
  void setPolyline(PolylineCurve c);
  [[nodiscard]] int numVerts() const { return static_cast<int>(curve_.vertices.size()); }
  [[nodiscard]] AcGePoint2d getPointAt(int i) const {
    return curve_.vertices[static_cast<std::size_t>(i)].point;
  }
  [[nodiscard]] double getBulgeAt(int i) const { return curve_.vertices[static_cast<std::size_t>(i)].bulge; }
  // An index beyond the end appends, one below 0 goes to the front. The path has no widths here: whatever is
  // given, a span is drawn as a line.
  void addVertexAt(int i, AcGePoint2d p, double bulge, double startWidth, double endWidth);
  void setPointAt(int i, AcGePoint2d p);  // an index that isn't there: nothing happens, here and below
  void setBulgeAt(int i, double bulge);
  void removeVertexAt(int i);
  void reset() { curveToChange().vertices.clear(); }
  void setClosed(bool closed);
  [[nodiscard]] double elevation() const { return elevation_; }
  void setElevation(double z) { change(elevation_, z); }

 protected:
  AcDbPolyline(const AcDbPolyline&) = default;

 private:
  // Every change of the curve goes through here.
  PolylineCurve& curveToChange() {
    assertWriteEnabled();
    extents_ = {};
    return curve_;
  }
  PolylineCurve curve_;
  mutable Extents2d extents_;  // empty until somebody asks
  double elevation_ = 0;
};

enum class Poly2dType {
  k2dSimplePoly = 0,
  k2dFitCurvePoly = 1,
  k2dQuadSplinePoly = 2,
  k2dCubicSplinePoly = 3
};

// The heavy polyline. Of a fitted one the curve's own vertices count; those of the frame are kept for the
// simple type.
class AcDb2dPolyline : public AcDbCurve {
 public:
  AcDb2dPolyline() = default;
  AcDb2dPolyline(PolylineCurve drawn, PolylineCurve frame, Poly2dType type)
      : drawn_(std::move(drawn)), frame_(std::move(frame)), type_(type) {}
  TARNEX_ENTITY_CLASS(AcDb2dPolyline);
  Curve geometry() const override { return drawn_; }
  AcGePoint3d getStartPoint() const override;
  AcGePoint3d getEndPoint() const override;
  bool isClosed() const override { return drawn_.closed; }
  ErrorStatus getOffsetCurves(double distance,
                              std::vector<std::unique_ptr<AcDbCurve>>& curves) const override;
  ErrorStatus explode(std::vector<std::unique_ptr<AcDbEntity>>& parts) const override;
  [[nodiscard]] Poly2dType polyType() const { return type_; }
  // To the simple type: a curve-fitted or spline-fitted polyline keeps its drawn shape's vertices (arcs of a
  // curve fit, chords of a spline fit), since that is the shape the user sees and wants to cut.
  void setPolyType(Poly2dType type);
  [[nodiscard]] const PolylineCurve& drawn() const { return drawn_; }
  [[nodiscard]] double elevation() const { return elevation_; }
  void setElevation(double z) { change(elevation_, z); }

 private:
  PolylineCurve drawn_, frame_;
  Poly2dType type_ = Poly2dType::k2dSimplePoly;
  double elevation_ = 0;
};
// A light polyline of the heavy one's shape (AcDbPolyline::convertFrom), without properties.
[[nodiscard]] std::unique_ptr<AcDbPolyline> convertFrom(const AcDb2dPolyline& heavy);

class AcDbPoint : public AcDbEntity {
 public:
  AcDbPoint() = default;
  explicit AcDbPoint(const AcGePoint3d& p) : position_(p) {}
  TARNEX_ENTITY_CLASS(AcDbPoint);
  Extents2d getGeomExtents() const override;
  [[nodiscard]] AcGePoint3d position() const { return position_; }

 private:
  AcGePoint3d position_;
};

class AcDbText : public AcDbEntity {
 public:
  AcDbText() = default;
  AcDbText(const AcGePoint3d& position, std::string text, double height, double rotation = 0)
      : position_(position), text_(std::move(text)), height_(height), rotation_(rotation) {}
  TARNEX_ENTITY_CLASS(AcDbText);
  Extents2d getGeomExtents() const override;  // by an average letter width of 0.7 heights
  [[nodiscard]] AcGePoint3d position() const { return position_; }
  [[nodiscard]] const std::string& textString() const { return text_; }  // UTF-8
  [[nodiscard]] double height() const { return height_; }
  [[nodiscard]] double rotation() const { return rotation_; }  // radians

 protected:
  AcDbText(const AcDbText&) = default;
  [[nodiscard]] virtual double baseLineLength() const;  // mm, estimated like the extents
  AcGePoint3d position_;
  std::string text_;
  double height_ = 2.5, rotation_ = 0;
};

class AcDbMText : public AcDbText {
 public:
  // The position is the upper left corner; "\\P" in the text starts a new line.
  using AcDbText::AcDbText;
  TARNEX_ENTITY_CLASS(AcDbMText);
  Extents2d getGeomExtents() const override;

 protected:
  double baseLineLength() const override;
};

class AcDbBlockReference : public AcDbEntity {
 public:
  AcDbBlockReference() = default;
  AcDbBlockReference(AcDbObjectId block, const AcGePoint3d& position) : block_(block), position_(position) {}
  TARNEX_ENTITY_CLASS(AcDbBlockReference);
  // Exact up to kExactParts nested entities; beyond, boxes of turned boxes, which may be larger. Empty for a
  // block within itself.
  Extents2d getGeomExtents() const override;
  // Of everything nested, up to kMostParts entities; empty for a block within itself.
  std::vector<Curve> outline() const override;
  // Copies of the block's entities at every place of the array, transformed; by-block properties resolved,
  // layer "0" takes the reference's layer. Nested references stay references unless a skewed one has to be
  // taken apart; with unequal scales arcs become ellipses and polylines with arcs their spans. What can't be
  // transformed (kept entities) is left out. eInvalidInput: a block within itself, or more than kMostParts
  // parts (nothing is made then). eNotApplicable: the block isn't there.
  ErrorStatus explode(std::vector<std::unique_ptr<AcDbEntity>>& parts) const override;
  [[nodiscard]] AcDbObjectId blockTableRecord() const { return block_; }
  static constexpr std::uint64_t kMostParts = 1'000'000, kExactParts = 2'000;
  [[nodiscard]] AcGePoint3d position() const {
    return position_;
  }  // in the world, also with a mirrored plane
  // Block to world for the cell (row, column) of the array.
  [[nodiscard]] AcGeMatrix3d blockTransform(int row = 0, int column = 0) const;

  double scaleX = 1, scaleY = 1, scaleZ = 1, rotation = 0;  // rotation radians; set before appending
  int columns = 1, rows = 1;
  double columnSpacing = 0, rowSpacing = 0;  // mm in the reference's own axes
  // Normal (0,0,-1) in the file: rotation, scales and spacings are measured in the plane seen from below.
  bool mirroredPlane = false;

 private:
  AcDbObjectId block_;
  AcGePoint3d position_;
};

// An entity that the program doesn't work on: dimensions, hatches, 3D things, anything unknown. It is kept as
// it was read, can be selected, erased, moved between layers, and blocks its own transformation only if it
// can't be done.
class AcDbKeptEntity : public AcDbEntity {
 public:
  AcDbKeptEntity() = default;
  AcDbKeptEntity(std::string dxfName, const Extents2d& extents)
      : dxfName_(std::move(dxfName)), extents_(extents) {}
  TARNEX_ENTITY_CLASS(AcDbKeptEntity);
  Extents2d getGeomExtents() const override { return extents_; }
  [[nodiscard]] bool isThreeDimensional() const { return threeDimensional_; }
  void setThreeDimensional(bool v) { threeDimensional_ = v; }

 private:
  std::string dxfName_;
  Extents2d extents_;
  bool threeDimensional_ = false;
};

class AcDbDimension : public AcDbKeptEntity {
 public:
  using AcDbKeptEntity::AcDbKeptEntity;
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
  [[nodiscard]] AcDbObjectId pictureBlock() const {
    return picture_;
  }  // anonymous block that shows it, or null
  void setPictureBlock(AcDbObjectId id) { picture_ = id; }
  void worldDraw(AcGiWorldDraw& draw) const override;

 private:
  AcDbObjectId picture_;
};

class AcDbHatch : public AcDbKeptEntity {
 public:
  using AcDbKeptEntity::AcDbKeptEntity;
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
};

// An application's entity that this program can't read (newer version, class not there): its record stays as
// it is.
class AcDbProxyEntity : public AcDbKeptEntity {
 public:
  using AcDbKeptEntity::AcDbKeptEntity;
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override;
};

}  // namespace tarnex
