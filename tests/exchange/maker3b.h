// Programs and figures for the tests of the judge: offsets worked out in closed form, blocks encoded here.
// Shares nothing with the writers nor with the judge's own arithmetic.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "exchange/truth.h"

namespace tarnex::truth::test {

struct P {
  double x = 0, y = 0;
};
// Writes a program block by block; keeps the exact place, so that only counts are rounded.
class Maker {
 public:
  explicit Maker(P start);
  void line(P to);
  void arc(P centre, double sweep);  // radians, positive counter-clockwise
  void pause() { out_ += "\nN    : D"; }
  void stop() { out_ += "\nN    : DD"; }
  void block(const std::string& text);  // numbered
  [[nodiscard]] P here() const { return here_; }
  [[nodiscard]] const std::string& text() const { return out_; }

 private:
  std::string out_;
  P here_;
  int number_ = 0;
};

// A figure and its exact wire path: from the entry point round to it again.
struct Piece {
  P to;
  bool arc = false;
  P centre;
  double sweep = 0;
};
struct Sample {
  Figure figure;
  P entry;
  std::vector<Piece> wire;
};

// Closed figures about `at`, all counter-clockwise before `clockwise` turns the cut round. T lies 3 mm from
// the entry on the wire's side, inside at most `room` mm. `c` is the compensation, mm.
struct Kind {
  bool outside = false, clockwise = false;
  double c = 0.1;
};
Sample polygonSample(std::vector<P> corners, const Kind& kind, double room = 3);  // mitred corners
Sample roundedSample(P at, double w, double h, double r, double turn, const Kind& kind);
Sample circleSample(P at, double r, double startAngle, const Kind& kind);
std::vector<P> regular(P at, double r, int n, double turn);
std::vector<P> rectangle(P at, double w, double h, double turn);
std::vector<P> notched(P at, double w, double h, double turn);  // an L: five outer corners, one inner
Sample randomSample(std::mt19937& rng, P at);

// The blocks of one path, from T back to it; the maker must stand on T.
void writePath(Maker& m, const Sample& s);
// One program over all samples, numbered in order, with links and pauses; ends with the stop line.
std::string programOf(std::vector<Sample>& samples);
std::vector<Figure> figuresOf(const std::vector<Sample>& samples);

}  // namespace tarnex::truth::test
