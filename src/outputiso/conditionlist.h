// What a program's head lists of its job: conditions of the cell in force, and offset numbers.
// Knows job, post and condition files; where the list stands in the head, the driver knows.
#pragma once

#include <string>
#include <vector>

#include "host/database/database.h"
#include "machining/joblayout.h"
#include "outputiso/isopost.h"
#include "outputiso/messages.h"

namespace tarnex {

// A style of the job that a path of the program carries.
struct StyleInUse {
  const ProcessStyle* style;  // of the job
  AcDbObjectId firstPath;
  int nSide;  // of that path
};

struct StylesInUse {
  std::vector<StyleInUse> list;         // in the job's order
  std::vector<AcDbObjectId> strangers;  // paths whose style isn't one of the job's
};
// Of the job's styles in use; `ids` are tool paths of the drawing.
[[nodiscard]] StylesInUse stylesInUse(const AcDbDatabase& drawing, const std::vector<AcDbObjectId>& ids,
                                      const JobLayout& job);

struct ConditionList {
  std::string text;      // lines
  bool hasCell = false;  // family 0: the job's cell is there
  std::string sCornerCode;
  std::vector<std::string> warnings;
};
struct ConditionRequest {
  const MachinePost& post;
  const JobLayout& job;
  const StylesInUse& styles;
  std::string installFolder;  // a path of the system
  const MessageText& message;
};
[[nodiscard]] ConditionList conditionList(const ConditionRequest& request);

// The table of offset numbers, in the order of numberStyles.
[[nodiscard]] std::string offsetTable(const MachinePost& post, const StylesInUse& styles);

}  // namespace tarnex
