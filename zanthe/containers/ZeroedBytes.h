// Memory that is zero and costs nothing until it is touched.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

// A file's headers say how large the buffers for its pictures have to be. From calloc the pages of
// a large one come when something is written to them, so a header alone takes no memory.
class ZeroedBytes {
public:
    ZeroedBytes() = default;

    // Throws std::bad_alloc.
    explicit ZeroedBytes(std::size_t byteCount)
        : m_bytes(static_cast<unsigned char*>(std::calloc(byteCount != 0 ? byteCount : 1, 1))) {
        if (m_bytes == nullptr) {
            throw std::bad_alloc();
        }
    }

    unsigned char* Data() { return m_bytes.get(); }

    const unsigned char* Data() const { return m_bytes.get(); }

    bool IsNull() const { return m_bytes == nullptr; }

private:
    struct Free {
        void operator()(unsigned char* bytes) const { std::free(bytes); }
    };

    std::unique_ptr<unsigned char[], Free> m_bytes;
};
