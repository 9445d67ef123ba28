#pragma once

#include <memory>
#include <string>

#include <ffms.h>

#include "bench/VideoContender.h"

// FFMS2, which reads the whole file for an index before it shows anything.
//
// Thread-safety: none.
class Ffms2VideoReader : public VideoContender {
public:
    // Throws std::runtime_error.
    explicit Ffms2VideoReader(const std::string& path);

    // VideoContender
    ShownPicture Show(int number) override;

private:
    std::unique_ptr<FFMS_VideoSource, void (*)(FFMS_VideoSource*)> m_source;
    int m_width = 0;
    int m_height = 0;
};
