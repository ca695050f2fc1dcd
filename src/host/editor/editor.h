// The host's editor: output, prompts, selection, system variables, the view, and the command stack, on one
// drawing. Knows nothing of wire EDM; applications add their commands.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/database/database.h"
#include "host/editor/form.h"
#include "host/editor/input.h"
#include "host/editor/screen.h"

namespace tarnex {

struct DisplayList;
struct DisplayOptions;

// How a prompt ended. The numbers are the host's.
enum class Reply { RTNORM = 5100, RTNONE = 5000, RTCAN = -5002, RTKWORD = -5005, RTERROR = -5001 };

template <class T>
struct Answer {
  Reply reply = Reply::RTCAN;
  T value{};
  explicit operator bool() const { return reply == Reply::RTNORM; }
};

struct EntityPick {
  AcDbObjectId entity;
  AcGePoint3d point;  // where it was picked (world); for one named by its handle a point on it
};

using SelectionSet = std::vector<AcDbObjectId>;  // in drawing order but where the user picked one by one

using SysVar = std::variant<long long, double, std::string, AcGePoint3d>;

// One argument of acedCommand: a text or keyword ("" is Enter), a number, a point (world), an entity, or an
// entity picked at a point.
using CommandArg = std::variant<std::string, long long, double, AcGePoint3d, AcDbObjectId, EntityPick>;

enum MessageBoxStyle {
  MB_OK = 0,
  MB_YESNO = 4,
  MB_ICONSTOP = 0x10,
  MB_ICONQUESTION = 0x20,
  MB_ICONINFORMATION = 0x40
};

enum CommandFlags {
  ACRX_CMD_MODAL = 0,
  ACRX_CMD_TRANSPARENT = 1,
  ACRX_CMD_USEPICKSET = 2,
  ACRX_CMD_NO_UNDO_MARKER = 8  // makes no undo step of its own (u, redo, open)
};

struct Command {
  std::string group, globalName, localName;
  int flags = ACRX_CMD_MODAL;
  std::function<void()> run;  // empty: not built yet
  std::string help;           // one line, may be empty
};

// Thrown inside a running command when the user interrupts the program; the command stack undoes the command.
struct CommandInterrupted {};

// Where output goes: a terminal, a test's string.
class OutputSink {
 public:
  virtual ~OutputSink() = default;
  virtual void print(std::string_view utf8) = 0;
  virtual void messageBox(std::string_view text, int style) {
    (void)style;
    print("\n");
    print(text);
    print("\n");
  }
  virtual void meter(std::string_view title, long position, long total) {
    (void)title, (void)position, (void)total;
  }
};

class AcEditor {
 public:
  AcEditor(std::unique_ptr<OutputSink> sink);
  ~AcEditor();
  AcEditor(const AcEditor&) = delete;
  AcEditor& operator=(const AcEditor&) = delete;

  // ---- drawing
  [[nodiscard]] AcDbDatabase& database();
  void setDatabase(std::unique_ptr<AcDbDatabase> drawing);  // runs the loaded-drawing hooks
  [[nodiscard]] AcRxClassDictionary& classes();             // application classes for reading drawings
  std::vector<std::function<void()>> drawingLoaded;         // run after each load and new
  std::vector<std::function<void()>>
      afterUndo;  // run after u, redo, and a command undone since it was interrupted

  // ---- output
  void acutPrintf(const char* pattern, ...)
      __attribute__((format(printf, 2, 3)));  // literals of the code only
  void print(std::string_view utf8);
  void messageBox(std::string_view text, int style = MB_OK);
  [[nodiscard]] bool askYesNo(std::string_view text);  // MB_YESNO with MB_ICONQUESTION; asks y/n
  void acedSetStatusBarProgressMeter(std::string_view title, long low, long high);
  void acedSetStatusBarProgressMeterPos(long position);  // also looks for an interrupt
  void acedRestoreStatusBar();
  void checkInterrupt();  // throws CommandInterrupted
  void setSink(std::unique_ptr<OutputSink> sink);
  [[nodiscard]] OutputSink& sink();

  // ---- input
  // Points that prompts give, and those given to selection and snap, are in the user coordinate system;
  // those of EntityPick and CommandArg are in the world. Words of one line are answers one after another
  // ("circle 0,0 5"); a prompt that takes blanks (texts, file names) gets the rest of its line. Quotes hold
  // blanks together, "" is Enter. A plain point is a pick: the running object snap (OSMODE) works on it,
  // unless it lies on a curve already. Points written *x,y or @... stay as they are; "mid" and so on before
  // a point snap once. When no source has anything left, every prompt answers RTCAN. A wrong answer that no
  // person gave is a failure.

  // Sources are stacked: the newest is asked until it ends, then the one below.
  void pushInput(std::shared_ptr<InputSource> source);
  [[nodiscard]] bool hasInput() const;
  [[nodiscard]] std::size_t inputDepth() const;  // sources above one another
  // Every answer taken, as a script that gives the same again.
  std::function<void(std::string_view line)> journal;

  // Keywords as the host's: words at blanks, "UNdo" style capitals or plain; an answer matches ignoring case,
  // whole or by its capitals' abbreviation. Flags: 1 no Enter, 2 not zero, 4 not negative, 128 other text is
  // handed back. Holds for the next prompt only.
  void acedInitGet(int flags, std::string_view keywords);
  [[nodiscard]] std::string acedGetInput() const;  // keyword or text of the last RTKWORD
  [[nodiscard]] Answer<AcGePoint3d> acedGetPoint(std::string_view prompt, const AcGePoint3d* base = nullptr);
  [[nodiscard]] Answer<AcGePoint3d> acedGetCorner(const AcGePoint3d& first, std::string_view prompt);
  [[nodiscard]] Answer<double> acedGetReal(std::string_view prompt);
  [[nodiscard]] Answer<int> acedGetInt(std::string_view prompt);
  [[nodiscard]] Answer<double> acedGetDist(std::string_view prompt, const AcGePoint3d* base = nullptr);
  [[nodiscard]] Answer<double> acedGetAngle(std::string_view prompt,
                                            const AcGePoint3d* base = nullptr);  // radians
  [[nodiscard]] Answer<std::string> acedGetString(bool blanks,
                                                  std::string_view prompt);  // Enter: RTNORM and ""
  [[nodiscard]] Answer<std::string> acedGetKword(std::string_view prompt);
  // A file to save to or to open, as a path of this machine. The prompt stands without a colon. Enter takes
  // `standing`; a name without extension gets `extension` (without dot). A person is asked before a file is
  // replaced.
  [[nodiscard]] Answer<std::string> acedGetFileD(std::string_view prompt, const std::string& standing,
                                                 const std::string& extension, bool save);
  // One entity by a pick point, by its handle written as &1F, or by the word last. RTERROR: nothing there;
  // RTNONE: Enter.
  [[nodiscard]] Answer<EntityPick> acedEntSel(std::string_view prompt);
  // The drag prompt: RTNORM a point, RTNONE Enter, RTCAN, RTKWORD keyword or text (flags as acedInitGet
  // said). `pickBox`: the cursor is the pick box, and an entity may be named by handle; it is then in
  // draggedPick().
  [[nodiscard]] Answer<AcGePoint3d> acedDragGen(const SelectionSet& set, std::string_view prompt,
                                                bool pickBox);
  [[nodiscard]] std::optional<EntityPick> draggedPick() const;

  // ---- selection
  // Modes: "" asks the user (points, w, c, all, last, previous, remove/add, handles &1F, Enter ends), "X"
  // the whole drawing in drawing order, "W"/"C" window or crossing of two corners, "L" last, "P" previous,
  // "A" all that is shown, ":$" asks with own prompts. `filter` holds items such as {0,"LINE,ARC"},
  // {8,"CUT*"}, {62,1}; strings with , and * ?. Nothing found or cancelled: RTERROR or RTCAN. The mode ""
  // with a `first` point asks nobody and gives all that stands there within the pick box, nearest first.
  // Entities on locked layers can be selected; but for "X" only what is shown. `previous` is the last set
  // that a user gathered.
  struct SelectArgs {
    std::optional<AcGePoint3d> first, second;
    ResBufChain filter;
    std::string addPrompt, removePrompt;
  };
  [[nodiscard]] Answer<SelectionSet> acedSSGet(std::string_view mode);
  [[nodiscard]] Answer<SelectionSet> acedSSGet(std::string_view mode, const SelectArgs& args);
  // What stands at a point within the pick box, nearest first.
  [[nodiscard]] SelectionSet entitiesAtPickBox(const AcGePoint3d& p);
  // The answer to the second corner of a window may be a list of handles (&1F &20 ...); they are then the
  // window's content. Emptied by each acedGetCorner.
  [[nodiscard]] std::optional<SelectionSet> namedInsteadOfCorner() const;
  [[nodiscard]] AcDbObjectId acdbEntLast() const;  // newest entity of model space; null
  [[nodiscard]] AcDbObjectId acdbEntNext(AcDbObjectId after) const;
  // Snaps a point with "near", "mid", "end", "cen", "perp", "quad", "int", "node": nothing within the
  // aperture gives nothing. Of a hit curve or span the snap point may lie farther away (its middle, its end).
  // Several words may be parted by commas; then only snap points within the aperture count, and near comes
  // last.
  [[nodiscard]] std::optional<AcGePoint3d> acedOsnap(const AcGePoint3d& p, std::string_view mode);

  // ---- variables and view
  [[nodiscard]] std::optional<SysVar> acedGetVar(std::string_view name) const;
  [[nodiscard]] bool acedSetVar(std::string_view name,
                                const SysVar& value);         // false: unknown, read-only, wrong kind
  [[nodiscard]] double realVar(std::string_view name) const;  // 0 when unknown
  [[nodiscard]] int intVar(std::string_view name) const;
  [[nodiscard]] AcGePoint2d viewCentre() const;
  void setView(AcGePoint2d centre, double height);  // height is VIEWSIZE, mm
  void setViewDirection(const AcGePoint3d& from);   // VIEWDIR; the plan view is 0,0,1
  void
  zoomExtents();  // a screen 4 wide and 3 high shows all that is drawn; the view of an empty drawing stays

  // ---- screen
  // What the drawing shows now; temporary vectors aren't in it. The options' context is the application's.
  [[nodiscard]] DisplayList shown() const;
  [[nodiscard]] DisplayList shown(const DisplayOptions& options) const;
  // The application's context for what its entities draw (DisplayOptions::applicationContext), as it is now.
  std::function<std::shared_ptr<const void>()> displayContext;
  // A line over the drawing, from and to in the world. It stands until a redraw, a regen, another view or
  // another drawing. RTERROR: a number isn't finite, nothing is drawn.
  Reply acedGrDraw(const AcGePoint3d& from, const AcGePoint3d& to, int color, bool highlight);
  void acedRedraw();  // wipes the temporary vectors
  [[nodiscard]] const std::vector<TemporaryVector>& temporaryVectors() const;
  // Waits as a command paces itself; a negative time is none. Ctrl-C ends the wait: CommandInterrupted.
  void Sleep(int milliseconds);
  void setPaced(bool paced);  // false: waits last no time
  // Hides an entity on the screen or shows it again (AcDbEntity::setVisibility). False: it can't be opened
  // for writing.
  bool setVisibility(AcDbObjectId entity, bool visible);
  std::vector<std::shared_ptr<ScreenWatcher>> screenWatchers;

  // ---- commands
  void addCommand(Command command);
  void removeGroup(std::string_view group);
  [[nodiscard]] const std::vector<Command>& commands() const;  // in registration order; the host's own first
  // As typed by global or local name, then ignoring case (earlier row first); applications before the host's
  // own.
  [[nodiscard]] const Command* findCommand(std::string_view name) const;
  // Runs one command by name as one undo step (inside a running command: within its step). Unknown or not
  // built: says so. False: it failed or there is none. A command that is interrupted or breaks off with an
  // error is undone.
  bool runCommand(std::string_view name);
  // Marks the running command as failed (exit code, message told by the caller).
  void commandFailed();
  [[nodiscard]] bool anyCommandFailed() const;
  // Reads commands from the input until it ends or quit. 0, or 1 when a command failed. Enter repeats the
  // last command where a person types; empty lines of scripts between commands are passed over. The name of a
  // system variable is a command that sets it. Words that the command didn't ask for are told and make it
  // fail. Ctrl-C drops scripts.
  int runLoop();
  void quit();
  // Asks a person who has changes that aren't saved; scripts are not asked. False: keep the drawing.
  [[nodiscard]] bool mayDropChanges();
  // Runs a host command with ready answers inside the running command; RTERROR when it is unknown, failed, or
  // asked for more answers than there are (the prompt then gets RTCAN). The text "\\" lets the user answer in
  // its place. With CMDECHO 0 nothing of it is printed but what the user is asked.
  Reply acedCommand(const std::vector<CommandArg>& args);
  // Feeds text to the command line as if typed (sent macros), after the running command.
  void sendText(std::string_view text);

  // ---- dialogs
  [[nodiscard]] DialogFrame& acedGetAcadFrame();
  void setFrameTexts(std::function<std::string(int)> text, std::function<std::string()> installFolder,
                     int language = 0);
  // Values set ahead for form fields by name.
  void preset(std::string field, std::string value);
  [[nodiscard]] std::optional<std::string> presetOf(const std::string& field) const;
  // Asked by the command SET before the value is kept for forms: true when the application knows the name. An
  // `error` that isn't empty refuses the value (said to the user, the command fails, nothing is kept).
  std::vector<std::function<bool(const std::string& name, const std::string& value, std::string& error)>>
      setHooks;
  // Asked by the command LIST for each entity: true when the application has put its own lines (without line
  // ends) for it in place of AcDbEntity::list, which has no texts of the user's language in reach.
  std::vector<std::function<bool(const AcDbEntity& entity, std::vector<std::string>& lines)>> listHooks;

 private:
  bool runFound(const Command& command);
  void runTyped(const std::string& name);
  [[nodiscard]] std::string argumentText(const CommandArg& arg) const;
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tarnex
