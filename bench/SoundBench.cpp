// Reading a film's sound: this library against FFmpeg used by hand and FFMS2.
#include <memory>
#include <string>
#include <vector>

#include "bench/FfmpegSoundReader.h"
#include "bench/ZantheSoundReader.h"
#ifdef ZANTHE_BENCH_FFMS2
#include "bench/Ffms2SoundReader.h"
#endif
#include "zanthe/audio/AudioMediaReaderFactory.h"

namespace {

constexpr int Rate = 44100; // the film's own: FFMS2 converts in another way than we do
constexpr int FileSeconds = 1800;
constexpr int Early = 5;
constexpr int Late = FileSeconds - 70;

std::string MediaPath() {
    return BenchMedia("long-aac.mp4");
}

class FfmpegReader final : public SoundContender {
public:
    unsigned int ReadAt(std::int64_t frame, Span& span) override {
        if (frame != m_next) {
            m_reader.Seek(frame);
        }
        const unsigned int read = m_reader.Read(static_cast<unsigned int>(span.left.size()),
                                                span.left.data(), span.right.data());
        m_next = frame + read;
        return read;
    }

private:
    FfmpegSoundReader m_reader{MediaPath()};
    std::int64_t m_next = -1;
};

#ifdef ZANTHE_BENCH_FFMS2
class Ffms2Reader final : public SoundContender {
public:
    unsigned int ReadAt(std::int64_t frame, Span& span) override {
        return m_reader.Read(frame, static_cast<unsigned int>(span.left.size()), span.left.data(),
                             span.right.data());
    }

private:
    Ffms2SoundReader m_reader{MediaPath()};
};
#endif

// In the minute from `second` on.
std::vector<std::int64_t> PlacesBehind(int second) {
    return RandomPlaces(32, std::int64_t{second} * Rate, std::int64_t{60} * Rate);
}

} // namespace

void RegisterComparisons() {
    const auto floor = std::make_shared<FfmpegReader>();
    const auto ours = std::make_shared<ZantheSoundReader>(
        Zanthe::AudioMediaReaderFactory(MediaPath(), 0, Rate).Create_AudioMediaReader(false));
    for (const int second : {Early, Late}) {
        RequireSameSound(*floor, *ours, Rate, PlacesBehind(second), 1e-4F);
    }
    const auto at = [](int second, const std::shared_ptr<SoundContender>& reader) {
        return [places = PlacesBehind(second), reader](benchmark::State& state) {
            RunSeconds(state, *reader, Rate, places);
        };
    };
    const auto whole = [](const std::shared_ptr<SoundContender>& reader) {
        return [reader](benchmark::State& state) { RunWholeFile(state, *reader, Rate); };
    };
    Comparison early("random second early");
    Comparison late("random second late");
    Comparison linear("whole file");
    early.Add("ffmpeg", at(Early, floor)).Add("zanthe", at(Early, ours));
    late.Add("ffmpeg", at(Late, floor)).Add("zanthe", at(Late, ours));
    linear.Add("ffmpeg", whole(floor)).Add("zanthe", whole(ours));
#ifdef ZANTHE_BENCH_FFMS2
    const auto peer = std::make_shared<Ffms2Reader>();
    early.Add("ffms2", at(Early, peer));
    late.Add("ffms2", at(Late, peer));
    linear.Add("ffms2", whole(peer));
#endif
    Comparison("zanthe, late against early")
        .Add("early", at(Early, ours))
        .Add("late", at(Late, ours));
}
