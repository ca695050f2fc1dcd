// The file of an empty drawing: what every program expects in AC1015, and nothing else.
// Knows tables and objects that must be there; the writer puts the drawing into it.
#include <algorithm>
#include <initializer_list>

#include "host/dxf/writer.h"

namespace tarnex {
namespace {

class Skeleton {
 public:
  Skeleton(std::uint64_t firstHandle, const Extents2d& seen)
      : w_(out_, TagForm::kAscii, "\r\n"), next_(firstHandle), seen_(seen) {
    if (seen_.empty()) seen_ = {{0, 0}, {100, 100}};
  }

  std::string text() {
    for (std::uint64_t* h : {&blockTable_, &layerTable_, &modelRecord_, &paperRecord_, &root_, &plotStyles_,
                             &normalStyle_, &modelLayout_, &paperLayout_, &groups_, &layouts_})
      *h = next_++;
    tables();
    blocks();
    objects();
    w_.text(0, "EOF");
    std::string rest = std::move(out_);
    out_.clear();
    header();
    return out_ + rest;
  }

 private:
  void section(const char* name) {
    w_.text(0, "SECTION");
    w_.text(2, name);
  }
  void variable(const char* name, int code, const char* value) {
    w_.text(9, name);
    w_.text(code, value);
  }
  void number(const char* name, int code, long long value) {
    w_.text(9, name);
    w_.integer(code, value);
  }

  void header() {
    section("HEADER");
    variable("$ACADVER", 1, "AC1015");
    variable("$DWGCODEPAGE", 3, "ANSI_1252");
    w_.text(9, "$INSBASE");
    w_.point(10, 0, 0, 0);
    number("$INSUNITS", 70, 4);
    number("$MEASUREMENT", 70, 1);
    number("$LUNITS", 70, 2);
    number("$TILEMODE", 70, 1);
    variable("$CLAYER", 8, "0");
    variable("$CELTYPE", 6, "ByLayer");
    number("$CECOLOR", 62, 256);
    variable("$TEXTSTYLE", 7, "Standard");
    variable("$DIMSTYLE", 2, "Standard");
    w_.text(9, "$HANDSEED");
    w_.handle(5, next_);
    w_.text(0, "ENDSEC");
    section("CLASSES");
    w_.text(0, "ENDSEC");
  }

  std::uint64_t table(const char* name, long long count, std::uint64_t handle = 0) {
    if (!handle) handle = next_++;
    w_.text(0, "TABLE");
    w_.text(2, name);
    w_.handle(5, handle);
    w_.handle(330, 0);
    w_.text(100, "AcDbSymbolTable");
    w_.integer(70, count);
    return handle;
  }
  void record(const char* type, std::uint64_t table, const char* marker, const char* name,
              std::uint64_t handle = 0, int handleCode = 5) {
    w_.text(0, type);
    w_.handle(handleCode, handle ? handle : next_++);
    w_.handle(330, table);
    w_.text(100, "AcDbSymbolTableRecord");
    w_.text(100, marker);
    w_.text(2, name);
  }
  void tableEnd() { w_.text(0, "ENDTAB"); }

  void tables() {
    section("TABLES");
    viewports();
    const std::uint64_t lines = table("LTYPE", 3);
    for (const char* name : {"ByBlock", "ByLayer", "Continuous"}) {
      record("LTYPE", lines, "AcDbLinetypeTableRecord", name);
      w_.integer(70, 0);
      w_.text(3, name[0] == 'C' ? "Solid line" : "");
      w_.integer(72, 65);
      w_.integer(73, 0);
      w_.real(40, 0);
    }
    tableEnd();
    table("LAYER", 1, layerTable_);
    record("LAYER", layerTable_, "AcDbLayerTableRecord", "0");
    w_.integer(70, 0);
    w_.integer(62, 7);
    w_.text(6, "Continuous");
    w_.integer(370, -3);
    w_.handle(390, normalStyle_);
    tableEnd();
    textStyles();
    for (const char* name : {"VIEW", "UCS"}) {
      table(name, 0);
      tableEnd();
    }
    const std::uint64_t applications = table("APPID", 1);
    record("APPID", applications, "AcDbRegAppTableRecord", "ACAD");
    w_.integer(70, 0);
    tableEnd();
    const std::uint64_t dimensions = table("DIMSTYLE", 1);
    w_.text(100, "AcDbDimStyleTable");
    record("DIMSTYLE", dimensions, "AcDbDimStyleTableRecord", "Standard", 0, 105);
    w_.integer(70, 0);
    tableEnd();
    table("BLOCK_RECORD", 2, blockTable_);
    record("BLOCK_RECORD", blockTable_, "AcDbBlockTableRecord", "*Model_Space", modelRecord_);
    w_.handle(340, modelLayout_);
    record("BLOCK_RECORD", blockTable_, "AcDbBlockTableRecord", "*Paper_Space", paperRecord_);
    w_.handle(340, paperLayout_);
    tableEnd();
    w_.text(0, "ENDSEC");
  }

  void viewports() {
    const std::uint64_t views = table("VPORT", 1);
    record("VPORT", views, "AcDbViewportTableRecord", "*Active");
    w_.integer(70, 0);
    const auto flat = [this](int code, double x, double y) {
      w_.real(code, x);
      w_.real(code + 10, y);
    };
    constexpr double kAspect = 1.5;  // of the window, width to height
    const double height =
        std::max({seen_.high.y - seen_.low.y, (seen_.high.x - seen_.low.x) / kAspect, 1e-3}) * 1.1;
    flat(10, 0, 0);
    flat(11, 1, 1);
    flat(12, (seen_.low.x + seen_.high.x) / 2, (seen_.low.y + seen_.high.y) / 2);  // centre of what is seen
    flat(13, 0, 0);
    flat(14, 10, 10);
    flat(15, 10, 10);
    w_.point(16, 0, 0, 1);
    w_.point(17, 0, 0, 0);
    w_.real(40, height);
    w_.real(41, kAspect);
    w_.real(42, 50);
    for (const int code : {43, 44, 50, 51}) w_.real(code, 0);
    w_.integer(71, 0);
    w_.integer(72, 1000);
    w_.integer(73, 1);
    w_.integer(74, 3);
    for (const int code : {75, 76, 77, 78}) w_.integer(code, 0);
    tableEnd();
  }

  void textStyles() {
    const std::uint64_t styles = table("STYLE", 1);
    record("STYLE", styles, "AcDbTextStyleTableRecord", "Standard");
    w_.integer(70, 0);
    w_.real(40, 0);
    w_.real(41, 1);
    w_.real(50, 0);
    w_.integer(71, 0);
    w_.real(42, 2.5);
    w_.text(3, "txt");
    w_.text(4, "");
    tableEnd();
  }

  void blocks() {
    section("BLOCKS");
    for (const bool paper : {false, true}) {
      const char* name = paper ? "*Paper_Space" : "*Model_Space";
      const auto head = [&](const char* type, const char* marker) {
        w_.text(0, type);
        w_.handle(5, next_++);
        w_.handle(330, paper ? paperRecord_ : modelRecord_);
        w_.text(100, "AcDbEntity");
        if (paper) w_.integer(67, 1);
        w_.text(8, "0");
        w_.text(100, marker);
      };
      head("BLOCK", "AcDbBlockBegin");
      w_.text(2, name);
      w_.integer(70, 0);
      w_.point(10, 0, 0, 0);
      w_.text(3, name);
      w_.text(1, "");
      head("ENDBLK", "AcDbBlockEnd");
    }
    w_.text(0, "ENDSEC");
    section("ENTITIES");
    w_.text(0, "ENDSEC");
  }

  struct Link {
    const char* key;
    std::uint64_t handle;
  };
  void dictionary(std::uint64_t handle, std::uint64_t owner, std::initializer_list<Link> links) {
    w_.text(0, "DICTIONARY");
    w_.handle(5, handle);
    w_.handle(330, owner);
    w_.text(100, "AcDbDictionary");
    w_.integer(281, 1);
    for (const Link& l : links) {
      w_.text(3, l.key);
      w_.handle(350, l.handle);
    }
  }

  void objects() {
    section("OBJECTS");
    dictionary(root_, 0,
               {{"ACAD_GROUP", groups_}, {"ACAD_LAYOUT", layouts_}, {"ACAD_PLOTSTYLENAME", plotStyles_}});
    dictionary(groups_, root_, {});
    dictionary(layouts_, root_, {{"Model", modelLayout_}, {"Layout1", paperLayout_}});
    layout(modelLayout_, "Model", 1024 + 512 + 128 + 32 + 16, 0, modelRecord_);
    layout(paperLayout_, "Layout1", 512 + 128 + 32 + 16, 1, paperRecord_);
    w_.text(0, "ACDBDICTIONARYWDFLT");
    w_.handle(5, plotStyles_);
    w_.handle(330, root_);
    w_.text(100, "AcDbDictionary");
    w_.integer(281, 1);
    w_.text(3, "Normal");
    w_.handle(350, normalStyle_);
    w_.text(100, "AcDbDictionaryWithDefault");
    w_.handle(340, normalStyle_);
    w_.text(0, "ACDBPLACEHOLDER");
    w_.handle(5, normalStyle_);
    w_.handle(330, plotStyles_);
    w_.text(0, "ENDSEC");
  }

  void layout(std::uint64_t handle, const char* name, int plotFlags, int order, std::uint64_t record) {
    w_.text(0, "LAYOUT");
    w_.handle(5, handle);
    w_.handle(330, layouts_);
    w_.text(100, "AcDbPlotSettings");
    w_.text(1, "");
    w_.text(2, "none_device");
    w_.text(4, "");
    w_.text(6, "");
    for (const int code : {40, 41, 42, 43}) w_.real(code, 5);
    w_.real(44, 297);
    w_.real(45, 210);
    for (const int code : {46, 47, 48, 49, 140, 141}) w_.real(code, 0);
    w_.real(142, 1);
    w_.real(143, 1);
    w_.integer(70, plotFlags);
    w_.integer(72, 1);
    w_.integer(73, 0);
    w_.integer(74, 5);
    w_.text(7, "");
    w_.integer(75, 16);
    w_.real(147, 1);
    w_.real(148, 0);
    w_.real(149, 0);
    w_.text(100, "AcDbLayout");
    w_.text(1, name);
    w_.integer(70, 1);
    w_.integer(71, order);
    const auto flat = [this](int code, double x, double y) {
      w_.real(code, x);
      w_.real(code + 10, y);
    };
    flat(10, 0, 0);  // limits
    flat(11, 297, 210);
    w_.point(12, 0, 0, 0);
    w_.point(14, 0, 0, 0);
    w_.point(15, 297, 210, 0);
    w_.real(146, 0);
    w_.point(13, 0, 0, 0);
    w_.point(16, 1, 0, 0);
    w_.point(17, 0, 1, 0);
    w_.integer(76, 0);
    w_.handle(330, record);
  }

  std::string out_;
  TagWriter w_;
  std::uint64_t next_;
  Extents2d seen_;
  std::uint64_t blockTable_ = 0, layerTable_ = 0, modelRecord_ = 0, paperRecord_ = 0, root_ = 0,
                plotStyles_ = 0, normalStyle_ = 0, modelLayout_ = 0, paperLayout_ = 0, groups_ = 0,
                layouts_ = 0;
};

}  // namespace

std::string emptyDrawing(std::uint64_t firstHandle, const Extents2d& seen) {
  return Skeleton(firstHandle, seen).text();
}

}  // namespace tarnex
