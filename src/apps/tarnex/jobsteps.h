// The steps of a job as lines that a user could type.
// Knows the language of prompts; the job knows their order.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "apps/tarnex/session.h"
#include "contour/survey.h"
#include "host/dxf/dxf.h"
#include "host/platform/files.h"
#include "pathcmd/wiresurvey.h"

namespace tarnex {

class JobSteps {
 public:
  explicit JobSteps(Session& session) : session_(session) {}

  // Turns off what isn't wanted. False when nothing is left of a list of layers.
  bool chooseLayers(const std::vector<std::string>& only, const std::vector<std::string>& skip,
                    std::vector<std::string>& said);
  void restoreLayers();
  void takeBlocksApart(std::vector<std::string>& said);
  void clean(std::vector<std::string>& said);
  // Splines to chords, then everything that touches (or comes within `gap` mm) becomes one polyline.
  // Curves of plain open chains stay as they are.
  void joinLooseCurves(const LooseSurvey& loose, std::optional<double> gap);
  // Contours and open chains after joining; plain open chains are told as wholes, not curve by curve.
  [[nodiscard]] ContourSurvey survey(const LooseSurvey& loose) const;
  // By one window.
  struct PathCommand {
    std::string name;                  // BP or GA
    int side = 1;                      // nSide
    std::vector<std::string> answers;  // to what it asks behind the window
    Session::Answerer answerer;        // of what it asks about some of the paths
  };
  void makePaths(const PathCommand& command, const std::vector<const SurveyedContour*>& contours);
  // Brings paths that lie inside another in front of it; how many paths stood wrong.
  std::size_t mendOrder();

  [[nodiscard]] std::vector<AcDbObjectId> shown() const;  // model space entities that a selection would take
  [[nodiscard]] bool hasPaths();
  [[nodiscard]] std::string named(const std::vector<AcDbObjectId>& ids) const;  // "&1F &20 ..."
  [[nodiscard]] std::string emptyPlace() const;  // a point for a window to begin at: nothing is there
  [[nodiscard]] std::string whatIsThere(const DxfReport& read, const ContourSurvey& found) const;

 private:
  std::size_t keptInside(AcDbObjectId reference) const;
  template <class T>
  std::vector<AcDbObjectId> shownOf();
  // Model space holds entities of that class. Most drawings hold few kinds: a step that looks for another one
  // needs no walk through all entities.
  bool holds(const AcRxClass& kind);

  Session& session_;
  std::vector<const AcRxClass*> kinds_;     // of the entities of model space
  std::optional<std::uint64_t> kindsAsOf_;  // the drawing's change stamp
  std::vector<std::string> turnedOff_;
};

[[nodiscard]] std::string sentenceOf(const WireWarning& warning);
[[nodiscard]] std::optional<FileError> plotPaths(Session& session, const std::string& path);

}  // namespace tarnex
