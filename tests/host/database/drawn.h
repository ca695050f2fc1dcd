// Notes down what is drawn, primitive by primitive.
// For tests only.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "host/database/database.h"
#include "host/database/worlddraw.h"

namespace tarnex {

class Drawn : public AcGiWorldDraw {
 public:
  std::vector<std::string> lines;
  std::vector<std::vector<AcGePoint3d>> points;  // of polylines

  void setColor(int index) override { lines.push_back("color " + std::to_string(index)); }
  void setLineType(std::string_view name) override { lines.push_back("linetype " + std::string(name)); }
  void setSelectionMarker(int) override {}
  void polyline(std::span<const AcGePoint3d> p) override {
    points.emplace_back(p.begin(), p.end());
    std::string text = "polyline";
    for (const AcGePoint3d& q : p) text += ' ' + at(q);
    lines.push_back(text);
  }
  void circle(const AcGePoint3d& c, double r) override {
    lines.push_back("circle " + at(c) + ' ' + number(r));
  }
  void circularArc(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) override {
    lines.push_back("arc " + at(a) + ' ' + at(b) + ' ' + at(c));
  }
  void text(const AcGePoint3d& p, AcGeVector3d, double height, std::string_view s) override {
    lines.push_back("text " + at(p) + ' ' + number(height) + ' ' + std::string(s));
  }

 private:
  static std::string number(double v) {
    std::ostringstream out;
    out << (std::abs(v) < 1e-9 ? 0 : v);
    return out.str();
  }
  static std::string at(const AcGePoint3d& p) { return number(p.x) + ',' + number(p.y) + ',' + number(p.z); }
};

}  // namespace tarnex
