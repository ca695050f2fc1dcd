// The two small cost settings files.
// Knows their bytes; what a cost note says is the business of the rooms above.
#include "frame/noteprice.h"

#include <array>

#include "frame/record.h"
#include "host/platform/files.h"

namespace tarnex {

namespace {

using M = NotePriceMzs;
using K = NotePriceKzs;

const auto kMzsRows = std::to_array<RecordRow<M>>({
    {0, &M::nVersion, 4, "nVersion", 100},
    {4, &M::sCompany, 50, "sCompany", "KESTRIX CO.,LTD"},
    {54, &M::sPart, 40, "sPart", "Plate1"},
    {94, &M::sCurrency, 10, "sCurrency", "RMB"},
    {104, &M::dPrice, 8, "dPrice", 40.0},
    {112, &M::nCount, 4, "nCount", 1},
    {116, &M::nUnused, 4, "nUnused", 0},
});

// A row's version is the first whose files hold the field.
const auto kKzsRows = std::to_array<RecordRow<K>>({
    {0, &K::nVersion, 4, "nVersion", 0},
    {4, &K::n4, 4, "n4", 1},
    {8, &K::n8, 4, "n8", 1},
    {12, &K::n12, 4, "n12", 0},
    {16, &K::n16, 4, "n16", 0},
    {20, &K::n20, 4, "n20", 0},
    {24, &K::d24, 8, "d24", 0.07},
    {32, &K::d32, 8, "d32", 20.0},
    {40, &K::d40, 8, "d40", 0.0},
    {48, &K::d48, 8, "d48", 0.0},
    {56, &K::sMaterial, 8, "sMaterial", "Fe"},
    {96, &K::n96, 4, "n96", 0},
    {104, &K::d104, 8, "d104", 1.0},
    {112, &K::d112, 8, "d112", 0.0, 101, 0.0},
    {120, &K::n120, 4, "n120", 1, 101, 1},
    {128, &K::d128, 8, "d128", 0.007, 101, 0.007},
    {136, &K::d136, 8, "d136", 30.0, 101, 30.0},
    {144, &K::d144, 8, "d144", 1.0, 101, 1.0},
    {152, &K::d152, 8, "d152", 0.0, 101, 0.0},
    {160, &K::d160, 8, "d160", 0.0, 101, 0.0},
    {168, &K::d168, 8, "d168", 0.0, 102, 0.0042},
    {176, &K::d176, 8, "d176", 0.0, 102, 0.05},
    {184, &K::s184, 12, "s184", "", 103, "1"},
    {196, &K::n196, 4, "n196", 0, 103, 0},
    {208, &K::d208, 8, "d208", 0.0, 104, 0.0},
    {216, &K::d216, 8, "d216", 0.0, 104, 0.0},
    {224, &K::s224, 24, "s224", "", 105, "A"},
});

std::string pathIn(const std::string& installFolder, const char* part) {
  return realPath(installFolder + "\\" + part + "\\NotePrice.set");
}

template <class Record, class Rows>
bool write(const Record& record, const Rows& rows, std::string bytes, const std::string& path) {
  bytes.resize(Record::kFileSize, '\0');
  encode(record, std::span<const RecordRow<Record>>(rows), reinterpret_cast<unsigned char*>(bytes.data()));
  return !writeFileAtomically(path, bytes);
}

}  // namespace

NotePriceMzs::NotePriceMzs() {
  construct(*this, std::span<const RecordRow<M>>(kMzsRows));
}

void NotePriceMzs::load(const std::string& installFolder) {
  construct(*this, std::span<const RecordRow<M>>(kMzsRows));
  if (auto file = readFile(pathIn(installFolder, "MZS")))
    decode(*this, std::span<const RecordRow<M>>(kMzsRows), *file);
  nVersion = 100;
}

bool NotePriceMzs::save(const std::string& installFolder) const {
  return write(*this, kMzsRows, {}, pathIn(installFolder, "MZS"));
}

NotePriceKzs::NotePriceKzs() {
  construct(*this, std::span<const RecordRow<K>>(kKzsRows));
}

void NotePriceKzs::load(const std::string& installFolder) {
  construct(*this, std::span<const RecordRow<K>>(kKzsRows));
  bytes.clear();
  if (auto file = readFile(pathIn(installFolder, "KZS"))) {
    bytes = *file;
    decode(*this, std::span<const RecordRow<K>>(kKzsRows), bytes);
  }
  migrate(*this, std::span<const RecordRow<K>>(kKzsRows), nVersion);
  if (nVersion < 105) nVersion = 105;
}

bool NotePriceKzs::save(const std::string& installFolder) const {
  return write(*this, kKzsRows, bytes, pathIn(installFolder, "KZS"));
}

}  // namespace tarnex
