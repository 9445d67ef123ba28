// The clips of tests/media/make-h264, and names for tests over files.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TestMedia.h"

enum class Containers {
    OfTheReader, // that go to the H.264 reader by their names: MP4 and QuickTime
    All
};

// Without the folder; tests/media/README.md tells what is special about each. Those without times
// of their own (elementary streams) are not among them.
std::vector<std::string> MadeClips(Containers containers);

std::string NameOfClip(const testing::TestParamInfo<std::string>& info);
std::string NameOfFile(const testing::TestParamInfo<std::filesystem::path>& info);
