// The frame of a 3B program.
// Knows paths by their ends; what is written for one path stands in contourwriter.
#include "output3b/programwriter.h"

#include <utility>

#include "contour/geometrylibrary.h"
#include "contour/hosthelpers.h"
#include "frame/cataloglanguage.h"
#include "frame/dialoglibrary.h"
#include "frame/drawingvars.h"
#include "host/platform/codepage.h"
#include "host/platform/files.h"
#include "machining/machinetable.h"
#include "output3b/contourwriter.h"
#include "output3b/segment.h"
#include "pathcmd/paths.h"
#include "toolpath/reliefbinding.h"

namespace tarnex {

namespace {

constexpr int kMostTransits = 100;

class ProgramWriter {
 public:
  ProgramWriter(Module& module, std::vector<AcDbObjectId> ids)
      : module_(module),
        drawing_(module.drawing()),
        vars_(drawing_),
        ids_(std::move(ids)),
        origin_{module.ptOrigin.x, module.ptOrigin.y} {}

  void chooseMachine(const std::string& name) {
    MachineTable machines;
    machines.load(module_.installFolder, module_.language);
    machines.find(name, pause_, stop_);
  }

  bool writeTo(const std::string& name) {
    const std::string path = realPath(isAbsolute(name) ? name : module_.installFolder + "\\" + name);
    header(name);
    module_.editor.acedSetStatusBarProgressMeter(module_.message(189), 0, static_cast<long>(ids_.size()));
    CommandSetting setting(module_.editor);
    setting.cmdEcho(0);
    start();
    paths();
    module_.editor.acedRestoreStatusBar();
    end();
    program_.unnumbered(stop_);
    // The text goes as soon as its bytes stand: a program is as long as the drawing that it was made from.
    const std::string bytes =
        convertedFromUtf8(std::exchange(program_.text, {}), catalogLanguage(module_.language).writePage);
    waitForEditorsOf(module_, path);
    if (const auto failure = writeFileAtomically(path, bytes)) {
      module_.editor.messageBox(module_.message(37) + "\n" + failure->text(), MB_ICONSTOP);
      module_.editor.commandFailed();
      return false;
    }
    module_.state<LastProgram3b>() = {path, program_.lineNo - 1, ids_.size()};
    return true;
  }

 private:
  static bool isAbsolute(const std::string& name) {
    return !name.empty() && (name[0] == '/' || name[0] == '\\' || (name.size() > 1 && name[1] == ':'));
  }

  void header(const std::string& name) {
    const LocalTime t = localTime();
    const std::string drawing = drawing_.dwgName;
    program_.text = "//" + module_.message(5012);
    program_.text += formatted("\n//    %02d:%02d %d-%02d-%2d", t.hour, t.minute, t.year, t.month, t.day);
    program_.text +=
        "\n//    " + module_.message(5000) + " " + module_.message(5014) + "  Name: " + fileNameOf(name);
    program_.text += "\n//    DWG=" + drawing;
    program_.text += "\n//" + module_.message(5013);
  }

  void move(AcGePoint2d from, AcGePoint2d to) {
    const std::string block = encodeSegment(from, to, 0, module_.settings.bPrintCoords ? &origin_ : nullptr);
    if (!block.empty()) program_.block(block);
  }

  void pause() { program_.unnumbered(pause_); }

  std::optional<AcGePoint2d> transit(const char* key, int k) const {
    const auto p = vars_.getPoint(key + std::to_string(k));
    return p ? std::optional(p->flat()) : std::nullopt;
  }

  std::optional<AcGePoint2d> threadOfFirst() const {
    for (AcDbObjectId id : ids_)
      if (const auto path = drawing_.open<CToolPath>(id); path && path->numVerts() > 0)
        return path->getPointAt(0);
    return std::nullopt;
  }

  // From the machine's start, over the transit points, to the first path.
  void start() {
    const auto first = threadOfFirst();
    if (!first) return;
    int k = kMostTransits;
    while (k >= 0 && !transit("STARTPOINT", k)) --k;
    AcGePoint2d at = k >= 0 ? *transit("STARTPOINT", k) : *first;
    program_.text +=
        formatted("\n//    Start Point  = %8s , %8s ;     X    ,     Y",
                  formatFixed3(at.x - origin_.x).c_str(), formatFixed3(at.y - origin_.y).c_str());
    if (k < 0) return;
    for (--k; k >= 0; --k) {
      const auto next = transit("STARTPOINT", k);
      if (!next) break;
      move(at, *next);
      pause();
      at = *next;
    }
    move(at, *first);
    pause();
  }

  // How far the wire has to travel, for the operator.
  void travelComment(AcGePoint2d from, AcGePoint2d to) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    program_.text += "\n\n//";
    program_.text += module_.message(4, {static_cast<long long>(dx < 0 ? 3 : 1), formatFixed3(std::abs(dx)),
                                         static_cast<long long>(dy < 0 ? 4 : 2), formatFixed3(std::abs(dy))});
  }

  void link(AcGePoint2d to) {
    if (!(end_.distanceTo(to) > kSamePoint)) return;
    if (module_.settings.bPrintCoords) travelComment(end_, to);
    move(end_, to);
    pause();
  }

  // Room for the blocks of plain paths, so that a long text isn't moved while it grows.
  void makeRoom() {
    constexpr std::size_t kBlockBytes = 48;
    std::size_t blocks = 0;
    for (AcDbObjectId id : ids_)
      if (const auto* path = drawing_.peek<CToolPath>(id))
        blocks += static_cast<std::size_t>(path->numVerts()) + 2;
    program_.text.reserve(program_.text.size() + blocks * kBlockBytes);
  }

  void paths() {
    makeRoom();
    auto& wires = module_.state<WirePaths>();
    wires.follow(drawing_);
    const Contour3bContext context{
        module_.settings,
        origin_,
        pause_,
        module_.settings.bAutoFix ? bindCornerRelief(module_, ReliefOf::kWireCentre) : CornerRelief{},
        [this](std::string_view line) { module_.editor.print(line); },
        [this](int id) { return module_.message(id); },
        &wires};
    bool any = false;
    for (std::size_t i = 0; i < ids_.size(); ++i) {
      module_.editor.acedSetStatusBarProgressMeterPos(static_cast<long>(i));
      const auto path = drawing_.open<CToolPath>(ids_[i]);
      if (!path || path->numVerts() == 0) continue;
      const AcGePoint2d thread = path->getPointAt(0);
      if (any) link(thread);
      any = true;
      write3B(*path, context, program_);
      if (i + 1 < ids_.size()) pause();
      end_ = path->hasFlag(kOpenPath) ? path->getEndPoint(true) : thread;
    }
  }

  void end() {
    for (int k = 0;; ++k) {
      const auto next = transit("ENDPOINT", k);
      if (!next) return;
      pause();
      move(end_, *next);
      end_ = *next;
    }
  }

  Module& module_;
  AcDbDatabase& drawing_;
  DrawingVars vars_;
  std::vector<AcDbObjectId> ids_;
  AcGePoint2d origin_, end_;
  std::string pause_ = "D", stop_ = "DD";
  Program3b program_;
};

// Empty when the user cancels.
std::string programName(Module& module) {
  const bool ask = module.settings.bAskFileName != 0;
  std::string base = ask ? module.settings.sLastNcFile : module.drawing().dwgName;
  const auto folder = base.find_last_of("/\\");
  const auto first = folder == std::string::npos ? 0 : folder + 1;
  if (const auto dot = base.rfind('.'); dot != std::string::npos && dot > first) base.resize(dot);
  if (!ask) return base + ".3b";
  const auto answer = module.editor.acedGetFileD(module.message(20202), base, "3B", true);
  return answer ? answer.value : std::string();
}

void takeOptionsOfDrawing(Module& module) {
  const DrawingVars vars(module.drawing());
  const auto fix = vars.getInt("ISO_3BAUTOFIX");
  if (!fix) return;
  auto& s = module.settings;
  s.bAutoFix = *fix;
  s.dAutoFixLen = vars.getDouble("ISO_3BAUTOFIXLen").value_or(s.dAutoFixLen);
  s.bOvercut = vars.getInt("ISO_3BGUOQIE").value_or(s.bOvercut);
  s.dOvercutLen = vars.getDouble("ISO_3BGUOQIELen").value_or(s.dOvercutLen);
}

void keepOptionsInDrawing(Module& module) {
  DrawingVars vars(module.drawing());
  const auto& s = module.settings;
  vars.setInt("ISO_3BAUTOFIX", s.bAutoFix);
  vars.setDouble("ISO_3BAUTOFIXLen", s.dAutoFixLen);
  vars.setInt("ISO_3BGUOQIE", s.bOvercut);
  vars.setDouble("ISO_3BGUOQIELen", s.dOvercutLen);
}

}  // namespace

bool write3BProgram(Module& module, const std::string& machine) {
  auto ids = selectProgramPaths(module);
  if (!ids) return false;
  module.ptOrigin = module.drawing().ucsorg;
  const std::string name = programName(module);
  if (name.empty()) return false;
  ProgramWriter writer(module, std::move(*ids));
  writer.chooseMachine(machine);
  module.settings.sLastNcFile = name;
  if (!writer.writeTo(name)) return false;
  module.saveSettings();
  const auto& written = module.state<LastProgram3b>();
  module.editor.print("\n" + module.message(20203, {written.path, static_cast<long long>(written.blocks)}));
  handOverToEditor(module, written.path);
  return true;
}

void BB(Module& module) {
  std::string machine = DrawingVars(module.drawing()).getString("ISO_MACHINEKZS").value_or("");
  if (machine.empty()) machine = module.settings.sMachineKZS;
  takeOptionsOfDrawing(module);
  module.saveSettings();
  constexpr int kConfirmed = 1;
  if (DialogLibrary(module).call("PKZSDlg", -1, &machine) != kConfirmed) return;
  module.loadSettings();
  DrawingVars(module.drawing()).setString("ISO_MACHINEKZS", machine);
  write3BProgram(module, machine);
  module.loadSettings();
  keepOptionsInDrawing(module);
}

}  // namespace tarnex
