#include "zanthe/core/TextException.h"

#include <utility>

namespace Zanthe {

TextException::TextException(std::string text)
    : m_text(std::move(text)) {}

TextException::~TextException() = default;

const char* TextException::what() const noexcept {
    return m_text.c_str();
}

} // namespace Zanthe
