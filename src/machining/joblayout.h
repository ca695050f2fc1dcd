// The job: machine, material and process styles as the user set them last; its file and its keys in the
// drawing. Knows records and drawing variables; what a program makes of the job is above it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "machining/processstyle.h"

namespace tarnex {

class DrawingVars;

struct SortMode {
  static constexpr std::int32_t kNearestNext = 0, kByStyle = 1, kByNumber = 2;
};
struct CutType {
  static constexpr std::int32_t kByFigure = 0, kByPass = 1;
};

inline constexpr int kMostStyles = 10;

// Texts are UTF-8; bytes of the file in `sTextCode`, at most 19 of them in the texts here.
struct JobLayout {
  static constexpr std::size_t kFileSize = 5512;

  std::int32_t nStyleCount = 1;                  // styles in use, at most kMostStyles
  std::int32_t nStyleNow = 0;                    // the one that the dialog shows; not in the file
  std::string sMachine = "SODICK";               // the post's file name
  std::string sPostPath = "SODICK";              // its folder under MZS
  std::int32_t nSortMode = SortMode::kByNumber;  // order of figures
  std::int32_t nCutType = CutType::kByFigure;    // figure by figure, or pass by pass
  std::int32_t nDbf = 0;                         // which of the post's two condition files
  std::string sMaterial = "SKD11";               // as Main.dat spells it
  double dThick = 5.0;                           // plate thickness, mm
  double dWireRad = 0.2;                         // wire value of the condition table
  std::int32_t nLeaderType = 0;                  // 1 lead arcs, else straight leads
  std::array<ProcessStyle, kMostStyles> styles;  // all ten, whatever nStyleCount says
  double dThickAux = 0.0, dThickProg = 0.0;      // heights of the auxiliary and programmed plane, mm
  std::string sTextCode = "UTF-8";
  bool bKept = true;  // false: for this drawing alone, the job's file stays as it is; not compared, nor kept
  std::string sInstallFolder, sFilePath;  // of load and save, a path of the system; not compared

  bool operator==(const JobLayout& other) const;

  // "<install folder>\MZS\ISO.LYT" becomes the path of load and save.
  void setFolder(std::string_view installFolder);
  // Reads the file over the record. False: no such file, and the record stays as it is. `told`: one sentence
  // for the user when the file is short or holds a value that no job can have; it is held inside the tables,
  // a short file leaves what it doesn't reach.
  bool read(const std::string& path, std::string* told = nullptr);
  // False: the file can't be written, `cause` says why; the old file is intact.
  bool write(const std::string& path, std::string* cause = nullptr) const;
  bool load(std::string* told = nullptr);  // the job that was shipped when the folder has none
  bool save(std::string* cause = nullptr) const { return write(sFilePath, cause); }

  void decode(std::string_view bytes, std::string* told = nullptr);
  [[nodiscard]] std::string encode() const;  // kFileSize bytes
  // A list of what was held, as one sentence.
  [[nodiscard]] static std::string sentence(const std::vector<std::string>& held);
  // Values that no job can have become the nearest that it can; what was changed, a sentence each.
  std::vector<std::string> hold();
};

// The drawing's keys ISO_MACHINE, ISO_STYLE0, ... override the record, key by key; what a text key lacks
// stays. False: the drawing names no machine, it was never worked with. `told`: one sentence for the user
// when a key holds what no job can have; it is held as a file's values are.
bool readJobKeys(const DrawingVars& vars, JobLayout& job, std::string* told = nullptr);
// All of them. A style's passes are written up to the one behind its last, which a tab pass may use. Numbers
// keep six decimals. A name or code that has a blank in it or is empty would shift what follows it: see
// styleFaults.
void writeJobKeys(DrawingVars& vars, const JobLayout& job);

// The text forms of ISO_STYLE<i> and ISO_STYLEGROUP<i><g>. Reading takes fields up to the first that isn't
// one.
[[nodiscard]] std::string styleKeyText(const ProcessStyle& style);
[[nodiscard]] std::string passKeyText(const ProcessStyle& style, int pass);
// Values are taken as they stand: holdStyle holds them.
void readStyleKey(std::string_view text, ProcessStyle& style);
void readPassKey(std::string_view text, ProcessStyle& style, int pass);

}  // namespace tarnex
