// Drawing files as a whole: reading one whatever its kind, and writing one so that the old or the new file
// stands. Knows no command.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/dxf/dxf.h"

namespace tarnex {

struct DrawingLoad {
  std::unique_ptr<AcDbDatabase> drawing;  // null when it can't be read; dwgName and dwgPrefix are set, the
                                          // prefix not for a DWG, so that saving asks for a name
  DxfReport report;
  std::string failure;  // "plate.dxf:12: cause" or "plate.dxf: cause"
};

// `path` is a path of this machine. A DWG goes through the converter that the user's configuration names
// (section `Convert`, value `Dwg`: a command with %i for the DWG and %o for the DXF that it shall write).
[[nodiscard]] DrawingLoad loadDrawing(const std::string& path, const AcRxClassDictionary* classes,
                                      std::optional<double> unitFactor = {});
// Writes and counts the drawing as saved under that name. Why not, if it can't be written; the old file then
// stands.
[[nodiscard]] std::optional<std::string> saveDrawing(AcDbDatabase& drawing, const std::string& path);

// A note as a line for the user: "plate.dxf:12: text".
[[nodiscard]] std::string noteText(const std::string& path, const DxfNote& note, bool binary);

}  // namespace tarnex
