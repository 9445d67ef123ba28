// An opened media file and its stream of sound.
#pragma once

#include <cstdint>
#include <string>

#include "platform/av/Handles.h"

namespace FFMPEGDecoder {

// Thread-safety: none; belongs to one decoder.
class PacketReader {
public:
    // Opens the file at `path` (UTF-8) and takes its first audio stream.
    //
    // Throws std::runtime_error: "PacketReader() - m_formatContext->openInput failed",
    // "PacketReader() - m_formatContext->findStreamInfo failed",
    // "PacketReader() - No audio stream exists",
    // "PacketReader() - m_formatContext->getStream failed".
    explicit PacketReader(const std::string& path);

    const AVStream& stream() const { return *m_stream; }

    // Bits per second of the whole file, as FFmpeg reckons it.
    std::int64_t bitRate() const { return m_formatContext->bit_rate; }

    // The next packet of the stream, packets of others passed over. `packet` stays empty at the end
    // of the file and when the file cannot be read on. Answers how many packets were read.
    int read(AVPacket& packet);

    // Moves to the packet at or before `timestamp`, in the stream's time base. A seek that fails
    // leaves the position where it was; reading goes on from there.
    void seek(std::int64_t timestamp);

private:
    void open();
    void takeFirstAudioStream();

    av::FormatContextPtr m_formatContext;
    std::string m_path;
    int m_streamIndex = -1;
    AVStream* m_stream = nullptr; // the format context's
};

} // namespace FFMPEGDecoder
