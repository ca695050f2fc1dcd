// The program in a terminal and in a batch: which subcommand does what.
// Knows the command line alone.
#include <CLI/CLI.hpp>

#include "apps/tarnex/batch.h"
#include "apps/tarnex/catalogs.h"
#include "apps/tarnex/check.h"
#include "apps/tarnex/checkdrawing.h"
#include "apps/tarnex/info.h"
#include "apps/tarnex/plot.h"
#include "apps/tarnex/postoptions.h"
#include "apps/tarnex/prompt.h"
#include "apps/tarnex/sim.h"
#include "frame/folders.h"
#include "host/platform/format.h"
#include "host/platform/system.h"

namespace {

using namespace tarnex;

std::optional<double> unitFactorOfName(const std::string& name) {
  constexpr std::pair<std::string_view, double> kUnits[] = {{"mm", 1},       {"cm", 10},     {"m", 1000},
                                                            {"um", 0.001},   {"inch", 25.4}, {"in", 25.4},
                                                            {"foot", 304.8}, {"mil", 0.0254}};
  for (const auto& [unit, millimetres] : kUnits)
    if (unit == name) return millimetres;
  return std::nullopt;
}

// mm per unit of a name given with --units; nothing when none is given.
std::optional<double> unitFactorGiven(const std::string& units) {
  if (units.empty()) return {};
  const auto factor = unitFactorOfName(units);
  if (!factor) throw CLI::ValidationError("--units", units + " is no unit (mm, cm, m, inch, foot, mil, um)");
  return factor;
}

struct Arguments {
  Job3bOptions job;
  JobIsoOptions iso;
  CheckOptions check;
  CheckDrawingOptions checkDrawing;
  InfoOptions info;
  SimOptions sim;
  std::string simSize;
  bool noWait = false;
  PlotCommand plot;
  std::string units, script, drawing, sources, into, catalogue;
  int language = 1;
  bool json = false;
  int exitCode = kDone;
};

// What both jobs take.
void addJobOptions(CLI::App& c, JobOptions& job, std::string& units) {
  c.add_option("drawings", job.drawings, "DXF files")->required();
  auto* out = c.add_option("-o,--output", job.output, "Program file (one drawing)");
  c.add_option("--out-dir", job.outDir, "Folder for the programs (any number of drawings)")->excludes(out);
  c.add_option("--set", job.sets, "A setting for this run: KEY=VALUE, such as dLeadLen=2")
      ->allow_extra_args(false);
  c.add_option("--plot", job.plot, "Picture of the paths: .svg, .pdf or .png");
  c.add_option("--save", job.save, "DXF with the paths");
  c.add_flag("--json", job.json, "Everything as JSON");
  c.add_flag("--show-script", job.showScript, "The commands that give the same program, for `tarnex run`");
  c.add_option("--layers", job.layers, "Only these layers")->delimiter(',')->allow_extra_args(false);
  c.add_option("--skip-layers", job.skipLayers, "All but these layers")
      ->delimiter(',')
      ->allow_extra_args(false);
  c.add_option("--units", units, "Unit of the drawing, whatever it says: mm, cm, m, inch, foot, mil, um");
  c.add_option("--scale", job.scale, "Factor on all coordinates")->check(CLI::PositiveNumber);
  c.add_option("--gap", job.gap, "Join ends up to this far apart, mm (AJ)")->check(CLI::PositiveNumber);
  c.add_flag("--clean", job.clean, "Remove doubled and tiny curves first (scc)");
  c.add_option("--jobs", job.jobs, "Drawings at the same time")->check(CLI::Range(1, 64));
}

void add3b(CLI::App& app, Arguments& a) {
  auto* c = app.add_subcommand("3b", "Drawings to 3B programs: contours found, paths made, program written");
  addJobOptions(*c, a.job, a.units);
  c->add_option("--machine", a.job.machine, "Machine of the KZS file: its pause and stop texts");
  c->callback([&a] {
    a.job.unitFactor = unitFactorGiven(a.units);
    a.exitCode = run3b(a.job);
  });
}

void addIso(CLI::App& app, Arguments& a) {
  auto* c = app.add_subcommand(
      "iso", "Drawings to ISO programs: contours found, die and punch paths made, program written");
  addJobOptions(*c, a.iso, a.units);
  c->add_option("--machine", a.iso.machine, "FOLDER/NAME, as `tarnex post list` names it (none: the job's)");
  c->add_option("--job", a.iso.job, "Job file (TOML): machine, material, styles, and rules for styles");
  c->add_option("--by", a.iso.by, "figure: each with all its passes; pass: the first passes of all first")
      ->check(CLI::IsMember({"figure", "pass"}));
  c->callback([&a] {
    a.iso.unitFactor = unitFactorGiven(a.units);
    a.exitCode = runIso(a.iso);
  });
}

// One word for two questions: is this drawing fit to be cut, and does this program cut that drawing?
int runEitherCheck(Arguments& a) {
  if (!a.check.drawing.empty()) return runCheck(a.check);
  if (!isDrawing(a.check.program))
    throw CLI::RequiredError("--drawing (" + a.check.program +
                             " is no drawing, so it is taken as a program)");
  a.checkDrawing.drawing = a.check.program;
  a.checkDrawing.offset = a.check.offset;
  a.checkDrawing.json = a.check.json;
  if (!a.units.empty()) {
    a.checkDrawing.unitFactor = unitFactorOfName(a.units);
    if (!a.checkDrawing.unitFactor)
      throw CLI::ValidationError("--units", a.units + " is no unit (mm, cm, m, inch, foot, mil, um)");
  }
  return runCheckDrawing(a.checkDrawing);
}

void addCheck(CLI::App& app, Arguments& a) {
  auto* c = app.add_subcommand(
      "check",
      "`check DRAWING`: what is wrong with a drawing's contours and wire paths.\n"
      "`check PROGRAM --drawing DRAWING`: the truth test, a program against the drawing it was made from");
  c->add_option("file", a.check.program, "DXF drawing, or 3B or ISO program (then with --drawing)")
      ->required();
  c->add_option("--offset", a.check.offset,
                "Wire offset, mm, for plain contours (default of a drawing's check: the settings')");
  c->add_flag("--json", a.check.json, "As JSON");
  auto& d = a.checkDrawing;
  const std::string ofDrawing = "Check of a drawing", ofProgram = "Truth test of a program";
  c->add_option("--plot", d.plot,
                "Picture (.svg, .pdf, .png): what was found, ringed and numbered as in the list")
      ->group(ofDrawing);
  c->add_option("--gap", d.gap, "Ends up to this far apart count as joined, mm")
      ->check(CLI::PositiveNumber)
      ->group(ofDrawing);
  c->add_option("--layers", d.layers, "Only these layers")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->group(ofDrawing);
  c->add_option("--skip-layers", d.skipLayers, "All but these layers")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->group(ofDrawing);
  c->add_option("--units", a.units, "Unit of the drawing, whatever it says: mm, cm, m, inch, foot, mil, um")
      ->group(ofDrawing);
  c->add_option("--scale", d.scale, "Factor on all coordinates")
      ->check(CLI::PositiveNumber)
      ->group(ofDrawing);
  c->add_option("--drawing", a.check.drawing, "DXF with the paths, or with plain contours and --offset")
      ->group(ofProgram);
  c->add_option("--machine", a.check.machine,
                "3B: machine whose pause and stop texts the program has; ISO: FOLDER/NAME of its post")
      ->group(ofProgram);
  c->add_option("--thread", a.check.threadWord, "ISO: the word that threads the wire")
      ->capture_default_str()
      ->group(ofProgram);
  c->add_option("--cut", a.check.cutWord, "ISO: the word that cuts the wire")
      ->capture_default_str()
      ->group(ofProgram);
  c->add_option("--origin", a.check.origin,
                "ISO: the program's origin in the drawing, x,y in mm (none: the drawing's)")
      ->delimiter(',')
      ->expected(2)
      ->group(ofProgram);
  c->add_option("--set", a.check.sets, "An option that the program was written with, KEY=VALUE")
      ->allow_extra_args(false)
      ->group(ofProgram);
  c->callback([&a] { a.exitCode = runEitherCheck(a); });
}

void addPlot(CLI::App& app, Arguments& a) {
  auto* c = app.add_subcommand("plot", "A drawing with its paths as a picture or a page: SVG, PDF or PNG");
  c->add_option("drawing", a.plot.drawing, "DXF file")->required();
  c->add_option("-o,--output", a.plot.output, "The file: .svg, .pdf or .png")->required();
  c->add_option("--layers", a.plot.layers, "Only these layers")->delimiter(',')->allow_extra_args(false);
  c->add_option("--skip-layers", a.plot.skipLayers, "All but these layers")
      ->delimiter(',')
      ->allow_extra_args(false);
  c->add_option("--window", a.plot.window, "The part to show: x1,y1,x2,y2 in mm of drawing");
  c->add_option("--size", a.plot.size, "The page: WxH in mm, or a0 to a4; of a PNG in pixels");
  c->add_option("--scale", a.plot.scale, "Paper to drawing: 5:1 shows 1 mm as 5 mm (none: as large as fits)");
  c->add_option("--view", a.plot.view, "top, iso, or x,y,z: the way from the drawing to the eye");
  c->add_flag("--dark", a.plot.dark, "On a dark ground");
  c->add_option("--line-width", a.plot.lineWidth, "mm on paper")->capture_default_str();
  c->add_option("--dpi", a.plot.dpi, "Pixels per inch of paper, of a PNG")->capture_default_str();
  c->add_option("--set", a.plot.sets, "A setting for this plot: KEY=VALUE, such as bShowTool=1")
      ->allow_extra_args(false);
  c->add_option("--units", a.units, "Unit of the drawing, whatever it says: mm, cm, m, inch, foot, mil, um");
  c->callback([&a] {
    a.plot.unitFactor = unitFactorGiven(a.units);
    a.exitCode = runPlot(a.plot);
  });
}

void addLooking(CLI::App& app, Arguments& a) {
  auto* info = app.add_subcommand("info", "What a drawing holds");
  info->add_option("drawing", a.info.drawing, "DXF file")->required();
  info->add_flag("--json", a.info.json, "As JSON");
  info->callback([&a] { a.exitCode = runInfo(a.info); });
  auto* commands = app.add_subcommand("commands", "The command table");
  commands->add_flag("--json", a.json, "As JSON");
  commands->callback([&a] { a.exitCode = listCommands(a.json); });
  auto* run = app.add_subcommand("run", "A script, line by line what one would type");
  run->add_option("script", a.script, "Script file")->required();
  run->add_option("drawing", a.drawing, "DXF file to open first");
  run->fallthrough();  // takes --no-wait behind its name too
  run->callback(
      [&a] { a.exitCode = runScript(a.script, a.drawing, a.noWait ? Pace::kNoWait : Pace::kPaced); });
}

// "277x190"
void readSize(const std::string& text, SimOptions& sim) {
  const auto x = text.find_first_of("xX");
  double width = 0, height = 0;
  if (x == std::string::npos || !parseNumber(text.substr(0, x), width) ||
      !parseNumber(text.substr(x + 1), height) || !(width > 0 && width <= 1e5) ||
      !(height > 0 && height <= 1e5))
    throw CLI::ValidationError("--size", text + " is no size; write 277x190, mm on paper");
  sim.width = width;
  sim.height = height;
}

void addSim(CLI::App& app, Arguments& a) {
  auto* c = app.add_subcommand("sim", "The wire at work: an animated picture that any browser plays");
  c->add_option("input", a.sim.input, "DXF file with paths, replayed as SIM does, or a 3B program (.3b)")
      ->required();
  c->add_option("-o,--output", a.sim.output, "SVG file")->required();
  c->add_option("--delay", a.sim.delay, "Drawing: milliseconds for each segment, as SIM asks (40)")
      ->check(CLI::Range(0, 60'000));
  c->add_option("--speed", a.sim.speed,
                "Program: mm cut in a minute (60); moves between paths go ten times as fast")
      ->check(CLI::Range(0.001, 1e6));
  c->add_flag("--real-time", a.sim.realTime, "As long as it takes; else it is shown in a minute at most");
  c->add_flag("--dark", a.sim.dark, "On a dark ground");
  c->add_option("--size", a.simSize, "Largest size of the picture, WxH in mm (277x190)");
  c->callback([&a] {
    if (!a.simSize.empty()) readSize(a.simSize, a.sim);
    a.exitCode = runSim(a.sim);
  });
}

void addCatalog(CLI::App& app, Arguments& a) {
  auto* c = app.add_subcommand("catalog", "Message catalogues: .tgf from text sources and back");
  c->require_subcommand(1);
  auto* build = c->add_subcommand("build", "Writes the three .tgf files");
  build->add_option("sources", a.sources, "Folder of the text sources")->required();
  build->add_option("-o,--output", a.into, "Folder for the .tgf files")->required();
  build->callback([&a] { a.exitCode = buildCatalogs(a.sources, a.into); });
  auto* check = c->add_subcommand("check", "Checks the text sources");
  check->add_option("sources", a.sources, "Folder of the text sources")->required();
  check->callback([&a] { a.exitCode = checkCatalogSources(a.sources); });
  auto* list = c->add_subcommand("list", "A .tgf file as text");
  list->add_option("file", a.catalogue, "The file (none: the one in use)");
  list->add_option("--language", a.language, "1 English, 2 Simplified, 3 Traditional Chinese")
      ->check(CLI::Range(1, 3));
  list->callback([&a] { a.exitCode = listCatalog(a.catalogue, a.language); });
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"CAM for wire EDM. Without a subcommand: the command line, on a drawing if one is named."};
  app.set_version_flag("--version", "tarnex 0.1.0");
  Arguments a;
  add3b(app, a);
  addIso(app, a);
  addPlot(app, a);
  addCheck(app, a);
  addLooking(app, a);
  addSim(app, a);
  addCatalog(app, a);
  addMachining(app, a.exitCode);
  std::string drawing;
  app.add_option("drawing", drawing, "DXF file to open");
  app.add_flag("--no-wait", a.noWait, "Commands that pace themselves (SIM) don't wait");
  catchInterrupts();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? kDone : kUsage;
  }
  if (app.get_subcommands().empty())
    a.exitCode = runCommandLine(drawing, a.noWait ? Pace::kNoWait : Pace::kPaced);
  return a.exitCode;
}
