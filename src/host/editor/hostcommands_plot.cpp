// The command that plots what is shown at that moment, also while another command asks.
// Knows pages and temporary vectors; file formats are host/display's.
#include "host/display/plot.h"
#include "host/editor/answers.h"
#include "host/editor/boxtest.h"
#include "host/editor/hostcommands.h"
#include "host/editor/state.h"
#include "host/editor/ucs.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

void addVectors(DisplayList& list, const std::vector<TemporaryVector>& vectors) {
  for (const TemporaryVector& v : vectors) {
    Primitive look;
    look.color = static_cast<std::uint8_t>(v.color);
    const AcGePoint3d ends[] = {v.from, v.to};
    list.add(look, DrawnPolyline{ends});
    for (const AcGePoint3d& p : ends) list.extents.add(p.flat());
  }
}

std::optional<Extents2d> askWindow(AcEditor& editor) {
  const auto first = editor.acedGetPoint("Specify first corner: ");
  if (!first) return std::nullopt;
  const auto second = editor.acedGetCorner(first.value, "Specify opposite corner: ");
  if (!second || editor.namedInsteadOfCorner()) return std::nullopt;
  const auto& db = editor.database();
  return boxOf(ucsToWorld(db, first.value).flat(), ucsToWorld(db, second.value).flat());
}

Extents2d displayed(const AcEditor& editor) {
  const double h = editor.realVar("VIEWSIZE") / 2, w = h / kViewAspect;
  const AcGePoint2d c = editor.viewCentre();
  return {{c.x - w, c.y - h}, {c.x + w, c.y + h}};
}

// False: the user has given up.
bool askArea(AcEditor& editor, PageOptions& page) {
  editor.acedInitGet(0, "All Display Window");
  const auto area = editor.acedGetKword("What to plot [All/Display/Window] <All>: ");
  if (area.reply == Reply::RTNONE || area.value == "All") return true;
  if (!area) return false;
  page.window = area.value == "Display" ? displayed(editor) : askWindow(editor);
  return page.window.has_value();
}

bool askPaper(AcEditor& editor, PageOptions& page) {
  const std::string standing = formatted("%gx%g", page.width, page.height);
  const auto answer = editor.acedGetString(false, "Paper in mm <" + standing + ">: ");
  if (!answer) return false;
  if (answer.value.empty()) return true;
  const std::string_view text = answer.value;
  const auto x = text.find_first_of("xX");
  const auto width = parseReal(text.substr(0, x));
  const auto height = x == std::string_view::npos ? std::nullopt : parseReal(text.substr(x + 1));
  constexpr double kLargest = 5000;  // mm
  if (width && height && *width > 0 && *height > 0 && *width <= kLargest && *height <= kLargest) {
    page.width = *width;
    page.height = *height;
    return true;
  }
  editor.print("\"" + answer.value + "\" is no paper; write 277x190 (at most 5000 mm).\n");
  editor.commandFailed();
  return false;
}

}  // namespace

void plotCommand(AcEditor& editor) {
  const auto file = editor.acedGetFileD("Picture (svg, pdf, png)", "", "svg", true);
  if (!file) return;
  PlotOptions options;
  const auto eye = editor.acedGetVar("VIEWDIR");
  if (const auto* toEye = eye ? std::get_if<AcGePoint3d>(&*eye) : nullptr)
    options.view = Projection::from({toEye->x, toEye->y, toEye->z}).value_or(Projection());
  if (!askArea(editor, options) || !askPaper(editor, options)) return;
  DisplayList list = editor.shown();
  addVectors(list, editor.temporaryVectors());
  if (const auto failure = writePlot(file.value, list, options)) {
    editor.print(failure->text() + "\n");
    return editor.commandFailed();
  }
  editor.print("Plotted to " + file.value + "\n");
}

}  // namespace tarnex
