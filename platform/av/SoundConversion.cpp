#include "platform/av/SoundConversion.h"

#include <algorithm>
#include <numeric>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/mathematics.h>
#include <libavutil/opt.h>
#include <libavutil/samplefmt.h>
}

namespace av {

namespace {

constexpr int kPieceFrames = 4096;
constexpr int kBlockFrames = 1024;
// FFmpeg keeps a filter for each phase where there are no more than these, and else goes between.
constexpr int kMostPhases = 1024;

std::int64_t LayoutOf(const SoundFormat& format) {
    if (format.layout != 0) {
        return static_cast<std::int64_t>(format.layout);
    }
    AVChannelLayout layout = {};
    av_channel_layout_default(&layout, format.channels);
    const bool known = layout.order == AV_CHANNEL_ORDER_NATIVE;
    const auto mask = known ? static_cast<std::int64_t>(layout.u.mask) : 0;
    av_channel_layout_uninit(&layout);
    return mask;
}

void Clear(SoundConversion::Planes& planes) {
    for (auto& plane : planes) {
        plane.clear();
    }
}

bool IsServed(const SoundFormat& format) {
    return format.rate > 0 && format.channels > 0 && format.channels <= 64 &&
           format.sample != AV_SAMPLE_FMT_NONE;
}

bool SetSide(SwrContext* context, const SoundFormat& format, bool input) {
    const char* layout = input ? "in_channel_layout" : "out_channel_layout";
    const char* count = input ? "in_channel_count" : "out_channel_count";
    const char* rate = input ? "in_sample_rate" : "out_sample_rate";
    const char* sample = input ? "in_sample_fmt" : "out_sample_fmt";
    return av_opt_set_int(context, count, format.channels, 0) >= 0 &&
           av_opt_set_int(context, layout, LayoutOf(format), 0) >= 0 &&
           av_opt_set_int(context, rate, format.rate, 0) >= 0 &&
           av_opt_set_sample_fmt(context, sample, format.sample, 0) >= 0;
}

// Half the filter: 16 taps at the lower of the rates, with some to spare.
std::int64_t ReachOf(int from, int to) {
    return from == to ? 0 : 64 * std::max<std::int64_t>((from + to - 1) / to, 1);
}

} // namespace

std::unique_ptr<SoundConversion> SoundConversion::Create(const SoundFormat& from,
                                                         const SoundFormat& to) {
    if (!IsServed(from) || !IsServed(to)) {
        return nullptr;
    }
    std::unique_ptr<SoundConversion> conversion(new SoundConversion(from, to));
    return conversion->Restart() ? std::move(conversion) : nullptr;
}

SoundConversion::SoundConversion(const SoundFormat& from, const SoundFormat& to)
    : m_from(from)
    , m_to(to)
    , m_step(from.rate / std::gcd(from.rate, to.rate))
    , m_reach(ReachOf(from.rate, to.rate))
    , m_frameBytes(av_get_bytes_per_sample(to.sample) * to.channels)
    , m_inBlocks(to.rate / std::gcd(from.rate, to.rate) > kMostPhases) {}

std::int64_t SoundConversion::StartFor(std::int64_t position) const {
    const std::int64_t input =
        av_rescale_rnd(std::max<std::int64_t>(position, 0), m_from.rate, m_to.rate, AV_ROUND_DOWN);
    return std::max<std::int64_t>(input - m_reach, 0) / m_step * m_step;
}

std::int64_t SoundConversion::OutputAt(std::int64_t inputFrame) const {
    return inputFrame / m_step * (m_to.rate / std::gcd(m_from.rate, m_to.rate));
}

bool SoundConversion::Configure() {
    m_context.reset(swr_alloc());
    SwrContext* context = m_context.get();
    if (context == nullptr || !SetSide(context, m_from, true) || !SetSide(context, m_to, false)) {
        return false;
    }
    if (m_from.rate != m_to.rate || m_from.channels != m_to.channels) {
        // Integers would be mixed in integers, and more softly than others lest they overflow.
        av_opt_set_sample_fmt(context, "internal_sample_fmt", AV_SAMPLE_FMT_FLTP, 0);
    }
    return true;
}

// The context is kept, and with it the filter, which costs far more than a conversion.
bool SoundConversion::Restart(std::int64_t at) {
    m_at = at;
    m_block.assign(PlaneCount(), {});
    m_beginning.assign(PlaneCount(), {});
    m_isBeginning = at == 0 && m_reach > 0;
    return (m_context != nullptr || Configure()) && swr_init(m_context.get()) >= 0;
}

std::size_t SoundConversion::PlaneCount() const {
    const bool planar = av_sample_fmt_is_planar(m_from.sample) != 0;
    return static_cast<std::size_t>(planar ? m_from.channels : 1);
}

// Bytes from a frame of a plane to the next.
int SoundConversion::PlaneStride() const {
    const bool planar = av_sample_fmt_is_planar(m_from.sample) != 0;
    return av_get_bytes_per_sample(m_from.sample) * (planar ? 1 : m_from.channels);
}

int SoundConversion::MostInPiece() const {
    return m_inBlocks ? static_cast<int>(kBlockFrames - m_at % kBlockFrames) : kPieceFrames;
}

bool SoundConversion::ConvertPiece(const std::uint8_t* const* planes, int frames, SoundBytes& out) {
    const int room = swr_get_out_samples(m_context.get(), frames);
    if (room < 0) {
        return false;
    }
    const auto frameBytes = static_cast<std::size_t>(m_frameBytes);
    const std::size_t before = out.bytes.size();
    out.bytes.resize(before + static_cast<std::size_t>(room) * frameBytes);
    std::uint8_t* to = out.bytes.data() + before;
    // It only reads them, though it does not say so.
    auto** from = const_cast<const std::uint8_t**>(planes);
    const int made = swr_convert(m_context.get(), &to, room, from, frames);
    out.bytes.resize(before + static_cast<std::size_t>(std::max(made, 0)) * frameBytes);
    out.frames += std::max(made, 0);
    return made >= 0;
}

bool SoundConversion::ConvertBlock(SoundBytes& out) {
    const bool done = ConvertPiece(PlanesOf(m_block, 0).data(), FramesIn(m_block), out);
    Clear(m_block);
    return done;
}

std::vector<const std::uint8_t*> SoundConversion::PlanesOf(const Planes& kept, int offset) const {
    std::vector<const std::uint8_t*> planes;
    planes.reserve(kept.size());
    for (const auto& plane : kept) {
        planes.push_back(plane.data() + static_cast<std::ptrdiff_t>(offset) * PlaneStride());
    }
    return planes;
}

int SoundConversion::FramesIn(const Planes& kept) const {
    return static_cast<int>(kept.front().size() / static_cast<std::size_t>(PlaneStride()));
}

void SoundConversion::Keep(const std::vector<const std::uint8_t*>& planes, int frames,
                           Planes& kept) const {
    for (std::size_t i = 0; i < planes.size(); ++i) {
        kept[i].insert(kept[i].end(), planes[i],
                       planes[i] + static_cast<std::ptrdiff_t>(frames) * PlaneStride());
    }
}

// No more than MostInPiece().
bool SoundConversion::Take(const std::vector<const std::uint8_t*>& planes, int frames,
                           SoundBytes& out) {
    m_at += frames;
    if (!m_inBlocks) {
        return ConvertPiece(planes.data(), frames, out);
    }
    Keep(planes, frames, m_block);
    return m_at % kBlockFrames != 0 || ConvertBlock(out);
}

// The beginning is all of a sound that may be a short one, so it waits until it is not.
bool SoundConversion::TakeOrKeep(const std::vector<const std::uint8_t*>& planes, int frames,
                                 SoundBytes& out) {
    if (!m_isBeginning) {
        return Take(planes, frames, out);
    }
    Keep(planes, frames, m_beginning);
    return FramesIn(m_beginning) < m_reach || TakeBeginning(out);
}

bool SoundConversion::TakeBeginning(SoundBytes& out) {
    m_isBeginning = false;
    const int frames = FramesIn(m_beginning);
    for (int done = 0; done < frames;) {
        const int count = std::min(frames - done, MostInPiece());
        if (!Take(PlanesOf(m_beginning, done), count, out)) {
            return false;
        }
        done += count;
    }
    Clear(m_beginning);
    return true;
}

// One plane serves all channels to read silence from.
void SoundConversion::MakeSilence() {
    const bool isUnsigned = av_get_packed_sample_fmt(m_from.sample) == AV_SAMPLE_FMT_U8;
    m_silence.resize(static_cast<std::size_t>(kPieceFrames) *
                         static_cast<std::size_t>(PlaneStride()),
                     isUnsigned ? 0x80 : 0);
}

bool SoundConversion::Convert(const std::uint8_t* const* planes, int frames, SoundBytes& out) {
    if (m_context == nullptr) {
        return false;
    }
    if (planes == nullptr) {
        MakeSilence();
    }
    std::vector<const std::uint8_t*> piece(PlaneCount());
    for (int done = 0; done < frames;) {
        for (std::size_t i = 0; i < piece.size(); ++i) {
            piece[i] = planes == nullptr
                           ? m_silence.data()
                           : planes[i] + static_cast<std::ptrdiff_t>(done) * PlaneStride();
        }
        const int count = std::min(frames - done, MostInPiece());
        if (!TakeOrKeep(piece, count, out)) {
            return false;
        }
        done += count;
    }
    return true;
}

bool SoundConversion::Finish(SoundBytes& out) {
    if (m_context == nullptr) {
        return false;
    }
    if (m_isBeginning) {
        return FramesIn(m_beginning) == 0 || FinishShort(out);
    }
    const bool holdsPart = m_inBlocks && !m_block.front().empty();
    return (!holdsPart || ConvertBlock(out)) &&
           (m_from.rate == m_to.rate || ConvertPiece(nullptr, 0, out));
}

// Of a sound that is shorter than its filter FFmpeg gives too little, or nothing at all: it mirrors
// what there is. Here silence follows it, and is cut off again.
bool SoundConversion::FinishShort(SoundBytes& out) {
    const std::int64_t end =
        out.frames + av_rescale_rnd(FramesIn(m_beginning), m_to.rate, m_from.rate, AV_ROUND_UP);
    if (!TakeBeginning(out) || !Convert(nullptr, static_cast<int>(m_reach), out) || !Finish(out)) {
        return false;
    }
    out.frames = std::min(out.frames, end);
    out.bytes.resize(static_cast<std::size_t>(out.frames) * static_cast<std::size_t>(m_frameBytes));
    return true;
}

} // namespace av
