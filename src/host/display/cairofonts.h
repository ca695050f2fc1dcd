// Letters for Cairo: for each the first font of the system that has it, a sans-serif one if possible.
// Knows fonts; places and colours are the painter's. For this folder only.
#pragma once

#ifdef TARNEX_HAS_CAIRO

#include <cairo.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnex {

class CairoFonts {
 public:
  CairoFonts();
  ~CairoFonts();
  CairoFonts(const CairoFonts&) = delete;
  CairoFonts& operator=(const CairoFonts&) = delete;

  // Letters of one font in a row; `face` belongs to this object.
  struct Run {
    cairo_font_face_t* face;
    std::string utf8;
  };
  [[nodiscard]] std::vector<Run> runsOf(std::string_view utf8);
  // Height of capitals of the first font, as a share of its size.
  [[nodiscard]] double capitals() const { return capitals_; }

 private:
  struct Fonts;
  [[nodiscard]] std::size_t fontOf(char32_t letter);
  std::unique_ptr<Fonts> fonts_;
  double capitals_;
};

}  // namespace tarnex

#endif
