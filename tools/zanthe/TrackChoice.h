// Which track of a file is read, where its reader goes by their numbers.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "zanthe/analysis/FileClassification.h"

namespace Program {

enum class TrackKind { Pictures, Sound };

// The numbers of the tracks of a kind, all tracks counted from 0.
std::vector<int> TracksOf(const Zanthe::FileClassification& file, TrackKind kind);

// "stream 2", "streams 0, 2, 4"; empty without any. word: "stream" or "track".
std::string NumbersText(const std::string& word, const std::vector<int>& numbers);

// The number of the track to read: the one that is asked for, else the first of its kind; 0 where
// the file's tracks are not known, or it has none of that kind and none was asked for.
//
// Throws CommandError on the file, in one line, when the track asked for is of another kind or is
// not there: "stream 0 is sound; pictures are in streams 1, 2".
int ChooseTrack(const Zanthe::FileClassification& file, TrackKind kind, std::optional<int> asked);

} // namespace Program
