// `tarnex post try`: a drawing's program with a post, beside what the post gave the last time.
// Knows jobs and differences; the job that is written with is the user's.
#pragma once

#include <string>
#include <vector>

namespace tarnex {

struct PostTryOptions {
  std::string machine;  // FOLDER/NAME
  std::string drawing;  // DXF; empty: the sample that comes with the program
  std::string job, by;  // as those of `tarnex iso`; empty: the user's job as it stands
  std::vector<std::string> sets;
  bool json = false;
};

// Prints the program the first time, later what has changed; a change is no failure. The program is kept for
// the next try, one for each post and drawing, as "TRY\<folder>\<name>\<drawing>.iso" in the install folder;
// one that couldn't be written leaves it as it was. Exit codes as those of the job (drawingjob.h).
int tryPost(const PostTryOptions& options);

}  // namespace tarnex
