#include "zanthe/detection/DSMediaDetException.h"

#include <utility>

DSMediaDetException::DSMediaDetException(std::string text)
    : m_text(std::move(text)) {}

DSMediaDetException::~DSMediaDetException() = default;

const char* DSMediaDetException::what() const noexcept {
    return m_text.c_str();
}
