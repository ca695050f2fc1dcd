// One figure of an ISO program while it is judged: where the wire is on it, and which passes are still due.
// Knows one figure; which block belongs to which figure, the test knows.
#pragma once

#include <string>
#include <vector>

#include "exchange/railiso.h"
#include "exchange/truthiso.h"

namespace tarnex::truth {

[[nodiscard]] std::string placeText(Point p);  // "(1.0000, 2.0000)"

// Collects findings; counts all, keeps the first kFindingsKept.
class IsoFindings {
 public:
  explicit IsoFindings(IsoReport& report) : report_(report) {}
  struct Place {
    int figure = 0, line = 0;
    Point at;
  };
  // The sentence begins with line and figure, which stand in front of `what`.
  void fault(IsoFault kind, const Place& where, const std::string& what) {
    add(kind, Grade::kFault, where, what);
  }
  void note(IsoFault kind, const Place& where, const std::string& what) {
    add(kind, Grade::kNote, where, what);
  }
  [[nodiscard]] std::size_t count() const { return report_.faults + report_.notes; }

 private:
  void add(IsoFault kind, Grade grade, const Place& where, const std::string& what);
  IsoReport& report_;
};

// What the head of a program defines.
class IsoTables {
 public:
  IsoTables(const IsoText& text, const IsoDialect& dialect, IsoFindings& findings);
  [[nodiscard]] const std::string* offset(
      const std::string& number) const;  // its value's text; null: not there
  [[nodiscard]] bool hasOffsets() const { return !offsets_.empty(); }
  [[nodiscard]] bool hasCondition(const std::string& number) const;
  [[nodiscard]] bool hasConditions() const { return !conditions_.empty(); }

 private:
  std::vector<std::pair<std::string, std::string>> offsets_, conditions_;
};

struct IsoJob {
  const IsoDialect& dialect;
  const IsoExpected& expected;
  const IsoTables& tables;
  const IsoWalk& walk;
  IsoFindings& findings;
  double base = 0;   // mm; isoTolerance
  double shape = 0;  // mm that the way of an arc may lie beside its contour
};

// A stretch of the contour that is to be cut in one go.
struct IsoPiece {
  enum class Kind { kWhole, kMain, kTab, kExtra } kind = Kind::kWhole;
  int record = 0;           // of the style
  std::string name;         // "pass 2", "the tab's pass"
  double from = 0, to = 0;  // mm along the contour
};

// The words of a contour block against the style.
struct IsoWordsCheck {
  const IsoJob& job;
  const IsoFigure& figure;
  const IsoPiece& piece;
  std::size_t span = 0;
  int dir = 1;          // along the path or against it
  bool bySpan = false;  // spans have tapers of their own
  void compensation(const IsoMove& m) const;
  void offset(const IsoMove& m) const;
  void condition(const IsoMove& m) const;
  void taper(const IsoMove& m) const;
  [[nodiscard]] IsoFindings::Place at(const IsoMove& m) const {
    return {figure.number, m.line, m.stroke.start};
  }
};

class IsoFigureRun {
 public:
  IsoFigureRun(const IsoJob& job, const IsoFigure& figure);

  [[nodiscard]] const IsoFigure& figure() const { return figure_; }
  [[nodiscard]] const IsoFigureReport& report() const { return report_; }
  [[nodiscard]] bool judged() const { return judged_; }
  [[nodiscard]] bool finished() const { return next_ >= plan_.size(); }
  [[nodiscard]] bool begun() const { return begun_; }
  // The last move was a way to or from the contour, and nothing is wrong with it so far.
  [[nodiscard]] bool beside() const { return beside_ && where_ != Where::kLost; }
  [[nodiscard]] bool lost() const { return where_ == Where::kLost; }
  // Of the program's places from the true ones: roundings of incremental blocks, and what a fault has moved.
  [[nodiscard]] Vec drift() const { return drift_; }
  [[nodiscard]] double doubt() const { return doubt_; }  // mm that the wire's place is known to

  void arrive(Point actual);     // the wire stands at the threading point
  void cut(const IsoMove& m);    // a move that cuts
  void rapid(const IsoMove& m);  // one that doesn't, within the visit
  void compensationOff() { offSeen_ = true; }
  void leave(const IsoMove* m);  // the visit ends; null: with the program
  void finish();                 // at the end of the program

 private:
  enum class Where { kOff, kOn, kLost };
  enum class Feature { kNone, kEntry, kBreak, kEnd };

  void makePlan();
  void addPieces(int later);
  // ---- off the contour
  void off(const IsoMove& m);
  void landing(const IsoMove& m);
  void stepTo(const IsoMove& m, Point ideal, bool exact);
  void followGuide(const IsoMove& m, const Stroke& ideal);
  void checkLead(const IsoMove& m, const Stroke& ideal);
  [[nodiscard]] Stroke idealOf(const IsoMove& m) const { return moved(m.stroke, Vec{0, 0} - drift_); }
  [[nodiscard]] double tolerance(const IsoMove& m) const {
    return job_.base + m.slack + (absolute() ? 0 : doubt_);
  }
  [[nodiscard]] bool absolute() const { return job_.dialect.absolute; }
  // ---- on it
  void on(const IsoMove& m);
  bool begin(const IsoMove& m);
  void checkBegin(const IsoMove& m);
  bool beginElsewhere(const IsoMove& m);
  [[nodiscard]] bool movesAsDue(const IsoMove& m) const;
  void relocate(Point ideal);
  void arriveAt(const IsoMove& m, Point meant);
  [[nodiscard]] bool startsHere(const IsoPiece& piece, int dir) const;
  void takePiece(const IsoMove& m, int dir);
  [[nodiscard]] std::optional<RailRun> follow(const IsoMove& m, int dir) const;
  void advance(const IsoMove& m, const RailRun& run);
  void settle(const IsoMove& m, const RailRun& run);
  bool relief(const IsoMove& m);
  [[nodiscard]] std::optional<RailRun> reliefRun(const IsoMove& m, const Stroke& arc) const;
  void account(const IsoMove& m);
  void beyond(const IsoMove& m, double past);
  void checkWords(const IsoMove& m, const RailRun& run);
  [[nodiscard]] bool atEnd() const { return ran_ && !active_; }
  void endRun(const IsoMove* m);
  void checkOvercut(const IsoMove* m);
  void derail(const IsoMove& m);
  bool pickUp(const IsoMove& m, const Stroke& ideal);
  [[nodiscard]] IsoFindings::Place place(const IsoMove* m, Point at) const;
  void tell(IsoFault kind, const IsoMove& m, Point at, const std::string& what);
  [[nodiscard]] double placeOf(Feature f, int dir) const;

  const IsoJob& job_;
  const IsoFigure& figure_;
  IsoFigureReport report_;
  Rail rail_;
  double break_ = 0;  // mm along the contour
  std::vector<IsoPiece> plan_;
  bool judged_ = true, begun_ = false, bySpan_ = false, beside_ = false;

  Where where_ = Where::kOff;
  Point ideal_;
  Vec drift_{0, 0};
  Vec displaced_{0, 0};  // the part of it that faults have made
  double doubt_ = 0;
  std::size_t next_ = 0;  // piece of the plan that is due
  Feature feature_ = Feature::kNone;
  double s_ = 0;
  int dir_ = 1;
  bool ran_ = false;           // this run has cut something
  bool active_ = false;        // the due piece is being cut
  bool surplus_ = false;       // the run is none that was due
  IsoPiece piece_;             // of this run, the one that is active or was last
  bool halfRelieved_ = false;  // the wire stands on a corner, on the arc through it
  double overcut_ = 0;         // mm past the piece's end
  int derails_ = 0;            // in a row
  bool faulty_ = false;        // something of this run has been told; what follows from it isn't
  bool looseWay_ = false;      // the next block begins elsewhere than the contour
  bool offSeen_ = true;        // compensation has been off since the last run
  bool homeSeen_ = true;       // the wire has been at the threading point since
  int landingCompensation_ = 0;
  std::size_t guideAt_ = 0;
  int driftLine_ = 0;
  unsigned told_ = 0;  // kinds of word faults of this run
};

}  // namespace tarnex::truth
