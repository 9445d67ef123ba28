// zanthe classify: what the library makes of a file.
#pragma once

#include <ostream>
#include <string>

namespace Program {

struct ClassifyRequest {
    std::string file; // may name a member of a recording behind a "!"
    bool json = false;
};

// Prints every answer about the file on `out`: aligned text, or one JSON object. A file that is
// damaged or of no known kind is no failure, but what is told.
//
// Throws CommandError when the file, or the recording that it stands in, cannot be read.
void RunClassify(const ClassifyRequest& request, std::ostream& out);

} // namespace Program
