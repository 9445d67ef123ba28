// What each route of sound is read with. The factory decides which of these a file takes.
#pragma once

#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/audio/IAudioReader.h"

namespace Zanthe {

// Paths are UTF-8, rates in Hz. Never empty: failures are the exceptions of the backend itself.
//
// Thread-safety: safe from any thread; an implementation keeps no state.
class IAudioBackends {
public:
    IAudioBackends() = default;
    IAudioBackends(const IAudioBackends&) = delete;
    IAudioBackends& operator=(const IAudioBackends&) = delete;
    virtual ~IAudioBackends() = default;

    virtual boost::shared_ptr<IAudioReader> CreateFfmpeg(const std::string& path, int trackIndex,
                                                         int sampleRate) const = 0;
    virtual boost::shared_ptr<IAudioReader> CreateRecording(const std::string& path,
                                                            int trackIndex) const = 0;
    virtual boost::shared_ptr<IAudioReader> CreateMediaFoundation(const std::string& path,
                                                                  bool recontainerAacInMp4,
                                                                  int sampleRate) const = 0;
    virtual boost::shared_ptr<IAudioReader> CreateDirectShow(const std::string& path) const = 0;
};

// The library's own.
class AudioBackends final : public IAudioBackends {
public:
    // IAudioBackends
    boost::shared_ptr<IAudioReader> CreateFfmpeg(const std::string& path, int trackIndex,
                                                 int sampleRate) const override;
    boost::shared_ptr<IAudioReader> CreateRecording(const std::string& path,
                                                    int trackIndex) const override;
    boost::shared_ptr<IAudioReader> CreateMediaFoundation(const std::string& path,
                                                          bool recontainerAacInMp4,
                                                          int sampleRate) const override;
    boost::shared_ptr<IAudioReader> CreateDirectShow(const std::string& path) const override;
};

} // namespace Zanthe
