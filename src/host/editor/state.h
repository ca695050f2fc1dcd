// What the editor holds between its calls; shared by the files that implement it, seen by nobody else.
// Knows no command.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/editor/editor.h"
#include "host/editor/keywords.h"
#include "host/editor/nearby.h"

namespace tarnex {

// The answers of one acedCommand, in order; `pause` lets the user answer.
struct ProgramAnswers {
  std::deque<std::string> texts;
  bool ranDry = false;  // a prompt found no answer left
};
inline constexpr std::string_view kPause = "\\";

struct InitGet {
  int flags = 0;
  std::vector<Keyword> keywords;
};
enum InitGetFlags { kNoEnter = 1, kNotZero = 2, kNotNegative = 4, kOtherText = 128 };

struct Reading {
  enum class Kind { kText, kCancel, kEnd };  // kEnd: no source has anything left
  Kind kind = Kind::kEnd;
  std::string text;
};

// How much of a line an answer takes.
enum class Extent { kWord, kHandles, kWholeLine };

inline constexpr double kLeastViewHeight = 1e-6;  // mm
inline constexpr double kViewAspect = 0.75;       // height of the screen to its width

struct View {
  AcGePoint2d centre;
  double height = 297;  // mm
  AcGePoint3d direction{0, 0, 1};
};

// The words of a line behind the one last taken. Long lists of handles are walked, not moved.
class LineRest {
 public:
  [[nodiscard]] bool empty() const { return at_ >= line_.size(); }
  [[nodiscard]] std::string_view view() const { return std::string_view(line_).substr(at_); }
  void set(std::string line) { line_ = std::move(line), at_ = 0; }
  void keep(std::string_view rest) { at_ = line_.size() - rest.size(); }  // an end of view()
  void clear() { set({}); }
  [[nodiscard]] std::string take() {
    std::string all(view());
    clear();
    return all;
  }

 private:
  std::string line_;
  std::size_t at_ = 0;
};

struct EditorState {
  // ---- output
  std::unique_ptr<OutputSink> sink;
  std::string outputLine;     // what stands on the last line of the output
  bool lineJustEnded = true;  // by an answer: a line end that follows would give an empty line
  std::string meterTitle;
  long meterLow = 0, meterHigh = 0;

  // ---- input
  std::vector<std::shared_ptr<InputSource>> sources;
  std::vector<ProgramAnswers> programs;
  LineRest restOfLine;
  std::string place;           // of the line last read, "" when typed
  bool personAnswers = false;  // the line last read came from a source that shows prompts
  std::string sentText;        // for the command line, after the running command
  InitGet initGet;
  std::string lastInput;  // acedGetInput
  AcGePoint3d lastPoint;  // user coordinates
  std::optional<EntityPick> draggedPick;
  std::optional<SelectionSet> namedInsteadOfCorner;

  // ---- drawing and what is known of it
  std::unique_ptr<AcDbDatabase> drawing;
  AcRxClassDictionary classes;
  Nearby nearby;
  SelectionSet previous;
  View view;
  std::vector<TemporaryVector> vectors;
  bool paced = true;
  std::map<std::string, SysVar> variables;  // those kept here, by upper-case name

  // ---- commands
  std::vector<Command> commands;
  std::size_t ownCommands = 0;  // the host's own stand first
  int depth = 0;                // commands inside one another
  std::vector<std::string> running;
  bool failed = false, anyFailed = false, quitting = false;
  std::string lastCommand;

  // ---- dialogs
  std::unique_ptr<DialogFrame> frame;
  std::function<std::string(int)> frameText;
  std::function<std::string()> frameFolder;
  int frameLanguage = 0;
  std::map<std::string, std::string> presets;

  // Commands run by a program with CMDECHO off say nothing.
  [[nodiscard]] bool silent() const;
  void write(std::string_view utf8);
  // A prompt that begins with a line end gets one only where a line has been begun.
  void writePrompt(std::string_view prompt);
  [[nodiscard]] std::string placePrefix() const { return place.empty() ? "" : place + ": "; }
  [[nodiscard]] int integer(const char* name) const;
};

struct AcEditor::State : EditorState {};

}  // namespace tarnex
