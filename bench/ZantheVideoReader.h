#pragma once

#include <memory>
#include <string>

#include "bench/VideoContender.h"
#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/VideoSampleReader.h"

// This library, as a host uses it.
//
// Thread-safety: none.
class ZantheVideoReader : public VideoContender {
public:
    // rate: pictures a second. Throws std::runtime_error.
    ZantheVideoReader(const std::string& path, int rate);
    ZantheVideoReader(const ZantheVideoReader&) = delete;
    ZantheVideoReader& operator=(const ZantheVideoReader&) = delete;
    ~ZantheVideoReader() override;

    // VideoContender
    ShownPicture Show(int number) override;

private:
    void Unlock();

    std::unique_ptr<Zanthe::VideoSampleReader> m_reader;
    std::unique_ptr<Zanthe::VideoSample> m_sample; // locked
    int m_rate;
};
