// Slots of a post by what the blocks of a program ask of them; postnames.h has the same names for the post's
// author. Knows no more than the numbers.
#pragma once

#include <cstddef>

namespace tarnex {

struct PostParam {
  static constexpr std::size_t kAheadOfLines = 2, kBehindLines = 3, kLineNumbers = 8, kExtension = 11,
                               kReturn = 12, kBackToFirst = 13, kHeightLines = 30, kProgrammedHeight = 31,
                               kAuxiliaryHeight = 32, kTaperHeightLines = 33;
  static constexpr std::size_t kIntegerMicrometres = 4, kModal = 5, kOffsetByNumber = 6, kNumberOffsets = 7,
                               kRapid = 9, kDecimals = 10, kArcCornerLine = 16, kTabRecord = 22,
                               kTaperLeft = 23, kTaperRight = 24, kOvercutRule = 28, kCentre = 29,
                               kUpperLeft = 34, kUpperRight = 35, kUpperOff = 36, kOneTaper = 37;
};

// A template prints word 2 where it says V2.
struct PostWord {
  static constexpr std::size_t kCoordinates = 0, kCompensation = 1, kOffset = 2, kCondition = 3, kTaper = 5,
                               kAngleFormat = 6, kTaperCancel = 7, kFirstPassWord = 8, kFirstPassEnd = 9,
                               kValueFormat = 17, kCompensationOff = 20, kFigureFormat = 22,
                               kPassesFormat = 23;
};

}  // namespace tarnex
