// The check that the three languages of the message catalogue say the same: numbers, arguments, keywords,
// layout. Judges no wording.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/catalogsource.h"

namespace tarnex {

// Empty when all is well. Reported for each language: a declared number that is missing, a number that isn't
// declared or stands twice, an empty text, kinds or conversions that differ from the declared ones, keywords
// in brackets that differ from the declared ones, a text too long for the file or with characters that the
// code page lacks, and a first or last line end that English has and the language hasn't, or the other way
// round.
[[nodiscard]] std::vector<SourceFault> checkCatalogs(const CatalogSet& set);

// The keywords that a prompt offers in its last brackets, in order: of "[Undo/raNge]" U and N, of
// "[放弃(U)/范围(N)]" the same. An option without a capital and without parentheses gives "".
[[nodiscard]] std::vector<std::string> offeredKeywords(std::string_view text);

}  // namespace tarnex
