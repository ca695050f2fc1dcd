// Reading SVG path data.
#include "svgreader.h"

#include <algorithm>
#include <cstdlib>

namespace tarnex {

namespace {

constexpr int kChords = 720;

struct Reader {
  const char* at;
  std::vector<AcGePoint2d> chain;
  AcGePoint2d start;

  double number() {
    while (*at == ' ' || *at == ',') ++at;
    char* end = nullptr;
    const double v = std::strtod(at, &end);
    at = end;
    return v;
  }
  bool numberFollows() const { return *at == ' ' || *at == '-' || *at == '.' || (*at >= '0' && *at <= '9'); }
  AcGePoint2d here() const { return chain.empty() ? AcGePoint2d{} : chain.back(); }
  AcGePoint2d offset() {
    const double x = number(), y = number();
    return {here().x + x, here().y + y};
  }
  void arc();
  void curve() {
    const AcGePoint2d a = here(), b = offset(), c = offset();
    for (int i = 1; i <= kChords; ++i) {
      const double t = double(i) / kChords, u = 1 - t;
      chain.push_back(
          {u * u * a.x + 2 * u * t * b.x + t * t * c.x, u * u * a.y + 2 * u * t * b.y + t * t * c.y});
    }
  }
  void one(char command) {
    const AcGePoint2d from = here();
    switch (command) {
      case 'M':
        chain = {{number(), number()}};
        break;
      case 'm':
        chain.push_back(offset());
        break;
      case 'h':
        chain.push_back({from.x + number(), from.y});
        break;
      case 'v':
        chain.push_back({from.x, from.y + number()});
        break;
      case 'l':
        chain.push_back(offset());
        break;
      case 'a':
        arc();
        break;
      case 'q':
        curve();
        break;
      default:
        chain.clear();
        std::abort();
    }
    if (command == 'M' || command == 'm') start = here();
  }
};

// End points to centre, as the format's implementation notes give it: in axes in which the ellipse is the
// unit circle.
void Reader::arc() {
  double rx = number(), ry = number();
  const double turned = number() * std::acos(-1.0) / 180;
  const bool large = number() != 0, sweep = number() != 0;
  const AcGePoint2d a = here(), b = offset();
  const double c = std::cos(turned), s = std::sin(turned);
  const auto inAxes = [&](AcGePoint2d p) {
    return AcGePoint2d{(p.x * c + p.y * s) / rx, (p.y * c - p.x * s) / ry};
  };
  const double half = inAxes(a).distanceTo(inAxes(b)) / 2, grow = std::max(1.0, half);
  rx *= grow;  // radii that are too small grow
  ry *= grow;
  const AcGePoint2d from = inAxes(a), to = inAxes(b);
  const double x = (from.x - to.x) / 2, y = (from.y - to.y) / 2, square = x * x + y * y;
  const double f = (large == sweep ? -1 : 1) * std::sqrt(std::max(0.0, 1 - square) / square);
  const AcGePoint2d centre{f * y + (from.x + to.x) / 2, -f * x + (from.y + to.y) / 2};
  const double begin = std::atan2(from.y - centre.y, from.x - centre.x);
  double turn = std::atan2(to.y - centre.y, to.x - centre.x) - begin;
  if (sweep && turn < 0) turn += 2 * std::acos(-1.0);
  if (!sweep && turn > 0) turn -= 2 * std::acos(-1.0);
  for (int i = 1; i < kChords; ++i) {
    const double t = begin + turn * i / kChords;
    const double u = rx * (centre.x + std::cos(t)), v = ry * (centre.y + std::sin(t));
    chain.push_back({u * c - v * s, u * s + v * c});
  }
  chain.push_back(b);
}

}  // namespace

std::string firstPathData(const std::string& svg) {
  const std::size_t from = svg.find(" d=\"");
  if (from == std::string::npos) return {};
  return svg.substr(from + 4, svg.find('"', from + 4) - from - 4);
}

std::vector<AcGePoint2d> readPath(const std::string& data) {
  Reader reader{data.c_str(), {}, {}};
  while (*reader.at) {
    const char command = *reader.at++;
    if (command == 'z')
      reader.chain.push_back(reader.start);
    else
      do reader.one(command);
      while (reader.numberFollows());
  }
  return reader.chain;
}

double distanceToChain(const std::vector<AcGePoint2d>& chain, AcGePoint2d p) {
  double best = chain.empty() ? 1e300 : chain.front().distanceTo(p);
  for (std::size_t i = 1; i < chain.size(); ++i) {
    const AcGeVector2d d = chain[i] - chain[i - 1];
    const double length = d.dotProduct(d);
    const double t = length > 0 ? std::clamp((p - chain[i - 1]).dotProduct(d) / length, 0.0, 1.0) : 0;
    best = std::min(best, (chain[i - 1] + d * t).distanceTo(p));
  }
  return best;
}

}  // namespace tarnex
