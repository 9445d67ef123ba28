#include "tools/zanthe/AudioVerifier.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace Program {

namespace {

// Frames watched behind the end of what is asked for.
constexpr unsigned int Margin = 1024;

constexpr int ReadsAtEnd = 16;

std::uint32_t BitsOf(float sample) {
    return std::bit_cast<std::uint32_t>(sample);
}

} // namespace

std::string_view NameOf(ReadKind kind) {
    switch (kind) {
    case ReadKind::Linear:
        return "linear";
    case ReadKind::Random:
        return "random";
    case ReadKind::Backward:
        return "backward";
    case ReadKind::AcrossEnd:
        return "across the end";
    case ReadKind::BehindEnd:
        return "behind the end";
    }
    return {};
}

std::int64_t AudioVerification::Spans() const {
    std::int64_t spans = 0;
    for (const ReadTally& tally : tallies) {
        spans += tally.spans;
    }
    return spans;
}

std::int64_t AudioVerification::Differences() const {
    std::int64_t differences = 0;
    for (const ReadTally& tally : tallies) {
        differences += tally.differences;
    }
    return differences;
}

AudioVerifier::AudioVerifier(Zanthe::IAudioReader& reader, const AudioVerifierPlan& plan,
                             Watch watch)
    : m_reader(reader)
    , m_plan(plan)
    , m_watch(std::move(watch))
    , m_longest(SpanFrames(plan.rate))
    , m_random(plan.seed)
    , m_buffers(SoundChannels, std::vector<float>(m_longest + Margin))
    , m_expected(m_longest) {
    for (auto& buffer : m_buffers) {
        m_planes.push_back(buffer.data());
    }
    for (int kind = 0; kind < ReadKinds; ++kind) {
        m_found.tallies.push_back({.kind = static_cast<ReadKind>(kind)});
    }
}

AudioVerification AudioVerifier::Run() {
    ReadLinearly();
    ReadAtRandom();
    ReadBackward();
    ReadAcrossEnd();
    ReadBehindEnd();
    return m_found;
}

void AudioVerifier::ReadLinearly() {
    for (;;) {
        const ReadSpan span = NextSpan(ReadKind::Linear, m_spool.Frames(), m_longest);
        const unsigned int answered = Fill(span);
        TallyOf(span.kind).frames += answered;
        if (answered > span.count) {
            // There is nothing to go on from: what the sound holds behind this is anyone's guess.
            Note({.what = Difference::What::Count,
                  .span = span,
                  .expectedCount = span.count,
                  .answeredCount = answered});
            break;
        }
        CompareUntouched(span, answered);
        m_spool.Append(m_planes, answered);
        if (answered < span.count) {
            break;
        }
    }
    m_found.frames = m_spool.Frames();
}

void AudioVerifier::ReadAtRandom() {
    for (std::int64_t i = 0; i < m_plan.seeks && m_found.frames > 0; ++i) {
        const std::int64_t start = Between(0, m_found.frames - 1);
        ReadAndCompare(ReadKind::Random, start, AnyLength(m_longest));
    }
}

// From the end to the start without a gap, in spans of about a hundredth of the sound, a second at
// most: long enough that a film's sound takes no longer than a few times its linear reading.
void AudioVerifier::ReadBackward() {
    const std::int64_t usual =
        std::clamp<std::int64_t>(m_found.frames / 100, 1, std::min<int>(m_plan.rate, 1 << 17));
    std::int64_t end = m_found.frames;
    while (end > 0) {
        const std::int64_t count = std::min(end, Between(1, 2 * usual - 1));
        end -= count;
        ReadAndCompare(ReadKind::Backward, end, static_cast<unsigned int>(count));
    }
}

void AudioVerifier::ReadAcrossEnd() {
    const std::int64_t most = std::min<std::int64_t>(m_found.frames, m_longest - 1);
    for (int i = 0; i < ReadsAtEnd && most > 0; ++i) {
        const unsigned int before = AnyLength(most);
        const unsigned int behind = AnyLength(m_longest - before);
        ReadAndCompare(ReadKind::AcrossEnd, m_found.frames - before, before + behind);
    }
}

// Right behind the end, where readers are wrong by one, and anywhere within the next minute.
void AudioVerifier::ReadBehindEnd() {
    ReadAndCompare(ReadKind::BehindEnd, m_found.frames, 1);
    for (int i = 1; i < ReadsAtEnd; ++i) {
        const std::int64_t gap = i < 4 ? i - 1 : Between(0, std::int64_t{m_plan.rate} * 60);
        ReadAndCompare(ReadKind::BehindEnd, m_found.frames + gap, AnyLength(m_longest));
    }
}

void AudioVerifier::ReadAndCompare(ReadKind kind, std::int64_t start, unsigned int count) {
    const ReadSpan span = NextSpan(kind, start, count);
    unsigned int answered = 0;
    try {
        answered = Fill(span);
    } catch (const std::exception& error) {
        Note({.what = Difference::What::Failure, .span = span, .failure = error.what()});
        return;
    }
    TallyOf(kind).frames += answered;
    Compare(span, answered);
}

bool AudioVerifier::Compare(const ReadSpan& span, unsigned int answered) {
    const auto expected = static_cast<unsigned int>(
        std::clamp<std::int64_t>(m_found.frames - span.start, 0, span.count));
    if (answered != expected) {
        Note({.what = Difference::What::Count,
              .span = span,
              .expectedCount = expected,
              .answeredCount = answered});
        return false;
    }
    return CompareSamples(span, answered) && CompareUntouched(span, answered);
}

bool AudioVerifier::CompareSamples(const ReadSpan& span, unsigned int frames) {
    std::optional<Difference> earliest;
    for (std::size_t channel = 0; channel < m_planes.size(); ++channel) {
        const float* answered = m_planes[channel];
        const float* expected = m_expected.data();
        m_spool.Read(channel, span.start, frames, m_expected.data());
        if (std::memcmp(answered, expected, frames * sizeof(float)) == 0) {
            continue;
        }
        unsigned int frame = 0;
        while (BitsOf(answered[frame]) == BitsOf(expected[frame])) {
            ++frame;
        }
        if (!earliest || span.start + frame < earliest->frame) {
            earliest = {.what = Difference::What::Sample,
                        .span = span,
                        .frame = span.start + frame,
                        .channel = channel,
                        .expected = expected[frame],
                        .answered = answered[frame]};
        }
    }
    if (earliest) {
        Note(*earliest);
    }
    return !earliest;
}

bool AudioVerifier::CompareUntouched(const ReadSpan& span, unsigned int answered) {
    for (std::size_t channel = 0; channel < m_planes.size(); ++channel) {
        for (unsigned int frame = answered; frame < span.count + Margin; ++frame) {
            if (BitsOf(m_planes[channel][frame]) != m_poison) {
                Note({.what = Difference::What::Touched,
                      .span = span,
                      .expectedCount = answered,
                      .answeredCount = answered,
                      .frame = span.start + frame,
                      .channel = channel,
                      .answered = m_planes[channel][frame]});
                return false;
            }
        }
    }
    return true;
}

unsigned int AudioVerifier::Fill(const ReadSpan& span) {
    Poison(span.count + Margin);
    return m_reader.FillAudioBuffer(span.start, span.count, m_planes);
}

// Another NaN before every read: a frame that a reader counts but does not write would otherwise
// hold the same bits in the linear reading as in the one compared with it.
void AudioVerifier::Poison(unsigned int frames) {
    m_poison = 0x7FE00000U | ((m_poison + 1) & 0xFFFFFU);
    for (float* plane : m_planes) {
        std::fill_n(plane, frames, std::bit_cast<float>(m_poison));
    }
}

ReadSpan AudioVerifier::NextSpan(ReadKind kind, std::int64_t start, unsigned int count) {
    const ReadSpan span{
        .kind = kind, .index = TallyOf(kind).spans++, .start = start, .count = count};
    if (m_watch) {
        m_watch(span);
    }
    return span;
}

ReadTally& AudioVerifier::TallyOf(ReadKind kind) {
    return m_found.tallies[static_cast<std::size_t>(kind)];
}

void AudioVerifier::Note(const Difference& difference) {
    ++TallyOf(difference.span.kind).differences;
    if (!m_found.first) {
        m_found.first = difference;
    }
}

std::int64_t AudioVerifier::Between(std::int64_t low, std::int64_t high) {
    return std::uniform_int_distribution<std::int64_t>(low, high)(m_random);
}

// 1 to `longest`, a few frames as often as many thousands, even and odd.
unsigned int AudioVerifier::AnyLength(std::int64_t longest) {
    const std::int64_t bits = std::bit_width(static_cast<std::uint32_t>(longest));
    const std::int64_t bound = std::int64_t{1} << Between(0, bits);
    return static_cast<unsigned int>(Between(1, std::min(bound, longest)));
}

} // namespace Program
