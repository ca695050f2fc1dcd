// `tarnex post`: machine posts from their sources and back, listed, shown and checked.
// Knows files; what a post holds, the machining room knows.
#pragma once

#include <string>

namespace tarnex {

// Exit codes of the program (job3b.h): 0 done, 1 faults in a post, 2 a machine's name that is none, 3
// unreadable.
int listPosts(bool json);
int showPost(const std::string& machine);  // its source
int compilePostFile(const std::string& source,
                    const std::string& post);  // nothing is written when there are faults
// Into the install folder, as the post of this machine, FOLDER/NAME; a new folder is made.
int compileMachine(const std::string& source, const std::string& machine);
int decompilePostFile(const std::string& post, const std::string& source);
int checkPostFile(const std::string& file);  // a source (.toml) or a post

}  // namespace tarnex
