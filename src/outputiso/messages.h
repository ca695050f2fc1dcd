// Texts of the catalogue for those who have no module.
// Knows neither numbers nor languages.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>

#include "host/platform/format.h"

namespace tarnex {

using MessageText = std::function<std::string(int id, std::initializer_list<FormatArg> args)>;

}  // namespace tarnex
