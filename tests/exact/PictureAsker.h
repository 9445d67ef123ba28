#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tests/support/BgraPicture.h"
#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/MediaTime.h"
#include "zanthe/core/VideoSampleReader.h"

// Something that shows the pictures of one file at any time.
//
// Thread-safety: none.
class IPictureAsker {
public:
    IPictureAsker() = default;
    IPictureAsker(const IPictureAsker&) = delete;
    IPictureAsker& operator=(const IPictureAsker&) = delete;
    virtual ~IPictureAsker() = default;

    // The picture shown at `time`, in seconds from the first one; nothing when there is none.
    virtual std::optional<BgraPicture> At(Zanthe::MediaTime time) = 0;
};

// A host that asks the factory's reader.
class PictureAsker : public IPictureAsker {
public:
    explicit PictureAsker(const std::string& path);

    // False when the factory gives no reader at all.
    explicit operator bool() const { return m_reader != nullptr; }

    Zanthe::VideoSampleReader& Reader() { return *m_reader; }

    // IPictureAsker
    // Throws std::runtime_error when a sample is not what the contract says: 32-bit pixels in
    // memory, as many as the reader tells.
    std::optional<BgraPicture> At(Zanthe::MediaTime time) override;

private:
    std::unique_ptr<Zanthe::DecoderFactory> m_factory;
    std::unique_ptr<Zanthe::VideoSampleReader> m_reader;
};

// The pixels of a sample, the picture alone. Throws as above.
BgraPicture PixelsOf(Zanthe::VideoSample& sample);
