// `tarnex check` of an ISO program: the truth test against the drawing's slow-wire paths.
// Knows files, the machine's post and words of the command line; the judging is exchange/truthiso.
#pragma once

#include <string>
#include <string_view>

#include "apps/tarnex/check.h"

namespace tarnex {

class Session;

// Told by a machine that is FOLDER/NAME, else by the text: no block of a 3B program begins with G, M, T or a
// percent sign.
[[nodiscard]] bool isIsoCheck(const CheckOptions& options, std::string_view program);

// The session holds the drawing; its settings are those that the program was written with. Without a machine
// among the options it is that of the drawing's job. Exit code: kDone, kFailed for a program with faults or
// a drawing without paths, kUnreadable for a machine that isn't there.
int checkIsoProgram(Session& session, const CheckOptions& options, std::string_view program);

}  // namespace tarnex
