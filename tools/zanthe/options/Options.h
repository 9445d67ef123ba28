// The options of each command: declared on the command's own App, filled into its request when the
// command line is parsed. The request must outlive the App.
#pragma once

#include <CLI/CLI.hpp>

#include "tools/zanthe/AudioCommand.h"
#include "tools/zanthe/BenchCommand.h"
#include "tools/zanthe/ClassifyCommand.h"
#include "tools/zanthe/FrameCommand.h"
#include "tools/zanthe/ImageCommand.h"
#include "tools/zanthe/SheetCommand.h"
#include "tools/zanthe/VerifyCommand.h"

namespace Program {

void Declare(CLI::App& command, AudioRequest& request);
void Declare(CLI::App& command, BenchRequest& request);
void Declare(CLI::App& command, ClassifyRequest& request);
void Declare(CLI::App& command, FrameRequest& request);
void Declare(CLI::App& command, ImageRequest& request);
void Declare(CLI::App& command, SheetRequest& request);
void Declare(CLI::App& command, VerifyRequest& request);

} // namespace Program
