#include "tools/zanthe/TrackChoice.h"

#include <cstddef>

#include "tools/zanthe/CommandError.h"

namespace Program {

namespace {

using Zanthe::FileClassification;

// How each command's option calls a track.
std::string WordFor(TrackKind kind) {
    return kind == TrackKind::Pictures ? "stream" : "track";
}

std::string NameOf(TrackKind kind) {
    return kind == TrackKind::Pictures ? "pictures" : "sound";
}

std::string ContentOf(const std::string& kind) {
    return kind == "video" ? "pictures" : kind == "audio" ? "sound" : "neither pictures nor sound";
}

// Behind what is wrong with the number: where to look instead.
std::string WhereText(const FileClassification& file, TrackKind kind) {
    const std::vector<int> numbers = TracksOf(file, kind);
    const char* verb = kind == TrackKind::Pictures ? " are in " : " is in ";
    return numbers.empty() ? "; the file has no " + NameOf(kind)
                           : "; " + NameOf(kind) + verb + NumbersText(WordFor(kind), numbers);
}

std::string RefusalText(const FileClassification& file, TrackKind kind, int asked) {
    const std::size_t count = file.streams.size();
    const std::string track = WordFor(kind) + ' ' + std::to_string(asked);
    if (static_cast<std::size_t>(asked) >= count) {
        return "has no " + track + ": it has " + std::to_string(count) +
               (count == 1 ? " track" : " tracks, counted from 0") + WhereText(file, kind);
    }
    return track + " is " + ContentOf(file.streams[static_cast<std::size_t>(asked)].kind) +
           WhereText(file, kind);
}

} // namespace

std::vector<int> TracksOf(const FileClassification& file, TrackKind kind) {
    const std::string name = kind == TrackKind::Pictures ? "video" : "audio";
    std::vector<int> numbers;
    for (std::size_t i = 0; i < file.streams.size(); ++i) {
        if (file.streams[i].kind == name) {
            numbers.push_back(static_cast<int>(i));
        }
    }
    return numbers;
}

std::string NumbersText(const std::string& word, const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers) {
        text += (text.empty() ? word + (numbers.size() == 1 ? " " : "s ") : ", ") +
                std::to_string(number);
    }
    return text;
}

int ChooseTrack(const FileClassification& file, TrackKind kind, std::optional<int> asked) {
    const std::vector<int> numbers = TracksOf(file, kind);
    if (!asked) {
        return numbers.empty() ? 0 : numbers.front();
    }
    for (const int number : numbers) {
        if (number == *asked) {
            return number;
        }
    }
    if (!file.streams.empty()) {
        throw CommandError(file.path, RefusalText(file, kind, *asked));
    }
    return *asked;
}

} // namespace Program
