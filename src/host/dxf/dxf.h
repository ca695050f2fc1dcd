// The drawing file: DXF read into a drawing and written back without loss, ASCII and both binary kinds, every
// version. Knows nothing of commands, of tool paths or of where files lie.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/database/database.h"

namespace tarnex {

// In memory a drawing is in millimetres. A file in another unit ($INSUNITS) is scaled when it is read and the
// factor stays with the drawing (DxfReport::unitFactor): on writing, what was not changed goes out with the
// bytes it had, and new or changed numbers are divided by the factor. A drawing thus never changes its unit
// by being opened and saved; one that was read in another unit than it says (`unitFactor`) says that unit
// when it is written, if it is one. Header variables are kept as the file has them, unscaled; the user
// coordinate system in the drawing is in mm.
struct DxfReadOptions {
  const AcRxClassDictionary* classes =
      nullptr;                       // applications' classes, by which stored records become objects again
  std::optional<double> unitFactor;  // mm per drawing unit, above 0; goes before $INSUNITS
};

// Something repaired, left out or not usable. `line` counts from 1; in a binary file it is the byte, counted
// from 0.
struct DxfNote {
  std::uint64_t line = 0;
  std::string text;
  bool operator==(const DxfNote&) const = default;
};

struct DxfReport {
  std::string version;  // "AC1009" and so on; "" when the file doesn't say (taken for the oldest form)
  bool binary = false;
  std::string codePage;        // name for code page conversion of texts ("UTF-8", "CP1252", "GB18030", ...)
  std::string units;           // "millimetres", "inches", ..., "unitless" when the file doesn't say
  double unitFactor = 1;       // mm per drawing unit as applied
  std::vector<DxfNote> notes;  // by line; at most kMostNotes, the last one then says how many more there were
  std::map<std::string, long> entities;    // by DXF name, in model space, paper space and blocks together
  std::map<std::string, long> modelSpace;  // by DXF name, in model space alone
  long leftOut = 0;  // entities that could not be read at all; their bytes stay in the file
};
inline constexpr std::size_t kMostNotes = 500;

// Why a file can't be read as DXF at all.
struct DxfFailure {
  std::uint64_t line = 0;  // as in DxfNote
  std::string cause;       // one sentence without file name and line
  bool isDwg = false;      // a drawing of the other format, known by its first bytes
  std::string dwgVersion;  // "AC1018" and so on
};

// The version word of a DWG file by its first bytes, nothing for anything else.
[[nodiscard]] std::optional<std::string> dwgVersionOf(std::string_view bytes);

// Reads into `db`, which must be new and empty. The bytes stay with the drawing. Undo starts afresh, and the
// drawing counts as saved. Nothing is returned on success, also for a damaged file of which only a part could
// be read (the notes tell); a failure leaves the drawing as far as it came.
[[nodiscard]] std::optional<DxfFailure> readDxf(AcDbDatabase& db, std::string bytes,
                                                const DxfReadOptions& options, DxfReport& report);

// A copy of an entity (clone) is written with the tags of its original, unknown ones too, under a new handle.
// Before a copy is put into another drawing its place in the file must be taken away: setSource({}).

// Takes the file in pieces, in order.
using DxfSink = std::function<void(std::string_view)>;

// Writes the drawing: in the form, version and unit of the file that it was read from, else as ASCII of
// version AC1015 in millimetres. The drawing itself isn't changed, not even marked as saved. Lossless:
// untouched entities, unknown objects, tables, sections and header variables go out byte for byte.
void writeDxf(const AcDbDatabase& db, const DxfSink& sink);
[[nodiscard]] std::string dxfText(const AcDbDatabase& db);

// How an application's entity (a class with an application name, derived from AcDbPolyline) is stored: as a
// polyline with its record in extended data; docs/files.md tells the bytes.
inline constexpr std::size_t kLargestExtendedRecord = 14000;  // bytes; a longer record goes into an xrecord

}  // namespace tarnex
