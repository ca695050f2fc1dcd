// Everything that a drawing holds as text, to the last bit, so that two states can be compared.
// For tests only.
#pragma once

#include <string>

#include "host/database/database.h"

namespace tarnex {

// Objects with ids up to `lastId`; erased ones are named, those that are gone aren't.
std::string dump(const AcDbDatabase& database, std::uint32_t lastId);
std::string dump(const AcDbObject& object);

}  // namespace tarnex
