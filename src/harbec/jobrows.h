// Choices that several forms of path making offer.
// Internal to the forms.
#pragma once

#include "harbec/settingsform.h"

namespace tarnex {

inline constexpr ChoiceRow kSnapModes[] = {{0, 20112}, {1, 20113}};
inline constexpr ChoiceRow kDirections[] = {{1, 20115}, {-1, 20116}};
inline constexpr ChoiceRow kSides[] = {{1, 20118}, {-1, 20119}};

}  // namespace tarnex
