// What the bytes of a file are, in words for people.
#pragma once

#include <string>

#include "zanthe/analysis/FileClassification.h"

namespace Program {

// As the classification has it, "compound file" where that stands there, which it does not look
// for; empty where nothing is recognised.
std::string ContentsOf(const Zanthe::FileClassification& file);

// "; by its name the file goes to ...", where the build lacks the backend of `route`, one of the
// file's, with what the file is and what may read it; empty where it has it.
std::string MissingBackendText(const Zanthe::FileClassification& file,
                               const Zanthe::ClassifiedRoute& route);

// The path of the pictures in the legacy recording at `path`, "a.orirec!Screen_Stream.avi"; empty
// where the file is no compound file or has no such member.
std::string ScreenStreamIn(const std::string& path);

} // namespace Program
