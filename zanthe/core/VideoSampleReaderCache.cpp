#include "zanthe/core/VideoSampleReaderCache.h"

#include <stdexcept>

#include <boost/make_shared.hpp>

#include "zanthe/analysis/BrecFile.h"

namespace Zanthe {

namespace {

std::string KeyOf(const std::string& path, int streamIndex) {
    return path + std::to_string(streamIndex);
}

} // namespace

VideoSampleReaderCache::VideoSampleReaderCache(DecoderFactory* factory)
    : m_factory(factory) {}

VideoSampleReaderCache::~VideoSampleReaderCache() = default;

boost::shared_ptr<VideoSampleReader>
VideoSampleReaderCache::AcquireDecoder(const std::string& path, int streamIndex,
                                       bool deferInitialization) {
    const auto create = [&] {
        return boost::shared_ptr<VideoSampleReader>(
            m_factory->CreateVideoSampleReader(path, streamIndex, deferInitialization));
    };
    if (HasBrecExtension(path)) {
        return create();
    }
    const std::lock_guard lock(m_mutex);
    const std::string key = KeyOf(path, streamIndex);
    if (const auto found = m_pool.find(key); found != m_pool.end()) {
        ++found->second->refCount;
        return found->second->object;
    }
    const auto entry = boost::make_shared<RefCountedPoolObject<VideoSampleReader>>(
        RefCountedPoolObject<VideoSampleReader>{1, create()});
    m_pool.emplace(key, entry);
    return entry->object;
}

void VideoSampleReaderCache::ReleaseDecoder(const std::string& path, int streamIndex) {
    if (HasBrecExtension(path)) {
        return;
    }
    const std::lock_guard lock(m_mutex);
    const auto found = m_pool.find(KeyOf(path, streamIndex));
    if (found == m_pool.end()) {
        throw std::runtime_error("Can't release video sample reader for " + path + ", ");
    }
    if (--found->second->refCount == 0) {
        m_pool.erase(found);
    }
}

} // namespace Zanthe
