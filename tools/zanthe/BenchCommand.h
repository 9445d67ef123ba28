// zanthe bench: how fast a file's pictures and its sound come, whatever order they are asked in.
#pragma once

#include <ostream>
#include <string>

#include "tools/zanthe/OpenVideo.h"
#include "tools/zanthe/SoundBench.h"
#include "tools/zanthe/VideoBench.h"

namespace Program {

struct BenchRequest {
    std::string file; // may name a member of a recording behind a "!"
    VideoChoice choice;
    BenchPlan plan;
    SoundBenchPlan soundPlan; // its seed is that of `plan`
    bool json = false;
};

// How a file is opened. Each throws CommandError when the file has nothing of that kind.
struct BenchSources {
    VideoBench::Opening video;
    SoundBench::Opening sound;
};

// Prints the figures on `out`, of the pictures and of the sound, whichever the file has. Throws
// CommandError when the file cannot be read or has neither, std::exception with the library's text
// when reading fails, Interrupted.
void RunBench(const BenchRequest& request, std::ostream& out);

// The same over other sources.
void Bench(const BenchSources& sources, const BenchRequest& request, std::ostream& out);

// The most memory that this process has held so far, in bytes; 0 where the system does not tell.
std::int64_t PeakMemory();

} // namespace Program
