// The SVG writer.
// Knows elements and attributes; path data is made by SvgPath.
#include "host/display/svg.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <deque>
#include <future>
#include <thread>
#include <utility>

#include "host/display/dashes.h"
#include "host/display/shape.h"
#include "host/display/svgpath.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

using Sink = std::function<void(std::string_view)>;

constexpr std::size_t kPart = 1 << 12;       // primitives that one worker writes in one go
constexpr std::size_t kLettersOfShape = 28;  // about
constexpr unsigned kMostWorkers = 8;
constexpr std::size_t kLongestPath = 30'000;  // letters; readers of XML set limits to an attribute
constexpr double kCapitals = 0.72;            // height of capitals in sizes of the usual sans-serif fonts
constexpr double kPixelsPerMm = 96 / 25.4;    // the unit of style sheets

void appendEscaped(std::string& out, std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t c = nextCodePoint(utf8, at);
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case 0xFFFE:
      case 0xFFFF:
        appendUtf8(out, 0xFFFD);
        break;
      default:
        appendUtf8(out, c < 0x20 || c == 0x7F ? U' ' : c);
    }
  }
}

// Decimals of a mm that a micrometre of the drawing or of the paper needs.
int decimalsFor(double scale) {
  return static_cast<int>(std::clamp(std::ceil(std::log10(scale) - 1e-9) + 3, 3.0, 9.0));
}

class SvgPainter final : public Painter {
 public:
  SvgPainter(const DisplayList& list, const SvgOptions& options, const Page& page, std::size_t shapes = 0)
      : list_(list),
        options_(options),
        page_(page),
        grid_{{page.shown.low.x, page.shown.high.y}, decimalsFor(page.scale)},
        path_(grid_) {
    out_.reserve(shapes * kLettersOfShape);
  }

  void begin();
  void end() {
    flush();
    out_ += "</g>\n</svg>\n";
  }
  // What was painted, for a picture that is made in parts.
  std::string takePart() {
    flush();
    return std::exchange(out_, {});
  }

  void pen(int color, int pattern) override {
    flush();
    color_ = &colorOf(color);
    dashes_ = &dashesOf(static_cast<std::size_t>(pattern));
  }
  void polyline(std::span<const AcGePoint2d> points) override {
    path_.moveTo(points.front());
    for (const AcGePoint2d& p : points.subspan(1)) path_.lineTo(p);
    endShape();
  }
  void circle(AcGePoint2d centre, double radius) override {
    path_.circle(centre, radius);
    endShape();
  }
  void arc(const PaintedArc& arc) override {
    path_.moveTo(arc.start);
    if (!path_.shortArcTo(arc.radius, arc.half, arc.end)) path_.arcTo(arc.curve(), arc.end);
    endShape();
  }
  void ellipse(const EllipseCurve& curve) override {
    path_.ellipse(curve);
    endShape();
  }
  void text(const DrawnText& text) override;

 private:
  void endShape() {
    path_.finishShape();
    if (path_.data().size() > kLongestPath) flush();
  }
  void flush() {
    if (path_.data().empty()) return;
    out_ += "<path stroke=\"";
    out_ += *color_;
    out_ += *dashes_;
    out_ += path_.data();
    out_ += "\"/>\n";
    path_.clear();
  }
  void count(long long steps) { appendCount(out_, steps, grid_.decimals); }
  [[nodiscard]] std::string mm(double v) const {
    std::string text;
    appendCount(text, grid_.count(v), grid_.decimals);
    return text;
  }
  // Worked out when first asked for: a drawing changes its pen for every path.
  const std::string& colorOf(int color) {
    std::string& text = colors_[static_cast<std::size_t>(color) % colors_.size()];
    if (text.empty()) text = hexColor(shownColor(color, options_.ground));
    return text;
  }
  const std::string& dashesOf(std::size_t pattern) {
    while (patterns_.size() <= pattern)
      patterns_.push_back('"' + dashAttribute(list_.patterns[patterns_.size()]) + " d=\"");
    return patterns_[pattern];
  }
  [[nodiscard]] std::string dashAttribute(const LinePattern& pattern) const;

  const DisplayList& list_;
  const SvgOptions& options_;
  const Page& page_;
  Grid grid_;
  SvgPath path_;
  std::string out_;
  std::array<std::string, 256> colors_;
  std::deque<std::string> patterns_;  // the end of a colour and all up to the path's data
  const std::string *color_ = nullptr, *dashes_ = nullptr;
};

void SvgPainter::begin() {
  const double pen = std::isfinite(options_.lineWidth) ? std::clamp(options_.lineWidth, 0.01, 10.0) : 0.25;
  const std::string ground = hexColor(groundColor(options_.ground));
  const AcGeVector2d size = page_.shown.high - page_.shown.low;
  out_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"";
  out_ += formatted("%.3fmm\" height=\"%.3fmm\" viewBox=\"0 0 ", page_.width, page_.height) + mm(size.x) +
          ' ' + mm(size.y) + "\" xml:space=\"preserve\">\n";
  out_ += formatted("<desc>Units are mm of the %s from its point (%.3f, %.3f); scale %.6g : 1</desc>\n",
                    options_.view.isPlan() ? "drawing" : "view", page_.shown.low.x, page_.shown.high.y,
                    page_.scale);
  out_ += formatted(
      "<style>@supports (vector-effect:non-scaling-stroke){path:not([stroke-dasharray])"
      "{vector-effect:non-scaling-stroke;stroke-width:%.3gpx}}</style>\n",
      pen * kPixelsPerMm);
  out_ += "<rect width=\"100%\" height=\"100%\" fill=\"" + ground + "\"/>\n<g fill=\"none\" stroke-width=\"" +
          mm(pen / page_.scale) + "\" stroke-linecap=\"round\" stroke-linejoin=\"round\" stroke=\"" + ground +
          "\" paint-order=\"stroke\" font-family=\"Arial,Helvetica,'DejaVu Sans',sans-serif\">\n";
}

std::string SvgPainter::dashAttribute(const LinePattern& pattern) const {
  const auto lengths = dashesAndGaps(pattern, list_.patternScale, page_.scale);
  if (lengths.empty()) return {};
  std::string text = " stroke-dasharray=\"";
  for (std::size_t i = 0; i < lengths.size(); ++i) text += (i ? " " : "") + mm(lengths[i]);
  return text + '"';
}

void SvgPainter::text(const DrawnText& text) {
  flush();
  const double size = text.height / kCapitals;
  if (grid_.count(size) == 0) return;
  const GridPoint at = grid_.at(text.position.flat());
  const auto place = [&](const char* before, const char* between, const char* after) {
    out_ += before;
    count(at.x);
    out_ += between;
    count(at.y);
    out_ += after;
  };
  out_ += "<text fill=\"";
  out_ += *color_;
  out_ += "\" font-size=\"";
  count(grid_.count(size));
  place("\" x=\"", "\" y=\"", "\"");
  const long long turn = std::llround(-std::atan2(text.direction.y, text.direction.x) * 180 / kPi * 1000);
  if (turn != 0) {
    out_ += " transform=\"rotate(";
    appendCount(out_, turn, 3);
    place(" ", " ", ")\"");
  }
  out_ += '>';
  appendEscaped(out_, text.utf8);
  out_ += "</text>\n";
}

// Where the parts of a large picture begin, and its end: between entities, so that no line is broken up. They
// hang on the list alone: however many workers there are, the text is the same.
std::vector<std::size_t> partsOf(const DisplayList& list) {
  const auto& all = list.primitives;
  std::vector<std::size_t> begins{0};
  for (std::size_t at = kPart; at < all.size(); at += kPart) {
    while (at < all.size() && all[at].owner == all[at - 1].owner) ++at;
    if (at < all.size()) begins.push_back(at);
  }
  begins.push_back(all.size());
  return begins;
}

std::string headOf(const DisplayList& list, const SvgOptions& options, const Page& page) {
  SvgPainter painter(list, options, page);
  painter.begin();
  return painter.takePart();
}

std::string labelsAndEnd(const DisplayList& list, const SvgOptions& options, const Page& page) {
  SvgPainter painter(list, options, page);
  paintLabels(list, options.view, page.shown, painter);
  painter.end();
  return painter.takePart();
}

// The parts of a picture, written by the caller and its helpers. The labels are begun first, though they
// stand last: they can't be parted.
class Parts {
 public:
  Parts(const DisplayList& list, const SvgOptions& options, const Page& page)
      : list_(list), options_(options), page_(page), begins_(partsOf(list)), parts_(begins_.size()) {
    for (auto& part : parts_) texts_.push_back(part.get_future());
  }
  void write(const Sink& sink) {
    std::vector<std::jthread> helpers;
    const unsigned processors = std::clamp(std::thread::hardware_concurrency(), 1U, kMostWorkers);
    for (unsigned i = 1; i < processors && parts_.size() > 2; ++i)
      helpers.emplace_back([this] {
        while (work()) {
        }
      });
    for (auto& text : texts_) {
      while (!isReady(text) && work()) {
      }
      sink(text.get());
    }
  }

 private:
  static bool isReady(const std::future<std::string>& text) {
    return text.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
  }
  // Writes the next part; false when none is left.
  bool work() {
    const std::size_t i = next_++;
    if (i >= parts_.size()) return false;
    if (i == 0) {
      parts_.back().set_value(labelsAndEnd(list_, options_, page_));
      return true;
    }
    SvgPainter painter(list_, options_, page_, begins_[i] - begins_[i - 1]);
    paintShapes(list_, options_.view, page_.shown, begins_[i - 1], begins_[i], painter);
    parts_[i - 1].set_value(painter.takePart());
    return true;
  }

  const DisplayList& list_;
  const SvgOptions& options_;
  const Page& page_;
  const std::vector<std::size_t> begins_;
  std::vector<std::promise<std::string>> parts_;  // as many as there are beginnings: the last is the labels
  std::vector<std::future<std::string>> texts_;
  std::atomic<std::size_t> next_{0};
};

}  // namespace

void drawSvg(const DisplayList& list, const SvgOptions& options, const Sink& sink) {
  const PageOptions& paper = options;
  const Page page = layoutPage(list, paper);
  sink(headOf(list, options, page));
  Parts(list, options, page).write(sink);
}

std::string svgText(const DisplayList& list, const SvgOptions& options) {
  std::string text;
  drawSvg(list, options, [&](std::string_view piece) { text += piece; });
  return text;
}

std::optional<FileError> writeSvg(const std::string& path, const DisplayList& list,
                                  const SvgOptions& options) {
  AtomicFile file(path);
  drawSvg(list, options, [&](std::string_view piece) { file.write(piece); });
  return file.commit();
}

}  // namespace tarnex
