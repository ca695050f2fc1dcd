// What opening and changing objects can answer.
#pragma once

namespace tarnex {

enum class ErrorStatus {
  eOk = 0,
  eNotApplicable = 2,
  eInvalidInput = 3,  // among others a point that isn't on the curve
  eKeyNotFound = 27,
  eDuplicateKey = 32,
  eNullObjectId = 63,
  eWasErased = 67,
  eWasOpenForRead = 71,  // asked for write while somebody reads
  eWasOpenForWrite = 72,
  eNotOpenForWrite = 74,
  eNotThatKindOfClass = 75,
  eEndOfFile = 94,  // a filer ran out of bytes
  eOnLockedLayer = 120,
  eCannotScaleNonUniformly = 130,
  eNotInDatabase = 205,
  eMakeMeProxy = 301,  // a stored version that is newer than the program
};

}  // namespace tarnex
