// Whether loose curves close at all: `AJ` over a selection, `AJ1` from one picked curve; and `RR`.
// Knows the chain; no path.
#include "contour/chaining.h"
#include "contour/hosthelpers.h"
#include "pathcmd/makepath.h"

namespace tarnex {

namespace {

struct ChainCount {
  int chains = 0, closed = 0;
};

// What became of one chain: counted, an open one lit up and its start told.
void tellChain(AcEditor& editor, AcDbObjectId id, ChainCount& count) {
  const auto polyline = editor.database().open<AcDbPolyline>(id);
  if (!polyline || polyline->numVerts() == 0) return;
  ++count.chains;
  if (polyline->isClosed()) {
    ++count.closed;
    return;
  }
  polyline->highlight();
  const AcGePoint2d p = polyline->getPointAt(0);
  editor.acutPrintf("\nOpen point at:(%f,%f)", p.x, p.y);
}

}  // namespace

void AJ(Module& module) {
  AcEditor& editor = module.editor;
  const auto set = editor.acedSSGet("");
  if (!set) return;
  const double standing = module.settings.dOpenTol;
  editor.print(formatChecked("\n%s(%g): ", {std::string_view(module.message(281)), standing}));
  const auto tolerance = editor.acedGetReal("");
  if (!tolerance && tolerance.reply != Reply::RTNONE) return;
  module.settings.dOpenTol = tolerance ? tolerance.value : standing;
  module.saveSettings();
  CommandSetting setting(editor);
  setting.osmode(0).cmdEcho(0).world();
  ChainCandidates candidates;
  if (collectChainCandidates(editor, set.value, candidates) == 0) return;
  ChainCount count;
  while (!candidates.first().isNull()) {
    editor.checkInterrupt();
    const AcDbObjectId seed = candidates.first();
    candidates.remove(seed);
    if (const auto result = joinCurves(editor, seed, candidates, module.settings.dOpenTol))
      tellChain(editor, *result, count);
  }
  editor.print("\n" + module.message(
                          282, {static_cast<long long>(count.chains), static_cast<long long>(count.closed)}));
}

void AJ1(Module& module) {
  AcEditor& editor = module.editor;
  const auto seed = editor.acedEntSel("");
  if (!seed) return;
  auto all = editor.acedSSGet("X");
  if (!all) return;
  std::erase(all.value, seed.value.entity);
  CommandSetting setting(editor);
  setting.osmode(0).cmdEcho(0).world();
  ChainCandidates candidates;
  collectChainCandidates(editor, all.value, candidates);
  (void)joinCurves(editor, seed.value.entity, candidates, 0.001);
}

void RR(Module& module) {
  CommandSetting setting(module.editor);
  setting.cmdEcho(0);
  module.editor.acedCommand({std::string("regen")});
}

}  // namespace tarnex
