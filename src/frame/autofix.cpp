// The sizes of auto fix: their table and their file.
// Knows the record alone.
#include "frame/autofix.h"

#include <array>
#include <cmath>

#include "host/platform/files.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

using F = AutoFixSettings;

// Offset, member, bytes, name, default; for newer fields the first version whose files hold them.
const auto kRows = std::to_array<RecordRow<F>>({
    {0, &F::nVersion, 4, "nVersion", 100},
    {4, &F::nKind, 4, "nKind", 1},
    {8, &F::dRound1, 8, "dRound1", 0.2},                       // kind 1: radius, against the path
    {16, &F::dNotchDepth, 8, "dNotchDepth", 0.5},              // kind 1
    {24, &F::dNotchWidth, 8, "dNotchWidth", 0.4},              // kind 1
    {32, &F::dRound2Against, 8, "dRound2Against", 0.2},        // kind 2: radius, against the path
    {40, &F::dRound2With, 8, "dRound2With", 0.4},              // kind 2: radius, with the path
    {48, &F::dRound3, 8, "dRound3", 0.2},                      // kind 3: radius, against the path
    {56, &F::dCircleReach, 8, "dCircleReach", 0.5},            // kind 3
    {64, &F::dCircleRadius, 8, "dCircleRadius", 0.4},          // kind 3
    {72, &F::dEntryDepth, 8, "dEntryDepth", 0.2, 101, 0.2},    // kinds 4 and 5
    {80, &F::dEntryWidth, 8, "dEntryWidth", 0.4, 101, 0.4},    // kinds 4 and 5
    {88, &F::dSpikeLen, 8, "dSpikeLen", 0.2, 102, 0.2},        // kind 6
    {96, &F::dSpikeAngle, 8, "dSpikeAngle", 45.0, 102, 45.0},  // kind 6
    {104, &F::dEarLen, 8, "dEarLen", 0.2, 103, 0.2},           // kind 7
});

std::string pathIn(const std::string& installFolder) {
  return realPath(installFolder + "\\AutoFix.set");
}

}  // namespace

std::span<const RecordRow<AutoFixSettings>> autoFixRows() {
  return kRows;
}

AutoFixSettings::AutoFixSettings(std::string installFolder) : sInstallFolder(std::move(installFolder)) {
  construct(*this, autoFixRows());
}

bool AutoFixSettings::load(std::string* cause) {
  construct(*this, autoFixRows());
  const std::string path = pathIn(sInstallFolder);
  std::string bytes, why;
  if (fileExists(path)) {
    auto file = readFile(path);
    if (!file)
      why = file.error.text();
    else if (file->size() < kFileSize)
      why = formatted("%s: holds %zu of %zu bytes; the missing values keep their defaults", path.c_str(),
                      file->size(), kFileSize);
    if (file) bytes = std::move(*file);
  }
  decode(*this, autoFixRows(), bytes);
  migrate(*this, autoFixRows(), nVersion);
  nVersion = kVersion;
  if (cause) *cause = why;
  return why.empty();
}

bool AutoFixSettings::save(std::string* cause) const {
  std::string bytes(kFileSize, '\0');
  encode(*this, autoFixRows(), reinterpret_cast<unsigned char*>(bytes.data()));
  const auto failure = writeFileAtomically(pathIn(sInstallFolder), bytes);
  if (failure && cause) *cause = failure->text();
  return !failure;
}

std::optional<std::string> AutoFixSettings::textOf(std::string_view field) const {
  return textOfField(*this, autoFixRows(), field);
}

bool AutoFixSettings::setFromText(std::string_view field, std::string_view text, std::string& error) {
  return setFieldFromText(*this, autoFixRows(), field, text, error);
}

std::optional<std::string> AutoFixSettings::unusableField() const {
  for (const auto& row : autoFixRows()) {
    const auto* member = std::get_if<double AutoFixSettings::*>(&row.member);
    if (!member) continue;
    const bool angle = *member == &AutoFixSettings::dSpikeAngle;
    const double value = this->**member;
    if (!(value >= (angle ? -kMostAngle : 0) && value <= (angle ? kMostAngle : kMostSize))) return row.name;
  }
  return std::nullopt;
}

AutoFixSettings AutoFixLoad(const std::string& installFolder, std::string* cause) {
  AutoFixSettings record(installFolder);
  record.load(cause);
  return record;
}

}  // namespace tarnex
