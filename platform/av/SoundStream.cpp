#include "platform/av/SoundStream.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/av/TrackBoxes.h"

namespace av {

namespace {

// A segment costs its pre-roll anew, and a read within it half of it on average.
std::int64_t SegmentFrames(const SoundProbe& probe, const PreRoll& preRoll, std::int64_t never) {
    if (probe.isCounted || preRoll.IsNone()) {
        return never;
    }
    const std::int64_t shortest = probe.format.rate;
    const std::int64_t longest = std::int64_t{6} * probe.format.rate;
    const std::int64_t wanted = 16 * preRoll.UsualPackets() * probe.usualFrames;
    return std::max<std::int64_t>(std::clamp(wanted, shortest, longest) / probe.usualFrames, 1) *
           probe.usualFrames;
}

bool IsMov(const Demuxer& demuxer) {
    return std::strstr(demuxer.Format().iformat->name, "mp4") != nullptr;
}

// Frames in a unit of the file's header, in which edit lists are told; none where these units are
// finer than frames.
std::int64_t CoarsenessOf(const Demuxer& demuxer, int rate) {
    const std::uint32_t units = ReadMovieUnitsPerSecond(demuxer.Path());
    return units == 0 || units >= static_cast<std::uint32_t>(rate) ? 0 : rate / units + 1;
}

// An edit list may end within the last packet. What lies within the rounding of its units is no
// end.
std::int64_t EndOf(const Demuxer& demuxer, const SoundProbe& probe, const SoundClock& clock,
                   std::int64_t never) {
    auto& stream = const_cast<AVStream&>(demuxer.Stream()); // only looked at
    const int count = avformat_index_get_entries_count(&stream);
    if (probe.isCounted || count == 0 || stream.duration <= 0 || !IsMov(demuxer)) {
        return never;
    }
    const std::int64_t last =
        clock.PositionOf(avformat_index_get_entry(&stream, count - 1)->timestamp);
    const std::int64_t end = probe.begin + clock.FramesIn(stream.duration);
    const std::int64_t whole = last + probe.usualFrames;
    return end > last && end < whole - CoarsenessOf(demuxer, probe.format.rate) ? end : never;
}

} // namespace

std::unique_ptr<SoundStream> SoundStream::Open(const std::string& path, int ordinal) {
    auto demuxer = Demuxer::Open(path, ordinal, TrackKind::Audio);
    if (demuxer == nullptr) {
        return nullptr;
    }
    auto decoder = SoundDecoder::Create(demuxer->Stream());
    FramePtr frame(av_frame_alloc());
    if (decoder == nullptr || frame == nullptr) {
        return nullptr;
    }
    const auto probe = ProbeSound(*demuxer, *decoder);
    if (!probe || !demuxer->Rewind()) {
        return nullptr;
    }
    return std::unique_ptr<SoundStream>(
        new SoundStream(std::move(demuxer), std::move(decoder), *probe, std::move(frame)));
}

SoundStream::SoundStream(std::unique_ptr<Demuxer> demuxer, std::unique_ptr<SoundDecoder> decoder,
                         const SoundProbe& probe, FramePtr frame)
    : m_demuxer(std::move(demuxer))
    , m_decoder(std::move(decoder))
    , m_probe(probe)
    , m_preRoll(*m_demuxer->Stream().codecpar)
    , m_clock(ClockOf(m_demuxer->Stream(), probe))
    , m_segmentFrames(SegmentFrames(probe, m_preRoll, kNever))
    , m_end(EndOf(*m_demuxer, probe, m_clock, kNever))
    , m_facts{probe.format, m_clock.TimeOf(probe.begin)}
    , m_feed(*m_demuxer, m_clock, m_preRoll, probe.usualFrames)
    , m_cursor(probe.begin)
    , m_frame(std::move(frame)) {}

bool SoundStream::LeadsTo(std::int64_t position) const {
    if (!m_landed || position < m_cursor || position >= m_to) {
        return false;
    }
    constexpr std::int64_t kPackets = 16; // nearer than a seek costs
    return m_probe.isCounted || m_segmentFrames != kNever ||
           position - m_cursor <= kPackets * m_probe.usualFrames;
}

void SoundStream::Seek(std::int64_t frame) {
    constexpr std::int64_t kMost = std::int64_t{1} << 60;
    const std::int64_t position = m_probe.begin + std::clamp<std::int64_t>(frame, 0, kMost);
    // What was given last can be given again.
    if (m_landed && m_isGiven && position >= m_givenFrom && position < m_cursor) {
        m_hasFrame = true;
    } else {
        m_landed = LeadsTo(position);
    }
    m_cursor = position;
}

std::int64_t SoundStream::SegmentOf(std::int64_t position) const {
    if (m_probe.isCounted) {
        return 0;
    }
    return m_segmentFrames == kNever ? position : position / m_segmentFrames * m_segmentFrames;
}

bool SoundStream::Land() {
    m_landed = BeginSegment(SegmentOf(m_cursor), false);
    return m_landed;
}

// Decodes the packet and drops what comes out, or leaves it to be taken.
bool SoundStream::Decode(const SoundPacket& packet) {
    m_padding = packet.padding;
    m_isCut = packet.isCut;
    m_limit = kNever;
    m_isFirstOfPacket = true;
    return m_decoder->Send(packet.packet.get());
}

bool SoundStream::BeginSegment(std::int64_t at, bool onwards) {
    m_from = at;
    m_to = m_segmentFrames == kNever ? kNever : at + m_segmentFrames;
    m_ended = false;
    m_draining = false;
    m_hasFrame = false;
    m_isGiven = false;
    m_gaveInSegment = false;
    m_decodedTo = 0;
    if (!m_feed.GoTo(at, onwards) || !m_decoder->Restart()) {
        return false;
    }
    for (const SoundPacket* packet : m_feed.PreRollPackets()) {
        if (!Decode(*packet)) {
            continue;
        }
        while (m_decoder->Receive(*m_frame) == SoundDecoder::Result::Frame) {
            TakeFrame();
        }
    }
    m_hasFrame = false;
    m_gaveInSegment = false;
    m_soundTo = at;
    return true;
}

// Finds the place of the frame that was just decoded.
void SoundStream::TakeFrame() {
    ++m_framesDecoded;
    const bool timed = !m_probe.isCounted && m_isFirstOfPacket && m_frame->pts != AV_NOPTS_VALUE;
    m_frameStart = timed ? m_frame->pts : m_decodedTo;
    m_isFirstOfPacket = false;
    m_decodedTo = m_frameStart + m_frame->nb_samples;
    // Another rate in the middle has no place on this count.
    const bool fits = FormatOf(*m_frame).rate == m_probe.format.rate && !m_isCut;
    const std::int64_t sound = m_frame->nb_samples - m_padding;
    m_frameCount = fits ? static_cast<int>(std::clamp<std::int64_t>(
                              std::min(sound, m_limit - m_frameStart), 0, m_frame->nb_samples))
                        : 0;
    m_hasFrame = m_frameCount > 0;
    m_soundTo = m_hasFrame ? m_frameStart + m_frameCount : m_soundTo;
    m_gaveInSegment |= m_hasFrame && m_decodedTo > m_from && m_frameStart < m_to;
}

bool SoundStream::GiveSilence(std::int64_t until, SoundPiece& piece) {
    constexpr std::int64_t kMost = 4096;
    piece = {m_cursor - m_probe.begin, static_cast<int>(std::min(until - m_cursor, kMost)), nullptr,
             0};
    m_cursor += piece.frames;
    return true;
}

bool SoundStream::GiveFrame(SoundPiece& piece) {
    const std::int64_t start = std::max({m_frameStart, m_cursor, m_from});
    const std::int64_t end = std::min({m_frameStart + m_frameCount, m_to, m_end});
    if (start >= end) {
        m_hasFrame = false;
        return false;
    }
    if (m_cursor < start) {
        return GiveSilence(start, piece);
    }
    piece = {start - m_probe.begin, static_cast<int>(end - start), m_frame.get(),
             static_cast<int>(start - m_frameStart)};
    m_givenFrom = start;
    m_cursor = end;
    m_isGiven = true;
    m_hasFrame = false;
    return true;
}

SoundRead SoundStream::Read(SoundPiece& piece) {
    if (!m_landed && !Land()) {
        return SoundRead::Failed;
    }
    while (true) {
        if (m_hasFrame && GiveFrame(piece)) {
            return SoundRead::Piece;
        }
        if (m_ended || m_cursor >= m_end) {
            return SoundRead::End;
        }
        if (!Step()) {
            m_landed = false;
            return SoundRead::Failed;
        }
    }
}

// One step of decoding. False when the file cannot be read any more.
bool SoundStream::Step() {
    m_isGiven = false;
    if (m_decoder->Receive(*m_frame) == SoundDecoder::Result::Frame) {
        TakeFrame();
        return true;
    }
    const SoundPacket* next = m_feed.Peek();
    if (m_draining) {
        return next == nullptr ? EndOrGoOn() : BeginNextSegment(next->position);
    }
    if (next == nullptr || next->position >= m_to) {
        m_draining = true;
        static_cast<void>(m_decoder->Send(nullptr));
        return true;
    }
    const std::int64_t start = next->position;
    const std::int64_t end = start + next->duration.value_or(kNever / 2);
    static_cast<void>(Decode(*next)); // what it refuses is silence
    m_feed.Advance();
    m_limit = LimitOf(start, end);
    return true;
}

// Where the packet that begins at `start` ends at the latest: where the next one takes over, and
// the last one where the file says.
std::int64_t SoundStream::LimitOf(std::int64_t start, std::int64_t end) {
    const SoundPacket* next = m_feed.Peek();
    if (next == nullptr) {
        return IsMov(*m_demuxer) ? kNever : end; // there it is wrong behind an empty edit
    }
    return m_probe.isCounted || next->isCut || next->position < start ? kNever : next->position;
}

// The last packet may lie in two segments.
bool SoundStream::EndOrGoOn() {
    if (m_soundTo > m_to) {
        return BeginSegment(m_to, true);
    }
    m_ended = true;
    return true;
}

// Of segments that nothing lies in only the first and the last are gone through.
bool SoundStream::BeginNextSegment(std::int64_t next) {
    const bool skips = !m_gaveInSegment && next >= m_to + m_segmentFrames;
    return BeginSegment(skips ? SegmentOf(next) : m_to, true);
}

WorkCounters SoundStream::Counters() const {
    WorkCounters counters = m_feed.Counters();
    counters.framesDecoded = m_framesDecoded;
    return counters;
}

} // namespace av
