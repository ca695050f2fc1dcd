// A session in which the edit commands are typed by name, on paths made by hand.
// Knows no single command.
#pragma once

#include "host/dxf/dxf.h"
#include "pathcmd/editcommands.h"
#include "pathcmd/pathorder.h"
#include "pathcmd/pathtest.h"

namespace tarnex {

class EditTest : public PathTest {
 protected:
  EditTest() {
    const std::pair<const char*, void (*)(Module&)> rows[] = {
        {"CD", &CD}, {"CM", &CM},   {"CX", &CX}, {"QQ", &QQ}, {"XD", &XD}, {"XD0", &XD0},
        {"SR", &SR}, {"SR0", &SR0}, {"QD", &QD}, {"ZD", &ZD}, {"QZ", &QZ}, {"CS", &CS}};
    for (const auto& [name, command] : rows) {
      Command row{"WEDM", name, name, ACRX_CMD_MODAL, {}, {}};
      row.run = [this, command = command] { command(*module); };
      session.ed.addCommand(std::move(row));
    }
    session.ed.afterUndo.push_back([this] { followPaths(*module); });
  }

  // A square hole of 20 whose lower left corner is p: T in its middle, Q in the middle of its right side,
  // then counter-clockwise.
  AcDbObjectId squarePath(AcGePoint2d p) {
    const auto at = [&](double x, double y) { return AcGePoint2d{p.x + x, p.y + y}; };
    const PolylineCurve contour{{{at(0, 0), 0}, {at(20, 0), 0}, {at(20, 20), 0}, {at(0, 20), 0}}, true};
    return contourPath({at(10, 10), at(20, 10), 1, 1, 0.08, 0}, contour, 1);
  }
  AcDbObjectId contourPath(const CToolPath::Making& making, const PolylineCurve& contour, int span) {
    auto made = std::make_unique<CToolPath>();
    EXPECT_TRUE(made->initContour(making, contour, span));
    addPath(*module, std::move(made), {}, kColorByLayer, nullptr);
    return state().PathList.back();
  }
  // The square as an open path: the stored record with bClosed and nFlags changed.
  AcDbObjectId openPath(AcGePoint2d p) {
    const AcDbObjectId id = squarePath(p);
    const auto* path = drawing().peek<CToolPath>(id);
    AcDbDwgFiler out;
    EXPECT_EQ(path->dwgOutFields(out), ErrorStatus::eOk);
    std::string bytes = out.bytes();
    const std::size_t n = static_cast<std::size_t>(path->numVerts());
    // Version, three numbers, taper; the polyline; the tapers; bCircle.
    const std::size_t at = 4 + 12 + 8 + (1 + 8 + 4 + 24 * n) + (2 + 8 * n) + 1;
    EXPECT_EQ(bytes.substr(at, 5), std::string("\1\1\0\0\0", 5));
    bytes[at] = 0;
    bytes[at + 1] = 2;
    AcDbDwgFiler in(bytes);
    EXPECT_EQ(drawing().open<CToolPath>(id, OpenMode::kForWrite)->dwgInFields(in), ErrorStatus::eOk);
    EXPECT_TRUE(drawing().peek<CToolPath>(id)->hasFlag(kOpenPath));
    rebuildPathList(*module);
    return id;
  }
  // As picked on it at a point of the world.
  std::string at(AcDbObjectId id, const std::string& point) { return session.handle(id) + "*" + point; }
  const CToolPath* pathOf(AcDbObjectId id) { return drawing().peek<CToolPath>(id); }
  void lockLayerOf(AcDbObjectId id) {
    auto layer = std::make_unique<AcDbLayerTableRecord>();
    layer->setName("LOCKED");
    const AcDbObjectId locked = drawing().addLayer(std::move(layer));
    drawing().open<AcDbEntity>(id, OpenMode::kForWrite)->setLayer(locked);
    drawing().open<AcDbLayerTableRecord>(locked, OpenMode::kForWrite)->setIsLocked(true);
  }

  [[nodiscard]] std::string file() { return dxfText(drawing()); }
  // The list and the ends are those that reading the whole drawing gives.
  void expectInStep(const std::string& when) {
    std::vector<AcGePoint2d> ends;
    for (AcDbObjectId id : session.all())
      if (const auto* p = pathOf(id)) ends.push_back(p->getPrevEnd());
    PathState wanted;
    PathOrder().follow(drawing(), wanted, PathOrder::Numbers::kKeep);
    EXPECT_EQ(state().PathList, wanted.PathList) << when;
    EXPECT_EQ(state().nextPathNo, wanted.nextPathNo) << when;
    EXPECT_EQ(state().lastEnd, wanted.lastEnd) << when;
    std::size_t i = 0;
    for (AcDbObjectId id : session.all())
      if (const auto* p = pathOf(id)) {
        EXPECT_EQ(p->getPrevEnd(), ends[i]) << when << ", path " << p->nPathNo();
        ++i;
      }
  }
  // Types a command and gives what it printed; it is one step, which u takes back to the last byte and redo
  // brings again.
  std::string type(std::vector<std::string> lines) {
    module->saveSettings();
    const std::string name = lines[0], before = file();
    const std::string out = session.run(std::move(lines));
    const std::string after = file();
    expectInStep("after " + name);
    if (after == before) return out;
    session.run({"u"});
    EXPECT_TRUE(file() == before) << name << " undone";
    expectInStep(name + " undone");
    session.run({"redo"});
    EXPECT_TRUE(file() == after) << name << " done again";
    expectInStep(name + " done again");
    return out;
  }
  // A text's leading line end is left out where a line has just ended.
  [[nodiscard]] static bool says(const std::string& out, const std::string& words) {
    return out.find(words.substr(words[0] == '\n' ? 1 : 0)) != std::string::npos;
  }
  [[nodiscard]] static int times(const std::string& out, std::string words) {
    words = words.substr(words[0] == '\n' ? 1 : 0);
    int count = 0;
    for (std::size_t i = out.find(words); i != std::string::npos; i = out.find(words, i + 1)) ++count;
    return count;
  }
};

}  // namespace tarnex
