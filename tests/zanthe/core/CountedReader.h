// A video reader without pictures that counts itself among the living.
#pragma once

#include <atomic>

#include "tests/zanthe/core/PlainReader.h"

namespace Zanthe {

class CountedReader final : public PlainReader {
public:
    explicit CountedReader(std::atomic<int>& living)
        : m_living(living) {
        ++m_living;
    }

    ~CountedReader() override { --m_living; }

private:
    std::atomic<int>& m_living;
};

} // namespace Zanthe
