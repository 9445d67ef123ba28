// A failure that is told by nothing but its text.
//
//     throw TextException("Failed to create DSAudioChain");
#pragma once

#include <exception>
#include <string>

#include "zanthe/core/Export.h"

namespace Zanthe {

// A plain std::exception with a text. It is no std::runtime_error, and hosts rely on that: a catch
// of that one lets it pass.
class ZANTHE_API TextException : public std::exception {
public:
    explicit TextException(std::string text);
    ~TextException() override;

    // The text, valid as long as the exception.
    const char* what() const noexcept override;

private:
    std::string m_text;
};

} // namespace Zanthe
