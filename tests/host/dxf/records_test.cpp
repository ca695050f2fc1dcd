// Applications' entities and named dictionaries: stored, found again, kept when they can't be read, told when
// another program has changed them.
#include "host/dxf/drawings.h"
#include "host/dxf/path_class.h"

namespace tarnex::test {
namespace {

struct Classes {
  AcRxClassDictionary dictionary;
  Classes() { static_cast<void>(dictionary.add(Path::desc())); }
  DxfReadOptions options() const { return {&dictionary, {}}; }
};

std::string longNote(std::size_t size) {
  std::string s;
  for (std::size_t i = 0; i < size; ++i) s += static_cast<char>(' ' + i * 7 % 90);
  return s;
}

struct Form {
  const char* name;
  std::string file;  // "": a new drawing
};
std::vector<Form> forms() {
  return {{"new", ""},
          {"complete", completeDrawing()},
          {"inch", drawing("AC1015", "0 POINT|5 A|8 0|10 0|20 0", "9 $INSUNITS|70 1")},
          {"R12", drawing("AC1009", "0 POINT|8 0|10 0|20 0")},
          {"R12 with handles",
           drawing("AC1009", "0 POINT|5 A|8 0|10 0|20 0", "9 $HANDLING|70 1|9 $HANDSEED|5 B")},
          {"entities only", ascii("0 SECTION|2 ENTITIES|0 POINT|8 0|10 0|20 0|0 ENDSEC|0 EOF")},
          {"binary", binary(parsed(completeDrawing()), true)}};
}

std::unique_ptr<ReadBack> opened(const Form& form, const Classes& classes) {
  return form.file.empty() ? std::make_unique<ReadBack>() : read(form.file, classes.options());
}

const Path* onlyPath(const AcDbDatabase& db) {
  const Path* found = nullptr;
  for (const AcDbObjectId id : db.modelSpaceEntities())
    if (const auto* p = db.peek<Path>(id)) found = p;
  return found;
}

TEST(DxfRecords, PathsComeBackFromEveryForm) {
  const Classes classes;
  for (const std::size_t size : {std::size_t{10}, std::size_t{13000}, std::size_t{60000}})
    for (const Form& form : forms()) {
      SCOPED_TRACE(std::string(form.name) + ", " + std::to_string(size));
      auto r = opened(form, classes);
      const std::string note = longNote(size);
      r->db.appendAcDbEntity(r->db.modelSpace(), makePath(note, 8));
      const std::string file = dxfText(r->db);
      auto again = read(file, classes.options());
      ASSERT_FALSE(again->failure) << again->failure->cause;
      ASSERT_TRUE(again->report.notes.empty())
          << again->report.notes[0].line << ": " << again->report.notes[0].text;
      const Path* path = onlyPath(again->db);
      ASSERT_TRUE(path);
      EXPECT_EQ(path->note, note);
      EXPECT_EQ(path->polyline(), makePath("", 8)->polyline());
      EXPECT_EQ(dxfText(again->db), file);  // untouched
      // Changed, it is found changed; erased, nothing of it is left.
      again->db.open<Path>(path->objectId(), OpenMode::kForWrite)->assertWriteEnabled();
      const_cast<Path*>(path)->note = note + "more";
      const auto third = read(dxfText(again->db), classes.options());
      ASSERT_TRUE(onlyPath(third->db)) << third->report.notes.at(0).text;
      EXPECT_EQ(onlyPath(third->db)->note, note + "more");
      ASSERT_EQ(again->db.open<Path>(path->objectId(), OpenMode::kForWrite)->erase(), ErrorStatus::eOk);
      EXPECT_EQ(dxfText(again->db).find("TestPath"), std::string::npos);
    }
}

TEST(DxfRecords, WithoutTheClassAProxyIsKept) {
  AcDbDatabase db;
  db.appendAcDbEntity(db.modelSpace(), makePath("x"));
  const std::string file = dxfText(db);
  const auto r = read(file);
  EXPECT_TRUE(nth<AcDbProxyEntity>(r->db).isKindOf(AcDbKeptEntity::desc()));
  EXPECT_EQ(dxfText(r->db), file);

  AcDbDatabase newer;
  auto path = makePath("x");
  path->version = 2;
  newer.appendAcDbEntity(newer.modelSpace(), std::move(path));
  const Classes classes;
  const auto proxy = read(dxfText(newer), classes.options());
  EXPECT_TRUE(nth<AcDbEntity>(proxy->db).isKindOf(AcDbProxyEntity::desc()));
  EXPECT_NE(proxy->report.notes.at(0).text.find("can't read"), std::string::npos);
}

TEST(DxfRecords, ChangesByOtherProgramsAreTold) {
  const Classes classes;
  AcDbDatabase db;
  db.appendAcDbEntity(db.modelSpace(), makePath("x"));
  const std::string file = dxfText(db);
  std::string moved = file, damaged = file, cut = file;
  moved.replace(moved.find("\r\n0.1\r\n"), 7, "\r\n0.2\r\n");
  const std::size_t chunk = file.find("\r\n1004\r\n") + 8;
  damaged[chunk + 30] = damaged[chunk + 30] == '0' ? '1' : '0';
  cut.erase(chunk - 6, cut.find("\r\n", chunk) + 2 - (chunk - 6));
  const auto text = [&](const std::string& bytes) {
    const auto r = read(bytes, classes.options());
    const auto& e = nth<AcDbPolyline>(r->db);
    EXPECT_FALSE(e.isKindOf(Path::desc()));
    EXPECT_EQ(dxfText(r->db), bytes);
    return r->report.notes.empty() ? std::string() : r->report.notes[0].text;
  };
  EXPECT_EQ(text(moved),
            "TestPath of TestApp: another program has changed its polyline, which is read alone");
  EXPECT_EQ(text(damaged),
            "TestPath of TestApp: its record is damaged or incomplete, the polyline is read alone");
  EXPECT_EQ(text(cut),
            "TestPath of TestApp: its record is damaged or incomplete, the polyline is read alone");
}

ResBufChain chainOf(int code, decltype(ResBuf::value) value) {
  ResBuf item;
  item.code = code;
  item.value = std::move(value);
  return {item};
}

AcDbObjectId dictionary(AcDbDatabase& db, const std::string& name) {
  auto root = db.open<AcDbDictionary>(db.namedObjectsDictionary(), OpenMode::kForWrite);
  AcDbObjectId id;
  if (root->getAt(name, id) != ErrorStatus::eOk) root->setAt(name, std::make_unique<AcDbDictionary>(), id);
  return id;
}

void set(AcDbDatabase& db, const std::string& key, ResBufChain chain) {
  auto d = db.open<AcDbDictionary>(dictionary(db, "MY_INFO_DICT"), OpenMode::kForWrite);
  auto record = std::make_unique<AcDbXrecord>();
  record->setFromRbChain(std::move(chain));
  AcDbObjectId id;
  d->setAt(key, std::move(record), id);
}

ResBufChain get(AcDbDatabase& db, const std::string& key, const std::string& name = "MY_INFO_DICT") {
  auto d = db.open<AcDbDictionary>(dictionary(db, name));
  AcDbObjectId id;
  const auto* record = d && d->getAt(key, id) == ErrorStatus::eOk ? db.peek<AcDbXrecord>(id) : nullptr;
  return record ? record->rbChain() : ResBufChain{};
}

TEST(DxfDictionaries, ValuesComeBackFromEveryForm) {
  const Classes classes;
  const std::vector<std::pair<std::string, ResBufChain>> values = {
      {"INT", chainOf(70, -32768LL)},
      {"REAL", chainOf(40, 0.1)},
      {"TEXT", chainOf(1, longNote(700) + "\u00e4")},
      {"POINT", chainOf(10, AcGePoint3d{1, 2.5, -3})}};
  for (const Form& form : forms()) {
    SCOPED_TRACE(form.name);
    auto r = opened(form, classes);
    for (const auto& [key, chain] : values) set(r->db, key, chain);
    const std::string file = dxfText(r->db);
    auto again = read(file);
    ASSERT_TRUE(again->report.notes.empty()) << again->report.notes[0].text;
    for (const auto& [key, chain] : values) EXPECT_EQ(get(again->db, key), chain) << key;
    EXPECT_EQ(dxfText(again->db), file);
    set(again->db, "INT", chainOf(70, 7LL));
    ASSERT_EQ(again->db.open<AcDbDictionary>(dictionary(again->db, "MY_INFO_DICT"), OpenMode::kForWrite)
                  ->remove("REAL"),
              ErrorStatus::eOk);
    auto third = read(dxfText(again->db));
    EXPECT_EQ(get(third->db, "INT"), chainOf(70, 7LL));
    EXPECT_TRUE(get(third->db, "REAL").empty());
    EXPECT_EQ(get(third->db, "POINT"), values[3].second);
  }
}

TEST(DxfDictionaries, ForeignEntriesStay) {
  auto r = read(completeDrawing());
  EXPECT_EQ(get(r->db, "FIRST", "NOTES").size(), 4u);
  {
    AcDbObjectId id;
    auto notes = r->db.open<AcDbDictionary>(dictionary(r->db, "NOTES"));
    ASSERT_EQ(notes->getAt("FIRST", id), ErrorStatus::eOk);
    notes.close();
    r->db.open<AcDbXrecord>(id, OpenMode::kForWrite)->setFromRbChain(chainOf(1, std::string("bye")));
  }
  set(r->db, "NEW", chainOf(70, 1LL));
  const std::string file = dxfText(r->db);
  for (const char* kept : {"GONE", "ACAD_GROUP", "ODDOBJECT", "whatever", "kept as it is"})
    EXPECT_NE(file.find(kept), std::string::npos) << kept;
  auto again = read(file);
  EXPECT_EQ(get(again->db, "FIRST", "NOTES"), chainOf(1, std::string("bye")));
  EXPECT_EQ(get(again->db, "NEW"), chainOf(70, 1LL));
}

}  // namespace
}  // namespace tarnex::test
