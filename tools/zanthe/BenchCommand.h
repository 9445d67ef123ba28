// zanthe bench: how fast a file's pictures come, whatever order they are asked in.
#pragma once

#include <ostream>
#include <string>

#include "tools/zanthe/OpenVideo.h"
#include "tools/zanthe/VideoBench.h"

namespace Program {

struct BenchRequest {
    std::string file; // may name a member of a recording behind a "!"
    VideoChoice choice;
    BenchPlan plan;
    bool json = false;
};

// Prints the figures on `out`. Throws CommandError when the file cannot be read or holds no
// pictures, std::exception with the library's text when reading fails, Interrupted.
void RunBench(const BenchRequest& request, std::ostream& out);

// The same with videos that `open` opens.
void Bench(const VideoBench::Opening& open, const BenchRequest& request, std::ostream& out);

// The most memory that this process has held so far, in bytes; 0 where the system does not tell.
std::int64_t PeakMemory();

} // namespace Program
