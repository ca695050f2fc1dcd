// Reading a drawing file: sections, damage, the end, and what is told about it.
// Knows the order of a file; what stands in a section is read by the other files of the reader.
#include <algorithm>

#include "host/dxf/reader.h"

namespace tarnex {
namespace {

constexpr std::string_view kDwgVersions[] = {"AC1.", "AC10", "AC2.", "AC21", "MC0."};

std::string shown(std::string_view bytes) {
  std::string out;
  for (const char c : bytes.substr(0, 24))
    out += static_cast<unsigned char>(c) < 0x20 || c == '\x7f' ? '?' : c;
  return out;
}

}  // namespace

std::string capitals(std::string_view name) {
  std::string out(name);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
  return out;
}

std::optional<std::string> dwgVersionOf(std::string_view bytes) {
  if (bytes.size() < 12) return std::nullopt;
  const std::string_view word = bytes.substr(0, 6);
  if (std::none_of(std::begin(kDwgVersions), std::end(kDwgVersions),
                   [&](std::string_view v) { return word.substr(0, v.size()) == v; }))
    return std::nullopt;
  // In the other format zeros follow; a line of text would end here.
  return bytes.substr(6, 6).find('\0') == std::string_view::npos ? std::nullopt
                                                                 : std::optional(std::string(word));
}

DxfReader::DxfReader(AcDbDatabase& db, std::string bytes, const DxfReadOptions& options, DxfReport& report)
    : db_(db),
      owned_(std::make_unique<DxfDocument>()),
      doc_(*owned_),
      options_(options),
      report_(report),
      parser_((doc_.bytes = std::move(bytes), doc_.encoding = encodingOf(doc_.bytes), doc_.reader()),
              doc_.codec, 1, [this](std::string_view name) { return blockOf(name); }),
      tags_(parser_.tags()) {
  if (doc_.encoding.utf8Mark) doc_.codec.setPage("UTF-8");
  report_ = {};
  report_.binary = doc_.encoding.form != TagForm::kAscii;
  // A factor that is asked for holds for a drawing without a header, too.
  if (options_.unitFactor && *options_.unitFactor > 0 && std::isfinite(*options_.unitFactor))
    doc_.factor = *options_.unitFactor;
  parser_.setFactor(doc_.factor);
}

void DxfReader::note(std::size_t offset, std::string text) {
  if (notes_.size() + 1 < kMostNotes)
    notes_.emplace_back(offset, std::move(text));
  else
    ++notesDropped_;
}

std::uint64_t DxfReader::lineOf(std::size_t offset) const {
  if (report_.binary) return offset;
  const std::string_view before = std::string_view(doc_.bytes).substr(0, offset);
  std::uint64_t line = 1;
  for (std::size_t i = 0; i < before.size(); ++i)
    line += before[i] == '\n' ||
            (doc_.encoding.looseEnds && before[i] == '\r' &&
             (i + 1 >= doc_.bytes.size() || (doc_.bytes[i + 1] != '\n' && doc_.bytes[i + 1] != '\r')));
  return line;
}

void DxfReader::linesOfNotes() {
  std::stable_sort(notes_.begin(), notes_.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::size_t counted = 0;
  std::uint64_t line = 1;
  for (auto& [offset, text] : notes_) {
    if (report_.binary)
      line = offset;
    else if (doc_.encoding.looseEnds)
      line = lineOf(offset);
    else
      line += static_cast<std::uint64_t>(std::count(doc_.bytes.begin() + static_cast<std::ptrdiff_t>(counted),
                                                    doc_.bytes.begin() + static_cast<std::ptrdiff_t>(offset),
                                                    '\n'));
    counted = offset;
    report_.notes.push_back({line, std::move(text)});
  }
  if (notesDropped_)
    report_.notes.push_back({report_.notes.empty() ? 0 : report_.notes.back().line,
                             std::to_string(notesDropped_) + " more remarks like these"});
}

bool DxfReader::nextOrResync() {
  for (;;) {
    if (tags_.next()) return true;
    if (!tags_.damaged()) return false;
    const std::size_t from = tags_.tagOffset();
    const bool again = tags_.resynchronise();
    note(from, "a group code was expected, the lines up to the next entity or section are left out");
    if (!again) return false;
  }
}

std::optional<DxfFailure> DxfReader::run() {
  if (const auto dwg = dwgVersionOf(doc_.bytes))
    return DxfFailure{1, "this is a DWG drawing (" + *dwg + "), not DXF", true, *dwg};
  if (doc_.bytes.empty()) return DxfFailure{1, "the file is empty", false, {}};
  if (doc_.encoding.badSignature) note(0, "the signature of the binary file is damaged, read all the same");
  walk();
  if (!anything_) {
    const std::string_view start = std::string_view(doc_.bytes).substr(doc_.encoding.start);
    return DxfFailure{report_.binary ? 0u : 1u,
                      "no DXF: a section or an entity was expected, the file starts with \"" +
                          shown(start.substr(0, start.find_first_of("\r\n"))) + "\"",
                      false,
                      {}};
  }
  finish();
  return std::nullopt;
}

// Sections one after the other; entities outside any are taken for those of model space.
void DxfReader::walk() {
  while (nextOrResync()) {
    if (tags_.code() != 0) continue;
    const std::string_view word = tags_.word();
    if (word == "EOF") {
      doc_.eofAt = tags_.tagOffset();
      return;
    }
    if (word == "SECTION") {
      section();
    } else if (kindOfEntity(word) != EntityKind::kOther) {
      note(tags_.tagOffset(), "entities outside of any section, taken for those of the drawing");
      doc_.sections.push_back({"ENTITIES", tags_.tagOffset(), tags_.tagOffset(), false});
      tags_.stepBack();
      block_ = db_.modelSpace();
      entities(block_, true);
      closeSection();
    }
  }
}

void DxfReader::section() {
  DxfSection s;
  s.begin = tags_.tagOffset();
  if (!nextOrResync()) return;
  if (tags_.code() == 2)
    s.name = capitals(tags_.word());
  else
    tags_.stepBack();
  static constexpr std::string_view kKnown[] = {"HEADER",   "TABLES",  "BLOCKS",
                                                "ENTITIES", "OBJECTS", "CLASSES"};
  const bool known = std::find(std::begin(kKnown), std::end(kKnown), s.name) != std::end(kKnown);
  if (known && std::any_of(doc_.sections.begin(), doc_.sections.end(),
                           [&](const DxfSection& o) { return o.name == s.name; }))
    note(s.begin, "a second section " + s.name + ", both are read");
  anything_ = anything_ || known;
  doc_.sections.push_back(s);
  if (s.name == "HEADER")
    header();
  else if (s.name == "TABLES")
    tables();
  else if (s.name == "BLOCKS")
    blocks();
  else if (s.name == "ENTITIES")
    entities(block_ = db_.modelSpace(), true);
  else if (s.name == "OBJECTS")
    objects();
  else
    skipSection();
  closeSection();
}

void DxfReader::skipSection() {
  while (nextOrResync()) {
    if (tags_.code() != 0) continue;
    const std::string_view word = tags_.word();
    if (word == "ENDSEC" || word == "SECTION" || word == "EOF") return tags_.stepBack();
  }
}

void DxfReader::closeSection() {
  const std::size_t index = doc_.sections.size() - 1;
  if (!nextOrResync()) {
    doc_.sections[index].end = doc_.cutAt != kNowhere ? doc_.cutAt : doc_.bytes.size();
    note(doc_.bytes.size(), "the file ends within the section " + doc_.sections[index].name);
    return;
  }
  DxfSection& s = doc_.sections[index];
  s.end = tags_.tagOffset();
  s.closed = tags_.code() == 0 && tags_.is("ENDSEC");
  if (s.closed) return;
  note(s.end, "the section " + s.name + " has no end");
  tags_.stepBack();
}

void DxfReader::finish() {
  const bool headed = std::any_of(doc_.sections.begin(), doc_.sections.end(),
                                  [](const auto& s) { return s.name == "HEADER"; });
  if (!headed) applyHeader();
  dictionaries();
  setCurrentProperties();
  if (doc_.eofAt == kNowhere && doc_.cutAt == kNowhere)
    note(doc_.bytes.size(), "the file has no EOF at its end");
  db_.reserveHandlesTo(std::max<std::uint64_t>(doc_.lastHandle, db_.nextHandle() - 1));
  for (int k = 0; k < kEntityKinds; ++k) {
    const char* name = entityKindName(static_cast<EntityKind>(k));
    if (kindCounts_[static_cast<std::size_t>(k)])
      report_.entities[name] += kindCounts_[static_cast<std::size_t>(k)];
    if (modelCounts_[static_cast<std::size_t>(k)])
      report_.modelSpace[name] += modelCounts_[static_cast<std::size_t>(k)];
  }
  report_.codePage = doc_.codec.page();
  report_.unitFactor = doc_.factor;
  linesOfNotes();
  doc_.entities.shrink_to_fit();
  db_.source = std::move(owned_);
  db_.forgetUndo();
  db_.markSaved();
}

std::optional<DxfFailure> readDxf(AcDbDatabase& db, std::string bytes, const DxfReadOptions& options,
                                  DxfReport& report) {
  return DxfReader(db, std::move(bytes), options, report).run();
}

}  // namespace tarnex
