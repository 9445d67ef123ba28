// A pool of open readers: those who ask for the same file and stream share one.
//
//     VideoSampleReaderCache cache(factory.get());
//     auto reader = cache.AcquireDecoder("clip.mp4", 0, false);
//     ...
//     cache.ReleaseDecoder("clip.mp4", 0);
#pragma once

#include <mutex>
#include <string>
#include <unordered_map>

#include <boost/shared_ptr.hpp>

#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/Export.h"
#include "zanthe/core/RefCountedPoolObject.h"
#include "zanthe/core/VideoSampleReader.h"

namespace Zanthe {

// A reader is in the pool from its first AcquireDecoder to the matching last ReleaseDecoder; there
// is no limit and nothing else removes it. Destroying the pool drops them all, lent or not; whoever
// holds one keeps it. ".brec" files, in any case of letters, are never pooled: each caller has a
// reader of its own.
//
// Thread-safety: safe from any thread. The lock is held while a reader is opened, so that two
// callers never open one file twice; all other calls wait for it. A shared reader is not guarded:
// those who share it must not read at the same time.
class ZANTHE_API VideoSampleReaderCache {
public:
    // `factory` stays the caller's and must outlive the pool.
    explicit VideoSampleReaderCache(DecoderFactory* factory);
    VideoSampleReaderCache(const VideoSampleReaderCache&) = delete;
    VideoSampleReaderCache& operator=(const VideoSampleReaderCache&) = delete;
    virtual ~VideoSampleReaderCache();

    // The reader for the file at `path` (UTF-8) and stream streamIndex; from the pool, where it is
    // there, else from the factory. It counts once more as lent, until ReleaseDecoder with the same
    // path and index. Where the factory answers null so does this, and that, too, is pooled.
    //
    // Path and index are joined without anything between them: "a.mp4" with 11 and "a.mp41" with 1
    // are the same reader. deferInitialization goes to the factory as it is and plays no part in
    // the search.
    //
    // Throws what the factory throws, with nothing pooled.
    boost::shared_ptr<VideoSampleReader> AcquireDecoder(const std::string& path, int streamIndex,
                                                        bool deferInitialization);

    // Gives one AcquireDecoder back. With the last one the pool lets go of the reader, which closes
    // as soon as nobody holds it. Nothing for a ".brec" file.
    //
    // Throws std::runtime_error "Can't release video sample reader for ", the path and ", " when
    // the pool has no such reader, which is what one release too many finds.
    void ReleaseDecoder(const std::string& path, int streamIndex);

private:
    DecoderFactory* m_factory;
    std::unordered_map<std::string, boost::shared_ptr<RefCountedPoolObject<VideoSampleReader>>>
        m_pool;         // guarded by m_mutex, with every refCount in it
    std::mutex m_mutex; // held across the factory's creation
};

} // namespace Zanthe
