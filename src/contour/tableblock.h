// Tables that a command draws: dragged to their place, then one block. Knows the host; what stands in the
// table is its command's.
#pragma once

#include <string>

#include "frame/module.h"

namespace tarnex {

// The entities, drawn about 0,0 of the world, at the point that the user gives (catalogue message 480), as
// one block with that point as its base. False: cancelled, and they are gone without a trace. The coordinate
// system is as before.
bool placeAsBlock(Module& module, const SelectionSet& entities);

// Puts copies of the entities into a new block with this base point, erases them and inserts the block there.
// An empty name becomes VORN with month, day, hour, minute and second; a name that is taken gets a number
// behind it. Gives the name.
std::string makeBlockFromEntities(AcEditor& editor, std::string name, const AcGePoint3d& base,
                                  const SelectionSet& entities);

}  // namespace tarnex
