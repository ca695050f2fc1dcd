// The program in a terminal and in a batch: which subcommand does what.
// Knows the command line alone.
#include <CLI/CLI.hpp>

#include "apps/tarnex/batch.h"
#include "apps/tarnex/catalogs.h"
#include "apps/tarnex/check.h"
#include "apps/tarnex/info.h"
#include "apps/tarnex/prompt.h"
#include "frame/folders.h"
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

struct Arguments {
  Job3bOptions job;
  CheckOptions check;
  InfoOptions info;
  std::string units, script, drawing, sources, into, catalogue;
  int language = 1;
  bool json = false;
  int exitCode = kDone;
};

void add3b(CLI::App& app, Arguments& a) {
  auto* c = app.add_subcommand("3b", "Drawings to 3B programs: contours found, paths made, program written");
  c->add_option("drawings", a.job.drawings, "DXF files")->required();
  auto* out = c->add_option("-o,--output", a.job.output, "Program file (one drawing)");
  c->add_option("--out-dir", a.job.outDir, "Folder for the programs (any number of drawings)")->excludes(out);
  c->add_option("--set", a.job.sets, "A setting for this run: KEY=VALUE, such as dOffset=0.11")
      ->allow_extra_args(false);
  c->add_option("--machine", a.job.machine, "Machine of the KZS file: its pause and stop texts");
  c->add_option("--plot", a.job.plot, "SVG picture of the paths");
  c->add_option("--save", a.job.save, "DXF with the paths");
  c->add_flag("--json", a.job.json, "Everything as JSON");
  c->add_flag("--show-script", a.job.showScript, "The commands that give the same program, for `tarnex run`");
  c->add_option("--layers", a.job.layers, "Only these layers")->delimiter(',')->allow_extra_args(false);
  c->add_option("--skip-layers", a.job.skipLayers, "All but these layers")
      ->delimiter(',')
      ->allow_extra_args(false);
  c->add_option("--units", a.units, "Unit of the drawing, whatever it says: mm, cm, m, inch, foot, mil, um");
  c->add_option("--scale", a.job.scale, "Factor on all coordinates")->check(CLI::PositiveNumber);
  c->add_option("--gap", a.job.gap, "Join ends up to this far apart, mm (AJ)")->check(CLI::PositiveNumber);
  c->add_flag("--clean", a.job.clean, "Remove doubled and tiny curves first (scc)");
  c->add_option("--jobs", a.job.jobs, "Drawings at the same time")->check(CLI::Range(1, 64));
  c->callback([&a] {
    if (!a.units.empty()) {
      a.job.unitFactor = unitFactorOfName(a.units);
      if (!a.job.unitFactor)
        throw CLI::ValidationError("--units", a.units + " is no unit (mm, cm, m, inch, foot, mil, um)");
    }
    a.exitCode = run3b(a.job);
  });
}

void addCheck(CLI::App& app, Arguments& a) {
  auto* c =
      app.add_subcommand("check", "The truth test: a program against the drawing that it was made from");
  c->add_option("program", a.check.program, "3B program")->required();
  c->add_option("--drawing", a.check.drawing, "DXF with the paths, or with plain contours and --offset")
      ->required();
  c->add_option("--offset", a.check.offset, "Wire offset, mm, for a drawing of plain contours");
  c->add_option("--machine", a.check.machine, "Machine whose pause and stop texts the program has");
  c->add_option("--set", a.check.sets, "An option that the program was written with, KEY=VALUE")
      ->allow_extra_args(false);
  c->add_flag("--json", a.check.json, "As JSON");
  c->callback([&a] { a.exitCode = runCheck(a.check); });
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
  run->callback([&a] { a.exitCode = runScript(a.script, a.drawing); });
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
  addCheck(app, a);
  addLooking(app, a);
  addCatalog(app, a);
  std::string drawing;
  app.add_option("drawing", drawing, "DXF file to open");
  catchInterrupts();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? kDone : kUsage;
  }
  if (app.get_subcommands().empty()) a.exitCode = runCommandLine(drawing);
  return a.exitCode;
}
