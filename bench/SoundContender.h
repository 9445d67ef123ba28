// What the sound benches have in common: contenders that read stereo sound, and their tasks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/Comparison.h"

// The made file of this name. Throws std::runtime_error where it has not been made.
std::string BenchMedia(const std::string& name);

// Room for one read.
struct Span {
    explicit Span(std::size_t frames)
        : left(frames)
        , right(frames) {}

    std::vector<float> left;
    std::vector<float> right;
};

// One open file: an editor opens it once and reads from it for hours. Thread-safety: none.
class SoundContender {
public:
    SoundContender() = default;
    SoundContender(const SoundContender&) = delete;
    SoundContender& operator=(const SoundContender&) = delete;
    virtual ~SoundContender() = default;

    // Fills the span from `frame` on and answers how many frames there were.
    virtual unsigned int ReadAt(std::int64_t frame, Span& span) = 0;
};

// Frames at which a second may be read, all in [from, from + length): the same for every contender,
// repetition and run.
std::vector<std::int64_t> RandomPlaces(std::size_t count, std::int64_t from, std::int64_t length);

// Contenders that deliver different sound have not done the same task: reads a tenth of a second at
// each place from both and throws std::runtime_error where they differ by more than `tolerance`.
void RequireSameSound(SoundContender& a, SoundContender& b, int rate,
                      const std::vector<std::int64_t>& places, float tolerance);

// The tasks: a second at the next of the places; all of the file in spans of ten seconds.
void RunSeconds(benchmark::State& state, SoundContender& reader, int rate,
                const std::vector<std::int64_t>& places);
void RunWholeFile(benchmark::State& state, SoundContender& reader, int rate);
