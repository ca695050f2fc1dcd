// One editor with the application in it.
// Knows where output goes; no command line.
#include "apps/tarnex/session.h"

#include "host/platform/files.h"

namespace tarnex {

namespace {

// Lines until the user breaks in: what was meant as answers must not run as commands.
class LinesUntilInterrupt : public InputSource {
 public:
  LinesUntilInterrupt(Session& session, const std::vector<std::string>& lines)
      : session_(session), lines_(lines) {}
  std::optional<std::string> next(const PromptShown&) override {
    if (at_ >= lines_.size() || session_.interrupted()) return std::nullopt;
    return lines_[at_++];
  }

 private:
  Session& session_;
  const std::vector<std::string> lines_;
  std::size_t at_ = 0;
};

}  // namespace

JobFolder::JobFolder(const std::string& installFolder) : path_(temporaryFolder("tarnex-job")) {
  for (const char* name : {"WireCut.set", "KZS", "Harbec.DLL", "Quillet.arx", "Brenlow.exe"}) {
    const std::string from = realPath(installFolder + "\\" + name);
    if (isFolder(from))
      (void)copyTree(from, path_ + "/" + name);
    else if (auto bytes = fileExists(from) ? readFile(from) : FileResult<std::string>{})
      (void)writeFileAtomically(path_ + "/" + name, *bytes);
  }
}

JobFolder::~JobFolder() {
  (void)removeTree(path_);
}

Session::Session(std::unique_ptr<OutputSink> sink, const std::string& installFolder,
                 std::shared_ptr<InputSource> person)
    : editor(std::move(sink)), application(editor, {installFolder, std::nullopt}) {
  if (person) editor.pushInput(std::move(person));
  application.acrxEntryPoint(AppMessage::kInitAppMsg);
}

Session::~Session() {
  application.acrxEntryPoint(AppMessage::kUnloadAppMsg);
}

bool Session::run(const std::vector<std::string>& lines) {
  script.insert(script.end(), lines.begin(), lines.end());
  editor.pushInput(std::make_shared<LinesUntilInterrupt>(*this, lines));
  return editor.runLoop() == 0 && !interrupted();
}

bool Session::interrupted() {
  const auto* sink = dynamic_cast<const StringSink*>(&editor.sink());
  return sink && sink->cancelled;
}

}  // namespace tarnex
