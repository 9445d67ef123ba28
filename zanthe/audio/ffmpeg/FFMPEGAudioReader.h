// The sound of an MP3 file, exact from whatever position a read begins.
//
//     auto reader = Zanthe::FFMPEGAudioReader::Create("song.mp3", -1, 44100);
//     reader->FillAudioBuffer(start, count, planes);
//
// There is no sequential fast path and no cache: every read seeks, decodes from a little before the
// wanted frame, restarts the rate conversion in phase and keeps what falls within the request. The
// cost of a read is therefore its own length plus a fixed pre-roll; ask for long spans.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zanthe/audio/IAudioReader.h"

namespace FFMPEGDecoder {
class AudioPipeline;
}

namespace Zanthe {

// Thread-safety: none; one reader serves one thread at a time. Different readers are independent.
class ZANTHE_API FFMPEGAudioReader : public IAudioReader {
public:
    // A reader over the first audio stream of the file at `path` (UTF-8), which delivers 2 channels
    // at `sampleRate` Hz. streamIndex plays no part: an MP3 file has one stream of sound. At a rate
    // outside [1000, 768000] a reader answers 0 to every read.
    //
    // Throws std::runtime_error with one of these texts, and leaves nothing open:
    //   "PacketReader() - m_formatContext->openInput failed"       missing, a folder, no media
    //   "PacketReader() - m_formatContext->findStreamInfo failed"  no stream could be made out
    //   "PacketReader() - No audio stream exists"
    //   "PacketReader() - m_formatContext->getStream failed"
    //   "Decoder() - couldn't find codec"
    //   "CodecContext: avcodec_alloc_context3 failed"
    //   "Decoder() - receiveParameters failed"   also: no sample rate or channels to count with
    //   "Decoder() - open failed"                also: the codec decodes to other than planar float
    static std::unique_ptr<FFMPEGAudioReader> Create(const std::string& path, int streamIndex,
                                                     int sampleRate);
    ~FFMPEGAudioReader() override;

    // IAudioReader
    //
    // The frames before the stream's first sample (the encoder's delay) read as zeros, so that
    // frame 0 is the start of the file's own timeline. A frameCount of 0 behind the start of the
    // file reads to the end of the stream before it answers 0.
    //
    // Throws std::runtime_error: "Error sending packet" (damaged stream),
    // "Decoder::decodeToFrame - Unexpected error: " and FFmpeg's code in decimal,
    // "too many samples passed into ResamplerImpl::resample()" (a packet of over 2304 frames).
    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

private:
    FFMPEGAudioReader(std::string path, int streamIndex, int sampleRate);

    std::string m_path;
    int m_streamIndex;
    int m_sampleRate; // Hz
    int m_channelCount;
    std::unique_ptr<FFMPEGDecoder::AudioPipeline> m_pipeline;
};

} // namespace Zanthe
