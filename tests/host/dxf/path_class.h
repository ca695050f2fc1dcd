// An application's entity for the tests: a polyline with a text.
#pragma once

#include <memory>
#include <string>

#include "host/database/database.h"

namespace tarnex::test {

// A polyline with a text of any length, as an application would derive one.
class Path : public AcDbPolyline {
 public:
  static const AcRxClass& desc() {
    static const AcRxClass kClass = [] {
      AcRxClass c;
      c.name = c.dxfName = "TestPath";
      c.parent = &AcDbPolyline::desc();
      c.appName = "TestApp";
      c.create = [] { return std::unique_ptr<AcDbObject>(new Path); };
      return c;
    }();
    return kClass;
  }
  const AcRxClass& isA() const override { return desc(); }
  std::unique_ptr<AcDbObject> clone() const override { return std::unique_ptr<AcDbObject>(new Path(*this)); }
  ErrorStatus dwgOutFields(AcDbDwgFiler& f) const override {
    f.writeInt32(version);
    AcDbPolyline::dwgOutFields(f);
    f.writeInt32(static_cast<std::int32_t>(note.size() / kPart + 1));
    for (std::size_t i = 0; i <= note.size(); i += kPart)
      f.writeString(std::string_view(note).substr(i, kPart));
    return f.filerStatus();
  }
  ErrorStatus dwgInFields(AcDbDwgFiler& f) override {
    version = f.readInt32();
    if (version > 1) return ErrorStatus::eMakeMeProxy;
    AcDbPolyline::dwgInFields(f);
    note.clear();
    for (int parts = f.readInt32(); parts > 0; --parts) note += f.readString();
    return f.filerStatus();
  }
  int version = 1;
  std::string note;

 private:
  static constexpr std::size_t kPart = 20000;
};

inline std::unique_ptr<Path> makePath(std::string note, int vertices = 4) {
  auto p = std::make_unique<Path>();
  for (int i = 0; i < vertices; ++i) p->addVertexAt(i, {i * 0.1, i % 2 * 7.0}, i == 1 ? 0.5 : 0, -1, -1);
  p->note = std::move(note);
  return p;
}

}  // namespace tarnex::test
