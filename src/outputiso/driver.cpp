// From the paths' choice to the hand-over.
// Knows no block.
#include "outputiso/driver.h"

#include <algorithm>
#include <functional>

#include "contour/hosthelpers.h"
#include "host/editor/ucs.h"
#include "host/platform/files.h"
#include "outputiso/postslots.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

// Catalogue numbers.
constexpr int kOriginPrompt = 40, kDragText = 480, kFilePrompt = 20202, kWritten = 20266;
constexpr int kSnapBits = 0x27;  // end, middle, centre, intersection
constexpr std::size_t kDrawingExtension = 4;

// World. Nothing on cancel.
std::optional<AcGePoint3d> askOrigin(Module& module) {
  auto& editor = module.editor;
  const AcGePoint3d origin = module.drawing().ucsorg;
  CommandSetting setting(editor);
  setting.osmode(editor.intVar("OSMODE") | kSnapBits);
  const auto answer = editor.acedGetPoint(module.message(kOriginPrompt, {origin.x, origin.y}));
  if (answer.reply == Reply::RTNONE) return origin;
  if (!answer) return std::nullopt;
  return ucsToWorld(module.drawing(), {answer.value.x, answer.value.y, 0});
}

std::string lowered(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

// The drawing's name where the last program stands.
std::string offeredName(const Module& module, const std::string& drawingName, const std::string& extension) {
  std::string name = lowered(drawingName);
  if (name.size() > kDrawingExtension && name[name.size() - kDrawingExtension] == '.')
    name.resize(name.size() - kDrawingExtension);
  if (name.empty()) name = "Noname";
  const std::string& last = module.settings.sLastNcFile;
  const auto folder = last.find_last_of("\\/");
  const std::string file = name + "." + extension;
  return folder == std::string::npos ? file : last.substr(0, folder + 1) + file;
}

// Real path; empty on cancel.
std::string askFile(Module& module, const IsoPost& iso) {
  const std::string& own = iso.post.param[PostParam::kExtension];
  const std::string name = offeredName(module, module.drawing().dwgName, own.empty() ? "ISO" : own);
  const auto answer = module.editor.acedGetFileD(module.message(kFilePrompt), name, "ISO", true);
  return answer ? realPath(answer.value) : std::string();
}

// The file's name as a text that the user places.
void offerName(Module& module, const std::string& path) {
  auto& editor = module.editor;
  auto text = std::make_unique<AcDbText>(AcGePoint3d{}, fileNameOf(path), module.settings.dTextHeight);
  const AcDbObjectId id =
      appendToModelSpace(module.drawing(), std::move(text), {}, kColorByLayer, std::string_view());
  const auto at = editor.acedDragGen({id}, module.message(kDragText), false);
  CommandSetting setting(editor);
  setting.cmdEcho(0);
  const std::string done;
  if (at)
    editor.acedCommand(
        {std::string("move"), id, done, AcGePoint3d{}, ucsToWorld(module.drawing(), at.value)});
  else
    editor.acedCommand({std::string("erase"), id, done});
}

}  // namespace

bool writeIsoProgram(Module& module, const std::function<void()>& chosen) {
  auto ids = selectProgramPaths(module);
  if (!ids) return false;
  const auto origin = askOrigin(module);
  if (!origin) return false;
  auto& iso = module.state<IsoPost>();
  const std::string path = askFile(module, iso);
  if (path.empty()) return false;
  module.ptOrigin = *origin;
  if (chosen) chosen();
  module.loadSettings();
  if (module.settings.bOfferFileText != 0) offerName(module, path);
  module.settings.sLastNcFile = path;
  if (!writeIsoFile(module, {iso, module.state<JobLayout>(), *ids, path})) return false;
  auto& written = module.state<LastProgramIso>();
  written.order = std::move(*ids);
  module.editor.print("\n" +
                      module.message(kWritten, {std::string_view(path), static_cast<long long>(written.lines),
                                                static_cast<long long>(written.figures)}));
  for (const auto& warning : written.warnings) module.editor.print("\n" + warning);
  module.editor.print("\n");
  handOverToEditor(module, path);
  module.saveSettings();
  return true;
}

}  // namespace tarnex
