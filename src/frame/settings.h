// The working values that the system remembers from run to run, and the file that holds them.
// The file is the interface to the dialog library: its layout is fixed to the byte.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "frame/record.h"
#include "host/platform/filestamp.h"

namespace tarnex {

struct WireCutSettings {
  static constexpr std::size_t kFileSize = 1120;
  static constexpr std::int32_t kVersion = 335;

  // mm, degrees; flags are 0 or 1 unless told. Roles stand with the rows of the table in settings.cpp.
  std::int32_t nVersion;
  double dLeadLen;
  std::int32_t nSnapMode, nReserved20, nDirection, nSide, nColorNumber, bSmallHole;
  double dSmallHoleRadius;
  std::int32_t bFixedLeadAngle;
  double dLeadAngle;
  std::int32_t bThreadAtCentre, nCircleArcs, bShowNumber, nCoordDecimals;
  double dLastTaper, dReserved88, dTextHeight;
  std::int32_t bShowArrow;
  double dArrowLen;
  std::int32_t bShowTool, nColorTool, bShowReal, nColorReal, bShowNull, nColorNull;
  double dLayerHeight;
  std::string sAutopOut, sAutopIn;
  double dOffset, dClearance, dLeadStep, dIsoSlotWidth;
  std::int32_t bDupPoint, bDupCurve;
  double dDupTol, dThickProg, dThickAux, dIsoSlotTol, dIsoOvercut, dOvercutLen, dCutoffLen, dOvercutExit;
  std::int32_t nPageIndex;
  std::string sMachineKZS;
  std::int32_t bCutoffPause, bOvercut, nReserved544;
  double dReserved552;
  std::int32_t nReserved560, nReserved568, nReserved572;
  std::string sReserved576;
  double dReserved592, dReserved600;
  std::int32_t bAutoFix;
  double dAutoFixLen, dOpenTol;
  std::string sLastNcFile;
  std::int32_t nReserved760;
  double dIsoFixA, dIsoFixB, dGapValue;
  std::int32_t nIsoOption792, nIsoOption796;
  double dIsoAngle;
  std::int32_t nRoughA;
  double dRoughB, dRoughC, dRoughD;
  std::int32_t bSameHoles, nPathOrder, bAskFileName, bPrintCoords, bFoldCurves;
  double dTangentRadius, dCircleRadius;
  std::string sLastCode;
  std::int32_t nScaleKind;
  double dScaleX, dScaleY, dIncrX, dIncrY;
  std::int32_t nOvercutMode, bOvercutTangent;
  double dMinStep;
  std::int32_t nReserved1064, nReserved1068;
  double dReserved1088, dReserved1096, dBridgeLen;
  std::int32_t bOfferFileText;

  // Bytes of the file that no row names; written as they were read.
  std::array<unsigned char, kFileSize> image{};
  std::string sFilePath;  // "<install folder>\WireCut.set", a path of the system
  std::string sInstallFolder;

  explicit WireCutSettings(const std::string& installFolder);

  // Reads the file over the record and brings it up to date; a missing file leaves what stands. False: the
  // file is there but shorter than a record (what it holds is taken, as far as it goes) or can't be read;
  // `cause` says why.
  bool load(std::string* cause = nullptr);
  // False when the file can't be written: the caller shows catalogue message 3; the record stays.
  [[nodiscard]] bool save(std::string* cause = nullptr);

  // bShowTool as the file holds it, which every load overrules; for those who ask the user for it. Nothing
  // before a file was read or written.
  [[nodiscard]] std::optional<std::int32_t> storedShowTool() const;

  // One field by its name, as text ("0.11", "1"): for SET at the prompt, for forms and for listings.
  [[nodiscard]] std::optional<std::string> textOf(std::string_view field) const;
  // False: no such field, or the text isn't of its kind; `error` says which. Whole numbers, reals, texts.
  bool setFromText(std::string_view field, std::string_view text, std::string& error);

 private:
  const std::string& realFile();
  std::string realFile_,
      realFileOf_;  // path of this machine, and the path of the system that it was found for
  // What the file holds, as long as its stamp stays the same: commands save and load around every step.
  std::string fileBytes_;
  std::optional<FileStamp> fileStamp_;
};

[[nodiscard]] std::span<const RecordRow<WireCutSettings>> settingsRows();

}  // namespace tarnex
