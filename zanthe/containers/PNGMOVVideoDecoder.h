// A QuickTime file whose pictures are PNG images, each whole by itself.
//
//     if (auto decoder = PNGMOVVideoDecoder::create("/x/a.mov", -1)) ...
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "zanthe/containers/ZeroedBytes.h"
#include "zanthe/core/VideoDecoder.h"
#include "zanthe/h264/Mp4Track.h"

// Every picture must have an alpha channel: one without is refused, deliberately. Times are the
// track's own, from 0; edit lists play no part.
//
// Thread-safety: none; one thread at a time. Different decoders are independent.
class PNGMOVVideoDecoder : public Zanthe::VideoDecoder {
public:
    // Over track streamIndex of the file at `path` (UTF-8), all tracks counted from 0; over the
    // first track of PNG images where there is no track of that number. Null when the file cannot
    // be read, or the track is none of PNG images: no other one is tried then.
    static std::unique_ptr<PNGMOVVideoDecoder> create(const std::string& path,
                                                      std::int32_t streamIndex);

    // Closes the file.
    ~PNGMOVVideoDecoder() override;

    // VideoDecoder. Both throw std::runtime_error "PNGMOVVideoDecoder: Can't get width()" where
    // there is no track, which create never leaves.
    int outputWidth() const override;
    int outputHeight() const override;

    // 32-bit pixels: blue, green, red, alpha, not premultiplied. actualTime is left alone. False,
    // with `buffer` untouched, before the start and behind the end of the track, and where its
    // sample cannot be read. Throws std::runtime_error, `buffer` untouched too:
    //   "PNGMOVVideoDecoder: Error creating bitmap from encoded image"    no PNG image
    //   "PNGMOVVideoDecoder: Unexpected pixel format"                     one without alpha
    //   "PNGMOVVideoDecoder: bitmap lock faied"       damaged, or smaller than the track's pictures
    //   "PNGMOVVideoDecoder: unexpected bitmap height"
    // Of a larger image the upper left part is shown.
    bool readFrame(Zanthe::MediaTime time, unsigned char* buffer, double& actualTime) override;

private:
    PNGMOVVideoDecoder(std::string path, std::int32_t streamIndex);

    bool Open();
    bool TakeAnyTrack(std::uint32_t trackCount);
    bool TakeTrack(std::uint32_t index);
    void RequireTrack() const;
    bool ReadSample(double seconds);
    void DecodeSample(unsigned char* buffer) const;

    std::string m_path;
    std::int32_t m_streamIndex;
    Zanthe::Mp4FileOwner m_file;
    std::uint32_t m_trackId = 0; // 0: none
    std::uint32_t m_timeScale = 0;
    double m_durationSeconds = 0.0;
    ZeroedBytes m_sampleBuffer; // zero behind the sample that is in it
    std::uint32_t m_sampleCapacity = 0;
};
