// Reading MP3 sound: this library against FFmpeg used by hand.
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Comparison.h"
#include "bench/FfmpegMp3Reader.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace {

constexpr int FileSeconds = 600;
constexpr int LinearSpanSeconds = 10; // what one call of a linear read asks for

std::string MediaPath() {
    std::string path = ZANTHE_BENCH_MEDIA_FOLDER "/long-44100-stereo-cbr192.mp3";
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

// A contender: reads at random, or on from the start.
class Reader {
public:
    Reader() = default;
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    virtual ~Reader() = default;

    virtual unsigned int ReadAt(std::int64_t frame, Span& span) = 0;
    virtual void Rewind() = 0;
    virtual unsigned int ReadOn(Span& span) = 0;
};

class ZantheReader : public Reader {
public:
    explicit ZantheReader(int rate)
        : m_reader(Zanthe::FFMPEGAudioReader::Create(MediaPath(), -1, rate)) {}

    unsigned int ReadAt(std::int64_t frame, Span& span) override {
        std::vector<float*> planes{span.left.data(), span.right.data()};
        return m_reader->FillAudioBuffer(frame, static_cast<unsigned int>(span.left.size()),
                                         planes);
    }

    void Rewind() override { m_next = 0; }

    unsigned int ReadOn(Span& span) override {
        const unsigned int read = ReadAt(m_next, span);
        m_next += read;
        return read;
    }

private:
    std::unique_ptr<Zanthe::FFMPEGAudioReader> m_reader;
    std::int64_t m_next = 0;
};

class FfmpegReader : public Reader {
public:
    explicit FfmpegReader(int rate)
        : m_reader(MediaPath(), rate) {}

    unsigned int ReadAt(std::int64_t frame, Span& span) override {
        m_reader.Seek(frame);
        return ReadOn(span);
    }

    void Rewind() override { m_reader.Seek(0); }

    unsigned int ReadOn(Span& span) override {
        return m_reader.Read(static_cast<unsigned int>(span.left.size()),
                             {span.left.data(), span.right.data()});
    }

private:
    FfmpegMp3Reader m_reader;
};

// The same places for every contender, repetition and run.
std::vector<std::int64_t> RandomPlaces(int rate) {
    std::mt19937 random(20240229);
    const auto end = static_cast<std::uint32_t>((FileSeconds - 2) * rate);
    std::vector<std::int64_t> places(64);
    std::generate(places.begin(), places.end(), [&] { return random() % end; });
    return places;
}

// Contenders that deliver different sound have not done the same task.
void RequireSameSound(Reader& a, Reader& b, int rate) {
    for (const std::int64_t place : RandomPlaces(rate)) {
        Span fromA(rate / 10), fromB(rate / 10);
        if (a.ReadAt(place, fromA) != b.ReadAt(place, fromB)) {
            throw std::runtime_error("the contenders read different lengths");
        }
        for (std::size_t i = 0; i < fromA.left.size(); ++i) {
            if (std::abs(fromA.left[i] - fromB.left[i]) > 1e-5F ||
                std::abs(fromA.right[i] - fromB.right[i]) > 1e-5F) {
                throw std::runtime_error("the contenders read different sound at " +
                                         std::to_string(place + static_cast<std::int64_t>(i)));
            }
        }
    }
}

void RunRandomSeconds(benchmark::State& state, Reader& reader, int rate) {
    const auto places = RandomPlaces(rate);
    Span span(rate);
    std::int64_t frames = 0;
    std::size_t turn = 0;
    for ([[maybe_unused]] auto _ : state) {
        frames += reader.ReadAt(places[turn++ % places.size()], span);
    }
    state.counters["frames"] =
        benchmark::Counter(static_cast<double>(frames), benchmark::Counter::kAvgIterations);
}

void RunWholeFile(benchmark::State& state, Reader& reader, int rate) {
    Span span(static_cast<std::size_t>(rate) * LinearSpanSeconds);
    std::int64_t frames = 0;
    for ([[maybe_unused]] auto _ : state) {
        reader.Rewind();
        while (const unsigned int read = reader.ReadOn(span)) {
            frames += read;
        }
    }
    state.counters["frames"] =
        benchmark::Counter(static_cast<double>(frames), benchmark::Counter::kAvgIterations);
}

// One open file for each contender. The comparison before the run has also read through both, so
// that each demuxer's index is complete: an editor's file is opened once and read for hours.
void RegisterAt(int rate) {
    const std::shared_ptr<Reader> floor = std::make_shared<FfmpegReader>(rate);
    const std::shared_ptr<Reader> ours = std::make_shared<ZantheReader>(rate);
    RequireSameSound(*floor, *ours, rate);

    const auto with = [rate](auto run, const std::shared_ptr<Reader>& reader) {
        return [=](benchmark::State& state) { run(state, *reader, rate); };
    };
    const std::string at = " at " + std::to_string(rate) + " Hz";
    Comparison("random second" + at)
        .Add("ffmpeg", with(RunRandomSeconds, floor))
        .Add("zanthe", with(RunRandomSeconds, ours));
    Comparison("whole file" + at)
        .Add("ffmpeg", with(RunWholeFile, floor))
        .Add("zanthe", with(RunWholeFile, ours));
}

} // namespace

void RegisterComparisons() {
    RegisterAt(44100);
    RegisterAt(48000);
}
