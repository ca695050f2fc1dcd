// Where the system's data lies, and which language it speaks.
// Knows the registry's stand-in and the environment; no record and no catalogue text.
#pragma once

#include <string>
#include <string_view>

namespace tarnex {

inline constexpr std::string_view kProductName = "Vornline";

// The folder of a product: the value `Path` under "Software\KESTRIX\<name>", else the default, which ends in
// the name. TARNEX_INSTALL goes before it. An empty name takes the fallback; with both empty the result is
// the folder of the running program.
[[nodiscard]] std::string productFolder(std::string_view name, std::string_view fallback);
// The product's folder, made in the user's data folder from the shipped content on first use. `problem`: what
// could not be made, for the user.
[[nodiscard]] std::string installFolder(std::string* problem = nullptr);
// The folder of the content that came with the program; it is never written to. Empty when there is none.
[[nodiscard]] std::string shippedFolder();
// A file of the install folder, or the shipped one of that name when the install folder has none.
[[nodiscard]] std::string dataFile(std::string_view installFolder, std::string_view name);

// 1 English, 2 Simplified Chinese, 3 Traditional Chinese; another number comes from the registry alone and
// then speaks English but has machine files of its own.
[[nodiscard]] int language();
[[nodiscard]] int languageOfLocale(std::string_view locale);  // "zh_CN" 2, "zh_TW" 3, every other 1
[[nodiscard]] std::string messageFilePath(std::string_view installFolder, int language);
[[nodiscard]] std::string dialogLibraryPath(std::string_view installFolder);

}  // namespace tarnex
