// Reading pictures: this library against FFmpeg used by hand and other libraries.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Comparison.h"
#include "bench/VideoContender.h"
#include "zanthe/core/WorkReport.h"

namespace {

constexpr unsigned int Seed = 20240229;
constexpr double MostDifference = 3; // of a colour's 256 steps, on average

struct Film {
    std::string name;
    VideoFile file;
};

std::vector<Film> Films() {
    const std::string folder = ZANTHE_BENCH_MEDIA_FOLDER "/";
    return {{"1080p long groups", {folder + "hd-long-groups.mp4", 600}},
            {"1080p short groups", {folder + "hd-short-groups.mp4", 600}},
            {"2160p", {folder + "uhd.mp4", 150}},
            {"1080p HEVC", {folder + "hd-hevc.mp4", 300}}};
}

void RequireMade(const Film& film) {
    if (!std::filesystem::exists(film.file.path)) {
        throw std::runtime_error("not made: " + film.file.path + " (run scripts/bench)");
    }
}

// The same places for every contender and run, others in each turn.
std::vector<int> RandomPlaces(int pictures, int turn = 0) {
    std::mt19937 random(Seed + static_cast<unsigned int>(turn));
    std::vector<int> places(8);
    std::generate(places.begin(), places.end(),
                  [&] { return static_cast<int>(random() % static_cast<unsigned int>(pictures)); });
    return places;
}

double AverageDifference(const ShownPicture& a, const ShownPicture& b) {
    if (a.width != b.width || a.height != b.height) {
        return 256;
    }
    double sum = 0;
    for (int y = 0; y < a.height; ++y) {
        const std::uint8_t* rowA = a.pixels + y * a.stride;
        const std::uint8_t* rowB = b.pixels + y * b.stride;
        for (int x = 0; x < a.width; ++x) {
            sum += std::abs(rowA[x * a.bytesPerPixel + 1] - rowB[x * b.bytesPerPixel + 1]);
        }
    }
    return sum / a.width / a.height;
}

// Contenders that show different pictures have not done the same task.
void RequireSamePictures(const Film& film, VideoContender& floor, VideoContender& other,
                         const std::string& name) {
    for (const int place : RandomPlaces(film.file.pictures)) {
        if (AverageDifference(floor.Show(place), other.Show(place)) > MostDifference) {
            std::cerr << name << " shows another picture than the floor for number " << place
                      << " of " << film.name << '\n';
        }
    }
}

// A contender is opened when it is first called, so that a filter on the command line saves the
// rest, and then kept: an editor's file is opened once and read for hours.
class Opened {
public:
    Opened(Film film, NamedContender contender)
        : m_film(std::move(film))
        , m_contender(std::move(contender)) {}

    VideoContender& operator*() {
        if (!m_opened) {
            m_opened = m_contender.open(m_film.file);
            RequireSamePictures(m_film, *AllContenders().front().open(m_film.file), *m_opened,
                                m_contender.name);
        }
        return *m_opened;
    }

    std::unique_ptr<VideoContender> OpenAnew() const { return m_contender.open(m_film.file); }

    // How far it has come on each of its walks.
    int& Turn(const std::string& walk) { return m_turns[walk]; }

    int Pictures() const { return m_film.file.pictures; }

private:
    Film m_film;
    NamedContender m_contender;
    std::unique_ptr<VideoContender> m_opened;
    std::map<std::string, int> m_turns;
};

// What is shown must be there: one byte of each page is looked at.
void Look(const ShownPicture& picture) {
    unsigned int sum = 0;
    for (int y = 0; y < picture.height; y += 8) {
        sum += picture.pixels[y * picture.stride];
    }
    benchmark::DoNotOptimize(sum);
}

// A walk goes on where the repetition before left it, so that it comes by all that lies on its way.
// next: the number of the picture for each turn of the walk.
template <typename Next>
void RunWalk(benchmark::State& state, Opened& contender, const std::string& walk, Next next) {
    int& turn = contender.Turn(walk);
    Look((*contender).Show(next(turn)));
    for ([[maybe_unused]] auto _ : state) {
        Look((*contender).Show(next(++turn)));
    }
}

void RunSequential(benchmark::State& state, Opened& contender) {
    const int pictures = contender.Pictures();
    RunWalk(state, contender, "next", [=](int turn) { return turn % pictures; });
}

// From the middle of a long group on, so that those who come but a few steps far meet what a step
// costs on average.
void RunBackward(benchmark::State& state, Opened& contender) {
    const int pictures = contender.Pictures();
    RunWalk(state, contender, "before",
            [=](int turn) { return pictures - 1 - (75 + turn) % pictures; });
}

// A hand that looks for a cut: twenty pictures on, twenty back, in the middle of the film.
void RunToAndFro(benchmark::State& state, Opened& contender) {
    constexpr int Span = 20;
    const int middle = contender.Pictures() / 2 + 7;
    RunWalk(state, contender, "to and fro", [=](int turn) {
        const int step = turn % (2 * Span);
        return middle + (step < Span ? step : 2 * Span - step);
    });
}

void RunRepeat(benchmark::State& state, Opened& contender) {
    const int place = contender.Pictures() / 2;
    RunWalk(state, contender, "repeat", [=](int) { return place; });
}

// Eight places in each iteration: some cost ten times what others do. Other ones in each, or a
// cache would have them.
void RunRandom(benchmark::State& state, Opened& contender) {
    VideoContender& reader = *contender;
    int& turn = contender.Turn("random");
    for ([[maybe_unused]] auto _ : state) {
        for (const int place : RandomPlaces(contender.Pictures(), ++turn)) {
            Look(reader.Show(place));
        }
    }
}

void RunFirstOfAFreshFile(benchmark::State& state, Opened& contender) {
    for ([[maybe_unused]] auto _ : state) {
        Look(contender.OpenAnew()->Show(0));
    }
}

// What the library counted, for one iteration. Contenders that are not the library count nothing.
void ReportWork(benchmark::State& state, const Zanthe::WorkDone& work) {
    if (work == Zanthe::WorkDone{}) {
        return;
    }
    const auto each = [](std::int64_t count) {
        return benchmark::Counter(static_cast<double>(count), benchmark::Counter::kAvgIterations);
    };
    state.counters["packets"] = each(work.packetsRead);
    state.counters["decoded"] = each(work.picturesDecoded);
    state.counters["converted"] = each(work.picturesConverted);
    state.counters["seeks"] = each(work.seeks);
}

// A contender that cannot do it leaves the others their turn. What a walk does before it is timed
// is counted too; over many iterations it does not show.
void RunOrSkip(benchmark::State& state, Opened& contender,
               void (*run)(benchmark::State&, Opened&)) {
    try {
        static_cast<void>(*contender); // opened, if it was not
        const Zanthe::WorkDone before = Zanthe::ReadWorkCounters();
        run(state, contender);
        ReportWork(state, Zanthe::ReadWorkCounters() - before);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

struct Task {
    std::string name;
    void (*run)(benchmark::State&, Opened&);
    int iterations; // 0: as many as fill the time
};

// Of steps back one in dozens is dear: a repetition has enough of them. Random places differ: all
// contenders go to as many.
const Task Tasks[] = {{"next picture", RunSequential, 0},
                      {"eight random pictures", RunRandom, 1},
                      {"picture before", RunBackward, 20},
                      {"to and fro", RunToAndFro, 40},
                      {"same picture again", RunRepeat, 0},
                      {"first picture of a fresh file", RunFirstOfAFreshFile, 0}};

// What a process holds at most that does nothing but show pictures, here and there and in a row.
long PeakMegabytes(const Film& film, const NamedContender& contender) {
    const pid_t child = fork();
    if (child == 0) {
        const auto opened = contender.open(film.file);
        for (const int place : RandomPlaces(film.file.pictures)) {
            opened->Show(place);
        }
        for (int i = 0; i < film.file.pictures / 3; ++i) {
            opened->Show(i);
        }
        std::_Exit(0);
    }
    int status = 0;
    rusage usage{};
    return child > 0 && wait4(child, &status, 0, &usage) == child && status == 0
               ? usage.ru_maxrss / 1024
               : -1;
}

void PrintMemory(const Film& film) {
    std::cout << "peak memory, " << film.name << ":";
    for (const NamedContender& contender : AllContenders()) {
        std::cout << "  " << contender.name << ' ' << PeakMegabytes(film, contender) << " MB";
    }
    std::cout << std::endl;
}

void Register(const Film& film) {
    std::vector<std::pair<std::string, std::shared_ptr<Opened>>> contenders;
    for (const NamedContender& contender : AllContenders()) {
        contenders.emplace_back(contender.name, std::make_shared<Opened>(film, contender));
    }
    for (const Task& task : Tasks) {
        Comparison comparison(task.name + ", " + film.name, task.iterations);
        for (const auto& [name, opened] : contenders) {
            comparison.Add(name, [run = task.run, opened = opened](benchmark::State& state) {
                RunOrSkip(state, *opened, run);
            });
        }
    }
}

} // namespace

// Memory is measured in processes of their own, which must be started before this one has threads.
void RegisterComparisons() {
    const char* memory = std::getenv("ZANTHE_BENCH_MEMORY");
    for (const Film& film : Films()) {
        RequireMade(film);
        if (memory != nullptr && *memory != '\0') {
            PrintMemory(film);
        }
        Register(film);
    }
}
