// ISO jobs run as a user runs them: a drawing whose program can be worked out by hand, and jobs for it.
// Knows the shipped posts by their names alone.
#pragma once

#include "apps/programtest.h"

namespace tarnex {

class IsoProgramTest : public ProgramTest {
 protected:
  IsoProgramTest() {
    // A plate of 20 by 20 with a hole of radius 2 in its middle.
    drawing("square.dxf", square(0, 0, 20, "PART") + circle(10, 10, 2, "HOLES"));
    write("two.toml", kStyles + rule("PART", "figure = \"outer\"") + rule("HOLE", "figure = \"hole\""));
    write("other.toml",
          "[[style]]\nname = \"OTHER\"\npass = [ { offset = 0.3, offset_number = \"077\" } ]\n");
    write("nothing.scr", "");
  }
  static std::string square(double x, double y, double side, const std::string& layer = "0") {
    return line(x, y, x + side, y, layer) + line(x + side, y, x + side, y + side, layer) +
           line(x + side, y + side, x, y + side, layer) + line(x, y + side, x, y, layer);
  }
  static std::string rule(const std::string& style, const std::string& what) {
    return "[[rule]]\nstyle = \"" + style + "\"\n" + what + "\n";
  }
  // The program behind its head.
  [[nodiscard]] std::string body(const std::string& name) {
    const std::string all = read(name);
    const auto at = all.find("G92");
    return at == std::string::npos ? "no G92: " + all : all.substr(at);
  }

  // Circles are entered at angle 0, and a stop stands before a part is free.
  const std::string kPlain = " --set bFixedLeadAngle=0 --set dCutoffLen=0.5";
  const std::string kStyles =
      "[[style]]\nname = \"HOLE\"\npass = [ { offset = 0.18, offset_number = \"001\", condition = \"01\" } "
      "]\n"
      "[[style]]\nname = \"PART\"\npass = [\n"
      "  { offset = 0.2, offset_number = \"011\", condition = \"01\" },\n"
      "  { offset = 0.14, offset_number = \"012\", condition = \"02\" } ]\n";
};

}  // namespace tarnex
