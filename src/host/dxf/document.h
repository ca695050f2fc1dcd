// The file behind a drawing: its bytes and the places in them, so that it can be written again without loss.
// Knows where things stand; what they mean is for the reader and the writer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/database/database.h"
#include "host/dxf/tags.h"
#include "host/dxf/text_codec.h"

namespace tarnex {

inline constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

struct DxfSection {
  std::string name;
  std::size_t begin = 0;  // its "0 SECTION"
  std::size_t end = 0;    // its "0 ENDSEC", or where it broke off
  bool closed = false;
};

struct DxfHeaderVariable {
  std::string name;  // with "$"
  std::size_t begin = 0, end = 0;
};

struct DxfTable {
  std::string name;
  std::uint64_t handle = 0;
  std::size_t countAt = kNowhere;  // tag 70 of the head
  std::size_t end = 0;             // its "0 ENDTAB"
  long entries = 0;
  bool closed = false;
};

struct DxfTableEntry {
  std::size_t table = 0;  // index in DxfDocument::tables
  std::string name;       // UTF-8
  std::uint64_t handle = 0;
  SourceRef place;
  AcDbObjectId id;  // null for tables that the drawing doesn't hold
};

struct DxfBlock {
  AcDbObjectId id;
  std::size_t begin = 0, bodyEnd = 0, end = 0;  // "0 BLOCK", "0 ENDBLK", behind that
};

struct DxfPlace {  // an entity or an object, with the children that follow it
  std::uint64_t offset = 0;
  std::uint32_t length = 0;
  AcDbObjectId id;  // null: in the file alone
};

struct DxfObject {
  DxfPlace place;
  std::uint64_t handle = 0;
};

struct DxfDocument : DrawingSource {
  std::string bytes;
  TagEncoding encoding;
  TextCodec codec;
  int version = 0;    // 1009, 1015, ...; 0 when the file doesn't say
  double factor = 1;  // mm per drawing unit
  // What $INSUNITS is to say when the drawing is written: the unit in which it was asked to be read.
  std::optional<int> insUnits;
  bool hasHandles = false;
  std::uint64_t lastHandle = 0;  // largest that occurs
  std::vector<DxfSection> sections;
  std::vector<DxfHeaderVariable> header;
  std::vector<DxfTable> tables;
  std::vector<DxfTableEntry> tableEntries;
  std::vector<DxfBlock> blocks;
  std::vector<DxfPlace> entities;         // in file order
  std::vector<DxfObject> objects;         // in file order
  std::size_t rootDictionary = kNowhere;  // index in objects
  std::unordered_map<std::uint32_t, std::uint64_t>
      handleOf;  // of dictionaries and blocks, by id: the file's own
  std::unordered_map<std::uint32_t, std::uint64_t>
      recordOf;  // path entity: handle of the xrecord with its record
  std::vector<AcDbObjectId> impliedLayers, impliedLineTypes,
      impliedBlocks;             // named by entities alone, in no table
  std::size_t eofAt = kNowhere;  // "0 EOF"
  std::size_t cutAt = kNowhere;  // start of an entity at which the file breaks off

  [[nodiscard]] TagReader reader(std::size_t offset = kNowhere) const {
    TagReader r(bytes, encoding);
    if (offset != kNowhere) r.seek(offset);
    return r;
  }
  // R13 and later: owners, subclass markers, light polylines.
  [[nodiscard]] bool isModern() const { return version >= 1012; }
  [[nodiscard]] const DxfTable* table(std::string_view name) const {
    for (const DxfTable& t : tables)
      if (t.name == name) return &t;
    return nullptr;
  }
};

// Handles above this are damage: nothing may be counted on from there.
inline constexpr std::uint64_t kLargestHandle = std::uint64_t{1} << 60;

}  // namespace tarnex
