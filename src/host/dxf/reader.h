// The reader's inside: one walk through the file that fills the drawing and notes where everything stands.
// Knows sections and the database; single entities are the parser's.
#pragma once

#include <array>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/dxf/document.h"
#include "host/dxf/dxf.h"
#include "host/dxf/entity_parser.h"
#include "host/dxf/records.h"

namespace tarnex {

class DxfReader {
 public:
  DxfReader(AcDbDatabase& db, std::string bytes, const DxfReadOptions& options, DxfReport& report);
  [[nodiscard]] std::optional<DxfFailure> run();

 private:
  // ---- the file as a whole (read.cpp)
  void walk();
  void section();
  void skipSection();
  void closeSection();  // with the tag behind the section's content as the next one
  void finish();
  bool nextOrResync();  // next tag; over damaged places with a note; false at the end
  void note(std::size_t offset, std::string text);
  void linesOfNotes();
  [[nodiscard]] std::uint64_t lineOf(std::size_t offset) const;

  // ---- header (read_header.cpp)
  void header();
  void headerVariable(const std::string& name);
  void applyHeader();
  void applyVersionAndPage();
  void applyUnits();
  void applyUcs();
  [[nodiscard]] std::optional<long long> headerInteger(const std::string& name) const;
  [[nodiscard]] std::string headerText(const std::string& name) const;

  // ---- tables (read_tables.cpp)
  struct Entry {
    std::string name, lineType, description;
    std::uint64_t handle = 0;
    int flags = 0, color = 7;
    bool plottable = true;
    std::vector<double> dashes;
    SourceRef place;
    std::size_t xdataAt = 0;
  };
  void tables();
  void table();
  [[nodiscard]] Entry tableEntry();
  void tableEntryValue(Entry& e);
  AcDbObjectId take(const std::string& table, Entry& e);
  AcDbObjectId takeLayer(Entry& e);
  void setCurrentProperties();

  // ---- blocks and entities (read_entities.cpp)
  void blocks();
  void block();
  [[nodiscard]] AcDbObjectId blockHead();
  void entities(AcDbObjectId owner, bool byPaperFlag);
  void entity(AcDbObjectId owner, bool byPaperFlag);
  void take(std::unique_ptr<AcDbEntity> e, AcDbObjectId owner, std::size_t begin);
  void leaveOut(std::size_t begin);
  [[nodiscard]] std::unique_ptr<AcDbEntity> withRecord(std::unique_ptr<AcDbEntity> shown, std::size_t begin);
  [[nodiscard]] std::unique_ptr<AcDbEntity> readRecord(std::unique_ptr<AcDbEntity> shown, std::size_t begin,
                                                       std::size_t end);  // read_records.cpp
  [[nodiscard]] AcDbObjectId blockOf(std::string_view rawName);
  [[nodiscard]] AcDbObjectId layerOf(std::string_view rawName);
  [[nodiscard]] AcDbObjectId lineTypeOf(std::string_view rawName);
  [[nodiscard]] std::uint64_t usableHandle(std::uint64_t wanted, std::size_t offset);
  void handleSeen(std::uint64_t handle);
  void ensureSeed();  // before the first handle of our own is given

  // ---- objects (read_objects.cpp)
  void objects();
  void dictionaries();
  struct Pending {
    AcDbObjectId dictionary;
    std::size_t object;
  };
  void dictionaryEntries(const Pending& p, std::vector<Pending>& more);
  [[nodiscard]] AcDbObjectId dictionaryEntry(std::uint64_t handle, AcDbObjectId owner,
                                             std::vector<Pending>& more);
  void readPlainDictionaries();  // of a file without OBJECTS (plain_dictionaries.cpp)
  [[nodiscard]] std::size_t offsetOfObject(std::uint64_t handle);
  [[nodiscard]] std::size_t objectOf(std::uint64_t handle) const;  // index, kNowhere when there is none

  AcDbDatabase& db_;
  std::unique_ptr<DxfDocument> owned_;
  DxfDocument& doc_;
  const DxfReadOptions& options_;
  DxfReport& report_;
  EntityParser parser_;
  TagReader& tags_;        // the parser's
  bool anything_ = false;  // a section or an entity was recognised
  bool seedKnown_ = false;
  std::size_t headerDecoded_ = 0;  // header variables whose texts are decoded
  std::vector<std::pair<std::size_t, std::string>> notes_;
  std::size_t notesDropped_ = 0;
  std::array<long, kEntityKinds> kindCounts_{}, modelCounts_{};
  std::string_view lastLayer_;
  AcDbObjectId lastLayerId_;
  bool lastLayerKnown_ = false;
  std::unordered_map<std::string_view, AcDbObjectId> layerIds_, lineTypeIds_;  // by the bytes in the file
  AcDbObjectId block_;  // being read; model space in ENTITIES
  std::string_view blockName_;
  std::set<std::pair<std::string, std::string>> refused_;  // references that would not end
  std::unordered_map<std::uint64_t, std::size_t> objectByHandle_, xrecordAt_;
  bool xrecordsSought_ = false;
  std::uint64_t recordPlace_ = 0;  // xrecord of the entity that was just made from its record
};

// Extended data of the entity or record whose first 1001 tag stands at `offset`, application by application,
// of at most kMostApplications; what goes beyond stays in the file alone.
inline constexpr std::size_t kMostApplications = 500;
[[nodiscard]] std::vector<std::pair<std::string, ResBufChain>> readExtendedData(TagReader tags,
                                                                                std::size_t offset,
                                                                                const TextCodec& codec);
// One item of a chain from the present tag, and the reader behind it (a point takes three tags).
[[nodiscard]] ResBuf readItem(TagReader& tags, const TextCodec& codec);

// The items of an xrecord, with its "0 XRECORD" as the present tag.
[[nodiscard]] ResBufChain readXrecord(TagReader tags, const TextCodec& codec);

// The block references of a BLOCKS section that must not be followed, as pairs of block names in capitals
// (outer, inner): those by which a block lies within itself, is nested deeper than kDeepestNesting, or would
// expand to more than kMostExpanded entities.
inline constexpr int kDeepestNesting = 128;
inline constexpr double kMostExpanded = 5e6;
[[nodiscard]] std::set<std::pair<std::string, std::string>> endlessReferences(TagReader tags);
[[nodiscard]] std::string capitals(std::string_view name);  // ASCII letters

}  // namespace tarnex
