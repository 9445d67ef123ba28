// The readers of sound that stand on Media Foundation, and which of them a file gets.
#pragma once

#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/analysis/WindowsVersionProvider.h"
#include "zanthe/audio/IAudioReader.h"

namespace Zanthe {

// How each is made. `path` is UTF-8 where it is narrow; sampleRate is in Hz.
//
// Thread-safety: safe from any thread; an implementation keeps no state.
class IMediaFoundationBackends {
public:
    IMediaFoundationBackends() = default;
    IMediaFoundationBackends(const IMediaFoundationBackends&) = delete;
    IMediaFoundationBackends& operator=(const IMediaFoundationBackends&) = delete;
    virtual ~IMediaFoundationBackends() = default;

    // By way of a copy of the sound track in temporaryFolder. Throws std::runtime_error
    // "Error re-containering audio!!" or "Error creating reader for re-containered audio!!".
    virtual boost::shared_ptr<IAudioReader> CreateRecontainering(const std::string& path,
                                                                 const std::string& temporaryFolder,
                                                                 int sampleRate) const = 0;

    // For systems below 6.2, in a rate of its own; empty when it cannot be initialised.
    virtual boost::shared_ptr<IAudioReader> CreateLegacy(const std::wstring& path) const = 0;

    // For systems from 6.2 on; empty when it cannot be initialised.
    virtual boost::shared_ptr<IAudioReader> CreateCurrent(const std::string& path,
                                                          int sampleRate) const = 0;
};

// The library's own. Each operation stands in a file of its own.
class MediaFoundationBackends final : public IMediaFoundationBackends {
public:
    // IMediaFoundationBackends
    boost::shared_ptr<IAudioReader> CreateRecontainering(const std::string& path,
                                                         const std::string& temporaryFolder,
                                                         int sampleRate) const override;
    boost::shared_ptr<IAudioReader> CreateLegacy(const std::wstring& path) const override;
    boost::shared_ptr<IAudioReader> CreateCurrent(const std::string& path,
                                                  int sampleRate) const override;
};

// The reader that the system's version asks for; empty when it cannot be initialised.
boost::shared_ptr<IAudioReader>
CreateReaderBySystemVersion(const std::string& path, int sampleRate,
                            const IMediaFoundationBackends& backends,
                            const IWindowsVersionProvider& versionProvider);

// The recontainering reader for AAC in MP4 where that is wanted, else the one above. Never empty:
// throws TextException "Failed to create MediaFoundation resource", or what the backend throws.
boost::shared_ptr<IAudioReader>
CreateMediaFoundationReader(const std::string& path, bool recontainerAacInMp4, int sampleRate,
                            const IMediaFoundationBackends& backends,
                            const IWindowsVersionProvider& versionProvider);

} // namespace Zanthe
