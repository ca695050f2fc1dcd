// Which format a file gets.
// Knows names.
#include "host/display/plot.h"

#include <cctype>

#include "host/display/cairoplot.h"

namespace tarnex {

namespace {

using Sink = std::function<void(std::string_view)>;

// Why it failed; empty when it went well.
std::string draw(PlotFormat format, const DisplayList& list, const PlotOptions& options, const Sink& sink) {
  if (format == PlotFormat::svg) {
    drawSvg(list, options, sink);
    return {};
  }
  return format == PlotFormat::pdf ? drawPdf(list, options, sink) : drawPng(list, options, sink);
}

}  // namespace

std::optional<PlotFormat> plotFormatOf(const std::string& path) {
  const std::string name = fileNameOf(path);
  const std::size_t dot = name.rfind('.');
  std::string extension = dot == std::string::npos ? "" : name.substr(dot + 1);
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (extension == "svg") return PlotFormat::svg;
  if (extension == "pdf") return PlotFormat::pdf;
  if (extension == "png") return PlotFormat::png;
  return {};
}

bool canPlot(PlotFormat format) {
  return format == PlotFormat::svg || hasCairo();
}

std::optional<FileError> writePlot(const std::string& path, const DisplayList& list,
                                   const PlotOptions& options) {
  const auto format = plotFormatOf(path);
  if (!format) return FileError{path, "the name of a plot ends in .svg, .pdf or .png"};
  if (!canPlot(*format)) return FileError{path, "this program was built without PDF and PNG"};
  AtomicFile file(path);
  if (file.failure()) return file.failure();
  const std::string why = draw(*format, list, options, [&](std::string_view piece) { file.write(piece); });
  if (!why.empty()) return FileError{path, why};
  return file.commit();
}

std::optional<std::string> plotBytes(PlotFormat format, const DisplayList& list, const PlotOptions& options) {
  std::string bytes;
  if (!canPlot(format)) return {};
  if (!draw(format, list, options, [&](std::string_view piece) { bytes += piece; }).empty()) return {};
  return bytes;
}

}  // namespace tarnex
