// Paths, posts and programs of slow-wire jobs.
// Knows nothing of how the truth test judges.
#include "isojobs.h"

#include "contour/geometrylibrary.h"
#include "host/platform/files.h"
#include "machining/postsource.h"
#include "outputiso/program.h"
#include "toolpath/breakpoint.h"

namespace tarnex::truth::test {

namespace {

double uniform(std::mt19937& rng, double low, double high) {
  return std::uniform_real_distribution<>(low, high)(rng);
}
int whole(std::mt19937& rng, int low, int high) {
  return std::uniform_int_distribution<>(low, high)(rng);
}

std::vector<Stroke> strokesOf(const PolylineCurve& contour) {
  std::vector<Stroke> strokes;
  const auto& v = contour.vertices;
  for (std::size_t i = 0; i < v.size(); ++i)
    strokes.push_back(spanStroke(v[i].point, v[(i + 1) % v.size()].point, v[i].bulge));
  return strokes;
}

}  // namespace

MachinePost shippedPost(const std::string& name) {
  const std::string path = TARNEX_SOURCE_DIR "/data/MZS/" + name + "/" + name + ".toml";
  const auto source = readFile(path);
  EXPECT_TRUE(source) << path;
  auto compiled = compilePost(source.value.value_or(""), name);
  EXPECT_TRUE(compiled.faults.empty()) << name;
  return compiled.post;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const auto end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

std::string textOf(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) text += line + "\n";
  return text;
}

Shape rectangle(AcGePoint2d c, double w, double h) {
  const double x = w / 2, y = h / 2;
  return {
      c,
      {{{{c.x - x, c.y - y}, 0}, {{c.x + x, c.y - y}, 0}, {{c.x + x, c.y + y}, 0}, {{c.x - x, c.y + y}, 0}},
       true}};
}

PolylineCurve reversedContour(const PolylineCurve& contour) {
  const std::size_t n = contour.vertices.size();
  PolylineCurve out{{}, contour.closed};
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t k = n - 1 - i;
    out.vertices.push_back({contour.vertices[k].point, -contour.vertices[(k + n - 1) % n].bulge});
  }
  return out;
}

// Vertices at growing angles about the centre; some spans are flat arcs, some corners rounded.
Shape randomShape(std::mt19937& rng, AcGePoint2d centre, double radius) {
  const int n = whole(rng, 3, 8);
  std::vector<AcGePoint2d> corners;
  const double first = uniform(rng, 0, 6);
  for (int k = 0; k < n; ++k)
    corners.push_back(acutPolar(centre, first + (k + uniform(rng, -0.2, 0.2)) * 2 * kPi / n,
                                radius * uniform(rng, 0.75, 1)));
  Shape shape{centre, {{}, true}};
  for (std::size_t k = 0; k < corners.size(); ++k) {
    const AcGePoint2d a = corners[(k + corners.size() - 1) % corners.size()], b = corners[k],
                      c = corners[(k + 1) % corners.size()];
    if (whole(rng, 0, 2) != 0) {
      shape.contour.vertices.push_back({b, whole(rng, 0, 2) == 0 ? uniform(rng, -0.08, 0.25) : 0.0});
      continue;
    }
    // A rounded corner between two straight spans.
    const AcGeVector2d u = (b - a).normal(), v = (c - b).normal();
    const double turn = std::atan2(cross(u, v), dot(u, v));
    const double cut = uniform(rng, 0.1, 0.3) * std::min(a.distanceTo(b), b.distanceTo(c));
    if (!shape.contour.vertices.empty()) shape.contour.vertices.back().bulge = 0;
    shape.contour.vertices.push_back({b - u * cut, std::tan(turn / 4)});
    shape.contour.vertices.push_back({b + v * cut, 0});
  }
  // The span into the first vertex may be an arc, but not into a rounded corner.
  shape.contour.vertices.back().bulge = 0;
  return shape;
}

IsoJobs::IsoJobs() {
  texts(
      {{2, "no path"}, {37, "not written"}, {189, "writing"}, {1848, "NO FILE %s"}, {1849, "NO CELL %s %g"}});
  std::string lines = "[Main]\nVer=2\n[SKD11-0.2-5]\n1=(WIRE)\n";
  for (int k = 0; k <= 10; ++k) {
    const std::string number = (k < 10 ? "0" : "") + std::to_string(k);
    lines += std::to_string(k + 2) + "=C" + number + "=ON06 OF60\n";
  }
  for (const char* folderName : kShippedPosts)
    for (const char* name : {"bywire", "plain"})
      write(std::string("MZS/") + folderName + "/" + name + ".ini", lines);
  module->settings.dIsoOvercut = 0.5;
  module->settings.dOvercutLen = 0.3;
  module->settings.dCutoffLen = 0.6;
  module->settings.dOvercutExit = 0.8;
  module->settings.dIsoAngle = 60;
  module->settings.nIsoOption792 = module->settings.nIsoOption796 = 0;
  post = shippedPost("SODICK");
  style(0, 1);
}

void IsoJobs::clear() {
  for (AcDbObjectId id : drawing().modelSpaceEntities())
    drawing().open<AcDbEntity>(id, OpenMode::kForWrite)->erase();
  paths = 0;
}

ProcessStyle& IsoJobs::style(std::size_t index, int passes) {
  job.nStyleCount = std::max(job.nStyleCount, static_cast<int>(index) + 1);
  ProcessStyle& s = job.styles[index];
  s.sName = "S" + std::to_string(index + 1);
  s.nPassLast = passes - 1;
  for (std::size_t k = 0; k < s.passes.size(); ++k) {
    const std::string digit = std::to_string(k);
    s.passes[k].sCode = std::to_string(index + 1) + "0" + digit;
    s.passes[k].dValue1 = 0.2 - 0.007 * static_cast<double>(k);
    s.passes[k].sSub1 = k == 9 ? "10" : "0" + std::to_string(k + 1);
  }
  return s;
}

AcDbObjectId IsoJobs::add(std::unique_ptr<CToolPath> path, const ProcessStyle& style) {
  path->setPathNo(++paths);
  path->setProcessStyle(style);
  return session.add(std::move(path));
}

// Entry of a place, the wire's start `lead` mm from it, towards the inside or away.
CToolPath::Making IsoJobs::makingOf(const Shape& shape, const Place& place, int side) {
  const auto strokes = strokesOf(shape.contour);
  const Stroke& span = strokes[static_cast<std::size_t>(place.span)];
  const int direction = areaOf(strokes) > 0 ? 1 : -1;
  const AcGePoint2d entry = at(span, place.part);
  AcGeVector2d out = (entry - shape.centre).normal();
  if (place.square) {
    const Vec along = heading(span, place.part);
    out = AcGeVector2d(along.y * direction, -along.x * direction);
  }
  return {entry - out * (side * place.lead), entry, side, direction, 0, 0};
}

AcDbObjectId IsoJobs::hole(const Shape& shape, const Place& place, const ProcessStyle& style) {
  auto path = std::make_unique<CToolPath>();
  EXPECT_TRUE(path->initContour(makingOf(shape, place, kInnerHole), shape.contour, place.span));
  return add(std::move(path), style);
}

AcDbObjectId IsoJobs::outer(const Shape& shape, const Place& place, const ProcessStyle& style) {
  auto path = std::make_unique<CToolPath>();
  EXPECT_TRUE(path->initContour(makingOf(shape, place, kOuterShape), shape.contour, place.span));
  const auto& v = path->polyline().vertices;
  std::vector<Stroke> strokes;
  for (std::size_t i = 1; i + 1 < v.size(); ++i)
    strokes.push_back(spanStroke(v[i].point, v[i + 1].point, v[i].bulge));
  const Rail rail(strokes, true);
  const auto at = breakAt(*path, rail.pointAt(place.tab * rail.length()), module->settings.dOvercutExit);
  EXPECT_TRUE(at);
  if (at) path->setBreakPoint(*at);
  return add(std::move(path), style);
}

AcDbObjectId IsoJobs::circle(AcGePoint2d centre, double radius, const ProcessStyle& style, int direction) {
  auto path = std::make_unique<CToolPath>();
  EXPECT_TRUE(path->initCircle({centre, {centre.x + radius, centre.y}, kInnerHole, direction, 0, 0}, centre,
                               radius, 2));
  return add(std::move(path), style);
}

AcDbObjectId IsoJobs::open(const PolylineCurve& curve, AcGePoint2d thread, int direction,
                           const ProcessStyle& style) {
  auto path = std::make_unique<CToolPath>();
  EXPECT_TRUE(path->initOpen({thread, direction, 0, true, module->settings.dOvercutExit}, curve));
  return add(std::move(path), style);
}

std::string IsoJobs::program() {
  IsoPost iso;
  iso.post = post;
  std::vector<AcDbObjectId> ids;
  for (AcDbObjectId id : drawing().modelSpaceEntities())
    if (drawing().peek<CToolPath>(id)) ids.push_back(id);
  module->ptOrigin = drawing().ucsorg;
  if (!writeIsoFile(*module, {iso, job, ids, folder + "/out.nc"})) return "(not written)";
  return read("out.nc");
}

IsoReport IsoJobs::check(const std::string& text) {
  const IsoExpected expected = isoExpectedOfPaths(drawing(), module->settings);
  return checkIso(text, IsoDialect(post, post.nFamily), isoFiguresOfPaths(drawing()), expected);
}

std::string IsoJobs::told(const IsoReport& report) {
  std::string all;
  for (const auto& line : describe(report)) all += line + "\n";
  return all;
}

}  // namespace tarnex::truth::test
