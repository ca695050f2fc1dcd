// Writing the blocks of a slow-wire program: motion words, templates and rows together, for the number styles
// that controls want, at 100,000 and 1,000,000 blocks; and the second run over them. Prints figures, no
// judgement.
#include <fmt/compile.h>
#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>
#include <string>
#include <vector>

#include "figures.h"
#include "host/platform/usage.h"
#include "outputiso/isopost.h"
#include "outputiso/secondrun.h"

namespace tarnex::bench {

namespace {

struct Control {
  const char* name;
  int family;
  const char* integerUnits;
  const char* modal;
  const char* coordinates;
};

constexpr Control kControls[] = {{"decimal, absolute", 0, "0", "0", "G90"},
                                 {"decimal, absolute, modal", 0, "0", "1", "G90"},
                                 {"micrometres, incremental", 1, "1", "0", "G91"},
                                 {"family 5, incremental", 5, "0", "0", "G91"}};

IsoPost loaded(const Control& control) {
  IsoPost iso;
  iso.post.nFamily = control.family;
  iso.post.nWordCount = 79;
  iso.post.param[4] = control.integerUnits;
  iso.post.param[5] = control.modal;
  iso.post.param[6] = "1";
  iso.post.param[9] = "G00";
  iso.post.param[10] = "3";
  iso.post.word[0] = control.coordinates;
  iso.post.word[2] = "H";
  iso.post.word[3] = "C";
  iso.post.blockRow[6] = "V1V2$";  // row 2: the way in
  iso.post.blockRow[9] = "V3V2$";  // row 3
  iso.post.blockRow[35] = "$M01";  // row 11: the retreat
  iso.resetProgram();
  iso.setPath({});
  iso.setPass(0, 1);
  return iso;
}

constexpr int kSmall = 100000, kRuns = 5;

constexpr int kSpans = 12;  // of a figure, with a way in and out; every other one is an arc
constexpr int kBlocks = kSpans + 3;

AcGePoint2d corner(AcGePoint2d centre, int i) {
  const double a = 2 * std::numbers::pi * i / kSpans;
  return {centre.x + 7.77 * std::cos(a), centre.y + 5.55 * std::sin(a)};
}

AcGePoint2d placeOf(int figure) {
  return {10.0 + 20.0 * (figure % 40), 10.0 + 20.0 * (figure / 40 % 40)};
}

// Calls write(move, row) for each block of a figure.
template <class Write>
void eachMove(int figure, const Write& write) {
  const AcGePoint2d centre = placeOf(figure), entry = corner(centre, 0);
  const AcGePoint2d split{(centre.x + entry.x) / 2, entry.y};
  write(IsoMove{centre, split}, 2);
  write(IsoMove{split, entry}, 3);
  for (int i = 0; i < kSpans; ++i)
    write(IsoMove{corner(centre, i), corner(centre, i + 1), i % 2 == 0 ? 0.0 : 0.2}, kNoRow);
  write(IsoMove{entry, centre}, 11);
}

// A file's buffer, emptied when it is full.
class Sink {
 public:
  void add(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() > 65536) empty();
  }
  std::string& buffer() { return buffer_; }
  void empty() {
    bytes_ += buffer_.size();
    buffer_.clear();
  }
  [[nodiscard]] double bytes() const { return static_cast<double>(bytes_ + buffer_.size()); }

 private:
  std::string buffer_;
  std::size_t bytes_ = 0;
};

double written(const Control& control, int figures, double& bytes) {
  IsoPost iso = loaded(control);
  Sink sink;
  const double seconds = secondsOf([&] {
    for (int f = 0; f < figures; ++f)
      eachMove(f, [&](const IsoMove& move, int row) {
        sink.add(iso.block(iso.segmentWords(move, iso.figure.styleNow), row, "\n", kWholeRow));
      });
  });
  bytes = sink.bytes();
  return seconds;
}

// The peer: as many bytes of numbers and letters from the same points, with no post and no templates.
double plainlyFormatted(int figures, double& bytes) {
  Sink sink;
  const double seconds = secondsOf([&] {
    for (int f = 0; f < figures; ++f)
      eachMove(f, [&](const IsoMove& move, int) {
        auto out = std::back_inserter(sink.buffer());
        if (move.bulge == 0.0)
          fmt::format_to(out, FMT_COMPILE("G01X{:.3f}Y{:.3f}\n"), move.to.x, move.to.y);
        else
          fmt::format_to(out, FMT_COMPILE("G03X{:.3f}Y{:.3f}I{:.3f}J{:.3f}\n"), move.to.x, move.to.y,
                         -move.from.x, -move.from.y);
        sink.add({});
      });
  });
  bytes = sink.bytes();
  return seconds;
}

// The blocks of one control as the first run leaves them.
std::string firstRun(const Control& control, int figures) {
  IsoPost iso = loaded(control);
  std::string text;
  for (int f = 0; f < figures; ++f)
    eachMove(f, [&](const IsoMove& move, int row) {
      std::string words = iso.segmentWords(move, iso.figure.styleNow);
      if (row == 2 && control.family == 5) words += "G44";
      text += iso.block(words, row, "\n", kWholeRow);
    });
  return text;
}

// Line numbers and what the family asks for, in pieces as the writer hands them over.
double finished(const Control& control, std::string_view text, double& bytes) {
  IsoPost iso = loaded(control);
  iso.post.paramOn[8] = 1;
  iso.post.lineFormat = "N%04d ";
  SecondRun run(iso);
  Sink sink;
  return secondsOf([&] {
    constexpr std::size_t kPiece = 4096;
    for (; !text.empty(); text.remove_prefix(std::min(kPiece, text.size()))) {
      run.feed(text.substr(0, kPiece), sink.buffer());
      sink.add({});
    }
    run.finish(sink.buffer());
    bytes = sink.bytes();
  });
}

void reportSecondRun(const Control& control) {
  double perByte[2];
  for (int large = 0; large < 2; ++large) {
    const std::string text = firstRun(control, (large != 0 ? 10 : 1) * kSmall / kBlocks);
    double bytes = 0;
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) times.push_back(finished(control, text, bytes));
    perByte[large] = median(times) / static_cast<double>(text.size());
  }
  std::printf("%-28s %8.1f %19.2f %8.1f\n", control.name, 1e-6 / perByte[1], 10 * perByte[1] / perByte[0],
              static_cast<double>(peakMemory()) / 1048576);
}

template <class What>
void report(const char* name, What what) {
  double perBlock[2];
  double bytes = 0;
  constexpr int kFigures = kSmall / kBlocks;
  for (int large = 0; large < 2; ++large) {
    const int figures = large != 0 ? 10 * kFigures : kFigures;
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) times.push_back(what(figures, bytes));
    perBlock[large] = median(times) / (static_cast<double>(figures) * kBlocks);
  }
  const double blocks = 10.0 * kFigures * kBlocks;
  std::printf("%-28s %8.2f %8.1f %10.2f %8.1f\n", name, 1e-6 / perBlock[1], bytes / blocks,
              10 * perBlock[1] / perBlock[0], static_cast<double>(peakMemory()) / 1048576);
}

}  // namespace

void run() {
  std::printf("%-28s %8s %8s %10s %8s\n", "", "Mblock/s", "B/block", "10x costs", "peak MB");
  for (const Control& control : kControls)
    report(control.name, [&](int figures, double& bytes) { return written(control, figures, bytes); });
  report("numbers and letters by fmt", plainlyFormatted);
  std::printf("\nsecond run\n%-28s %8s %19s %8s\n", "", "MB/s", "10x costs", "peak MB");
  for (const Control& control : kControls) reportSecondRun(control);
}

}  // namespace tarnex::bench

int main() {
  tarnex::bench::run();
}
