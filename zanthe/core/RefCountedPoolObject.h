// An object of a pool and how often it is lent.
#pragma once

#include <cstdint>

#include <boost/shared_ptr.hpp>

namespace Zanthe {

// Thread-safety: none; guarded by the lock of the pool.
template <typename T>
struct RefCountedPoolObject {
    std::int32_t refCount;
    boost::shared_ptr<T> object;
};

} // namespace Zanthe
