// Finding fonts by what letters they have.
// Knows fonts.
#ifdef TARNEX_HAS_CAIRO

#include "host/display/cairofonts.h"

#include <cairo-ft.h>
#include <fontconfig/fontconfig.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

#include <unordered_map>

#include "host/display/shape.h"

namespace tarnex {

namespace {

constexpr double kUsualCapitals = 0.72;
constexpr double kProbeSize = 1000;

struct Release {
  void operator()(FcPattern* p) const { FcPatternDestroy(p); }
  void operator()(FcFontSet* s) const { FcFontSetDestroy(s); }
  void operator()(cairo_font_face_t* f) const { cairo_font_face_destroy(f); }
  void operator()(cairo_scaled_font_t* f) const { cairo_scaled_font_destroy(f); }
  void operator()(cairo_font_options_t* o) const { cairo_font_options_destroy(o); }
};
template <class T>
using Held = std::unique_ptr<T, Release>;

// The library reads its configuration once and keeps a little of it for good.
void startLibrary() {
#ifdef __SANITIZE_ADDRESS__
  const __lsan::ScopedDisabler noLeakOfOurs;
#endif
  FcInit();
}

Held<FcPattern> wanted() {
  Held<FcPattern> pattern(FcPatternCreate());
  for (const char* family : {"Arial", "Helvetica", "DejaVu Sans", "sans-serif"})
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
  FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
  FcPatternAddBool(pattern.get(), FC_COLOR, FcFalse);
  FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
  FcDefaultSubstitute(pattern.get());
  return pattern;
}

bool isOutline(FcPattern* font) {
  FcBool outline = FcFalse, color = FcFalse;
  FcPatternGetBool(font, FC_OUTLINE, 0, &outline);
  FcPatternGetBool(font, FC_COLOR, 0, &color);
  return outline && !color;
}

bool has(FcPattern* font, char32_t letter) {
  FcCharSet* letters = nullptr;
  return FcPatternGetCharSet(font, FC_CHARSET, 0, &letters) == FcResultMatch &&
         FcCharSetHasChar(letters, letter);
}

double capitalsOf(cairo_font_face_t* face) {
  cairo_matrix_t size, plain;
  cairo_matrix_init_scale(&size, kProbeSize, kProbeSize);
  cairo_matrix_init_identity(&plain);
  const Held<cairo_font_options_t> options(cairo_font_options_create());
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
  const Held<cairo_scaled_font_t> scaled(cairo_scaled_font_create(face, &size, &plain, options.get()));
  cairo_text_extents_t box{};
  cairo_scaled_font_text_extents(scaled.get(), "H", &box);
  const double share = box.height / kProbeSize;
  return share > 0.3 && share < 1.5 ? share : kUsualCapitals;
}

}  // namespace

struct CairoFonts::Fonts {
  Held<FcPattern> wanted;
  std::vector<FcPattern*> outlines;  // of `sorted`, best first
  Held<FcFontSet> sorted;
  std::vector<Held<cairo_font_face_t>> faces;  // made when first used; [0] is there, the rest by index
  std::unordered_map<char32_t, std::size_t> known;

  cairo_font_face_t* face(std::size_t i) {
    if (i >= faces.size()) faces.resize(i + 1);
    if (faces[i]) return faces[i].get();
    if (i < outlines.size()) {
      const Held<FcPattern> ready(FcFontRenderPrepare(nullptr, wanted.get(), outlines[i]));
      faces[i].reset(cairo_ft_font_face_create_for_pattern(ready.get()));
    } else {
      faces[i].reset(
          cairo_toy_font_face_create("sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL));
    }
    return faces[i].get();
  }
};

CairoFonts::CairoFonts() : fonts_(std::make_unique<Fonts>()), capitals_(kUsualCapitals) {
  startLibrary();
  fonts_->wanted = wanted();
  FcResult result = FcResultNoMatch;
  fonts_->sorted.reset(FcFontSort(nullptr, fonts_->wanted.get(), FcTrue, nullptr, &result));
  if (fonts_->sorted)
    for (int i = 0; i < fonts_->sorted->nfont; ++i)
      if (isOutline(fonts_->sorted->fonts[i])) fonts_->outlines.push_back(fonts_->sorted->fonts[i]);
  capitals_ = capitalsOf(fonts_->face(0));
}

CairoFonts::~CairoFonts() = default;

std::size_t CairoFonts::fontOf(char32_t letter) {
  const auto [place, added] = fonts_->known.try_emplace(letter, 0);
  if (added)
    for (std::size_t i = 0; i < fonts_->outlines.size(); ++i)
      if (has(fonts_->outlines[i], letter)) {
        place->second = i;
        break;
      }
  return place->second;
}

std::vector<CairoFonts::Run> CairoFonts::runsOf(std::string_view utf8) {
  std::vector<Run> runs;
  std::size_t last = 0;
  for (std::size_t at = 0; at < utf8.size();) {
    char32_t letter = nextCodePoint(utf8, at);
    if (letter < 0x20 || letter == 0x7F) letter = ' ';
    const std::size_t font = letter == ' ' && !runs.empty() ? last : fontOf(letter);
    if (runs.empty() || font != last) runs.push_back({fonts_->face(font), {}});
    appendUtf8(runs.back().utf8, letter);
    last = font;
  }
  return runs;
}

}  // namespace tarnex

#endif
