// Texts of a drawing file: code page or UTF-8, with \U+XXXX and \M+nXXXX, to and from the UTF-8 of the
// drawing. Knows no tags.
#pragma once

#include <string>
#include <string_view>

namespace tarnex {

// Name for code page conversion of a $DWGCODEPAGE word ("ANSI_936" is "GBK"); "" for one that isn't known.
[[nodiscard]] std::string codePageName(std::string_view dwgCodePage);

class TextCodec {
 public:
  void setPage(std::string page) { page_ = std::move(page); }  // "UTF-8", "GBK", ...
  [[nodiscard]] const std::string& page() const { return page_; }
  // Bytes that don't fit the page are tried as UTF-8 and then as CP1252; what is left becomes U+FFFD.
  [[nodiscard]] std::string decode(std::string_view bytes) const;
  // Characters that the page lacks become \U+XXXX.
  [[nodiscard]] std::string encode(std::string_view utf8) const;

 private:
  std::string page_ = "CP1252";
};

}  // namespace tarnex
