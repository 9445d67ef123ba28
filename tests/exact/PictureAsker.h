#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tests/support/BgraPicture.h"
#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/MediaTime.h"
#include "zanthe/core/VideoSampleReader.h"

// A host that asks one file for pictures.
//
// Thread-safety: none.
class PictureAsker {
public:
    explicit PictureAsker(const std::string& path);

    // False when the factory gives no reader at all.
    explicit operator bool() const { return m_reader != nullptr; }

    Zanthe::VideoSampleReader& Reader() { return *m_reader; }

    // The picture shown at `time`; nothing when there is none. Throws std::runtime_error when a
    // sample is not what the contract says: 32-bit pixels in memory, as many as the reader tells.
    std::optional<BgraPicture> At(Zanthe::MediaTime time);

private:
    std::unique_ptr<Zanthe::DecoderFactory> m_factory;
    std::unique_ptr<Zanthe::VideoSampleReader> m_reader;
};

// The pixels of a sample, the picture alone. Throws as above.
BgraPicture PixelsOf(Zanthe::VideoSample& sample);
