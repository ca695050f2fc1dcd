// The settings record: its table, its file, and its fields by name.
// Knows no dialogs and no commands.
#include "frame/settings.h"

#include <algorithm>

#include "host/platform/files.h"
#include "host/platform/format.h"

namespace tarnex {

namespace {

using S = WireCutSettings;

// Offset, member, bytes, name, what the constructor gives; then for newer fields the first version that has
// it and what a file of an older version gets.
constexpr auto rowsTable() {
  return std::to_array<RecordRow<S>>({
      {0, &S::nVersion, 4, "nVersion", 305},                   // version of the file
      {8, &S::dLeadLen, 8, "dLeadLen", 3.0},                   // lead-in length
      {16, &S::nSnapMode, 4, "nSnapMode", 1},                  // entry point picked: 0 nearest, 1 midpoint
      {20, &S::nReserved20, 4, "nReserved20", 1},              // dialogs only
      {24, &S::nDirection, 4, "nDirection", 1},                // 1 counter-clockwise, -1 clockwise
      {28, &S::nSide, 4, "nSide", 1},                          // 1 inner hole, -1 outer shape
      {32, &S::nColorNumber, 4, "nColorNumber", 1, 330, 1},    // colour of path numbers
      {36, &S::bSmallHole, 4, "bSmallHole", 0},                // small circles are threading holes
      {40, &S::dSmallHoleRadius, 8, "dSmallHoleRadius", 2.0},  // largest radius of one
      {48, &S::bFixedLeadAngle, 4, "bFixedLeadAngle", 1},      // circles are entered at dLeadAngle
      {56, &S::dLeadAngle, 8, "dLeadAngle", 45.0},             // degrees
      {64, &S::bThreadAtCentre, 4, "bThreadAtCentre", 0},      // a hole is threaded at its centre
      {68, &S::nCircleArcs, 4, "nCircleArcs", 2},              // arcs that make up a circle path
      {72, &S::bShowNumber, 4, "bShowNumber", 1},              // draw path numbers
      {76, &S::nCoordDecimals, 4, "nCoordDecimals",
       -1},                                          // decimals of the coordinate label, none at 0 and below
      {80, &S::dLastTaper, 8, "dLastTaper", 1.0},    // last taper entered, degrees
      {88, &S::dReserved88, 8, "dReserved88", 1.0},  // dialogs only
      {96, &S::dTextHeight, 8, "dTextHeight", 3.0},  // display
      {104, &S::bShowArrow, 4, "bShowArrow", 1},     // display
      {112, &S::dArrowLen, 8, "dArrowLen", 3.0},     // display
      {120, &S::bShowTool, 4, "bShowTool", 0},       // display of the wire centre path
      {124, &S::nColorTool, 4, "nColorTool", 3},     // display
      {128, &S::bShowReal, 4, "bShowReal", 0},       // display of the real contour
      {132, &S::nColorReal, 4, "nColorReal", 0},     // display
      {136, &S::bShowNull, 4, "bShowNull", 0},       // display of the moves between paths
      {140, &S::nColorNull, 4, "nColorNull", 6},     // display
      {144, &S::dLayerHeight, 8, "dLayerHeight", 30.0, 327, 40.0},  // plane distance of four-axis jobs
      {152, &S::sAutopOut, 128, "sAutopOut", "C:\\AutoP1.DAT"},     // last export file
      {280, &S::sAutopIn, 128, "sAutopIn", "C:\\AutoP1.DAT"},       // last import file
      {408, &S::dOffset, 8, "dOffset", 0.08},                       // wire offset of new paths
      {416, &S::dClearance, 8, "dClearance", 0.0},                  // fit clearance of new paths
      {424, &S::dLeadStep, 8, "dLeadStep", 0.1},                    // step of the lead-in edit
      {432, &S::dIsoSlotWidth, 8, "dIsoSlotWidth", 0.0, 327, 0.2},  // ISO writers
      {440, &S::bDupPoint, 4, "bDupPoint", 1},                      // duplicate removal: points
      {444, &S::bDupCurve, 4, "bDupCurve", 1},                      // duplicate removal: short curves
      {448, &S::dDupTol, 8, "dDupTol", 0.001},                      // what is short
      {456, &S::dThickProg, 8, "dThickProg", 0.0, 327, 0.0},        // height of the programmed plane
      {464, &S::dThickAux, 8, "dThickAux", 0.0, 327, 40.0},         // height of the auxiliary plane
      {472, &S::dIsoSlotTol, 8, "dIsoSlotTol", 0.0, 327, 0.02},     // ISO writers
      {480, &S::dIsoOvercut, 8, "dIsoOvercut", 0.0, 304, 0.5},      // ISO writers
      {488, &S::dOvercutLen, 8, "dOvercutLen", 0.0, 304, 0.2},      // overcut length
      {496, &S::dCutoffLen, 8, "dCutoffLen", 0.0, 304, 0.2},        // where the pause before the end falls
      {504, &S::dOvercutExit, 8, "dOvercutExit", 0.0, 304, 0.5},    // length of the exit move
      {512, &S::nPageIndex, 4, "nPageIndex", 0, 304, 0},            // page of the side bar
      {516, &S::sMachineKZS, 20, "sMachineKZS", "", 304, "Vorn"},   // last 3B machine
      {536, &S::bCutoffPause, 4, "bCutoffPause", 0, 304, 0},        // pause before the end of the contour
      {540, &S::bOvercut, 4, "bOvercut", 0, 304, 0},                // overcut on
      {544, &S::nReserved544, 4, "nReserved544", 0, 305, 0},        // dialogs only
      {552, &S::dReserved552, 8, "dReserved552", 0.0, 305, 1.0},    // dialogs only
      {560, &S::nReserved560, 4, "nReserved560", 0, 305, 0},        // dialogs only
      {568, &S::nReserved568, 4, "nReserved568", 0, 305, 0},        // dialogs only
      {572, &S::nReserved572, 4, "nReserved572", 0, 305, 0},        // dialogs only
      {576, &S::sReserved576, 16, "sReserved576", "", 307, "0"},    // dialogs only
      {592, &S::dReserved592, 8, "dReserved592", 0.0, 309, 270.0},  // dialogs only
      {600, &S::dReserved600, 8, "dReserved600", 0.0, 309, 93.0},   // dialogs only
      {608, &S::bAutoFix, 4, "bAutoFix", 0},                        // corner compensation in 3B
      {616, &S::dAutoFixLen, 8, "dAutoFixLen", 0.18},               // its radius
      {624, &S::dOpenTol, 8, "dOpenTol", 0.2},                      // tolerance of the contour check
      {632, &S::sLastNcFile, 128, "sLastNcFile", ""},               // last NC file name
      {760, &S::nReserved760, 4, "nReserved760", 0, 324, 1},        // dialogs only
      {768, &S::dIsoFixA, 8, "dIsoFixA", 0.0, 324, 0.2},            // corner treatment of ISO output
      {776, &S::dIsoFixB, 8, "dIsoFixB", 0.0, 324, 0.2},            // corner treatment of ISO output
      {784, &S::dGapValue, 8, "dGapValue", 0.0, 324, 5.0},          // job value
      {792, &S::nIsoOption792, 4, "nIsoOption792", 0, 325, 0},      // ISO writers
      {796, &S::nIsoOption796, 4, "nIsoOption796", 0, 325, 0},      // ISO writers
      {800, &S::dIsoAngle, 8, "dIsoAngle", 0.0, 325, 30.0},         // ISO writers, degrees
      {808, &S::nRoughA, 4, "nRoughA", 0},                          // roughing
      {816, &S::dRoughB, 8, "dRoughB", 0.0},                        // roughing
      {824, &S::dRoughC, 8, "dRoughC", 0.0},                        // roughing
      {832, &S::dRoughD, 8, "dRoughD", 0.0, 325, 0.2},              // roughing
      {840, &S::bSameHoles, 4, "bSameHoles", 0, 326, 0},  // after a circular hole all of the same radius
      {844, &S::nPathOrder, 4, "nPathOrder", 1},  // after a batch: 0 nearest neighbour, 1 by contour length
      {848, &S::bAskFileName, 4, "bAskFileName", 0},        // the 3B writer asks for the file name
      {852, &S::bPrintCoords, 4, "bPrintCoords", 0},        // 3B blocks carry coordinates
      {860, &S::bFoldCurves, 4, "bFoldCurves", 0, 334, 1},  // duplicate removal: fold overlapping curves
      {864, &S::dTangentRadius, 8, "dTangentRadius", 0.0, 334, 2.0},  // last radius of the tangent arc
      {872, &S::dCircleRadius, 8, "dCircleRadius", 0.0, 334, 1.0},    // radius of P2C
      {880, &S::sLastCode, 128, "sLastCode", "", 335, "B0B0B1GXL1"},  // last code text
      {1008, &S::nScaleKind, 4, "nScaleKind", 0},                     // 0 by factors, 1 by increments
      {1016, &S::dScaleX, 8, "dScaleX", 1.5},                         // factor in x
      {1024, &S::dScaleY, 8, "dScaleY", 2.0},                         // factor in y
      {1032, &S::dIncrX, 8, "dIncrX", 0.2},                           // increment in x
      {1040, &S::dIncrY, 8, "dIncrY", 0.3},                           // increment in y
      {1048, &S::nOvercutMode, 4, "nOvercutMode", 0},                 // 1 returns over the overcut
      {1052, &S::bOvercutTangent, 4, "bOvercutTangent", 0},  // the overcut leaves an arc on its tangent
      {1056, &S::dMinStep, 8, "dMinStep", 0.006},            // smaller corner steps are dropped
      {1064, &S::nReserved1064, 4, "nReserved1064", 0},      // dialogs only
      {1068, &S::nReserved1068, 4, "nReserved1068", 100},    // dialogs only
      {1088, &S::dReserved1088, 8, "dReserved1088", 0.01},   // dialogs only
      {1096, &S::dReserved1096, 8, "dReserved1096", 0.5},    // dialogs only
      {1104, &S::dBridgeLen, 8, "dBridgeLen", 5.0},          // job value
      {1112, &S::bOfferFileText, 4, "bOfferFileText", 0},    // file name offered as a text in the drawing
  });
}

const auto kRows = rowsTable();

}  // namespace

std::span<const RecordRow<WireCutSettings>> settingsRows() {
  return kRows;
}

WireCutSettings::WireCutSettings(const std::string& installFolder)
    : sFilePath(installFolder + "\\WireCut.set"), sInstallFolder(installFolder) {
  construct(*this, settingsRows());
}

// Looking for a file whatever its case asks the system for each part of its path; once found it stays.
const std::string& WireCutSettings::realFile() {
  if (realFile_.empty() || realFileOf_ != sFilePath || !fileStamp_) {
    realFile_ = realPath(sFilePath);
    realFileOf_ = sFilePath;
  }
  return realFile_;
}

bool WireCutSettings::load(std::string* cause) {
  bool whole = true;
  const std::string& path = realFile();
  if (const auto stamp = tarnex::fileStamp(path)) {
    if (stamp != fileStamp_) {
      auto bytes = readFile(path);
      if (!bytes && cause) *cause = bytes.error.text();
      fileBytes_ = bytes ? std::move(*bytes) : std::string();
      fileStamp_ = stamp;
    }
    std::memcpy(image.data(), fileBytes_.data(), std::min(fileBytes_.size(), image.size()));
    decode(*this, settingsRows(), fileBytes_);
    whole = fileBytes_.size() >= kFileSize;
    if (!whole && cause && cause->empty())
      *cause = formatted("%s: holds %zu of %zu bytes; the missing values keep their defaults", path.c_str(),
                         fileBytes_.size(), kFileSize);
  }
  const int version = nVersion;
  migrate(*this, settingsRows(), version);
  if (version < 323) sLastNcFile = sInstallFolder + "\\Vorn.nc";
  dClearance = 0.0;
  bShowTool = 1;
  nVersion = kVersion;
  return whole;
}

bool WireCutSettings::save(std::string* cause) {
  auto record = image;
  encode(*this, settingsRows(), record.data());
  const std::string_view bytes(reinterpret_cast<const char*>(record.data()), record.size());
  const std::string& path = realFile();
  if (fileStamp_ && bytes == fileBytes_ && tarnex::fileStamp(path) == fileStamp_) return true;
  const auto failure = writeFileAtomically(path, bytes);
  if (failure) {
    if (cause) *cause = failure->text();
    return false;
  }
  fileBytes_ = bytes;
  fileStamp_ = tarnex::fileStamp(path);
  return true;
}

std::optional<std::int32_t> WireCutSettings::storedShowTool() const {
  const auto* row = rowNamed(settingsRows(), "bShowTool");
  if (fileBytes_.size() < row->offset + 4) return std::nullopt;
  return readInt32(reinterpret_cast<const unsigned char*>(fileBytes_.data()) + row->offset);
}

std::optional<std::string> WireCutSettings::textOf(std::string_view field) const {
  return textOfField(*this, settingsRows(), field);
}

bool WireCutSettings::setFromText(std::string_view field, std::string_view text, std::string& error) {
  return setFieldFromText(*this, settingsRows(), field, text, error);
}

}  // namespace tarnex
