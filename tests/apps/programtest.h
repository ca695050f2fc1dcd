// The built program run as a user runs it, in a folder of its own.
// Knows its exit codes and what it prints; nothing of its inside.
#pragma once

#include <cstdio>

#include "frame/environment.h"

namespace tarnex {

struct Ran {
  int code = -1;  // of the program; 128 and more: ended by a signal
  std::string out;
};

class ProgramTest : public InFolder {
 protected:
  ProgramTest() {
    std::filesystem::create_directories(folder + "/install");
    surround("TARNEX_INSTALL", folder + "/install");
    surround("TARNEX_SHIPPED", TARNEX_BINARY_DIR "/install");
    surround("TARNEX_CONFIG", folder + "/tarnex.ini");
    surround("TARNEX_LANGUAGE", "1");
    surround("SOURCE_DATE_EPOCH", "1000000000");
    for (const char* name : {"plate.dxf", "punch.dxf"})
      std::filesystem::copy(std::string(TARNEX_SOURCE_DIR "/samples/") + name, folder + "/" + name);
  }
  // A command line in the folder; "tarnex" is the built one.
  Ran sh(std::string line) const {
    line = "cd '" + folder + "' && tarnex() { timeout 60 '" TARNEX_BINARY_DIR "/bin/tarnex' \"$@\"; } && { " +
           line + "\n} 2>&1";
    Ran ran;
    FILE* pipe = popen(line.c_str(), "r");
    if (!pipe) return ran;
    char buffer[4096];
    for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) ran.out.append(buffer, n);
    const int status = pclose(pipe);
    ran.code = status % 128 == 0 ? status / 256 : 128 + status % 128;  // as wait() packs them
    return ran;
  }
  [[nodiscard]] bool there(const std::string& name) const {
    return std::filesystem::exists(folder + "/" + name);
  }
  // A drawing of nothing but these entities, in the oldest form.
  void drawing(const std::string& name, const std::string& entities, const std::string& header = {}) {
    write(name, (header.empty() ? "" : "0\nSECTION\n2\nHEADER\n" + header + "0\nENDSEC\n") +
                    "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n");
  }
  static std::string number(double v) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", v);
    return text;
  }
  static std::string circle(double x, double y, double r, const std::string& layer = "0") {
    return "0\nCIRCLE\n8\n" + layer + "\n10\n" + number(x) + "\n20\n" + number(y) + "\n40\n" + number(r) +
           "\n";
  }
  static std::string line(double x, double y, double u, double v, const std::string& layer = "0") {
    return "0\nLINE\n8\n" + layer + "\n10\n" + number(x) + "\n20\n" + number(y) + "\n11\n" + number(u) +
           "\n21\n" + number(v) + "\n";
  }
  static int count(const std::string& text, const std::string& what) {
    int n = 0;
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += what.size()) ++n;
    return n;
  }
};

}  // namespace tarnex
