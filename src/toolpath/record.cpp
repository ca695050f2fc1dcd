// The stored record of a path: the items in their order, and every older form of it.
// Knows the filer; nothing of what the fields are for.
#include <algorithm>

#include "toolpath/toolpath.h"

namespace tarnex {

namespace {

using Out = AcDbDwgFiler;

// Counts are stored in 16 bits; a longer list must not look like a shorter one.
void writeCount(Out& f, std::size_t count) {
  if (count > 32767) f.setFilerStatus(ErrorStatus::eInvalidInput);
  f.writeInt16(static_cast<std::int16_t>(count));
}

template <class T, class Write>
void writeList(Out& f, const std::vector<T>& list, Write write) {
  writeCount(f, list.size());
  for (const T& item : list) write(item);
}

// A count may lie: no more items are taken than the record has bytes for.
template <class T, class Read>
void readList(AcDbDwgFiler& f, std::vector<T>& list, std::size_t itemBytes, Read read) {
  const int count = f.readInt16();
  list.clear();
  if (count < 0 || static_cast<std::size_t>(count) * itemBytes > f.remaining()) {
    f.setFilerStatus(ErrorStatus::eEndOfFile);
    return;
  }
  list.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) list.push_back(read());
}

void writeCurve(Out& f, const PathCurve& c) {
  writeCount(f, c.bulges.size());
  for (std::size_t i = 0; i < c.bulges.size(); ++i) {
    f.writeDouble(c.bulges[i]);
    f.writePoint2d(c.vertices[i]);
  }
}

void readCurve(AcDbDwgFiler& f, PathCurve& c) {
  std::vector<BulgeVertex> items;
  readList(f, items, 24, [&] {
    BulgeVertex v;
    v.bulge = f.readDouble();
    v.point = f.readPoint2d();
    return v;
  });
  c = {};
  for (const auto& v : items) {
    c.bulges.push_back(v.bulge);
    c.vertices.push_back(v.point);
  }
}

}  // namespace

// Access to the fields of a path, one group of the record per function.
class PathRecord {
 public:
  PathRecord(CToolPath& path, AcDbDwgFiler& filer, int version) : p_(path), f_(filer), version_(version) {}

  void read() {
    if (f_.filerType() == FilerType::kWblockCloneFiler) (void)f_.readHardPointerId();
    if (version_ <= 204) (void)f_.readInt32();
    p_.nPathNo_ = f_.readInt32();
    p_.nSide_ = f_.readInt32();
    p_.nDirection_ = f_.readInt32();
    p_.dTaper_ = f_.readDouble();
    if (version_ <= 204) (void)f_.readDouble();
    if (version_ >= 205)
      readVertices();
    else
      readLegacyVertices();
    readCircleOrClosed();
    if (version_ <= 201)
      contourFromPolyline();
    else
      readContours();
    if (version_ >= 204) readStyle();
    if (version_ >= 202) {
      p_.bHasStyle_ = f_.readBoolean();
      p_.ptBreak_ = f_.readPoint2d();
      p_.ptBreakExit_ = f_.readPoint2d();
    }
    if (version_ >= 206) readOvercutAndSync();
    if (version_ >= 207) readBreak();
    if (version_ == 209) readCodesByPoint();
    if (version_ >= 210) readCodes();
    if (version_ == 211 || version_ == 212) {
      (void)f_.readString();
      (void)f_.readInt32();
    }
    if (version_ == 212) (void)f_.readInt32();
  }

 private:
  void readVertices() {
    p_.AcDbPolyline::dwgInFields(f_);
    readList(f_, p_.aSegTaper_, 8, [&] { return f_.readDouble(); });
  }

  void readLegacyVertices() {
    (void)f_.readDouble();
    (void)f_.readDouble();
    PolylineCurve c;
    p_.aSegTaper_.clear();
    readList(f_, c.vertices, 32, [&] {
      BulgeVertex v;
      v.bulge = f_.readDouble();
      v.point = f_.readPoint2d();
      p_.aSegTaper_.push_back(f_.readDouble());
      return v;
    });
    p_.setPolyline(std::move(c));
  }

  void readCircleOrClosed() {
    p_.contour_.bCircle = f_.readBoolean();
    if (p_.contour_.bCircle) {
      p_.contour_.dRadius = f_.readDouble();
      p_.contour_.ptCenter = f_.readPoint2d();
    } else {
      p_.contour_.bClosed = f_.readBoolean();
    }
  }

  void contourFromPolyline() {
    p_.nFlags_ = kContourPath;
    p_.dClearance_ = p_.dOffset_ = 0;
    if (p_.contour_.bCircle) return;
    p_.contour_.aContour.clear();
    for (const auto& v : p_.polyline().vertices)
      p_.contour_.aContour.push_back({v.point.x, v.point.y, v.bulge});
  }

  void readContours() {
    p_.nFlags_ = f_.readInt32();
    p_.dClearance_ = f_.readDouble();
    p_.dOffset_ = f_.readDouble();
    const auto point = [&] { return f_.readPoint3d(); };
    if (!p_.contour_.bCircle) readList(f_, p_.contour_.aContour, 24, point);
    if (p_.nFlags_ & (kFourAxis | kGuideCurve)) readCurve(f_, p_.upper_);
    if (p_.nFlags_ & kFourAxis) {
      PathContour& upper = p_.upperContour_;
      upper.bCircle = f_.readBoolean();
      if (upper.bCircle) {
        upper.dRadius = f_.readDouble();
        upper.ptCenter = f_.readPoint2d();
      } else {
        upper.bClosed = f_.readBoolean();
        readList(f_, upper.aContour, 24, point);
      }
    }
    p_.nColor_ = version_ == 202 ? kColorByLayer : f_.readInt16();
  }

  void readStyle() {
    ProcessStyle s;
    s.sName = f_.readString();
    s.dValueA = f_.readDouble();
    s.dValueB = f_.readDouble();
    s.dValueC = f_.readDouble();
    s.dValueD = f_.readDouble();
    s.nPassLast = f_.readInt16();
    s.nCode = f_.readInt16();
    for (int i = 0; i <= s.nPassLast && f_.filerStatus() == ErrorStatus::eOk; ++i) {
      // A record may claim more passes than a style holds: they are walked over, and told by the count alone.
      PassRecord beyond;
      double beyondOffset = 0;
      const bool fits = i < kMostPasses;
      PassRecord& pass = fits ? s.passes[static_cast<std::size_t>(i)] : beyond;
      double& offset = fits ? s.passOffset[static_cast<std::size_t>(i)] : beyondOffset;
      pass.dValue1 = f_.readDouble();
      pass.dValue2 = f_.readDouble();
      offset = f_.readDouble();
      pass.sCode = f_.readString();
      pass.sSub1 = f_.readString();
    }
    s.nPassLast = std::min(s.nPassLast, kMostPasses - 1);
    p_.nCode_ = s.nCode;
    s.nCode = p_.style_->nCode;
    p_.style_.set(s);
  }

  void readOvercutAndSync() {
    p_.dOvercutExit_ = f_.readDouble();
    p_.dOvercutLen_ = f_.readDouble();
    p_.dHeight_ = f_.readDouble();
    if (!(p_.nFlags_ & kFourAxis)) return;
    readList(f_, p_.aSyncVert_, 16, [&] { return f_.readPoint2d(); });
    readList(f_, p_.aSyncMark_, 8, [&] { return f_.readDouble(); });
  }

  void readBreak() {
    p_.nBreakSeg_ = f_.readInt16();
    p_.dBreakBulgeA_ = f_.readDouble();
    p_.dBreakBulgeB_ = f_.readDouble();
    p_.dBreakUpperBulgeA_ = f_.readDouble();
    p_.dBreakUpperBulgeB_ = f_.readDouble();
    p_.ptBreakUpper_ = f_.readPoint2d();
    p_.ptBreakUpperExit_ = f_.readPoint2d();
  }

  void readCodesByPoint() {
    p_.aCodeVertex_.clear();
    p_.aCodeText_.clear();
    const int count = f_.readInt16();
    for (int i = 0; i < count && f_.filerStatus() == ErrorStatus::eOk; ++i) {
      const AcGePoint2d at = f_.readPoint3d().flat();
      const auto& v = p_.polyline().vertices;
      const auto found =
          std::find_if(v.begin(), v.end(), [&](auto& x) { return x.point.distanceTo(at) <= 0.001; });
      p_.aCodeVertex_.push_back(found == v.end() ? -1 : static_cast<int>(found - v.begin()));
      p_.aCodeText_.push_back(f_.readString());
    }
  }

  void readCodes() {
    p_.aCodeVertex_.clear();
    p_.aCodeText_.clear();
    const int count = f_.readInt16();
    for (int i = 0; i < count && f_.filerStatus() == ErrorStatus::eOk; ++i) {
      p_.aCodeVertex_.push_back(f_.readInt16());
      p_.aCodeText_.push_back(f_.readString());
    }
  }

  CToolPath& p_;
  AcDbDwgFiler& f_;
  int version_;
};

ErrorStatus CToolPath::dwgInFields(AcDbDwgFiler& f) {
  assertWriteEnabled();
  if (const auto status = AcDbObject::dwgInFields(f); status != ErrorStatus::eOk) return status;
  const int version = f.readInt32();
  if (version > kFormatVersion) return ErrorStatus::eMakeMeProxy;
  PathRecord(*this, f, version).read();
  return f.filerStatus();
}

namespace {

void writeContour(AcDbDwgFiler& f, const PathContour& c) {
  f.writeBoolean(c.bCircle);
  if (c.bCircle) {
    f.writeDouble(c.dRadius);
    f.writePoint2d(c.ptCenter);
  } else {
    f.writeBoolean(c.bClosed);
  }
}

void writeStyle(AcDbDwgFiler& f, const ProcessStyle& s) {
  f.writeString(s.sName);
  f.writeDouble(s.dValueA);
  f.writeDouble(s.dValueB);
  f.writeDouble(s.dValueC);
  f.writeDouble(s.dValueD);
  f.writeInt16(static_cast<std::int16_t>(s.nPassLast));
  f.writeInt16(static_cast<std::int16_t>(s.nCode));
  for (int i = 0; i <= s.nPassLast && i < kMostPasses; ++i) {
    const auto& pass = s.passes[static_cast<std::size_t>(i)];
    f.writeDouble(pass.dValue1);
    f.writeDouble(pass.dValue2);
    f.writeDouble(s.passOffset[static_cast<std::size_t>(i)]);
    f.writeString(pass.sCode);
    f.writeString(pass.sSub1);
  }
}

}  // namespace

ErrorStatus CToolPath::dwgOutFields(AcDbDwgFiler& f) const {
  if (const auto status = AcDbObject::dwgOutFields(f); status != ErrorStatus::eOk) return status;
  const auto point3d = [&](const AcGePoint3d& p) { f.writePoint3d(p); };
  f.writeInt32(kFormatVersion);
  if (f.filerType() == FilerType::kWblockCloneFiler) f.writeHardPointerId(ownerId().index);
  f.writeInt32(nPathNo_);
  f.writeInt32(nSide_);
  f.writeInt32(nDirection_);
  f.writeDouble(dTaper_);
  AcDbPolyline::dwgOutFields(f);
  writeList(f, aSegTaper_, [&](double t) { f.writeDouble(t); });
  writeContour(f, contour_);
  f.writeInt32(nFlags_);
  f.writeDouble(dClearance_);
  f.writeDouble(dOffset_);
  if (!contour_.bCircle) writeList(f, contour_.aContour, point3d);
  if (nFlags_ & (kFourAxis | kGuideCurve)) writeCurve(f, upper_);
  if (nFlags_ & kFourAxis) {
    writeContour(f, upperContour_);
    if (!upperContour_.bCircle) writeList(f, upperContour_.aContour, point3d);
  }
  f.writeInt16(static_cast<std::int16_t>(nColor_));
  writeStyle(f, getProcessStyle());
  f.writeBoolean(bHasStyle_);
  f.writePoint2d(ptBreak_);
  f.writePoint2d(ptBreakExit_);
  f.writeDouble(dOvercutExit_);
  f.writeDouble(dOvercutLen_);
  f.writeDouble(dHeight_);
  if (nFlags_ & kFourAxis) {
    writeList(f, aSyncVert_, [&](AcGePoint2d p) { f.writePoint2d(p); });
    writeList(f, aSyncMark_, [&](double m) { f.writeDouble(m); });
  }
  f.writeInt16(static_cast<std::int16_t>(nBreakSeg_));
  for (double b : {dBreakBulgeA_, dBreakBulgeB_, dBreakUpperBulgeA_, dBreakUpperBulgeB_}) f.writeDouble(b);
  f.writePoint2d(ptBreakUpper_);
  f.writePoint2d(ptBreakUpperExit_);
  writeCount(f, aCodeVertex_.size());
  for (std::size_t i = 0; i < aCodeVertex_.size(); ++i) {
    f.writeInt16(static_cast<std::int16_t>(aCodeVertex_[i]));
    f.writeString(aCodeText_[i]);
  }
  return f.filerStatus();
}

}  // namespace tarnex
