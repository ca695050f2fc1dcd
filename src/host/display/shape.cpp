// Plane geometry of primitives, and the letters of texts.
// Knows no colours and no paper.
#include "host/display/shape.h"

#include <algorithm>

namespace tarnex {

namespace {

constexpr double kLetterWidth = 0.8;     // of the height
constexpr double kIdeographWidth = 1.4;  // they fill a square of the font's size
constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstIdeograph = 0x2E80;

// The end of the circle's diameter in the direction (dx, dy) counts where it lies on the middle point's side
// of the chord.
Extents2d arcExtents(const DrawnArc& arc, AcGePoint2d centre, double radius) {
  const AcGePoint2d s = arc.start.flat(), e = arc.end.flat();
  const AcGeVector2d chord = e - s;
  const bool left = chord.crossProduct(arc.point.flat() - s) > 0;
  Extents2d box;
  for (const AcGePoint2d p : {s, arc.point.flat(), e}) box.add(p);
  for (const AcGeVector2d way : {AcGeVector2d{1, 0}, {0, 1}, {-1, 0}, {0, -1}}) {
    const AcGePoint2d p = centre + way * radius;
    if ((chord.crossProduct(p - s) > 0) == left) box.add(p);
  }
  return box;
}

// How many bytes a sequence with this first byte has; 0 for what can't be one.
std::size_t sequenceLength(unsigned char first) {
  return first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
}

bool allowed(char32_t c, std::size_t length) {
  static constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  return c >= kLeast[length] && c <= 0x10FFFF && !(c >= 0xD800 && c <= 0xDFFF);
}

// The character that %% and what follows stands for; 0 for none. `at` is moved behind it.
char32_t codeCharacter(std::string_view text, std::size_t& at, bool& known) {
  const char c = at + 2 < text.size() ? text[at + 2] : '\0';
  known = true;
  at += 3;
  switch (c) {
    case 'c':
    case 'C':
      return 0x2300;
    case 'd':
    case 'D':
      return 0xB0;
    case 'p':
    case 'P':
      return 0xB1;
    case '%':
      return '%';
    case 'u':
    case 'U':
    case 'o':
    case 'O':
    case 'k':
    case 'K':
      return 0;
    default:
      break;
  }
  char32_t number = 0;
  std::size_t i = at - 1;
  for (; i < text.size() && i < at + 2 && text[i] >= '0' && text[i] <= '9'; ++i)
    number = number * 10 + static_cast<char32_t>(text[i] - '0');
  known = number >= 32 && number < 256;
  at = known ? i : at - 3;
  return number;
}

}  // namespace

std::optional<CircleThrough> circleThrough(const DrawnArc& arc) {
  const AcGePoint2d s = arc.start.flat();
  const AcGeVector2d a = arc.point.flat() - s, b = arc.end.flat() - s;
  const double twice = 2 * a.crossProduct(b);
  const double aa = a.dotProduct(a), bb = b.dotProduct(b);
  const AcGeVector2d toCentre{(b.y * aa - a.y * bb) / twice, (a.x * bb - b.x * aa) / twice};
  const double radius = toCentre.length();
  if (!std::isfinite(radius) || !(radius > 0) || radius > kFarthestDrawn) return {};
  return CircleThrough{toCentre, radius};
}

Extents2d extentsOf(const DrawnPolyline& s) {
  Extents2d box;
  for (const AcGePoint3d& p : s.points) box.add(p.flat());
  return box;
}

Extents2d extentsOf(const DrawnCircle& s) {
  Extents2d box;
  box.add(s.centre.flat());
  return box.grown(s.radius);
}

Extents2d extentsOf(const DrawnArc& s) {
  if (s.start.flat() == s.end.flat()) {
    const AcGePoint2d centre = midpoint(s.start.flat(), s.point.flat());
    return extentsOf(DrawnCircle{solid(centre), s.start.flat().distanceTo(s.point.flat()) / 2});
  }
  if (const auto circle = circleThrough(s))
    return arcExtents(s, s.start.flat() + circle->toCentre, circle->radius);
  Extents2d box;
  for (const AcGePoint3d& p : {s.start, s.point, s.end}) box.add(p.flat());
  return box;
}

Extents2d extentsOf(const DrawnText& s) {
  Extents2d box;
  const AcGeVector2d up = s.direction.perpVector() * s.height, along = s.direction * textWidth(s);
  for (const AcGePoint2d p : {s.position.flat(), s.position.flat() + along}) {
    box.add(p);
    box.add(p + up);
  }
  return box;
}

Extents2d extentsOf(const DrawnShape& shape) {
  return std::visit([](const auto& s) { return extentsOf(s); }, shape);
}

// The turn at the middle point, from its chord to the next, is half the sweep whatever point of the arc it
// is: right also for arcs of a hair's breadth, where angles at the far centre have no digits left.
std::optional<ArcCurve> arcThrough(const DrawnArc& arc) {
  const AcGePoint2d s = arc.start.flat(), p = arc.point.flat(), e = arc.end.flat();
  if (s == e && s != p) return ArcCurve{midpoint(s, p), s.distanceTo(p) / 2, acutAngle(p, s), 2 * kPi};
  const auto circle = circleThrough(arc);
  if (!circle) return {};
  const AcGeVector2d a = p - s, c = e - p;
  return ArcCurve{s + circle->toCentre, circle->radius, (-circle->toCentre).angle(),
                  2 * std::atan2(a.crossProduct(c), a.dotProduct(c))};
}

double textWidth(const DrawnText& text) {
  double letters = 0;
  for (std::size_t at = 0; at < text.utf8.size();)
    letters += nextCodePoint(text.utf8, at) >= kFirstIdeograph ? kIdeographWidth : kLetterWidth;
  return letters * text.height;
}

std::string shownText(std::string_view utf8) {
  std::string shown;
  for (std::size_t at = 0; at < utf8.size();) {
    if (utf8.substr(at, 2) == "%%") {
      bool known = false;
      const char32_t c = codeCharacter(utf8, at, known);
      if (known && c != 0) appendUtf8(shown, c);
      if (known) continue;
    }
    shown += utf8[at++];
  }
  return shown;
}

char32_t nextCodePoint(std::string_view utf8, std::size_t& at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  const unsigned char first = byte(at++);
  const std::size_t length = sequenceLength(first);
  if (length == 0 || at + length - 1 > utf8.size()) return kReplacement;
  char32_t c = length == 1 ? first : first & (0x7F >> length);
  for (std::size_t i = 0; i + 1 < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return kReplacement;
    c = c << 6 | (byte(at + i) & 0x3F);
  }
  if (!allowed(c, length)) return kReplacement;
  at += length - 1;
  return c;
}

void appendUtf8(std::string& out, char32_t c) {
  const auto tail = [&](int shift) { out += static_cast<char>(0x80 | (c >> shift & 0x3F)); };
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
    tail(0);
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | c >> 12);
    tail(6), tail(0);
  } else {
    out += static_cast<char>(0xF0 | c >> 18);
    tail(12), tail(6), tail(0);
  }
}

}  // namespace tarnex
