// The code page of a record's texts: which one its bytes are in, and texts to bytes and back.
// Knows no record.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tarnex {

// The first of UTF-8, GB18030 and ISO-8859-1 in which every text can be read and comes back as the same
// bytes. The last takes any bytes.
[[nodiscard]] std::string textCodeOf(std::span<const std::string* const> texts);
[[nodiscard]] std::string textFromBytes(std::string_view bytes, const std::string& code);
[[nodiscard]] std::string bytesFromText(std::string_view text, const std::string& code,
                                        bool* lossy = nullptr);
// Why a field of at most `limit` bytes can't hold the text ("has 44 bytes, at most 40"); empty when it can.
[[nodiscard]] std::string textFault(std::string_view text, std::size_t limit, const std::string& code);

}  // namespace tarnex
