#include "tools/zanthe/OpenAudio.h"

#include <algorithm>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "zanthe/analysis/FileClassification.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/core/TextException.h"

namespace Program {

namespace {

using Zanthe::FileClassification;

// Hz, of the backends that convert to no other.
constexpr int FixedRate = 44100;

int RateOf(const FileClassification& file, int asked) {
    const std::string& backend = file.audioRoute.backend;
    return backend == "recording" || backend == "DirectShow" ? FixedRate : asked;
}

// 0 where there is none: the reader then has nothing to give.
int FirstTrackOfSound(const FileClassification& file) {
    const auto isSound = [](const auto& stream) { return stream.kind == "audio"; };
    const auto found = std::find_if(file.streams.begin(), file.streams.end(), isSound);
    return found != file.streams.end() ? static_cast<int>(found - file.streams.begin()) : 0;
}

} // namespace

OpenedSound OpenAudio(const std::string& path, const AudioChoice& choice) {
    RequireReadableFile(path);
    try {
        const FileClassification file = Zanthe::ClassifyFile(path);
        const int track = choice.track >= 0 ? choice.track : FirstTrackOfSound(file);
        return {Zanthe::AudioMediaReaderFactory(path, track, choice.rate)
                    .Create_AudioMediaReader(choice.recontainer),
                RateOf(file, choice.rate)};
    } catch (const Zanthe::TextException& error) {
        // The backend that takes this kind of file, not the file, is what the text speaks of.
        throw CommandError(path, std::string("no reader for its sound: ") + error.what());
    } catch (const std::exception& error) {
        throw CommandError(path, error.what());
    }
}

} // namespace Program
