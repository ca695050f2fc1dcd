// The program from its head to its end.
// Knows lists, sequences and the second run by their calls.
#include "outputiso/program.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "contour/hosthelpers.h"
#include "frame/cataloglanguage.h"
#include "host/platform/codepage.h"
#include "host/platform/files.h"
#include "machining/conditionlines.h"
#include "output3b/segment.h"
#include "outputiso/conditionlist.h"
#include "outputiso/figuresequence.h"
#include "outputiso/offsets.h"
#include "outputiso/postslots.h"
#include "outputiso/secondrun.h"
#include "toolpath/reliefbinding.h"

namespace tarnex {

namespace {

// Catalogue numbers.
constexpr int kNoPathText = 2, kNotWritten = 37, kMeterTitle = 189, kStrangeStyle = 20264, kLossy = 20268,
              kTwoValues = 20269, kRelieved = 20276, kUnlisted = 20277, kOtherOffset = 20278;

constexpr std::string_view kListWord = "SPRK";  // of a head: the lists stand in its place
constexpr const char* kFirstFigureNote = "( FIG-1  1ST ALL CIRCUMFERENCE)\n";
constexpr std::size_t kPieceSize = 1 << 16;

void replaceEach(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
}

// Text of the first run goes in, the finished program's bytes go to the file.
class ProgramFile {
 public:
  ProgramFile(const std::string& path, const IsoPost& iso, std::string page)
      : file_(path), run_(iso), page_(std::move(page)) {}

  [[nodiscard]] const std::optional<FileError>& failure() const { return file_.failure(); }
  void take(std::string& text) {
    run_.feed(text, finished_);
    text.clear();
    if (finished_.size() >= kPieceSize) flush();
  }
  [[nodiscard]] std::optional<FileError> commit() {
    run_.finish(finished_);
    flush();
    return file_.commit();
  }
  [[nodiscard]] long lines() const { return run_.lines(); }
  [[nodiscard]] bool lossy() const { return lossy_; }

 private:
  void flush() {
    bool lossy = false;
    finished_ = convertedFromUtf8(std::move(finished_), page_, &lossy);
    file_.write(finished_);
    lossy_ = lossy_ || lossy;
    finished_.clear();
  }
  AtomicFile file_;
  SecondRun run_;
  std::string page_, finished_;
  bool lossy_ = false;
};

class ProgramWriter {
 public:
  ProgramWriter(Module& module, const IsoProgramRequest& request)
      : module_(module),
        drawing_(module.drawing()),
        iso_(request.iso),
        job_(request.job),
        ids_(request.ids),
        message_([this](int id, std::initializer_list<FormatArg> args) { return module_.message(id, args); }),
        styles_(stylesInUse(drawing_, ids_, job_)) {}

  bool writeTo(const std::string& path) {
    waitForEditorsOf(module_, path);
    start();
    ProgramFile file(path, iso_, catalogLanguage(module_.language).writePage);
    if (file.failure()) return refuse(*file.failure());
    drawPaths();
    writeHead();
    if (iso_.post.paramInt(PostParam::kNumberOffsets) == 1) numberStyles();
    tellMismatches();
    heightLines();
    file.take(text_);
    const FiguresWritten written = figures(file);
    text_ += iso_.textBlock(1, "\n");
    file.take(text_);
    module_.editor.acedRestoreStatusBar();
    if (const auto failure = file.commit()) return refuse(*failure);
    if (file.lossy()) warnings_.push_back(module_.message(kLossy));
    tell(path, file.lines(), written);
    return true;
  }

 private:
  bool refuse(const FileError& failure) {
    module_.editor.messageBox(module_.message(kNotWritten) + "\n" + failure.text(), MB_ICONSTOP);
    module_.editor.commandFailed();
    return false;
  }

  void start() {
    iso_.resetProgram();
    iso_.post.word[PostWord::kCompensation] = "G41";
    iso_.ptOriginCopy = module_.ptOrigin.flat();
  }

  // Writers work with the lengths that drawing a path leaves on it; the first of all may set the exit of the
  // others. A path that can't be changed has a stand-in.
  void drawPaths() {
    const auto all = module_.editor.acedSSGet("X");
    for (AcDbObjectId id : all.value)
      if (const auto* path = drawing_.peek<CToolPath>(id)) {
        const DisplayedOvercut shown = path->displayedOvercut(module_.settings);
        module_.settings.dOvercutExit = shown.settingsExit;
        if (shown.dOvercutLen == path->dOvercutLen() && shown.dOvercutExit == path->dOvercutExit()) continue;
        change(id, [this](CToolPath& p) { p.refreshFromDisplay(module_.settings); });
      }
  }

  template <class Do>
  void change(AcDbObjectId id, Do what) {
    if (const auto standing = standIns_.find(id); standing != standIns_.end()) return what(*standing->second);
    if (const auto path = drawing_.open<CToolPath>(id, OpenMode::kForWrite)) return what(*path);
    const auto* path = drawing_.peek<CToolPath>(id);
    if (!path) return;
    auto copy = path->clone();
    auto& standIn = standIns_[id];
    standIn.reset(static_cast<CToolPath*>(copy.release()));
    what(*standIn);
  }

  void writeHead() {
    std::string head = iso_.textBlock(0, "\n");
    ConditionList list;
    if (head.find(kListWord) != std::string::npos) {
      list = conditionList({iso_.post, job_, styles_, module_.installFolder, message_});
      replaceEach(head, std::string(kListWord) + "\n", kListWord);
      table_ = offsetTable(iso_.post, styles_);
      tellDoubledNumbers(table_);
      replaceEach(head, kListWord, list.text + table_);
      warnings_.insert(warnings_.end(), list.warnings.begin(), list.warnings.end());
    }
    head.erase(0, std::min(head.find_first_not_of('\n'), head.size()));
    text_ += head;
    if (list.hasCell) text_ += kFirstFigureNote + list.sCornerCode + "\n";
  }

  // A number with two values: the control would take the last for both.
  void tellDoubledNumbers(std::string_view table) {
    std::map<std::string, std::string, std::less<>> values;
    for (std::size_t end = table.find('\n'); end != std::string_view::npos; end = table.find('\n')) {
      const std::string_view line = table.substr(0, end);
      const auto equals = line.find('=');
      const auto [at, isNew] = values.emplace(line.substr(0, equals), line.substr(equals + 1));
      if (!isNew && at->second != line.substr(equals + 1))
        warnings_.push_back(module_.message(kTwoValues, {std::string_view(at->first)}));
      table.remove_prefix(end + 1);
    }
  }

  // The head has one offset for each number, that of the style's first path: a fit makes it wrong for the
  // other side, and numbers that another machine's program has given out aren't in it at all.
  void tellMismatches() {
    if (table_.empty() || iso_.post.paramInt(PostParam::kOffsetByNumber) != 1) return;
    std::set<std::pair<std::string, int>> told;
    for (AcDbObjectId id : ids_) {
      const auto standing = standIns_.find(id);
      const auto* path = standing == standIns_.end() ? drawing_.peek<CToolPath>(id) : standing->second.get();
      if (!path || std::ranges::count(styles_.strangers, id) != 0) continue;
      const ProcessStyle style = path->getProcessStyle();
      if (!told.emplace(style.sName, path->nSide()).second) continue;
      const auto number = static_cast<long long>(path->nPathNo());
      for (const auto& m : offsetMismatches(iso_.post, table_, style, path->nSide()))
        warnings_.push_back(
            m.listed.empty()
                ? module_.message(kUnlisted, {number, std::string_view(m.sCode)})
                : module_.message(kOtherOffset, {number, std::string_view(m.sCode), std::string_view(m.own),
                                                 std::string_view(m.listed)}));
    }
  }

  // As the table counts them: the paths' own style, style by style in the job's order.
  void numberStyles() {
    int next = 1;
    for (const auto& use : styles_.list) {
      ProcessStyle style = drawing_.peek<CToolPath>(use.firstPath)->getProcessStyle();
      numberOffsets(iso_.post, style, use.nSide, next);
      for (AcDbObjectId id : ids_)
        if (const auto* path = drawing_.peek<CToolPath>(id);
            path && sameStyle(path->getProcessStyle(), style))
          change(id, [&](CToolPath& p) { p.setProcessStyle(style); });
    }
  }

  void heightLines() {
    const auto any = [this](auto test) {
      return std::ranges::any_of(ids_, [&](AcDbObjectId id) {
        const auto* path = drawing_.peek<CToolPath>(id);
        return path && test(*path);
      });
    };
    const auto put = [this](double programmed, double auxiliary) {
      text_ += iso_.post.param[PostParam::kProgrammedHeight] + formatFixed3(programmed) + "\n" +
               iso_.post.param[PostParam::kAuxiliaryHeight] + formatFixed3(auxiliary) + "\n";
    };
    if (iso_.post.paramInt(PostParam::kHeightLines) == 1 &&
        any([](const CToolPath& p) { return p.hasFlag(kFourAxis); }))
      return put(module_.settings.dThickProg, module_.settings.dThickAux);
    if (iso_.post.paramInt(PostParam::kTaperHeightLines) == 1 &&
        any([](const CToolPath& p) { return p.getProcessStyle().dValueC != 0.0 || p.hasSegTaper(); }))
      put(job_.dThickProg, job_.dThickAux);
  }

  FiguresWritten figures(ProgramFile& file) {
    auto& editor = module_.editor;
    editor.acedSetStatusBarProgressMeter(module_.message(kMeterTitle), 0, static_cast<long>(ids_.size()));
    FigureContext context{iso_,
                          module_.settings,
                          text_,
                          job_.nLeaderType,
                          job_.nCutType == CutType::kByPass ? CutType::kByPass : CutType::kByFigure,
                          module_.message(kNoPathText)};
    const CornerRelief relief = bindCornerRelief(module_, ReliefOf::kDrawnContour);
    const FigureSequence sequence{drawing_,
                                  ids_,
                                  context,
                                  relief,
                                  standIns_,
                                  [&](long at) { editor.acedSetStatusBarProgressMeterPos(at); },
                                  [&] { editor.acedRestoreStatusBar(); },
                                  [&] { file.take(text_); }};
    return context.nCutType == CutType::kByPass ? writeFiguresByPass(sequence)
                                                : writeFiguresByFigure(sequence);
  }

  void tell(const std::string& path, long lines, const FiguresWritten& written) {
    for (AcDbObjectId id : styles_.strangers)
      if (const auto* p = drawing_.peek<CToolPath>(id)) {
        const std::string style = p->getProcessStyle().sName;
        warnings_.push_back(
            module_.message(kStrangeStyle, {static_cast<long long>(p->nPathNo()), std::string_view(style)}));
      }
    if (written.relievedCorners > 0)
      warnings_.push_back(module_.message(kRelieved, {static_cast<long long>(written.relievedCorners),
                                                      module_.settings.dIsoFixB, module_.settings.dIsoFixA}));
    for (const auto& note : written.notes) warnings_.push_back(sentenceOf(note, message_));
    module_.state<LastProgramIso>() = {
        path, lines, written.figures, written.passes, iso_.aPassLength, std::move(warnings_)};
  }

  Module& module_;
  AcDbDatabase& drawing_;
  IsoPost& iso_;
  const JobLayout& job_;
  const std::vector<AcDbObjectId>& ids_;
  const MessageText message_;
  const StylesInUse styles_;
  std::map<AcDbObjectId, std::unique_ptr<CToolPath>> standIns_;
  std::string text_, table_;
  std::vector<std::string> warnings_;
};

}  // namespace

bool writeIsoFile(Module& module, const IsoProgramRequest& request) {
  return ProgramWriter(module, request).writeTo(request.path);
}

}  // namespace tarnex
