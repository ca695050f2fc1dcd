// Reading and writing whole drawing files.
// Knows no command.
#include "host/editor/drawingfile.h"

#include <utility>
#include <vector>

#include "host/editor/answers.h"
#include "host/platform/files.h"
#include "host/platform/memory.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

// Bytes of objects that come of a byte of a drawing file and of the work on it; measured on loose lines and
// arcs.
constexpr std::size_t kObjectsPerByte = 5;

void nameAfter(AcDbDatabase& drawing, const std::string& path) {
  const std::string whole = absolutePath(path);
  drawing.dwgName = fileNameOf(whole);
  drawing.dwgPrefix = whole.substr(0, whole.size() - drawing.dwgName.size());
}

void replaceAll(std::string& text, std::string_view mark, const std::string& by) {
  for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size()))
    text.replace(at, mark.size(), by);
}

struct Converted {
  std::string bytes, failure;
};

Converted convertDwg(const std::string& path, const std::string& version) {
  const auto command = registryValue("Convert", "Dwg");
  const std::string what = path + ": this is a DWG drawing (" + version + ")";
  if (!command)
    return {{},
            what + "; save it as DXF, or name a converter in " + configurationFile() +
                " ([Convert], Dwg=command with %i for the DWG and %o for the DXF)."};
  const std::string folder = temporaryFolder("tarnex-dwg-");
  const std::string out = folder + "/drawing.dxf";
  std::vector<std::string> argv;
  std::string_view words = *command;
  while (auto word = takeWord(words)) {
    replaceAll(*word, "%i", path);
    replaceAll(*word, "%o", out);
    argv.push_back(*word);
  }
  std::string printed;
  const auto code = argv.empty() ? std::nullopt : runProcess(argv, &printed);
  auto bytes = readFile(out);
  // What is left behind in the temporary folder harms nobody.
  (void)removeFile(out);
  (void)removeFile(folder);
  if (!code) return {{}, what + "; the converter \"" + *command + "\" could not be started."};
  if (!bytes)
    return {{},
            what + "; the converter \"" + *command + "\" wrote no DXF (exit code " + std::to_string(*code) +
                ")."};
  return {std::move(*bytes), {}};
}

std::string failureText(const std::string& path, const DxfFailure& failure) {
  const std::string line = failure.line ? ":" + std::to_string(failure.line) : std::string();
  return path + line + ": " + failure.cause;
}

}  // namespace

DrawingLoad loadDrawing(const std::string& path, const AcRxClassDictionary* classes,
                        std::optional<double> unitFactor) {
  DrawingLoad load;
  auto bytes = readFile(path);
  if (!bytes) {
    load.failure = bytes.error.text();
    return load;
  }
  const auto version = dwgVersionOf(*bytes);
  if (version) {
    auto converted = convertDwg(path, *version);
    if (!converted.failure.empty()) {
      load.failure = converted.failure;
      return load;
    }
    *bytes = std::move(converted.bytes);
  }
  expectObjects(bytes->size() * kObjectsPerByte);
  auto drawing = std::make_unique<AcDbDatabase>();
  if (const auto failure = readDxf(*drawing, std::move(*bytes), {classes, unitFactor}, load.report)) {
    load.failure = failureText(path, *failure);
    return load;
  }
  nameAfter(*drawing, path);
  if (version) drawing->dwgPrefix.clear();  // what is written is no DWG, so it gets a name of its own
  load.drawing = std::move(drawing);
  return load;
}

std::optional<std::string> saveDrawing(AcDbDatabase& drawing, const std::string& path) {
  AtomicFile file(path);
  writeDxf(drawing, [&](std::string_view piece) { file.write(piece); });
  if (const auto failure = file.commit()) return failure->text();
  nameAfter(drawing, path);
  drawing.markSaved();
  return std::nullopt;
}

std::string noteText(const std::string& path, const DxfNote& note, bool binary) {
  if (binary) return path + ": byte " + std::to_string(note.line) + ": " + note.text;
  return path + ":" + std::to_string(note.line) + ": " + note.text;
}

}  // namespace tarnex
