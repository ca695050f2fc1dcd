// `GG`: the loop around the job's dialog.
// Knows the dialog's results; what a program is made of, it doesn't.
#include <algorithm>

#include "contour/hosthelpers.h"
#include "contour/userinput.h"
#include "frame/dialoglibrary.h"
#include "frame/drawingvars.h"
#include "machining/conditionlines.h"
#include "machining/joblayout.h"
#include "outputiso/driver.h"
#include "outputiso/programtools.h"
#include "pathcmd/jobs.h"
#include "pathcmd/paths.h"

namespace tarnex {

namespace {

// Catalogue numbers.
constexpr int kNoPost = 314, kMeterTitle = 45, kMarkPrompt = 500, kNotBuilt = 20010;

enum JobResult {
  kCancelled = -1,
  kAssign = 0,
  kWrite = 1,
  kClearMark = 2,
  kSetMark = 3,
  kStyleEdited = 4,
  kCostNote = 5,
  kReport = 6
};

class JobCommand {
 public:
  explicit JobCommand(Module& module) : module_(module), job_(module.state<JobLayout>()) {}

  void run() {
    load();
    const int result = dialogs();
    if (result == kWrite) {
      write();
      return;
    }
    keep();
    if (result == kCostNote) {
      module_.editor.print(module_.message(kNotBuilt, {std::string_view("GG: JG")}));
      module_.editor.commandFailed();
    }
    if (result == kReport) GY(module_);
  }

 private:
  void load() {
    job_ = JobLayout();
    job_.setFolder(module_.installFolder);
    std::string told;
    job_.load(&told);
    if (!told.empty()) module_.editor.print("\n" + told + "\n");
    bKnown_ = readJobKeys(DrawingVars(module_.drawing()), job_);
    atStart_ = job_;
  }

  // The first result that leaves the loop.
  int dialogs() {
    const bool asks = module_.editor.intVar("CMDDIA") != 0;
    for (;;) {
      const int result = dialog();
      if (result == kAssign) {
        if (!assignStyle(module_, current())) return kCancelled;
      } else if (result == kClearMark || result == kSetMark) {
        markPaths(result);
      } else if (result == kStyleEdited) {
        spreadStyle();
      } else {
        return result;
      }
      if (!asks) return kCancelled;  // nobody who could answer otherwise
    }
  }

  int dialog() {
    module_.saveSettings();
    const JobLayout before = job_;
    const int result = DialogLibrary(module_).call("ProStyleDlg", kCancelled, &job_, bKnown_ ? 1 : 0);
    if (result < kAssign || result > kReport) job_ = before;
    module_.loadSettings();
    return result < kAssign || result > kReport ? kCancelled : result;
  }

  const ProcessStyle& current() const {
    return job_.styles[static_cast<std::size_t>(std::clamp(job_.nStyleNow, 0, kMostStyles - 1))];
  }

  // A job that is as it was is left where it is: so a cancelled command leaves no trace.
  void keep() {
    if (!(job_ == atStart_)) store();
  }
  void store() {
    DrawingVars vars(module_.drawing());
    writeJobKeys(vars, job_);
    std::string cause;
    if (job_.bKept && !job_.save(&cause)) module_.editor.print("\n" + cause + "\n");
    atStart_ = job_;
  }

  void write() {
    keep();
    if (!loadPost()) return;
    writeIsoProgram(module_, [this] { store(); });
    module_.loadSettings();
    rebuildPathList(module_);
  }

  bool loadPost() {
    auto& post = module_.state<IsoPost>().post;
    post = MachinePost();
    const PostReading reading =
        readPost(postPath(module_.installFolder, job_.sPostPath, job_.sMachine), post);
    if (!reading.read) {
      module_.editor.messageBox(module_.message(kNoPost, {std::string_view(job_.sMachine)}), MB_ICONSTOP);
      module_.editor.commandFailed();
      return false;
    }
    if (!reading.problem.empty()) module_.editor.print("\n" + reading.problem + "\n");
    if (const auto family = machineFamily(job_.sPostPath, [this](int id) { return module_.message(id); }))
      post.nFamily = *family;
    return true;
  }

  void spreadStyle() {
    rebuildPathList(module_);
    for (AcDbObjectId id : module_.state<PathState>().PathList)
      if (const auto* path = module_.drawing().peek<CToolPath>(id);
          path && path->getProcessStyle().sName == current().sName)
        if (auto open = module_.drawing().open<CToolPath>(id, OpenMode::kForWrite))
          open->setProcessStyle(current());
  }

  // Lead kind and overcut of marked paths are those of the settings for them.
  void markPaths(int result) {
    const bool on = result == kSetMark;
    for (;;) {
      const auto input =
          getUserInput(module_.editor, module_.message(kMarkPrompt + result), PickMode::kEntityPickBox);
      if (input.kind == InputKind::kEnter || input.kind == InputKind::kCancel) return;
      if (input.kind == InputKind::kEntity) mark(input.entity, on);
      if (input.kind == InputKind::kPoint) markWindow(input.point, on);
    }
  }

  void markWindow(const AcGePoint3d& first, bool on) {
    const SelectionSet set = windowSelect(module_.editor, first);
    module_.editor.acedSetStatusBarProgressMeter(module_.message(kMeterTitle), 0,
                                                 static_cast<long>(set.size()));
    for (std::size_t i = 0; i < set.size(); ++i) {
      module_.editor.acedSetStatusBarProgressMeterPos(static_cast<long>(i));
      mark(set[i], on);
    }
    module_.editor.acedRestoreStatusBar();
  }

  void mark(AcDbObjectId id, bool on) {
    if (auto path = module_.drawing().open<CToolPath>(id, OpenMode::kForWrite)) path->setFlag(kIsoMark64, on);
  }

  Module& module_;
  JobLayout& job_;
  JobLayout atStart_;
  bool bKnown_ = false;
};

}  // namespace

void GG(Module& module) {
  JobCommand(module).run();
}

}  // namespace tarnex
