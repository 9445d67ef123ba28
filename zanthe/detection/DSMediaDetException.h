// What the detection of media files fails with, and the readers of pictures that came out of it.
//
//     throw DSMediaDetException("Unable to create decoder");
#pragma once

#include <exception>
#include <string>

#include "zanthe/core/Export.h"

// A std::exception with a text; no std::runtime_error, and hosts tell the two apart.
class ZANTHE_API DSMediaDetException : public std::exception {
public:
    explicit DSMediaDetException(std::string text);
    ~DSMediaDetException() override;

    // The text, valid as long as the exception.
    const char* what() const noexcept override;

private:
    std::string m_text;
};
