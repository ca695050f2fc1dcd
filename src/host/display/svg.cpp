// The SVG writer.
// Knows elements and attributes; path data is made by SvgPath.
#include "host/display/svg.h"

#include <algorithm>
#include <functional>

#include "host/display/shape.h"
#include "host/display/svgpath.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

using Sink = std::function<void(std::string_view)>;

constexpr std::size_t kLongestPath = 30'000;  // letters; readers of XML set limits to an attribute
constexpr double kCapitals = 0.72;            // height of capitals in sizes of the usual sans-serif fonts
constexpr double kFinestPattern = 0.5;        // mm on paper; a finer one is but a grey line
constexpr std::size_t kMostDashes = 64;
constexpr double kPixelsPerMm = 96 / 25.4;  // the unit of style sheets

// Runs of the same kind are one; a pattern that begins with a gap begins with its first dash instead. Empty:
// continuous.
std::vector<double> dashesAndGaps(const LinePattern& pattern, double scale) {
  std::vector<double> lengths;  // dash, gap, dash, gap ...
  if (pattern.dashes.size() > kMostDashes) return {};
  const auto first =
      std::find_if(pattern.dashes.begin(), pattern.dashes.end(), [](double d) { return d >= 0; });
  std::vector<double> turned(first, pattern.dashes.end());
  turned.insert(turned.end(), pattern.dashes.begin(), first);
  for (const double d : turned) {
    const bool gap = d < 0;
    const double length = std::abs(d) * scale;
    if (!(length <= kFarthestDrawn)) return {};
    if (lengths.size() % 2 == (gap ? 1 : 0))
      lengths.push_back(length);
    else if (!lengths.empty())
      lengths.back() += length;
  }
  return lengths.size() % 2 == 0 ? lengths : std::vector<double>{};
}

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
  SvgPainter(const DisplayList& list, const SvgOptions& options, const Page& page, const Sink& sink)
      : list_(list),
        options_(options),
        page_(page),
        sink_(sink),
        grid_{{page.shown.low.x, page.shown.high.y}, decimalsFor(page.scale)},
        path_(grid_) {}

  void begin();
  void end() {
    flush();
    sink_("</g>\n</svg>\n");
  }

  void pen(int color, int pattern) override {
    flush();
    color_ = hexColor(shownColor(color, options_.ground));
    dashes_ = dashAttribute(list_.patterns[static_cast<std::size_t>(pattern)]);
  }
  void polyline(std::span<const AcGePoint3d> points) override {
    path_.moveTo(points.front().flat());
    for (const AcGePoint3d& p : points.subspan(1)) path_.lineTo(p.flat());
    endShape();
  }
  void circle(AcGePoint2d centre, double radius) override {
    path_.circle(centre, radius);
    endShape();
  }
  void arc(const ArcCurve& arc, AcGePoint2d start, AcGePoint2d end) override {
    path_.moveTo(start);
    path_.arcTo(arc, end);
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
    sink_("<path stroke=\"" + color_ + '"' + dashes_ + " d=\"" + path_.data() + "\"/>\n");
    path_.clear();
  }
  [[nodiscard]] std::string mm(double v) const {
    std::string text;
    appendCount(text, grid_.count(v), grid_.decimals);
    return text;
  }
  [[nodiscard]] std::string dashAttribute(const LinePattern& pattern) const;

  const DisplayList& list_;
  const SvgOptions& options_;
  const Page& page_;
  const Sink& sink_;
  Grid grid_;
  SvgPath path_;
  std::string color_, dashes_;
};

void SvgPainter::begin() {
  const double pen = std::isfinite(options_.lineWidth) ? std::clamp(options_.lineWidth, 0.01, 10.0) : 0.25;
  const std::string ground = hexColor(groundColor(options_.ground));
  const AcGeVector2d size = page_.shown.high - page_.shown.low;
  sink_("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
        formatted("%.3fmm\" height=\"%.3fmm\" viewBox=\"0 0 ", page_.width, page_.height) + mm(size.x) + ' ' +
        mm(size.y) + "\" xml:space=\"preserve\">\n");
  sink_(formatted("<desc>Units are mm of the drawing from its point (%.3f, %.3f); scale %.6g : 1</desc>\n",
                  page_.shown.low.x, page_.shown.high.y, page_.scale));
  sink_(
      formatted("<style>@supports (vector-effect:non-scaling-stroke){path:not([stroke-dasharray])"
                "{vector-effect:non-scaling-stroke;stroke-width:%.3gpx}}</style>\n",
                pen * kPixelsPerMm));
  sink_("<rect width=\"100%\" height=\"100%\" fill=\"" + ground + "\"/>\n<g fill=\"none\" stroke-width=\"" +
        mm(pen / page_.scale) + "\" stroke-linecap=\"round\" stroke-linejoin=\"round\" stroke=\"" + ground +
        "\" paint-order=\"stroke\" font-family=\"Arial,Helvetica,'DejaVu Sans',sans-serif\">\n");
}

std::string SvgPainter::dashAttribute(const LinePattern& pattern) const {
  const auto lengths = dashesAndGaps(pattern, list_.patternScale);
  double whole = 0;
  for (const double length : lengths) whole += length;
  if (whole * page_.scale < kFinestPattern) return {};
  std::string text = " stroke-dasharray=\"";
  for (std::size_t i = 0; i < lengths.size(); ++i) text += (i ? " " : "") + mm(lengths[i]);
  return text + '"';
}

void SvgPainter::text(const DrawnText& text) {
  flush();
  const double size = text.height / kCapitals;
  if (grid_.count(size) == 0) return;
  const GridPoint at = grid_.at(text.position.flat());
  std::string x, y;
  appendCount(x, at.x, grid_.decimals);
  appendCount(y, at.y, grid_.decimals);
  std::string element =
      "<text fill=\"" + color_ + "\" font-size=\"" + mm(size) + "\" x=\"" + x + "\" y=\"" + y + '"';
  const long long turn = std::llround(-std::atan2(text.direction.y, text.direction.x) * 180 / kPi * 1000);
  if (turn != 0) {
    element += " transform=\"rotate(";
    appendCount(element, turn, 3);
    element += ' ' + x + ' ' + y + ")\"";
  }
  element += '>';
  appendEscaped(element, text.utf8);
  sink_(element + "</text>\n");
}

void write(const DisplayList& list, const SvgOptions& options, const Sink& sink) {
  const Page page = layoutPage(list.extents, options);
  SvgPainter painter(list, options, page, sink);
  painter.begin();
  paint(list, page.shown, painter);
  painter.end();
}

}  // namespace

std::string svgText(const DisplayList& list, const SvgOptions& options) {
  std::string text;
  write(list, options, [&](std::string_view piece) { text += piece; });
  return text;
}

std::optional<FileError> writeSvg(const std::string& path, const DisplayList& list,
                                  const SvgOptions& options) {
  AtomicFile file(path);
  write(list, options, [&](std::string_view piece) { file.write(piece); });
  return file.commit();
}

}  // namespace tarnex
