// Does a reader give the same samples whatever was read before?
//
//     AudioVerifier verifier(*reader, {.rate = 44100, .seeks = 200, .seed = 1});
//     AudioVerification found = verifier.Run();
//     if (!found.Equal()) { ... *found.first ... }
//
// The sound is read once from start to end and kept; then it is asked for at random, backward,
// across its end and behind it, and every sample is compared bit for bit with the first reading.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zanthe/SampleSpool.h"
#include "tools/zanthe/Sound.h"
#include "zanthe/audio/IAudioReader.h"

namespace Program {

// The ways of reading, in the order they are tried.
enum class ReadKind { Linear, Random, Backward, AcrossEnd, BehindEnd };
inline constexpr int ReadKinds = 5;

// "linear", "random", "backward", "across the end", "behind the end".
std::string_view NameOf(ReadKind kind);

// One read: the frames [start, start + count).
struct ReadSpan {
    ReadKind kind = ReadKind::Linear;
    std::int64_t index = 0; // among the reads of its kind
    std::int64_t start = 0;
    unsigned int count = 0;
};

// In what a read was not as it should be.
struct Difference {
    enum class What {
        Count,   // another number of frames than the sound has there
        Sample,  // another sample than in the linear reading
        Touched, // a sample written behind the answered count
        Failure  // an exception, where the linear reading met none
    };
    What what = What::Count;
    ReadSpan span = {};
    std::int64_t expectedCount = 0; // Count, Touched: frames
    std::int64_t answeredCount = 0;
    std::int64_t frame = 0;   // Sample, Touched: counted from the start of the sound
    std::size_t channel = 0;  // Sample, Touched
    float expected = 0;       // Sample
    float answered = 0;       // Sample, Touched
    std::string failure = {}; // Failure: the exception's text
};

struct ReadTally {
    ReadKind kind = ReadKind::Linear;
    std::int64_t spans = 0;
    std::int64_t frames = 0;      // as answered
    std::int64_t differences = 0; // spans with one or more
};

struct AudioVerification {
    std::int64_t frames = 0;        // length of the sound by the linear reading
    std::vector<ReadTally> tallies; // one a kind, in order
    std::optional<Difference> first;

    std::int64_t Spans() const;
    std::int64_t Differences() const;

    bool Equal() const { return !first.has_value(); }
};

struct AudioVerifierPlan {
    int rate = 44100;         // Hz, the reader's output rate; sets how long spans are
    std::int64_t seeks = 200; // random reads
    std::uint64_t seed = 0;
};

// Thread-safety: none.
class AudioVerifier {
public:
    // Called before each read with the frame that it begins at; may throw to stop the work.
    using Watch = std::function<void(const ReadSpan& span)>;

    // reader: delivers 2 channels and stays the caller's.
    AudioVerifier(Zanthe::IAudioReader& reader, const AudioVerifierPlan& plan, Watch watch = {});

    // Once. Throws what the linear reading and the watch throw, and CommandError when the sound
    // cannot be kept; a read that fails later is a difference.
    AudioVerification Run();

private:
    void ReadLinearly();
    void ReadAtRandom();
    void ReadBackward();
    void ReadAcrossEnd();
    void ReadBehindEnd();

    void ReadAndCompare(ReadKind kind, std::int64_t start, unsigned int count);
    bool Compare(const ReadSpan& span, unsigned int answered);
    bool CompareSamples(const ReadSpan& span, unsigned int frames);
    bool CompareUntouched(const ReadSpan& span, unsigned int answered);

    unsigned int Fill(const ReadSpan& span);
    void Poison(unsigned int frames);
    ReadSpan NextSpan(ReadKind kind, std::int64_t start, unsigned int count);
    ReadTally& TallyOf(ReadKind kind);
    void Note(const Difference& difference);

    std::int64_t Between(std::int64_t low, std::int64_t high);
    unsigned int AnyLength(std::int64_t longest);

    Zanthe::IAudioReader& m_reader;
    AudioVerifierPlan m_plan;
    Watch m_watch;
    unsigned int m_longest; // frames of the longest span
    std::mt19937_64 m_random;
    SampleSpool m_spool{SoundChannels};
    std::vector<std::vector<float>> m_buffers; // one a channel: a span and a margin
    std::vector<float*> m_planes;              // into m_buffers
    std::vector<float> m_expected;             // of one channel and span, from the spool
    std::uint32_t m_poison = 0;                // what the buffers held before the latest read
    AudioVerification m_found;
};

} // namespace Program
