// `tarnex job`.
// Knows files and the console; names and limits are the machining room's.
#include "apps/tarnex/jobfile.h"

#include <cstdio>

#include "apps/tarnex/job3b.h"
#include "frame/folders.h"
#include "host/platform/files.h"
#include "machining/jobsource.h"
#include "machining/machinepost.h"

namespace tarnex {

namespace {

void tell(const std::string& line) {
  std::fprintf(stderr, "%s\n", line.c_str());
}

JobLayout standingJob() {
  JobLayout job;
  job.setFolder(installFolder());
  std::string told;
  job.load(&told);
  if (!told.empty()) tell(told);
  return job;
}

// A job may name a machine before it is there, so this is told and no fault.
void tellOfMachine(const JobLayout& job) {
  const std::string path = realPath(postPath(job.sInstallFolder, job.sPostPath, job.sMachine));
  if (!fileExists(path)) tell(path + ": there is no such machine; `tarnex post list` names those that are");
}

}  // namespace

int showJob() {
  const JobLayout job = standingJob();
  tellOfMachine(job);
  std::fputs(jobSource(job).c_str(), stdout);
  return kDone;
}

int exportJob(const std::string& file) {
  const auto failure = writeFileAtomically(file, jobSource(standingJob()));
  if (!failure) return kDone;
  tell(failure->text());
  return kFailed;
}

int importJob(const std::string& file) {
  const auto text = readFile(file);
  if (!text) {
    tell(text.error.text());
    return kUnreadable;
  }
  const JobLayout old = standingJob();
  const auto read = readJobSource(*text.value, file, old);
  for (const auto& fault : read.faults) tell(fault);
  if (!read.faults.empty()) return kFailed;
  if (!read.rules.empty()) tell(file + ": note: the rules stay in this file; the job has no place for them");
  tellOfMachine(read.job);
  std::string cause;
  if (!makeFolders(realPath(read.job.sInstallFolder + "\\MZS")) && read.job.save(&cause)) return kDone;
  tell(cause);
  return kFailed;
}

}  // namespace tarnex
