// The job's file.
// Knows its bytes; the drawing's keys are in jobkeys.cpp.
#include "machining/joblayout.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "frame/folders.h"
#include "frame/record.h"
#include "host/platform/files.h"
#include "host/platform/format.h"
#include "machining/textcode.h"

namespace tarnex {

namespace {

using J = JobLayout;
using S = ProcessStyle;

constexpr RecordRow<J> kJobRows[] = {
    {0, &J::sMachine, 20, "machine", "SODICK"},
    {20, &J::nSortMode, 4, "order", 2},
    {24, &J::nCutType, 4, "cut type", 0},
    {28, &J::sMaterial, 20, "material", "SKD11"},
    {48, &J::dThick, 8, "thickness", 5.0},
    {56, &J::dWireRad, 8, "wire", 0.2},
    {64, &J::nStyleCount, 4, "number of styles", 1},
    {5468, &J::nDbf, 4, "condition file", 0},
    {5472, &J::nLeaderType, 4, "lead kind", 0},
    {5476, &J::dThickAux, 8, "height of the auxiliary plane", 0.0},
    {5484, &J::dThickProg, 8, "height of the programmed plane", 0.0},
    {5492, &J::sPostPath, 20, "folder of the post", "SODICK"},
};

constexpr RecordRow<S> kStyleRows[] = {
    {0, &S::sName, 20, "name", "STYLE1"},  // the record holds 23 bytes, the file 19
    {20, &S::dValueC, 8, "dValueC", 0.0},
    {28, &S::dValueD, 8, "dValueD", 0.0},
    {36, &S::nPassLast, 4, "nPassLast", 0},
    {40, &S::dValueA, 8, "dValueA", 0.0},
    {48, &S::dValueB, 8, "dValueB", 0.0},
    {56, &S::nCode, 4, "nCode", 700},
    {460, itemsOf<&S::passOffset>, 8, "passOffset", 0.0},
};

constexpr RecordRow<PassRecord> kPassRows[] = {
    {0, &PassRecord::sCode, 8, "sCode", ""},       {8, &PassRecord::dValue1, 8, "dValue1", 0.0},
    {16, &PassRecord::sSub1, 5, "sSub1", ""},      {21, &PassRecord::sSub2, 11, "sSub2", ""},
    {32, &PassRecord::dValue2, 8, "dValue2", 0.0},
};

constexpr std::size_t kStylesAt = 68, kStyleSize = 540, kPassesAt = 60, kPassSize = 40;
static_assert(kStylesAt + kMostStyles * kStyleSize == 5468 && 5492 + 20 == J::kFileSize);
static_assert(kPassesAt + kMostPasses * kPassSize == 460 && 460 + kMostPasses * 8 == kStyleSize);

// Every text with the most bytes that its field takes.
template <class Job, class Do>
void eachText(Job& job, Do what) {
  what(job.sMachine, 19U);
  what(job.sPostPath, 19U);
  what(job.sMaterial, 19U);
  for (auto& style : job.styles) {
    what(style.sName, 19U);
    for (auto& pass : style.passes) {
      what(pass.sCode, 7U);
      what(pass.sSub1, 4U);
      what(pass.sSub2, 10U);
    }
  }
}

template <class Do>
void eachPart(std::array<ProcessStyle, kMostStyles>& styles, Do what) {
  for (std::size_t i = 0; i < styles.size(); ++i) {
    const std::size_t at = kStylesAt + i * kStyleSize;
    what(styles[i], std::span<const RecordRow<S>>(kStyleRows), at);
    for (std::size_t g = 0; g < styles[i].passes.size(); ++g)
      what(styles[i].passes[g], std::span<const RecordRow<PassRecord>>(kPassRows),
           at + kPassesAt + g * kPassSize);
  }
}

void recode(JobLayout& job, std::string (*change)(const std::string&, const std::string&)) {
  eachText(job, [&](std::string& text, std::size_t) { text = change(text, job.sTextCode); });
}

std::string toBytes(const std::string& text, const std::string& code) {
  return bytesFromText(text, code);
}

std::string toText(const std::string& bytes, const std::string& code) {
  return textFromBytes(bytes, code);
}

struct Holder {
  std::vector<std::string> told;
  void number(std::int32_t& v, std::int32_t from, std::int32_t to, const std::string& what) {
    if (v >= from && v <= to) return;
    const std::int32_t held = std::clamp(v, from, to);
    told.push_back(formatted("%s %d, taken as %d", what.c_str(), v, held));
    v = held;
  }
  void real(double& v, const std::string& what) {
    if (std::isfinite(v)) return;
    told.push_back(what + " is no number, taken as 0");
    v = 0;
  }
};

}  // namespace

bool JobLayout::operator==(const JobLayout& o) const {
  const auto key = [](const JobLayout& j) {
    return std::tie(j.nStyleCount, j.sMachine, j.sPostPath, j.nSortMode, j.nCutType, j.nDbf, j.sMaterial,
                    j.dThick, j.dWireRad, j.nLeaderType, j.styles, j.dThickAux, j.dThickProg);
  };
  return key(*this) == key(o);
}

void JobLayout::setFolder(std::string_view installFolder) {
  sInstallFolder = installFolder;
  sFilePath = sInstallFolder + "\\MZS\\ISO.LYT";
}

bool JobLayout::load(std::string* told) {
  return read(fileExists(realPath(sFilePath)) ? sFilePath : dataFile(sInstallFolder, "MZS\\ISO.LYT"), told);
}

std::vector<std::string> JobLayout::hold() {
  Holder holder;
  holder.number(nStyleCount, 0, kMostStyles, "number of styles");
  holder.number(nStyleNow, 0, kMostStyles - 1, "style shown");
  holder.number(nDbf, 0, 1, "condition file");
  holder.real(dThick, "thickness");
  holder.real(dWireRad, "wire");
  holder.real(dThickAux, "height of the auxiliary plane");
  holder.real(dThickProg, "height of the programmed plane");
  for (std::size_t i = 0; i < styles.size(); ++i) {
    const std::string style = formatted("style %zu: ", i + 1);
    for (auto& text : holdStyle(styles[i])) holder.told.push_back(style + text);
  }
  return holder.told;
}

std::string JobLayout::sentence(const std::vector<std::string>& held) {
  constexpr std::size_t kMostTold = 4;
  std::string all;
  for (std::size_t i = 0; i < held.size() && i < kMostTold; ++i) all += (i == 0 ? "" : "; ") + held[i];
  if (held.size() > kMostTold) all += formatted("; and %zu more", held.size() - kMostTold);
  return all;
}

void JobLayout::decode(std::string_view bytes, std::string* told) {
  recode(*this, toBytes);
  tarnex::decode(*this, std::span<const RecordRow<J>>(kJobRows), bytes);
  eachPart(styles, [&](auto& part, auto rows, std::size_t at) {
    if (at < bytes.size()) tarnex::decode(part, rows, bytes.substr(at));
  });
  std::vector<const std::string*> texts;
  eachText(*this, [&](std::string& text, std::size_t most) {
    if (text.size() > most) text.resize(most);
    texts.push_back(&text);
  });
  sTextCode = textCodeOf(texts);
  recode(*this, toText);
  std::string all;
  if (bytes.size() < kFileSize)
    all = formatted("%zu of %zu bytes, the rest keeps its values", bytes.size(), kFileSize);
  const std::string held = sentence(hold());
  if (told) *told = all + (all.empty() || held.empty() ? "" : "; ") + held;
}

std::string JobLayout::encode() const {
  std::string image(kFileSize, '\0');
  JobLayout raw = *this;
  bool lossy = false;  // a text that the file's page lacks: all of them go out as UTF-8
  eachText(raw, [&](const std::string& text, std::size_t) {
    bool lacking = false;
    (void)bytesFromText(text, sTextCode, &lacking);
    lossy = lossy || lacking;
  });
  if (lossy) raw.sTextCode = "UTF-8";
  recode(raw, toBytes);
  auto* to = reinterpret_cast<unsigned char*>(image.data());
  tarnex::encode(raw, std::span<const RecordRow<J>>(kJobRows), to);
  eachPart(raw.styles,
           [&](const auto& part, auto rows, std::size_t at) { tarnex::encode(part, rows, to + at); });
  return image;
}

bool JobLayout::read(const std::string& path, std::string* told) {
  if (told) told->clear();
  const std::string real = realPath(path);
  if (!fileExists(real)) return false;
  const auto bytes = readFile(real);
  if (!bytes) {
    if (told) *told = bytes.error.text();
    return false;
  }
  decode(*bytes.value, told);
  if (told && !told->empty()) *told = real + ": " + *told;
  return true;
}

bool JobLayout::write(const std::string& path, std::string* cause) const {
  const auto failure = writeFileAtomically(realPath(path), encode());
  if (failure && cause) *cause = failure->text();
  return !failure;
}

}  // namespace tarnex
