// A session for tests: an editor with an empty drawing, whose answers and output are texts.
// Knows no test.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/editor/editor.h"

namespace tarnex {

class StringSink : public OutputSink {
 public:
  explicit StringSink(std::string& out) : out_(out) {}
  void print(std::string_view utf8) override { out_ += utf8; }
  void meter(std::string_view title, long position, long total) override {
    if (!title.empty()) out_ += "{" + std::to_string(position) + "/" + std::to_string(total) + "}";
  }

 private:
  std::string& out_;
};

struct Session {
  std::string out;
  AcEditor ed{std::make_unique<StringSink>(out)};

  // Runs lines as typed and gives what was printed meanwhile.
  std::string run(std::vector<std::string> lines) {
    out.clear();
    ed.pushInput(std::make_shared<QueueInput>(std::move(lines)));
    status = ed.runLoop();
    return out;
  }
  std::string runScript(const std::string& name, const std::string& text) {
    out.clear();
    ed.pushInput(std::make_shared<ScriptInput>(name, text));
    status = ed.runLoop();
    return out;
  }
  // Answers for prompts that the test asks itself.
  void answers(std::vector<std::string> lines) {
    ed.pushInput(std::make_shared<QueueInput>(std::move(lines)));
  }

  AcDbObjectId add(std::unique_ptr<AcDbEntity> entity) {
    return ed.database().appendAcDbEntity(ed.database().modelSpace(), std::move(entity));
  }
  AcDbObjectId line(AcGePoint2d a, AcGePoint2d b) {
    return add(std::make_unique<AcDbLine>(solid(a), solid(b)));
  }
  AcDbObjectId circle(AcGePoint2d c, double r) { return add(std::make_unique<AcDbCircle>(solid(c), r)); }

  [[nodiscard]] std::vector<AcDbObjectId> all() { return ed.database().modelSpaceEntities(); }
  template <class T>
  [[nodiscard]] const T* entity(AcDbObjectId id) {
    return ed.database().peek<T>(id);
  }
  // The newest entity as a T, null when it is none.
  template <class T>
  [[nodiscard]] const T* last() {
    return ed.database().peek<T>(ed.acdbEntLast());
  }
  [[nodiscard]] std::string handle(AcDbObjectId id);

  int status = 0;
};

inline std::string Session::handle(AcDbObjectId id) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (auto h = ed.database().peek<AcDbObject>(id)->handle(); h; h /= 16)
    text.insert(text.begin(), kDigits[h % 16]);
  return "&" + text;
}

}  // namespace tarnex
