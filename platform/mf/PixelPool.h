// Memory for converted pixels, used again and again.
//
// Blocks of a picture's size are too large for the allocator to keep: each one anew costs a page
// fault every 4 KiB, about as much as the conversion itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>

namespace mf {

// Thread-safety: safe from any thread.
class PixelPool : public std::enable_shared_from_this<PixelPool> {
public:
    // Goes back to its pool, which lives at least as long.
    class Block {
    public:
        Block() = default;
        Block(Block&&) = default;

        Block& operator=(Block&& other) noexcept {
            std::swap(m_bytes, other.m_bytes);
            std::swap(m_size, other.m_size);
            std::swap(m_pool, other.m_pool);
            return *this;
        }

        ~Block();

        // 64 bytes aligned; null where it holds nothing.
        std::uint8_t* Bytes() const { return m_bytes.get(); }

    private:
        friend class PixelPool;

        struct Free {
            void operator()(std::uint8_t* bytes) const;
        };

        std::unique_ptr<std::uint8_t, Free> m_bytes;
        std::size_t m_size = 0;
        std::shared_ptr<PixelPool> m_pool;
    };

    // The one of the process.
    static std::shared_ptr<PixelPool> Shared();

    // `keptBytes`: how much memory that nobody uses is kept at most.
    explicit PixelPool(std::size_t keptBytes)
        : m_keptBytes(keptBytes) {}

    // A block of `size` bytes, of undefined but initialised content. Throws std::bad_alloc.
    Block Take(std::size_t size);

    // How much memory that nobody uses is kept now.
    std::size_t BytesKept() const;

private:
    void GiveBack(Block block) noexcept;

    const std::size_t m_keptBytes;
    mutable std::mutex m_mutex; // guards all below
    std::list<Block> m_free;    // given back last in front; without their pool
    std::size_t m_bytesFree = 0;
};

} // namespace mf
