// `tarnex plot`.
// Knows how a drawing comes to be shown as the program shows it.
#include "apps/tarnex/plot.h"

#include <algorithm>
#include <cstdio>

#include "apps/tarnex/job3b.h"
#include "frame/folders.h"
#include "host/editor/drawingfile.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

constexpr std::size_t kMostNotes = 20;
constexpr double kLargestPaper = 5000;  // mm

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

bool listed(const std::vector<std::string>& names, const std::string& name) {
  return std::any_of(names.begin(), names.end(), [&](const auto& n) { return sameName(n, name); });
}

int fail(int code, const std::string& why) {
  std::fprintf(stderr, "%s\n", why.c_str());
  return code;
}

void tell(const std::string& what) {
  std::fprintf(stderr, "warning: %s\n", what.c_str());
}

class Plot {
 public:
  Plot(const PlotCommand& command, PlotMeaning meaning)
      : command_(command),
        meaning_(std::move(meaning)),
        folder_(installFolder()),
        session_(std::make_unique<StringSink>(), folder_.path()) {}

  int run() {
    auto load = loadDrawing(command_.drawing, &session_.editor.classes(), command_.unitFactor);
    if (!load.drawing) return fail(kUnreadable, load.failure);
    for (std::size_t i = 0; i < std::min(load.report.notes.size(), kMostNotes); ++i)
      tell(noteText(fileNameOf(command_.drawing), load.report.notes[i], load.report.binary));
    if (load.report.notes.size() > kMostNotes)
      tell(formatted("%zu more of the drawing", load.report.notes.size() - kMostNotes));
    session_.editor.setDatabase(std::move(load.drawing));
    if (const int code = chooseSettings(); code != kDone) return code;
    return draw();
  }

 private:
  // After the drawing is open, since it brings display values of its own.
  int chooseSettings() {
    for (const auto& set : command_.sets) {
      const auto equal = set.find('=');
      std::string error = "is to be KEY=VALUE";
      if (equal == std::string::npos ||
          !session_.module().settings.setFromText(set.substr(0, equal), set.substr(equal + 1), error))
        return fail(kUsage, "--set " + set + ": " + error);
    }
    return kDone;
  }

  [[nodiscard]] DisplayOptions wanted() const {
    DisplayOptions options;
    options.plottableOnly = command_.layers.empty();
    if (!command_.layers.empty() || !command_.skipLayers.empty())
      options.wantsLayer = [this](const std::string& layer) {
        return (command_.layers.empty() || listed(command_.layers, layer)) &&
               !listed(command_.skipLayers, layer);
      };
    return options;
  }

  int draw() {
    for (const auto* names : {&command_.layers, &command_.skipLayers})
      for (const auto& name : *names)
        if (session_.drawing().layer(name).isNull()) tell("there is no layer \"" + name + "\"");
    const DisplayList list = session_.editor.shown(wanted());
    if (list.primitives.empty()) {
      if (!command_.layers.empty() || !command_.skipLayers.empty())
        return fail(kFailed, command_.drawing + ": no layer of those names shows anything");
      tell("the drawing shows nothing");
    }
    if (list.dropped > 0) tell(formatted("%zu shapes have no numbers to draw by", list.dropped));
    auto& options = meaning_.options;
    if (meaning_.namedPaper) turnPaper(list);
    const Page page = layoutPage(list, options);
    if (std::max(page.width, page.height) > kLargestPaper)
      return fail(kUsage, formatted("--scale %s: the plot would be %.0f x %.0f mm, more than %.0f",
                                    command_.scale.c_str(), page.width, page.height, kLargestPaper));
    if (page.cut)
      tell("--scale " + command_.scale +
           ": the page is too small for it and shows the middle of the drawing");
    if (const auto failure = writePlot(absolutePath(command_.output), list, options))
      return fail(kFailed, failure->text());
    std::printf("%s: %.1f x %.1f mm at %s\n", command_.output.c_str(), page.width, page.height,
                scaleText(page.scale).c_str());
    return kDone;
  }

  // Across or standing, whichever shows the drawing larger.
  void turnPaper(const DisplayList& list) {
    PlotOptions across = meaning_.options, standing = across;
    std::swap(standing.width, standing.height);
    across.scale = standing.scale = 0;
    if (layoutPage(list, standing).scale > layoutPage(list, across).scale)
      std::swap(meaning_.options.width, meaning_.options.height);
  }

  static std::string scaleText(double scale) {
    return scale >= 1 ? formatted("%.4g:1", scale) : formatted("1:%.4g", 1 / scale);
  }

  const PlotCommand& command_;
  PlotMeaning meaning_;
  JobFolder folder_;
  Session session_;
};

}  // namespace

int runPlot(const PlotCommand& command) {
  PlotMeaning meaning = meaningOf(command);
  if (!meaning.error.empty()) return fail(kUsage, meaning.error);
  return Plot(command, std::move(meaning)).run();
}

}  // namespace tarnex
