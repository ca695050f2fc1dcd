// One editor with the application in it: what every subcommand works with.
// Knows where output goes; no command line.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/editor/editor.h"
#include "module/application.h"

namespace tarnex {

// Output kept in memory: what a batch says is told when its drawing is done.
class StringSink : public OutputSink {
 public:
  void print(std::string_view utf8) override {
    text += utf8;
    cancelled = cancelled || utf8.starts_with("*Cancel*");
  }
  std::string text;
  bool cancelled = false;  // the user broke in
};

// A folder of its own with copies of the user's settings, machines, posts, conditions and job, so that a
// job's values stay with the job.
class JobFolder {
 public:
  explicit JobFolder(const std::string& installFolder);
  JobFolder(const JobFolder&) = delete;
  JobFolder& operator=(const JobFolder&) = delete;
  ~JobFolder();
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

class LinesUntilInterrupt;

class Session {
 public:
  // `person`: who answers from the start on, also what the system asks when it comes up; null: nobody yet.
  Session(std::unique_ptr<OutputSink> sink, const std::string& installFolder,
          std::shared_ptr<InputSource> person = nullptr);
  ~Session();
  // Answers a prompt that only some drawings bring up; nothing: the next line is the answer.
  using Answerer = std::function<std::optional<std::string>(const PromptShown&)>;
  // Runs lines as a script would give them; they are kept in `script`, and so are answers, where they were
  // given. False when a command failed, in this run or before. After an interrupt no line is run any more. A
  // line that can't be a command, where one is asked for, ends the run: the command before it failed or ended
  // without asking.
  bool run(const std::vector<std::string>& lines, const Answerer& answerer = {});
  // The last run didn't end like that.
  [[nodiscard]] bool tookAll() const { return tookAll_; }
  [[nodiscard]] bool interrupted();
  [[nodiscard]] AcDbDatabase& drawing() { return editor.database(); }
  [[nodiscard]] Module& module() { return application.module(); }

  AcEditor editor;
  Application application;
  std::vector<std::string> script;

 private:
  friend class LinesUntilInterrupt;
  bool tookAll_ = true;
};

}  // namespace tarnex
