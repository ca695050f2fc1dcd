// The host's own commands. Each asks by prompts alone, so that a user, a script and acedCommand run them
// alike. Knows no application.
#pragma once

#include "host/editor/editor.h"

namespace tarnex {

void addHostCommands(AcEditor& editor);

// hostcommands_file.cpp
void openCommand(AcEditor& editor);
void saveCommand(AcEditor& editor);
void saveAsCommand(AcEditor& editor);
void newCommand(AcEditor& editor);
void quitCommand(AcEditor& editor);
void scriptCommand(AcEditor& editor);
// hostcommands_draw.cpp
void lineCommand(AcEditor& editor);
void circleCommand(AcEditor& editor);
void arcCommand(AcEditor& editor);
void ellipseCommand(AcEditor& editor);
void pointCommand(AcEditor& editor);
void textCommand(AcEditor& editor);
// hostcommands_pline.cpp
void plineCommand(AcEditor& editor);
// hostcommands_edit.cpp
void eraseCommand(AcEditor& editor);
void moveCommand(AcEditor& editor);
void copyCommand(AcEditor& editor);
void rotateCommand(AcEditor& editor);
void mirrorCommand(AcEditor& editor);
void scaleCommand(AcEditor& editor);
void explodeCommand(AcEditor& editor);
void undoCommand(AcEditor& editor);
void redoCommand(AcEditor& editor);
// hostcommands_trim.cpp
void trimCommand(AcEditor& editor);
// hostcommands_insert.cpp
void insertCommand(AcEditor& editor);
// hostcommands_layer.cpp
void layerCommand(AcEditor& editor);
// hostcommands_view.cpp
void ucsCommand(AcEditor& editor);
void zoomCommand(AcEditor& editor);
void vpointCommand(AcEditor& editor);
void regenCommand(AcEditor& editor);
void redrawCommand(AcEditor& editor);
// hostcommands_plot.cpp
void plotCommand(AcEditor& editor);
// hostcommands_ask.cpp
void helpCommand(AcEditor& editor);
void listCommand(AcEditor& editor);
void setvarCommand(AcEditor& editor);
void setCommand(AcEditor& editor);

// ---- shared by them

// A point in the world.
[[nodiscard]] Answer<AcGePoint3d> askWorldPoint(AcEditor& editor, std::string_view prompt,
                                                const AcGePoint3d* worldBase = nullptr);
// A distance typed, or from `worldBase` to a point.
[[nodiscard]] Answer<double> askDistance(AcEditor& editor, std::string_view prompt,
                                         const AcGePoint3d& worldBase);
// Appends to model space with the current layer and colour.
AcDbObjectId appendNew(AcEditor& editor, std::unique_ptr<AcDbEntity> entity);
// An answer, or the value that stands for Enter; nothing when the prompt ended otherwise.
template <class T>
[[nodiscard]] std::optional<T> orStanding(const Answer<T>& answer, const T& standing) {
  if (answer.reply == Reply::RTNORM) return answer.value;
  if (answer.reply == Reply::RTNONE) return standing;
  return std::nullopt;
}

}  // namespace tarnex
