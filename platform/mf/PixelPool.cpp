#include "platform/mf/PixelPool.h"

#include <algorithm>
#include <new>
#include <utility>

namespace mf {

namespace {

constexpr std::align_val_t kAlignment{64};

} // namespace

void PixelPool::Block::Free::operator()(std::uint8_t* bytes) const {
    ::operator delete(bytes, kAlignment);
}

PixelPool::Block::~Block() {
    if (m_pool != nullptr) {
        const auto pool = std::exchange(m_pool, nullptr);
        pool->GiveBack(std::move(*this));
    }
}

std::shared_ptr<PixelPool> PixelPool::Shared() {
    constexpr std::size_t kKept = 64U << 20;
    static const auto pool = std::make_shared<PixelPool>(kKept);
    return pool;
}

PixelPool::Block PixelPool::Take(std::size_t size) {
    Block block;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = std::find_if(m_free.begin(), m_free.end(), [&](const Block& candidate) {
            return candidate.m_size == size;
        });
        if (found != m_free.end()) {
            block = std::move(*found);
            m_free.erase(found);
            m_bytesFree -= size;
        }
    }
    if (block.Bytes() == nullptr) {
        block.m_bytes.reset(static_cast<std::uint8_t*>(::operator new(size, kAlignment)));
        block.m_size = size;
        // Never another program's leavings; the pages are touched here and not in the conversion.
        std::fill_n(block.Bytes(), size, std::uint8_t{0});
    }
    block.m_pool = shared_from_this();
    return block;
}

void PixelPool::GiveBack(Block block) noexcept {
    std::list<Block> given;
    try {
        given.push_back(std::move(block));
    } catch (const std::bad_alloc&) {
        return; // freed instead
    }
    const std::lock_guard lock(m_mutex);
    m_bytesFree += given.front().m_size;
    m_free.splice(m_free.begin(), given);
    while (m_bytesFree > m_keptBytes) {
        m_bytesFree -= m_free.back().m_size;
        m_free.pop_back();
    }
}

std::size_t PixelPool::BytesKept() const {
    const std::lock_guard lock(m_mutex);
    return m_bytesFree;
}

} // namespace mf
