// Single-line and paragraph text.
// Knows position, height and letters; fonts are the display's.
#include <algorithm>

#include "host/database/entities.h"
#include "host/database/entitytools.h"

namespace tarnex {

namespace {

constexpr double kLetterWidth = 0.7;   // of the height, on average
constexpr double kLineStep = 5.0 / 3;  // of the height, from one base line to the next

std::size_t letters(std::string_view utf8) {
  return static_cast<std::size_t>(std::count_if(
      utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

double widthOf(std::string_view utf8, double height) {
  return static_cast<double>(letters(utf8)) * kLetterWidth * height;
}

// Upper left corner, the way that lines run, and their size, as a box in the plane.
Extents2d boxOf(AcGePoint2d lowerLeft, double rotation, double width, double height) {
  const AcGeVector2d along{std::cos(rotation), std::sin(rotation)};
  const AcGeVector2d across = along.perpVector() * height;
  Extents2d box;
  for (const AcGePoint2d p : {lowerLeft, lowerLeft + along * width}) {
    box.add(p);
    box.add(p + across);
  }
  return box;
}

// The lines that a reader sees: formatting codes fall away.
std::vector<std::string> plainLines(const std::string& text) {
  std::vector<std::string> lines(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '{' || c == '}') continue;
    if (c != '\\' || i + 1 == text.size()) {
      lines.back() += c;
      continue;
    }
    const char code = text[++i];
    if (code == 'P') {
      lines.emplace_back();
    } else if (code == '\\' || code == '{' || code == '}') {
      lines.back() += code;
    } else if (code == '~') {
      lines.back() += ' ';
    } else if (std::string_view("ACcFfHQTWpS").find(code) != std::string_view::npos) {
      const std::size_t end = text.find(';', i);
      if (code == 'S') lines.back() += text.substr(i + 1, end == std::string::npos ? end : end - i - 1);
      if (end == std::string::npos) break;
      i = end;
    }  // \L \l \O \o \K \k switch something on or off
  }
  return lines;
}

double widestOf(const std::vector<std::string>& lines, double height) {
  double width = 0;
  for (const std::string& line : lines) width = std::max(width, widthOf(line, height));
  return width;
}

}  // namespace

// ---- AcDbText

const AcRxClass& AcDbText::desc() {
  static const AcRxClass kClass = hostClass("AcDbText", &AcDbEntity::desc(), "TEXT", makeObject<AcDbText>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbText::clone() const {
  return std::unique_ptr<AcDbText>(new AcDbText(*this));
}
const char* AcDbText::dxfName() const {
  return "TEXT";
}

Extents2d AcDbText::getGeomExtents() const {
  return boxOf(position_.flat(), rotation_, widthOf(text_, height_), height_);
}

// Mirrored text stays readable: it fills the mirrored place and starts at its other end.
ErrorStatus AcDbText::transformBy(const AcGeMatrix3d& m) {
  if (const ErrorStatus s = checkPlaneMatrix(m); s != ErrorStatus::eOk) return s;
  assertWriteEnabled();
  const AcGeVector2d along{std::cos(rotation_), std::sin(rotation_)};
  const bool mirrored = m.determinant2d() < 0;
  const AcGeVector2d moved = m.apply(mirrored ? -along : along);
  if (mirrored) {
    const AcGeVector2d line = along * baseLineLength();
    position_ = position_ + AcGeVector3d{line.x, line.y, 0};
  }
  position_ = m.apply(position_);
  if (moved != along) rotation_ = moved.angle();
  height_ *= m.uniformScale() ? std::abs(*m.uniformScale()) : m.apply(along.perpVector()).length();
  return ErrorStatus::eOk;
}

double AcDbText::baseLineLength() const {
  return widthOf(text_, height_);
}

void AcDbText::worldDraw(AcGiWorldDraw& draw) const {
  draw.text(position_, {std::cos(rotation_), std::sin(rotation_), 0}, height_, text_);
}

void AcDbText::list(std::vector<std::string>& lines) const {
  AcDbEntity::list(lines);
  lines.push_back("  At: " + pointText(position_));
  lines.push_back("  Height: " + numberText(height_) + "  Rotation: " + degreesText(rotation_));
  lines.push_back("  Text: " + text_);
}

// ---- AcDbMText

const AcRxClass& AcDbMText::desc() {
  static const AcRxClass kClass = hostClass("AcDbMText", &AcDbText::desc(), "MTEXT", makeObject<AcDbMText>);
  return kClass;
}
std::unique_ptr<AcDbObject> AcDbMText::clone() const {
  return std::unique_ptr<AcDbMText>(new AcDbMText(*this));
}
const char* AcDbMText::dxfName() const {
  return "MTEXT";
}

Extents2d AcDbMText::getGeomExtents() const {
  const std::vector<std::string> lines = plainLines(text_);
  const double tall = height_ * (1 + kLineStep * static_cast<double>(lines.size() - 1));
  const AcGeVector2d down{std::sin(rotation_), -std::cos(rotation_)};
  return boxOf(position_.flat() + down * tall, rotation_, widestOf(lines, height_), tall);
}

ErrorStatus AcDbMText::transformBy(const AcGeMatrix3d& m) {
  return AcDbText::transformBy(m);
}
double AcDbMText::baseLineLength() const {
  return widestOf(plainLines(text_), height_);
}

void AcDbMText::worldDraw(AcGiWorldDraw& draw) const {
  const AcGeVector2d along{std::cos(rotation_), std::sin(rotation_)};
  double below = height_;
  for (const std::string& line : plainLines(text_)) {
    const AcGeVector2d down = along.perpVector() * -below;
    draw.text(position_ + AcGeVector3d{down.x, down.y, 0}, {along.x, along.y, 0}, height_, line);
    below += kLineStep * height_;
  }
}

void AcDbMText::list(std::vector<std::string>& lines) const {
  AcDbText::list(lines);
}

}  // namespace tarnex
