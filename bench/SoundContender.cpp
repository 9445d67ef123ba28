#include "bench/SoundContender.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>
#include <stdexcept>

namespace {

constexpr int LinearSpanSeconds = 10; // what one call of a linear read asks for

bool Near(const std::vector<float>& a, const std::vector<float>& b, float tolerance) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [=](float x, float y) { return std::abs(x - y) <= tolerance; });
}

} // namespace

std::string BenchMedia(const std::string& name) {
    std::string path = ZANTHE_BENCH_MEDIA_FOLDER "/" + name;
    if (!std::filesystem::exists(path)) {
        throw std::runtime_error("not made: " + path + " (run scripts/bench)");
    }
    return path;
}

std::vector<std::int64_t> RandomPlaces(std::size_t count, std::int64_t from, std::int64_t length) {
    std::mt19937 random(20240229);
    std::vector<std::int64_t> places(count);
    std::generate(places.begin(), places.end(),
                  [&] { return from + random() % static_cast<std::uint32_t>(length); });
    return places;
}

void RequireSameSound(SoundContender& a, SoundContender& b, int rate,
                      const std::vector<std::int64_t>& places, float tolerance) {
    for (const std::int64_t place : places) {
        Span fromA(rate / 10);
        Span fromB(rate / 10);
        if (a.ReadAt(place, fromA) != b.ReadAt(place, fromB)) {
            throw std::runtime_error("the contenders read different lengths");
        }
        if (!Near(fromA.left, fromB.left, tolerance) ||
            !Near(fromA.right, fromB.right, tolerance)) {
            throw std::runtime_error("the contenders read different sound from frame " +
                                     std::to_string(place) + " on");
        }
    }
}

void RunSeconds(benchmark::State& state, SoundContender& reader, int rate,
                const std::vector<std::int64_t>& places) {
    Span span(rate);
    std::int64_t frames = 0;
    std::size_t turn = 0;
    for ([[maybe_unused]] auto _ : state) {
        frames += reader.ReadAt(places[turn++ % places.size()], span);
    }
    state.counters["frames"] =
        benchmark::Counter(static_cast<double>(frames), benchmark::Counter::kAvgIterations);
}

void RunWholeFile(benchmark::State& state, SoundContender& reader, int rate) {
    Span span(static_cast<std::size_t>(rate) * LinearSpanSeconds);
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
