// The command line of `tarnex post`, `tarnex job` and `tarnex conditions`.
// Knows options alone.
#include "apps/tarnex/postoptions.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "apps/tarnex/conditions.h"
#include "apps/tarnex/jobfile.h"
#include "apps/tarnex/post.h"
#include "apps/tarnex/posttry.h"

namespace tarnex {

namespace {

struct Words {
  std::string machine, source, file;
  PostTryOptions attempt;
  bool json = false;
  ConditionOptions conditions;
};

void addPosts(CLI::App& app, const std::shared_ptr<Words>& w, int& exitCode) {
  auto* c = app.add_subcommand("post", "Machine posts of slow-wire machines: from their sources and back");
  c->require_subcommand(1);
  auto* list = c->add_subcommand("list", "The machines that there are");
  list->add_flag("--json", w->json, "As JSON");
  list->callback([w, &exitCode] { exitCode = listPosts(w->json); });
  auto* show = c->add_subcommand("show", "A machine's post as its source");
  show->add_option("machine", w->machine, "FOLDER/NAME")->required();
  show->callback([w, &exitCode] { exitCode = showPost(w->machine); });
  auto* compile = c->add_subcommand("compile", "A post from its source");
  compile->add_option("source", w->source, "TOML file")->required();
  auto* into = compile->add_option_group("into")->require_option(1);
  into->add_option("-o,--output", w->file, "The post, NAME.pc");
  into->add_option("--as", w->machine, "FOLDER/NAME: the post of that machine in the install folder");
  compile->callback([w, &exitCode] {
    exitCode =
        w->machine.empty() ? compilePostFile(w->source, w->file) : compileMachine(w->source, w->machine);
  });
  auto* decompile = c->add_subcommand("decompile", "The source of a post");
  decompile->add_option("post", w->file, "NAME.pc, of any version")->required();
  decompile->add_option("-o,--output", w->source, "TOML file")->required();
  decompile->callback([w, &exitCode] { exitCode = decompilePostFile(w->file, w->source); });
  auto* check = c->add_subcommand("check", "What is wrong with a post or its source");
  check->add_option("file", w->file, "NAME.pc or TOML file")->required();
  check->callback([w, &exitCode] { exitCode = checkPostFile(w->file); });
  auto* attempt =
      c->add_subcommand("try", "A sample's program with this post, and what has changed since the last try");
  attempt->add_option("machine", w->attempt.machine, "FOLDER/NAME")->required();
  attempt->add_option("drawing", w->attempt.drawing, "DXF file (none: the sample)");
  attempt->add_option("--job", w->attempt.job, "Job file (TOML; none: the job that stands)");
  attempt->add_option("--by", w->attempt.by, "figure or pass")->check(CLI::IsMember({"figure", "pass"}));
  attempt->add_option("--set", w->attempt.sets, "A setting for this program: KEY=VALUE")
      ->allow_extra_args(false);
  attempt->add_flag("--json", w->attempt.json, "As JSON");
  attempt->callback([w, &exitCode] { exitCode = tryPost(w->attempt); });
}

void addJobs(CLI::App& app, const std::shared_ptr<Words>& w, int& exitCode) {
  auto* c = app.add_subcommand("job", "The job of ISO programs: machine, material, styles");
  c->require_subcommand(1);
  c->add_subcommand("show", "As it stands")->callback([&exitCode] { exitCode = showJob(); });
  auto* out = c->add_subcommand("export", "To a text file");
  out->add_option("file", w->file, "TOML file")->required();
  out->callback([w, &exitCode] { exitCode = exportJob(w->file); });
  auto* in = c->add_subcommand("import", "From a text file; what it doesn't name stays");
  in->add_option("file", w->file, "TOML file")->required();
  in->callback([w, &exitCode] { exitCode = importJob(w->file); });
}

void addConditions(CLI::App& app, const std::shared_ptr<Words>& w, int& exitCode) {
  auto* c = app.add_subcommand("conditions", "Machining conditions by material, wire and thickness");
  c->require_subcommand(1);
  auto* list = c->add_subcommand("list", "What there is for a machine");
  auto* show = c->add_subcommand("show", "The lines of one cell");
  show->add_option("material", w->conditions.material, "As Main.dat spells it")->required();
  show->add_option("wire", w->conditions.wire, "Wire value")->required();
  show->add_option("thickness", w->conditions.thickness, "mm")->required();
  auto* check = c->add_subcommand("check", "What is wrong with the files");
  for (auto* command : {list, show, check}) {
    command->add_option("--machine", w->conditions.machine,
                        command == check ? "FOLDER/NAME (none: all)" : "FOLDER/NAME (none: the job's)");
    command->add_option("--dbf", w->conditions.dbf, "Which of the post's two files (none: the job's)")
        ->check(CLI::Range(0, 1));
  }
  list->callback([w, &exitCode] { exitCode = listConditions(w->conditions); });
  show->callback([w, &exitCode] { exitCode = showConditions(w->conditions); });
  check->callback([w, &exitCode] { exitCode = checkConditions(w->conditions); });
}

}  // namespace

void addMachining(CLI::App& app, int& exitCode) {
  const auto words = std::make_shared<Words>();
  addPosts(app, words, exitCode);
  addJobs(app, words, exitCode);
  addConditions(app, words, exitCode);
}

}  // namespace tarnex
