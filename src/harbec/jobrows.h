// Rows that several forms of path making have, and what they offer to choose from.
// Internal to the forms.
#pragma once

#include "harbec/settingsform.h"

namespace tarnex {

inline constexpr ChoiceRow kSnapModes[] = {{0, 20112}, {1, 20113}};
inline constexpr ChoiceRow kDirections[] = {{1, 20115}, {-1, 20116}};
inline constexpr ChoiceRow kSides[] = {{1, 20118}, {-1, 20119}};

// mm, degrees.
inline constexpr FieldRow kLeadLenRow = {"dLeadLen", 20110, FieldKind::kReal, 0.01, 1000};
inline constexpr FieldRow kSnapModeRow = {"nSnapMode", 20111, FieldKind::kChoice, 0, 1, kSnapModes};
inline constexpr FieldRow kDirectionRow = {"nDirection", 20114, FieldKind::kChoice, -1, 1, kDirections};
inline constexpr FieldRow kSideRow = {"nSide", 20117, FieldKind::kChoice, -1, 1, kSides};
inline constexpr FieldRow kSmallHoleRow = {"bSmallHole", 20120, FieldKind::kYesNo};
inline constexpr FieldRow kSmallHoleRadiusRow = {"dSmallHoleRadius", 20121, FieldKind::kReal, 0, 1000};
inline constexpr FieldRow kFixedLeadAngleRow = {"bFixedLeadAngle", 20122, FieldKind::kYesNo};
inline constexpr FieldRow kLeadAngleRow = {"dLeadAngle", 20123, FieldKind::kReal, -360, 360};
inline constexpr FieldRow kThreadAtCentreRow = {"bThreadAtCentre", 20124, FieldKind::kYesNo};
inline constexpr FieldRow kCircleArcsRow = {"nCircleArcs", 20125, FieldKind::kInteger, 2, 360};
inline constexpr FieldRow kSameHolesRow = {"bSameHoles", 20128, FieldKind::kYesNo};
inline constexpr FieldRow kGapValueRow = {"dGapValue", 20407, FieldKind::kReal, 0.001, 1000};
inline constexpr FieldRow kOvercutExitRow = {"dOvercutExit", 20408, FieldKind::kReal, 0, 100};

}  // namespace tarnex
