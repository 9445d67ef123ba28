// The sound of a file, from any frame on, as it is decoded.
//
//     auto stream = SoundStream::Open(path, 0);
//     stream->Seek(44100);
//     SoundPiece piece;
//     while (stream->Read(piece) == SoundRead::Piece) { ... } // the first starts at frame 44100
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "platform/av/SoundFacts.h"
#include "platform/av/SoundFeed.h"

namespace av {

enum class SoundRead {
    Piece,  // a piece was read
    End,    // there is none any more; Seek goes on
    Failed, // the file cannot be read any more, or memory is out
};

// Frames that follow each other. Valid until the next call on its stream.
struct SoundPiece {
    std::int64_t start = 0;         // frame number of the first
    int frames = 0;                 // at least 1
    const AVFrame* frame = nullptr; // of the stream's format; null: silence
    int offset = 0;                 // in `frame`
};

// Frame 0 is the first that is sound: what an encoder put in front, or an edit list leaves out, has
// no number, and padding at the end neither. Where the file's time stamps leave a gap there is
// silence.
//
// The same number gives the same frame, bit for bit, whatever was read before, and its cost does
// not grow with the number: the stream is decoded in segments of some seconds at fixed places, each
// with a decoder of its own that begins as many packets earlier as the codec needs. Only where time
// stamps say nothing is everything decoded from the start.
//
// Thread-safety: none.
class SoundStream {
public:
    // The file's sound stream number `ordinal`; null where it has none, where it is encrypted and
    // where nothing decodes it.
    static std::unique_ptr<SoundStream> Open(const std::string& path, int ordinal);

    const SoundFacts& Facts() const { return m_facts; }

    // The next Read begins with that frame; with the first where it is negative. Costs nothing by
    // itself.
    void Seek(std::int64_t frame);

    SoundRead Read(SoundPiece& piece);

    // Packets read, frames (AVFrame) decoded, seeks.
    WorkCounters Counters() const;

private:
    static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

    SoundStream(std::unique_ptr<Demuxer> demuxer, std::unique_ptr<SoundDecoder> decoder,
                const SoundProbe& probe, FramePtr frame);

    bool Land();
    bool BeginSegment(std::int64_t at, bool onwards);
    bool Decode(const SoundPacket& packet);
    bool GiveSilence(std::int64_t until, SoundPiece& piece);
    bool GiveFrame(SoundPiece& piece);
    void TakeFrame();
    bool Step();
    std::int64_t LimitOf(std::int64_t start, std::int64_t end);
    bool EndOrGoOn();
    bool BeginNextSegment(std::int64_t next);
    bool LeadsTo(std::int64_t position) const;
    std::int64_t SegmentOf(std::int64_t position) const;

    const std::unique_ptr<Demuxer> m_demuxer;
    const std::unique_ptr<SoundDecoder> m_decoder;
    const SoundProbe m_probe;
    const PreRoll m_preRoll;
    const SoundClock m_clock;
    const std::int64_t m_segmentFrames; // kNever: the whole stream is one
    const std::int64_t m_end;           // nothing behind this position is sound
    SoundFacts m_facts;
    SoundFeed m_feed;

    // Positions count from the first packet; frame numbers from m_probe.begin.
    std::int64_t m_cursor;         // the next to be given
    bool m_landed = false;         // the decoder is on its way to the cursor
    bool m_ended = false;          // and has come to the end of the file
    bool m_draining = false;       // nothing is sent to the decoder any more in this segment
    std::int64_t m_from = 0;       // the segment at hand is [m_from, m_to)
    std::int64_t m_to = 0;         //
    std::int64_t m_decodedTo = 0;  // in the segment
    std::int64_t m_soundTo = 0;    // the same, of what is sound
    bool m_gaveInSegment = false;  // a frame of it was decoded within it
    const FramePtr m_frame;        // the latest that was decoded
    bool m_hasFrame = false;       // and is not given yet
    bool m_isGiven = false;        // it was given from m_givenFrom on, and nothing since
    std::int64_t m_givenFrom = 0;  //
    std::int64_t m_frameStart = 0; // its position
    int m_frameCount = 0;          // frames of it that are sound
    std::int64_t m_padding = 0;    // of the packet sent last, as are the next three
    bool m_isCut = false;
    bool m_isFirstOfPacket = true; // the next frame is
    std::int64_t m_limit = kNever; // position of its end
    std::int64_t m_framesDecoded = 0;
};

} // namespace av
