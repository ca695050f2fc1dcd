// Slow-wire jobs for the truth test of ISO programs: paths in a drawing, a post, the program that the writers
// make of them, and what the test is to hold it against.
// Knows the writers by their one call.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "exchange/railiso.h"
#include "exchange/truthiso_paths.h"
#include "machining/joblayout.h"
#include "outputiso/isopost.h"
#include "support/modulefixture.h"
#include "toolpath/toolpath.h"

namespace tarnex::truth::test {

// The shipped posts, by their folder under data/MZS.
inline constexpr const char* kShippedPosts[] = {"SODICK", "FirstCell", "MicronInc", "DecimalSub", "SixDigit"};
[[nodiscard]] MachinePost shippedPost(const std::string& name);

[[nodiscard]] std::vector<std::string> linesOf(const std::string& text);
[[nodiscard]] std::string textOf(const std::vector<std::string>& lines);

// A contour that every point of is seen from `centre`.
struct Shape {
  AcGePoint2d centre;
  PolylineCurve contour;  // closed; in cutting order
};
[[nodiscard]] Shape rectangle(AcGePoint2d centre, double width, double height);  // counter-clockwise
[[nodiscard]] Shape randomShape(std::mt19937& rng, AcGePoint2d centre, double radius);
[[nodiscard]] PolylineCurve reversedContour(const PolylineCurve& contour);

class IsoJobs : public ModuleFixture {
 protected:
  IsoJobs();

  struct Place {
    int span = 0;
    double part = 0.5;    // of the span, where the wire comes in
    double lead = 5;      // mm
    bool square = false;  // the lead stands square to the contour; else it comes from the centre
    double tab = 0.8;     // of the contour's length, where an outer shape's tab begins
  };
  AcDbObjectId hole(const Shape& shape, const Place& place, const ProcessStyle& style);
  AcDbObjectId outer(const Shape& shape, const Place& place, const ProcessStyle& style);
  AcDbObjectId circle(AcGePoint2d centre, double radius, const ProcessStyle& style, int direction);
  AcDbObjectId open(const PolylineCurve& curve, AcGePoint2d thread, int direction, const ProcessStyle& style);
  void clear();  // no paths any more
  // A job style with so many passes; the first is style 0 of the job.
  ProcessStyle& style(std::size_t index, int passes);

  // The program with `post`, and the test's answer to it (or to `text` in its place).
  std::string program();
  [[nodiscard]] IsoReport check(const std::string& text);
  IsoReport checkProgram() { return check(program()); }
  [[nodiscard]] static std::string told(const IsoReport& report);

  MachinePost post;
  JobLayout job;
  int paths = 0;

 private:
  static CToolPath::Making makingOf(const Shape& shape, const Place& place, int side);
  AcDbObjectId add(std::unique_ptr<CToolPath> path, const ProcessStyle& style);
};

}  // namespace tarnex::truth::test
