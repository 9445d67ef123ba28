// The one failure of the MP4 walker and of whoever reads bytes for it.
#pragma once

#include <exception>

// Thrown by value: the file could not be opened, ended too early, or cannot be walked to its end.
// It carries no text of its own, as nobody shows it: the caller's answer is an empty result.
class MP4ParseException : public std::exception {};
