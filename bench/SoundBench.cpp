// Reading a film's sound: this library against FFmpeg used by hand and FFMS2.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "bench/Comparison.h"
#include "bench/FfmpegSoundReader.h"
#ifdef ZANTHE_BENCH_FFMS2
#include "bench/Ffms2SoundReader.h"
#endif
#include "zanthe/audio/AudioMediaReaderFactory.h"

namespace {

constexpr int Rate = 44100; // the film's own: FFMS2 converts in another way than we do
constexpr int FileSeconds = 1800;
constexpr int LinearSpanSeconds = 10; // what one call of a linear read asks for

std::string MediaPath() {
    std::string path = ZANTHE_BENCH_MEDIA_FOLDER "/long-aac.mp4";
    if (!std::filesystem::exists(path)) {
        throw std::runtime_error("not made: " + path + " (run scripts/bench)");
    }
    return path;
}

// Room for one read.
struct Span {
    explicit Span(std::size_t frames)
        : left(frames)
        , right(frames) {}

    std::vector<float> left;
    std::vector<float> right;
};

// Fills the span from `frame` on and answers how many frames there were.
class Reader {
public:
    Reader() = default;
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    virtual ~Reader() = default;

    virtual unsigned int ReadAt(std::int64_t frame, Span& span) = 0;
};

class FfmpegReader : public Reader {
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

class ZantheReader : public Reader {
public:
    unsigned int ReadAt(std::int64_t frame, Span& span) override {
        std::vector<float*> planes{span.left.data(), span.right.data()};
        return m_reader->FillAudioBuffer(frame, static_cast<unsigned int>(span.left.size()),
                                         planes);
    }

private:
    boost::shared_ptr<Zanthe::IAudioReader> m_reader =
        Zanthe::AudioMediaReaderFactory(MediaPath(), 0, Rate).Create_AudioMediaReader(false);
};

#ifdef ZANTHE_BENCH_FFMS2
class Ffms2Reader : public Reader {
public:
    unsigned int ReadAt(std::int64_t frame, Span& span) override {
        return m_reader.Read(frame, static_cast<unsigned int>(span.left.size()), span.left.data(),
                             span.right.data());
    }

private:
    Ffms2SoundReader m_reader{MediaPath()};
};
#endif

// The same places for every contender, repetition and run: a minute's worth from `from` on.
std::vector<std::int64_t> PlacesBehind(int fromSeconds) {
    std::mt19937 random(20240229);
    std::vector<std::int64_t> places(32);
    std::generate(places.begin(), places.end(),
                  [&] { return std::int64_t{fromSeconds} * Rate + random() % (60U * Rate); });
    return places;
}

constexpr int Early = 5;
constexpr int Late = FileSeconds - 70;

// Contenders that deliver different sound have not done the same task.
void RequireSameSound(Reader& a, Reader& b) {
    for (const int from : {Early, Late}) {
        for (const std::int64_t place : PlacesBehind(from)) {
            Span fromA(Rate / 10);
            Span fromB(Rate / 10);
            if (a.ReadAt(place, fromA) != b.ReadAt(place, fromB)) {
                throw std::runtime_error("the contenders read different lengths");
            }
            for (std::size_t i = 0; i < fromA.left.size(); ++i) {
                if (std::abs(fromA.left[i] - fromB.left[i]) > 1e-4F) {
                    throw std::runtime_error("the contenders read different sound at " +
                                             std::to_string(place));
                }
            }
        }
    }
}

void RunSeconds(benchmark::State& state, Reader& reader, int from) {
    const auto places = PlacesBehind(from);
    Span span(Rate);
    std::size_t turn = 0;
    for ([[maybe_unused]] auto _ : state) {
        reader.ReadAt(places[turn++ % places.size()], span);
    }
}

void RunWholeFile(benchmark::State& state, Reader& reader) {
    Span span(static_cast<std::size_t>(Rate) * LinearSpanSeconds);
    std::int64_t frames = 0;
    for ([[maybe_unused]] auto _ : state) {
        std::int64_t next = 0;
        while (const unsigned int read = reader.ReadAt(next, span)) {
            next += read;
        }
        frames += next;
    }
    state.counters["frames"] =
        benchmark::Counter(static_cast<double>(frames), benchmark::Counter::kAvgIterations);
}

} // namespace

void RegisterComparisons() {
    const std::shared_ptr<Reader> floor = std::make_shared<FfmpegReader>();
    const std::shared_ptr<Reader> ours = std::make_shared<ZantheReader>();
    RequireSameSound(*floor, *ours);
    const auto at = [](int from, const std::shared_ptr<Reader>& reader) {
        return [=](benchmark::State& state) { RunSeconds(state, *reader, from); };
    };
    const auto whole = [](const std::shared_ptr<Reader>& reader) {
        return [=](benchmark::State& state) { RunWholeFile(state, *reader); };
    };
    Comparison early("random second early");
    Comparison late("random second late");
    Comparison linear("whole file");
    early.Add("ffmpeg", at(Early, floor)).Add("zanthe", at(Early, ours));
    late.Add("ffmpeg", at(Late, floor)).Add("zanthe", at(Late, ours));
    linear.Add("ffmpeg", whole(floor)).Add("zanthe", whole(ours));
#ifdef ZANTHE_BENCH_FFMS2
    const std::shared_ptr<Reader> peer = std::make_shared<Ffms2Reader>();
    early.Add("ffms2", at(Early, peer));
    late.Add("ffms2", at(Late, peer));
    linear.Add("ffms2", whole(peer));
#endif
    Comparison("zanthe, late against early")
        .Add("early", at(Early, ours))
        .Add("late", at(Late, ours));
}
