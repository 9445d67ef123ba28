#include "tools/zanthe/OpenAudio.h"

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/FileContents.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/TrackChoice.h"
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

// Recordings alone have tracks to choose from; of what names itself one, the sound may be none.
int TrackOf(const FileClassification& file, std::optional<int> asked) {
    return file.audioRoute.backend == "recording" ? ChooseTrack(file, TrackKind::Sound, asked)
                                                  : asked.value_or(0);
}

// What the text of the backend does not say.
std::string Explanation(const FileClassification& file) {
    const std::string& obstacle = file.audioRoute.obstacle;
    return obstacle.empty() ? MissingBackendText(file, file.audioRoute) : "; " + obstacle;
}

} // namespace

OpenedSound OpenAudio(const std::string& path, const AudioChoice& choice) {
    RequireReadableFile(path);
    const FileClassification file = Zanthe::ClassifyFile(path);
    try {
        return {Zanthe::AudioMediaReaderFactory(path, TrackOf(file, choice.track), choice.rate)
                    .Create_AudioMediaReader(choice.recontainer),
                RateOf(file, choice.rate)};
    } catch (const CommandError&) {
        throw;
    } catch (const Zanthe::TextException& error) {
        // The backend that takes this kind of file, not the file, is what the text speaks of.
        throw CommandError(path, std::string("no reader for its sound: ") + error.what() +
                                     Explanation(file));
    } catch (const std::exception& error) {
        throw CommandError(path, error.what());
    }
}

} // namespace Program
