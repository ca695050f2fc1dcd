// Code pages: texts of catalogues, drawings and NC programs to UTF-8 and back.
#pragma once

#include <string>
#include <string_view>

namespace tarnex {

// `page` is a name that iconv knows ("GB18030", "BIG5", "CP1252", ...). Bytes that don't belong to the page
// become U+FFFD and set `damaged` (which a sound text sets to false). Of a page that isn't known only ASCII
// is told.
[[nodiscard]] std::string toUtf8(std::string_view bytes, const std::string& page, bool* damaged = nullptr);
// Characters that the page lacks become '?' and set `lossy`.
[[nodiscard]] std::string fromUtf8(std::string_view utf8, const std::string& page, bool* lossy = nullptr);
// The same of a long text that is given away: where its bytes stay as they are, it isn't copied.
[[nodiscard]] std::string convertedFromUtf8(std::string utf8, const std::string& page, bool* lossy = nullptr);
[[nodiscard]] bool isUtf8(std::string_view bytes);
[[nodiscard]] bool isKnownCodePage(const std::string& page);

}  // namespace tarnex
