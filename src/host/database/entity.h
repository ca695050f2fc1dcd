// Entities and curves: what can be asked of anything that stands in a drawing. Curves live in the drawing
// plane; the geometry is the kernel's.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/database/object.h"
#include "host/geometry/curves.h"

namespace tarnex {

class AcGiWorldDraw;

// Object snap modes, as the bits of OSMODE.
enum class OsnapMode {
  kOsModeEnd = 1,
  kOsModeMid = 2,
  kOsModeCen = 4,
  kOsModeNode = 8,
  kOsModeQuad = 16,
  kOsModeInt = 32,
  kOsModeIns = 64,
  kOsModePerp = 128,
  kOsModeTan = 256,
  kOsModeNear = 512
};

inline constexpr int kColorByLayer = 256;
inline constexpr int kColorByBlock = 0;
inline constexpr int kForegroundColor = 7;  // black on white, white on black

enum class Visibility { kInvisible, kVisible };

class AcDbEntity : public AcDbObject {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }

  [[nodiscard]] AcDbObjectId layerId() const { return layer_; }  // null: layer "0"
  void setLayer(AcDbObjectId layer) { change(layer_, layer); }
  [[nodiscard]] int colorIndex() const { return color_; }  // 0 by block, 1..255, 256 by layer
  void setColorIndex(int color) { change(color_, static_cast<std::int16_t>(color)); }
  [[nodiscard]] AcDbObjectId linetypeId() const { return linetype_; }  // null: by layer
  void setLinetype(AcDbObjectId linetype) { change(linetype_, linetype); }
  [[nodiscard]] bool isInvisible() const { return invisible_; }
  void setInvisible(bool v) { change(invisible_, v); }
  // Hidden on the screen for a while, or shown again; with all of its parts. The drawing doesn't change by
  // it: undo, files and copies know nothing of it, and what is invisible by its own property stays so.
  void setVisibility(Visibility v) { hidden_ = v == Visibility::kInvisible; }
  [[nodiscard]] bool isHidden() const { return hidden_; }
  [[nodiscard]] bool isHighlighted() const { return highlighted_; }
  void highlight() { highlighted_ = true; }  // until unhighlight or the next regen
  void unhighlight() { highlighted_ = false; }
  // Layer, colour, linetype, visibility of another entity (which may be in another database: then by id only
  // if same).
  void setPropertiesFrom(const AcDbEntity& other);

  // The type word of the drawing file: "LINE", "LWPOLYLINE", ... .
  [[nodiscard]] virtual const char* dxfName() const = 0;
  [[nodiscard]] virtual Extents2d getGeomExtents() const = 0;  // empty when it has none
  virtual ErrorStatus transformBy(const AcGeMatrix3d& m) = 0;
  // Parts of the entity as new entities outside the database, with its properties. eNotApplicable: nothing to
  // part.
  virtual ErrorStatus explode(std::vector<std::unique_ptr<AcDbEntity>>& parts) const;
  virtual void worldDraw(AcGiWorldDraw& draw) const = 0;
  // Lines of the `list` command (without line ends).
  virtual void list(std::vector<std::string>& lines) const;
  // Snap points of the piece nearest to `pick` (a polyline's span, a block's part); `last` is where
  // perpendiculars and tangents come from. Intersections are intersectWith's.
  virtual void getOsnapPoints(OsnapMode mode, AcGePoint3d pick, AcGePoint3d last,
                              std::vector<AcGePoint3d>& out) const;
  virtual void getGripPoints(std::vector<AcGePoint3d>& out) const;
  virtual ErrorStatus moveGripPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset);
  virtual ErrorStatus moveStretchPointsAt(const std::vector<int>& indices, const AcGeVector3d& offset);
  // The plane curves that the entity is made of, for picking, windows and intersections.
  [[nodiscard]] virtual std::vector<Curve> outline() const { return {}; }
  ErrorStatus intersectWith(const AcDbEntity& other, Extend mode, std::vector<AcGePoint3d>& points) const;

 protected:
  AcDbEntity() = default;
  AcDbEntity(const AcDbEntity& other);

 private:
  std::int16_t color_ = kColorByLayer;  // first: it stands beside the small members of the object
  AcDbObjectId layer_, linetype_;
  bool invisible_ = false, highlighted_ = false, hidden_ = false;
};

class AcDbCurve : public AcDbEntity {
 public:
  static const AcRxClass& desc();
  const AcRxClass& isA() const override { return desc(); }

  [[nodiscard]] virtual Curve geometry() const = 0;  // in world coordinates, z dropped
  [[nodiscard]] std::vector<Curve> outline()
      const override;  // empty when the geometry isn't valid, like the extents
  [[nodiscard]] Extents2d getGeomExtents() const override;

  [[nodiscard]] virtual AcGePoint3d getStartPoint() const;  // with the curve's z
  [[nodiscard]] virtual AcGePoint3d getEndPoint() const;
  [[nodiscard]] virtual bool isClosed() const;
  [[nodiscard]] double getStartParam() const;
  [[nodiscard]] double getEndParam() const;
  [[nodiscard]] double getDistAtParam(double param) const;
  [[nodiscard]] double length() const;  // getDistAtParam(getEndParam())
  // eInvalidInput for a point that isn't on the curve (within 1e-6 or rounding).
  ErrorStatus getDistAtPoint(const AcGePoint3d& p, double& distance) const;
  [[nodiscard]] std::optional<AcGePoint3d> getPointAtDist(double distance) const;
  [[nodiscard]] AcGePoint3d getClosestPointTo(const AcGePoint3d& p, bool extend = false) const;
  // Offset curves as new entities (polylines give polylines): negative distance left of travel.
  // eNotApplicable when the kernel declines.
  virtual ErrorStatus getOffsetCurves(double distance, std::vector<std::unique_ptr<AcDbCurve>>& curves) const;
  ErrorStatus getSplitCurves(const std::vector<double>& params,
                             std::vector<std::unique_ptr<AcDbCurve>>& pieces) const;

 protected:
  AcDbCurve() = default;
  AcDbCurve(const AcDbCurve&) = default;
};

// A new entity for a kernel curve, without properties: AcDbLine, AcDbRay, AcDbArc or AcDbCircle (full sweep),
// AcDbEllipse, AcDbSpline, AcDbPolyline.
[[nodiscard]] std::unique_ptr<AcDbCurve> makeCurveEntity(Curve c);

}  // namespace tarnex
