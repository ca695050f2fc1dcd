// Painting with Cairo, and the files that come of it. Where it isn't built in, the formats are refused.
// Knows Cairo's calls; fonts are found elsewhere.
#include "host/display/cairoplot.h"

#ifdef TARNEX_HAS_CAIRO

#include <cairo-pdf.h>
#include <cairo.h>

#include <algorithm>
#include <memory>

#include "host/display/cairofonts.h"
#include "host/display/clip.h"
#include "host/display/dashes.h"
#include "host/platform/format.h"
#include "host/platform/system.h"

namespace tarnex {

namespace {

using Sink = std::function<void(std::string_view)>;

struct Release {
  void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
  void operator()(cairo_t* c) const { cairo_destroy(c); }
};
template <class T>
using Held = std::unique_ptr<T, Release>;

constexpr double kPointsPerMm = 72 / 25.4;
constexpr double kMmPerInch = 25.4;
// Cairo counts in 1/256 of a unit with 32 bits: 8 million units are the end.
constexpr double kFarthest = 1e6;         // units of the file from the page's corner
constexpr double kChordTolerance = 0.02;  // units
constexpr int kMostShapes = 4000;         // in one stroke
constexpr double kSmallestText = 0.05;    // units; a smaller one is nothing, and no matrix for Cairo
constexpr double kLargestText = 16'000;   // units
constexpr double kJoined = 1e-3;          // units: an end that the next line goes on from
constexpr double kThinnest = 1;           // pixels

class CairoPainter final : public Painter {
 public:
  // `units` of the file are a mm on paper.
  CairoPainter(cairo_t* cairo, const DisplayList& list, const PlotOptions& options, const Page& page,
               double units)
      : cairo_(cairo),
        list_(list),
        options_(options),
        page_(page),
        factor_(page.scale * units),
        room_(page.shown.grown(kFarthest / factor_)) {
    const double pen = std::isfinite(options.lineWidth) ? std::clamp(options.lineWidth, 0.01, 10.0) : 0.25;
    const bool pixels = cairo_surface_get_type(cairo_get_target(cairo)) == CAIRO_SURFACE_TYPE_IMAGE;
    penWidth_ = std::max(pen * units, pixels ? kThinnest : 0.0);
    color(groundColor(options.ground));
    cairo_paint(cairo_);
    cairo_set_line_width(cairo_, penWidth_);
    cairo_set_line_cap(cairo_, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
  }
  void finish() { flush(); }

  void pen(int color, int pattern) override;
  void polyline(std::span<const AcGePoint2d> points) override;
  void circle(AcGePoint2d centre, double radius) override;
  void arc(const PaintedArc& arc) override { curve(arc.curve(), arc.start, arc.end); }
  void ellipse(const EllipseCurve& curve) override;
  void text(const DrawnText& text) override;

 private:
  [[nodiscard]] AcGePoint2d on(AcGePoint2d p) const {
    return {(p.x - page_.shown.low.x) * factor_, (page_.shown.high.y - p.y) * factor_};
  }
  void color(Rgb c) { cairo_set_source_rgb(cairo_, c.r / 255.0, c.g / 255.0, c.b / 255.0); }
  [[nodiscard]] bool near(const Extents2d& box) const { return room_.contains(box); }
  void moveTo(AcGePoint2d p);
  void lineTo(AcGePoint2d p);
  void endShape();
  void flush();
  void curve(const ArcCurve& arc, AcGePoint2d start, AcGePoint2d end);
  void chords(const Curve& curve);
  void letters(const std::vector<CairoFonts::Run>& runs, double size, bool outline);

  cairo_t* cairo_;
  const DisplayList& list_;
  const PlotOptions& options_;
  const Page& page_;
  const double factor_;   // units per mm of drawing
  const Extents2d room_;  // what coordinates may be, mm of drawing
  double penWidth_ = 0;
  Rgb penColor_;
  std::unique_ptr<CairoFonts> fonts_;  // made for the first text
  AcGePoint2d start_, at_;             // of the running line, units
  bool open_ = false;
  int shapes_ = 0;
};

// ---- lines

void CairoPainter::pen(int index, int pattern) {
  flush();
  penColor_ = shownColor(index, options_.ground);
  color(penColor_);
  auto lengths =
      dashesAndGaps(list_.patterns[static_cast<std::size_t>(pattern)], list_.patternScale, page_.scale);
  for (double& length : lengths) length *= factor_;
  cairo_set_dash(cairo_, lengths.data(), static_cast<int>(lengths.size()), 0);
}

// A shape that starts where the last one ended goes on in its line, so that dashes run through.
void CairoPainter::moveTo(AcGePoint2d p) {
  const AcGePoint2d to = on(p);
  if (open_ && to.distanceTo(at_) < kJoined) return;
  cairo_move_to(cairo_, to.x, to.y);
  start_ = at_ = to;
  open_ = true;
}

void CairoPainter::lineTo(AcGePoint2d p) {
  at_ = on(p);
  cairo_line_to(cairo_, at_.x, at_.y);
}

void CairoPainter::endShape() {
  if (open_ && at_.distanceTo(start_) < kJoined) {
    cairo_close_path(cairo_);
    open_ = false;
  }
  if (++shapes_ > kMostShapes) flush();
}

void CairoPainter::flush() {
  if (shapes_ > 0) cairo_stroke(cairo_);
  shapes_ = 0;
  open_ = false;
}

void CairoPainter::polyline(std::span<const AcGePoint2d> points) {
  Extents2d box;
  for (const AcGePoint2d& p : points) box.add(p);
  if (!near(box)) {
    for (std::size_t i = 1; i < points.size(); ++i)
      if (const auto inside = stretchInside(points[i - 1], points[i], room_)) {
        moveTo(inside->first);
        lineTo(inside->second);
      }
    ++shapes_;
    return;
  }
  moveTo(points.front());
  for (const AcGePoint2d& p : points.subspan(1)) lineTo(p);
  if (points.size() == 1) lineTo(points.front());  // a dot
  endShape();
}

// ---- curves

void CairoPainter::chords(const Curve& curve) {
  for (const Stretch& chord : chordsInside(curve, room_, kChordTolerance / factor_)) {
    moveTo(chord.first);
    lineTo(chord.second);
  }
  ++shapes_;
}

void CairoPainter::circle(AcGePoint2d centre, double radius) {
  const AcGePoint2d start{centre.x + radius, centre.y};
  const ArcCurve whole{centre, radius, 0, 2 * kPi};
  Extents2d box;
  box.add(centre);
  if (!near(box.grown(radius))) {
    chords(Curve{whole});
    return;
  }
  open_ = false;
  curve(whole, start, start);
}

// Counter-clockwise in the drawing is so on the page too, which Cairo, with y downward, calls negative.
void CairoPainter::curve(const ArcCurve& arc, AcGePoint2d start, AcGePoint2d end) {
  Extents2d box;
  box.add(arc.centre);
  if (!near(box.grown(arc.radius))) {
    chords(Curve{arc});
    return;
  }
  moveTo(start);
  const AcGePoint2d centre = on(arc.centre);
  const double from = -arc.startAngle, to = -arc.startAngle - arc.sweep;
  (arc.sweep > 0 ? cairo_arc_negative : cairo_arc)(cairo_, centre.x, centre.y, arc.radius * factor_, from,
                                                   to);
  lineTo(end);
  endShape();
}

void CairoPainter::ellipse(const EllipseCurve& curve) {
  Extents2d box;
  box.add(curve.centre);
  if (!near(box.grown(curve.major.length()))) {
    chords(Curve{curve});
    return;
  }
  moveTo(pointAtParam(Curve{curve}, curve.startParam));
  const AcGePoint2d centre = on(curve.centre);
  const AcGeVector2d major = curve.major * factor_,
                     minor = curve.major.perpVector() * (curve.ratio * factor_);
  cairo_matrix_t axes, before;
  cairo_matrix_init(&axes, major.x, -major.y, minor.x, -minor.y, centre.x, centre.y);
  cairo_get_matrix(cairo_, &before);
  cairo_transform(cairo_, &axes);
  (curve.sweep > 0 ? cairo_arc : cairo_arc_negative)(cairo_, 0, 0, 1, curve.startParam,
                                                     curve.startParam + curve.sweep);
  cairo_set_matrix(cairo_, &before);
  at_ = on(pointAtParam(Curve{curve}, curve.startParam + curve.sweep));
  endShape();
}

// ---- letters

// From the current point, as outlines or as text, which a reader can search and copy.
void CairoPainter::letters(const std::vector<CairoFonts::Run>& runs, double size, bool outline) {
  for (const auto& run : runs) {
    cairo_set_font_face(cairo_, run.face);
    cairo_set_font_size(cairo_, size);
    (outline ? cairo_text_path : cairo_show_text)(cairo_, run.utf8.c_str());
  }
}

void CairoPainter::text(const DrawnText& text) {
  flush();
  Extents2d place;
  place.add(text.position.flat());
  if (!near(place)) return;
  if (!fonts_) fonts_ = std::make_unique<CairoFonts>();
  const double size = text.height * factor_ / fonts_->capitals();
  if (!(size > kSmallestText && size < kLargestText)) return;
  const auto runs = fonts_->runsOf(text.utf8);
  const AcGePoint2d at = on(text.position.flat());
  cairo_save(cairo_);
  cairo_translate(cairo_, at.x, at.y);
  cairo_rotate(cairo_, -std::atan2(text.direction.y, text.direction.x));
  cairo_set_dash(cairo_, nullptr, 0, 0);
  color(groundColor(options_.ground));
  cairo_move_to(cairo_, 0, 0);
  letters(runs, size, true);
  cairo_stroke(cairo_);
  color(penColor_);
  cairo_move_to(cairo_, 0, 0);
  letters(runs, size, false);
  cairo_restore(cairo_);
  cairo_new_path(cairo_);
}

// ---- files

cairo_status_t put(void* sink, const unsigned char* bytes, unsigned int count) {
  (*static_cast<const Sink*>(sink))({reinterpret_cast<const char*>(bytes), count});
  return CAIRO_STATUS_SUCCESS;
}

std::string whyNot(cairo_status_t status) {
  return status == CAIRO_STATUS_SUCCESS ? std::string() : cairo_status_to_string(status);
}

cairo_status_t drawOn(cairo_surface_t* surface, const DisplayList& list, const PlotOptions& options,
                      const Page& page, double units) {
  const Held<cairo_t> cairo(cairo_create(surface));
  cairo_font_options_t* fonts = cairo_font_options_create();
  cairo_font_options_set_hint_style(fonts, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(fonts, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_antialias(fonts, CAIRO_ANTIALIAS_GRAY);
  cairo_set_font_options(cairo.get(), fonts);
  cairo_font_options_destroy(fonts);
  CairoPainter painter(cairo.get(), list, options, page, units);
  paint(list, options.view, page.shown, painter);
  painter.finish();
  return cairo_status(cairo.get());
}

// Without a date of the user's a fixed one, so that the same drawing gives the same file.
std::string documentDate() {
  if (!environment("SOURCE_DATE_EPOCH")) return "2000-01-01T00:00:00Z";
  const LocalTime t = localTime();
  return formatted("%04d-%02d-%02dT%02d:%02d:%02dZ", t.year, t.month, t.day, t.hour, t.minute, t.second);
}

}  // namespace

bool hasCairo() {
  return true;
}

std::string drawPdf(const DisplayList& list, const PlotOptions& options, const Sink& sink) {
  const Page page = layoutPage(list, options);
  Sink kept = sink;
  const Held<cairo_surface_t> surface(
      cairo_pdf_surface_create_for_stream(put, &kept, page.width * kPointsPerMm, page.height * kPointsPerMm));
  cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATE_DATE, documentDate().c_str());
  const cairo_status_t painted = drawOn(surface.get(), list, options, page, kPointsPerMm);
  cairo_surface_finish(surface.get());
  const cairo_status_t written = cairo_surface_status(surface.get());
  return whyNot(painted != CAIRO_STATUS_SUCCESS ? painted : written);
}

std::string drawPng(const DisplayList& list, const PlotOptions& options, const Sink& sink) {
  const Page page = layoutPage(list, options);
  const double units = options.dpi / kMmPerInch;
  const double width = std::round(page.width * units), height = std::round(page.height * units);
  if (!(width < 32768 && height < 32768)) return "a picture of that many pixels is too large";
  const Held<cairo_surface_t> surface(cairo_image_surface_create(
      CAIRO_FORMAT_RGB24, std::max(1, static_cast<int>(width)), std::max(1, static_cast<int>(height))));
  if (const auto status = cairo_surface_status(surface.get()); status != CAIRO_STATUS_SUCCESS)
    return whyNot(status);
  const cairo_status_t painted = drawOn(surface.get(), list, options, page, units);
  if (painted != CAIRO_STATUS_SUCCESS) return whyNot(painted);
  Sink kept = sink;
  return whyNot(cairo_surface_write_to_png_stream(surface.get(), put, &kept));
}

}  // namespace tarnex

#else

namespace tarnex {

bool hasCairo() {
  return false;
}
std::string drawPdf(const DisplayList&, const PlotOptions&, const std::function<void(std::string_view)>&) {
  return "built without PDF";
}
std::string drawPng(const DisplayList&, const PlotOptions&, const std::function<void(std::string_view)>&) {
  return "built without PNG";
}

}  // namespace tarnex

#endif
