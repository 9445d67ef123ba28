// A decoder of small empty pictures that goes by a name.
#pragma once

#include <string>
#include <utility>

#include "zanthe/core/VideoDecoder.h"

namespace Zanthe {

class NamedDecoder final : public VideoDecoder {
public:
    explicit NamedDecoder(std::string name)
        : m_name(std::move(name)) {}

    const std::string& Name() const { return m_name; }

    // VideoDecoder
    int outputWidth() const override { return 4; }

    int outputHeight() const override { return 2; }

    bool readFrame(MediaTime, unsigned char*, double&) override { return true; }

private:
    std::string m_name;
};

} // namespace Zanthe
