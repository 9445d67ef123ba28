// Why a command cannot do what it was asked: the program prints it as one line and ends with 1.
//
//     throw CommandError(path, "no such file");    // zanthe: clip.mp3: no such file
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace Program {

class CommandError : public std::runtime_error {
public:
    // subject: the file (or folder) that the trouble is with.
    CommandError(std::string_view subject, std::string_view reason);

    // The text without the subject; valid as long as the exception.
    std::string_view Reason() const { return std::string_view(what()).substr(m_subjectLength); }

private:
    std::size_t m_subjectLength; // with what separates it
};

// The request contradicts itself, whatever the files hold: the program ends with 2.
class UsageError : public CommandError {
public:
    using CommandError::CommandError;
};

// `text` with its control characters, and bytes that are no UTF-8, written as \xHH: a file's name
// may hold line breaks and terminal commands, and what we print about it stays one line all the
// same.
std::string OneLine(std::string_view text);

// `text` with everything but printable ASCII, and the backslash too, written as \xHH: for bytes
// that are no text by nature.
std::string Printable(std::string_view text);

} // namespace Program
