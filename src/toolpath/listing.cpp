// What `list` tells of a path.
// Knows the path's fields and the numbers of the texts; where texts come from, the caller knows.
#include "toolpath/display.h"

namespace tarnex {

namespace {

class PathLines {
 public:
  PathLines(const CToolPath& path, const PathText& text) : path_(path), text_(text) {}

  std::vector<std::string> all() {
    add(539, {static_cast<long long>(path_.nPathNo())});
    add(541, {path_.dClearance()});
    add(542, {path_.dOffset()});
    if (path_.nSide() != 0) add(path_.nSide() == kInnerHole ? 20230 : 20231, {});
    if (path_.nDirection() != 0) add(path_.nDirection() == kCounterClockwise ? 20232 : 20233, {});
    points();
    contour();
    tapers();
    codes();
    add(540, {});
    return std::move(lines_);
  }

 private:
  void add(int id, std::initializer_list<FormatArg> args) {
    const std::string line = text_(id, args);
    const std::size_t first = line.find_first_not_of("\r\n");
    if (first == std::string::npos) return;
    lines_.push_back(line.substr(first, line.find_last_not_of("\r\n") - first + 1));
  }

  void addPoint(int id, AcGePoint2d p) { add(id, {p.x, p.y}); }

  void points() {
    if (path_.numVerts() > 0) addPoint(20234, path_.getPointAt(0));
    if (path_.numVerts() > 1) addPoint(20235, path_.getPointAt(1));
    if (path_.nBreakSeg() >= 0) addPoint(20242, path_.ptBreak());
  }

  // Without the lead-in.
  void contour() {
    const int segments = path_.numVerts() - 2;
    if (segments > 0) {
      const double length = path_.length() - path_.getPointAt(0).distanceTo(path_.getPointAt(1));
      add(path_.hasFlag(kOpenPath) ? 20241 : 20240, {static_cast<long long>(segments), length});
    }
    if (path_.hasFlag(kFourAxis)) add(20239, {path_.dHeight()});
  }

  void tapers() {
    if (path_.dTaper() != 0) add(20236, {path_.dTaper()});
    const auto& tapers = path_.aSegTaper();
    for (std::size_t i = 0; i < tapers.size() && static_cast<int>(i) < path_.numVerts(); ++i) {
      const AcGePoint2d from = path_.getPointAt(static_cast<int>(i));
      if (tapers[i] != 0) add(20237, {static_cast<long long>(i), from.x, from.y, tapers[i]});
    }
  }

  void codes() {
    for (std::size_t k = 0; k < path_.aCodeVertex().size(); ++k) {
      const int vertex = path_.aCodeVertex()[k];
      if (vertex < 0 || vertex >= path_.numVerts()) continue;
      const AcGePoint2d at = path_.getPointAt(vertex);
      add(20238, {static_cast<long long>(vertex), at.x, at.y, std::string_view(path_.aCodeText()[k])});
    }
  }

  const CToolPath& path_;
  const PathText& text_;
  std::vector<std::string> lines_;
};

}  // namespace

// Where no catalogue is in reach: the application puts its own lines in place of these.
void CToolPath::list(std::vector<std::string>& lines) const {
  AcDbEntity::list(lines);
  const auto plain = [](int id, std::initializer_list<FormatArg> args) -> std::string {
    const char* pattern = id == 539   ? "  Path number: %d"
                          : id == 541 ? "  Fit clearance: %g"
                          : id == 542 ? "  Wire offset: %g"
                          : id == 540 ? "  Lengths are in millimetres."
                                      : "";
    return formatChecked(pattern, args);
  };
  for (std::string& line : pathListLines(*this, plain)) lines.push_back(std::move(line));
}

std::vector<std::string> pathListLines(const CToolPath& path, const PathText& text) {
  return PathLines(path, text).all();
}

}  // namespace tarnex
