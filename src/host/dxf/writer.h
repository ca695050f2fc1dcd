// The writer's inside: the edits by which the file behind a drawing becomes the file of the drawing as it is
// now. A drawing without a file behind it is written as edits of a plain empty one.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/dxf/document.h"
#include "host/dxf/dxf.h"
#include "host/dxf/fields.h"

namespace tarnex {

// Most vertices of a curve that a file of an old version can only hold as a polyline.
inline constexpr std::uint64_t kMostOldVertices = 2000;

class DxfWriter {
 public:
  DxfWriter(const AcDbDatabase& db, const DxfDocument& doc, const DxfSink& sink);
  void run();

 private:
  struct Edit {
    std::size_t at = 0, length = 0;        // bytes of the file that go
    std::string text;                      // and what comes in their place
    const AcDbEntity* changed = nullptr;   // or: the entity that stood there, patched
    std::vector<const AcDbEntity*> added;  // or: new entities
    int order = 0;                         // of edits at one place
  };

  // ---- the whole (write.cpp)
  void plan();
  void planEntities();
  void planBlocks();
  void need(const AcDbEntity& e);
  [[nodiscard]] std::vector<std::string> applicationsInFile(const AcDbEntity& e) const;
  [[nodiscard]] std::size_t behindSection(std::size_t end) const;
  void planEnds();
  void planSections();
  void edit(std::size_t at, std::size_t length, std::string text, int order = 0);
  void stream();
  void emit(Edit& e);
  void flush(bool all = false);
  [[nodiscard]] const DxfSection* section(std::string_view name) const;  // the last of that name
  void intoSection(const std::string& name, std::string content, int order = 0);
  [[nodiscard]] bool usesHandles() const { return doc_.isModern() || doc_.hasHandles; }
  [[nodiscard]] std::uint64_t freshHandle() {
    newHandles_ = true;
    return nextHandle_++;
  }
  [[nodiscard]] std::uint64_t fileHandle(const AcDbObject& o);
  [[nodiscard]] std::uint64_t ownerHandle(AcDbObjectId block);
  [[nodiscard]] const DxfPlace* placeOf(SourceRef source) const;
  [[nodiscard]] bool hasTemplate(
      const AcDbEntity& e) const;  // the file holds the entity that this is a copy of
  [[nodiscard]] bool isFileObject(const AcDbObject& o) const;  // and not a copy of one
  [[nodiscard]] TagWriter tags(std::string& out) const {
    return {out, doc_.encoding.form, doc_.encoding.lineEnd};
  }
  [[nodiscard]] std::string text(std::string_view utf8) const { return doc_.codec.encode(utf8); }

  // ---- header (write_header.cpp)
  void planHeader();
  void planVariable(const std::string& name, const ResBuf& value);
  void planSeed();
  void planUcs();
  void planCurrent();
  [[nodiscard]] const DxfHeaderVariable* variable(std::string_view name) const;
  [[nodiscard]] ResBuf variableValue(const DxfHeaderVariable& v) const;
  [[nodiscard]] std::string variableTags(const std::string& name, const ResBuf& value) const;

  // ---- tables (write_tables.cpp)
  void planTables();
  void planLayers();
  void patchLayer(const DxfTableEntry& entry, const AcDbLayerTableRecord& layer);
  void planLineTypes();
  void planApplications();
  void planBlockRecords();
  void intoTable(const std::string& name, const std::string& entries, long count);
  void newTable(const std::string& name, const std::string& entries, long count);
  void entryHead(TagWriter& w, const char* type, const char* marker, std::uint64_t handle);
  void layerEntry(std::string& out, const AcDbLayerTableRecord& layer);
  void lineTypeEntry(std::string& out, const AcDbLinetypeTableRecord& lineType);
  void blockDefinition(std::string& out, const AcDbBlockTableRecord& block);
  [[nodiscard]] std::uint64_t plotStyleHandle() const;
  [[nodiscard]] bool isNewBlock(const AcDbBlockTableRecord& block) const;
  [[nodiscard]] bool inTable(const char* table, const std::string& name) const;
  void needApplication(const std::string& name);

  // ---- entities (write_new.cpp, write_changed.cpp, write_polylines.cpp)
  void newEntity(std::string& out, const AcDbEntity& e);
  void newHead(TagWriter& w, const char* type, const AcDbEntity& e, std::uint64_t handle);
  void newPolyline(TagWriter& w, const AcDbCurve& e, std::uint64_t handle);
  void mtextContent(TagWriter& w, const std::string& utf8) const;
  void newHeavyPolyline(TagWriter& w, const AcDbEntity& e, const PolylineCurve& c, double elevation,
                        std::uint64_t handle);
  void newInOldForm(std::string& out, const AcDbEntity& e);
  struct Template {  // how a source's tags are used
    const AcDbEntity& entity;
    DxfPlace place;
    bool copy = false;         // the tags belong to another entity: new handles
    std::uint64_t handle = 0;  // of the copy
  };
  void patchedEntity(std::string& out, const Template& t);
  void patchHead(TagPatch& patch, const Template& t, const EntityHead& head);
  void patchCopy(TagPatch& patch, const Template& t);
  void patchGeometry(TagPatch& patch, const AcDbEntity& before, const AcDbEntity& now,
                     const EntityHead& head);
  void patchTextExtras(TagPatch& patch, const AcDbText& before, const AcDbText& now, const FileSpace& space);
  void patchAttributes(TagPatch& patch, const AcDbBlockReference& before, const AcDbBlockReference& now,
                       const FileSpace& space);
  void patchLight(TagPatch& patch, const AcDbPolyline& before, const AcDbPolyline& now,
                  const FileSpace& space);
  void patchHeavyHead(TagPatch& patch, const AcDb2dPolyline& before, const AcDb2dPolyline& now,
                      const FileSpace& space);
  void patchHeavy(TagPatch& patch, const AcDb2dPolyline& before, const AcDb2dPolyline& now,
                  const FileSpace& space);
  struct VertexPlace {
    std::size_t x, y, bulge, last;
  };  // tags; bulge 0: none, a new one goes behind `last`
  void patchVertex(TagPatch& patch, const VertexPlace& p, const BulgeVertex& before, const BulgeVertex& now,
                   const FileSpace& space);
  void patchDirection(TagPatch& patch, FieldList& before, FieldList& now, const AcDbMText& text) const;
  template <class Map>
  void movePoint(TagPatch& patch, std::size_t x, std::size_t y, const FileSpace& space, Map map);
  void patchExtendedData(TagPatch& patch, const Template& t, const EntityHead& head);
  [[nodiscard]] TagStyle style() const { return {doc_.encoding.form, doc_.encoding.lineEnd, &doc_.codec}; }

  // ---- extended data and records (write_records.cpp)
  void extendedData(TagWriter& w, const AcDbObject& o);
  void extendedData(TagWriter& w, const std::string& application, const ResBufChain& chain);
  void item(TagWriter& w, const ResBuf& item) const;
  struct Record {
    std::string application, className, bytes;
    std::uint64_t xrecord = 0;  // handle of the xrecord that holds the bytes, 0: extended data
  };
  struct PlacedRecord {
    std::uint64_t xrecord = 0, newDictionary = 0;  // the latter 0 when the file has one
  };
  [[nodiscard]] std::optional<Record> recordOf(const AcDbEntity& e) const;
  void recordData(TagWriter& w, const Record& r, std::string_view bytes) const;
  void recordChunks(TagWriter& w, std::string_view bytes) const;
  void extensionGroup(TagWriter& w, const PlacedRecord& p) const;
  void placeRecord(const AcDbEntity& e);
  PlacedRecord newXrecord(const AcDbEntity& e, const std::string& application, const std::string& chunks);
  void replaceChunks(const DxfObject& xrecord, const std::string& chunks);
  void dropRecord(AcDbObjectId id);
  [[nodiscard]] const DxfObject* objectOfHandle(std::uint64_t handle) const;
  [[nodiscard]] std::uint64_t extensionDictionaryOf(const AcDbEntity& e) const;
  [[nodiscard]] std::uint64_t fileHandleOfEntity(const AcDbEntity& e);
  [[nodiscard]] std::string handleTag(int code, std::uint64_t handle) const;

  // ---- objects (write_objects.cpp)
  void planObjects();
  void planDictionary(const DxfObject& o, const AcDbDictionary& d);
  bool patchEntry(TagPatch& patch, std::size_t key, std::size_t link, const AcDbObject* now,
                  std::uint64_t owner);
  void planXrecord(const DxfObject& o, const AcDbXrecord& x);
  void newObject(std::string& out, const AcDbObject& o, std::uint64_t owner);
  void planPlainDictionaries();

  const AcDbDatabase& db_;
  const DxfDocument& doc_;
  const DxfSink& sink_;
  std::string out_;
  std::vector<Edit> edits_;
  std::string newObjects_;                                         // for the end of OBJECTS
  std::unordered_map<std::uint32_t, PlacedRecord> placedRecords_;  // by the entity's id
  std::vector<std::string> applications_;
  std::string newTables_, newSections_;
  std::uint64_t nextHandle_ = 1;
  bool newHandles_ = false;          // something that needs a handle goes in
  std::uint64_t handlesToCome_ = 0;  // at most, of vertices and such, when the header is written
  std::unordered_map<std::uint32_t, std::uint64_t> givenHandles_;  // of new objects, by id
  std::unordered_map<std::string_view, const DxfHeaderVariable*> headerPlace_;
  std::unordered_map<std::uint32_t, const DxfBlock*> blockPlace_;  // by the block's id
  std::unordered_set<std::string> tableNames_;                     // "LAYER/CUT", in capitals
  std::unordered_map<std::uint64_t, const DxfObject*> objectByHandle_;
  std::unordered_map<std::uint32_t, const DxfObject*> objectPlace_;  // of file objects, by id
};

// The text of an empty drawing (AC1015, millimetres); its handles start at `firstHandle`, and it opens
// with a view of `seen`.
[[nodiscard]] std::string emptyDrawing(std::uint64_t firstHandle, const Extents2d& seen);

}  // namespace tarnex
