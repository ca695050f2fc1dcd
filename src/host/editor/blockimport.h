// A whole drawing taken into another as a block.
// Knows no command and no file.
#pragma once

#include <string>

#include "host/database/database.h"

namespace tarnex {

struct BlockImport {
  AcDbObjectId block;
  std::size_t leftOut = 0;  // entities of kinds that only their own file holds the content of
};

// Copies the model space of `from` into a new block of `into`, with the layers, line types and blocks that it
// uses; of those that `into` has a namesake of, the namesake is used.
[[nodiscard]] BlockImport importAsBlock(AcDbDatabase& into, const AcDbDatabase& from,
                                        const std::string& name);

}  // namespace tarnex
