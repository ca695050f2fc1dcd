// The sizes of auto fix and the file that holds them, `AutoFix.set`.
// Knows the record; what a fix does to a path is the business of the rooms above.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "frame/record.h"

namespace tarnex {

enum class FixKind {
  kNotchAndRound = 1,
  kRoundAll = 2,
  kReliefCircle = 3,
  kRoundPocket = 4,
  kSquarePocket = 5,
  kSpike = 6,
  kEar = 7,
};

// Sizes in mm. "Against" and "with" say which way a corner turns: with a path that runs counter-clockwise
// turn left corners.
struct AutoFixSettings {
  static constexpr std::size_t kFileSize = 112;
  static constexpr std::int32_t kVersion = 103;
  static constexpr double kMostSize = 1000, kMostAngle = 360;  // sizes beyond are no sizes

  std::int32_t nVersion, nKind;  // nKind: 1 to 7, FixKind
  double dRound1, dNotchDepth, dNotchWidth;
  double dRound2Against, dRound2With;
  double dRound3, dCircleReach, dCircleRadius;  // reach: how far the circle reaches past the corner
  double dEntryDepth, dEntryWidth;
  double dSpikeLen, dSpikeAngle;  // degrees from +x, counter-clockwise
  double dEarLen;

  explicit AutoFixSettings(std::string installFolder);

  // Reads the file; what it lacks stands at its default. False: it is shorter than a record or can't be read,
  // `cause` says why in one sentence. Values are taken as they stand, so that a form can show them. A missing
  // file is none.
  bool load(std::string* cause = nullptr);
  // The whole file or none of it. False: the old one stands, `cause` says why.
  [[nodiscard]] bool save(std::string* cause = nullptr) const;

  [[nodiscard]] std::optional<std::string> textOf(std::string_view field) const;
  bool setFromText(std::string_view field, std::string_view text, std::string& error);

  // Name of the first size that isn't a number from 0 to kMostSize (the angle: up to kMostAngle either way).
  [[nodiscard]] std::optional<std::string> unusableField() const;

  std::string sInstallFolder;  // a path of the system
};

[[nodiscard]] std::span<const RecordRow<AutoFixSettings>> autoFixRows();

// The record of an install folder.
[[nodiscard]] AutoFixSettings AutoFixLoad(const std::string& installFolder, std::string* cause = nullptr);

}  // namespace tarnex
