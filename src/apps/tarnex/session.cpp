// One editor with the application in it.
// Knows where output goes; no command line.
#include "apps/tarnex/session.h"

#include <cctype>

#include "host/platform/files.h"

namespace tarnex {

// Lines until the user breaks in: what was meant as answers must not run as commands.
class LinesUntilInterrupt : public InputSource {
 public:
  LinesUntilInterrupt(Session& session, const std::vector<std::string>& lines,
                      const Session::Answerer& answerer)
      : session_(session), lines_(lines), answerer_(answerer) {
    session_.tookAll_ = true;
  }
  std::optional<std::string> next(const PromptShown& prompt) override {
    if (session_.interrupted()) return std::nullopt;
    std::optional<std::string> line;
    if (answerer_) line = answerer_(prompt);
    if (!line) line = nextLine(prompt.commandPrompt);
    if (line) session_.script.push_back(*line);
    return line;
  }

 private:
  static bool isCommand(const std::string& line) {
    return !line.empty() && std::isalpha(static_cast<unsigned char>(line.front())) != 0;
  }
  std::optional<std::string> nextLine(bool commandPrompt) {
    if (at_ < lines_.size() && commandPrompt && !isCommand(lines_[at_])) {
      session_.tookAll_ = false;
      at_ = lines_.size();
    }
    if (at_ >= lines_.size()) return std::nullopt;
    return lines_[at_++];
  }

  Session& session_;
  const std::vector<std::string> lines_;
  const Session::Answerer answerer_;
  std::size_t at_ = 0;
};

JobFolder::JobFolder(const std::string& installFolder) : path_(temporaryFolder("tarnex-job")) {
  for (const char* name : {"WireCut.set", "KZS", "MZS", "Harbec.DLL", "Quillet.arx", "Brenlow.exe"}) {
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

bool Session::run(const std::vector<std::string>& lines, const Answerer& answerer) {
  editor.pushInput(std::make_shared<LinesUntilInterrupt>(*this, lines, answerer));
  return editor.runLoop() == 0 && !interrupted();
}

bool Session::interrupted() {
  const auto* sink = dynamic_cast<const StringSink*>(&editor.sink());
  return sink && sink->cancelled;
}

}  // namespace tarnex
