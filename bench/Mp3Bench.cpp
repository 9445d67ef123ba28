// Reading MP3 sound: this library against FFmpeg used by hand.
#include <memory>
#include <string>
#include <vector>

#include "bench/FfmpegMp3Reader.h"
#include "bench/ZantheSoundReader.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace {

constexpr int FileSeconds = 600;

std::string MediaPath() {
    return BenchMedia("long-44100-stereo-cbr192.mp3");
}

class FfmpegReader final : public SoundContender {
public:
    explicit FfmpegReader(int rate)
        : m_reader(MediaPath(), rate) {}

    unsigned int ReadAt(std::int64_t frame, Span& span) override {
        if (frame != m_next) {
            m_reader.Seek(frame);
        }
        const unsigned int read = m_reader.Read(static_cast<unsigned int>(span.left.size()),
                                                {span.left.data(), span.right.data()});
        m_next = frame + read;
        return read;
    }

private:
    FfmpegMp3Reader m_reader;
    std::int64_t m_next = -1;
};

// One open file for each contender. The comparison before the run has also read through both, so
// that each demuxer's index is complete.
void RegisterAt(int rate) {
    const auto places = RandomPlaces(64, 0, std::int64_t{FileSeconds - 2} * rate);
    const auto floor = std::make_shared<FfmpegReader>(rate);
    const auto ours = std::make_shared<ZantheSoundReader>(
        Zanthe::FFMPEGAudioReader::Create(MediaPath(), -1, rate));
    RequireSameSound(*floor, *ours, rate, places, 1e-5F);

    const auto seconds = [=](const std::shared_ptr<SoundContender>& reader) {
        return [=](benchmark::State& state) { RunSeconds(state, *reader, rate, places); };
    };
    const auto whole = [=](const std::shared_ptr<SoundContender>& reader) {
        return [=](benchmark::State& state) { RunWholeFile(state, *reader, rate); };
    };
    const std::string at = " at " + std::to_string(rate) + " Hz";
    Comparison("random second" + at).Add("ffmpeg", seconds(floor)).Add("zanthe", seconds(ours));
    Comparison("whole file" + at).Add("ffmpeg", whole(floor)).Add("zanthe", whole(ours));
}

} // namespace

void RegisterComparisons() {
    RegisterAt(44100);
    RegisterAt(48000);
}
