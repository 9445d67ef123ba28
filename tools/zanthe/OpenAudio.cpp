#include "tools/zanthe/OpenAudio.h"

#include <algorithm>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/audio/BRECLibAudioMediaReader.h"
#include "zanthe/audio/DirectShowAudioMediaReader.h"
#include "zanthe/core/TextException.h"

namespace Program {

namespace {

// Whatever rate was asked for; a WAV file that said another would play too fast or too slow.
constexpr int OnlyRate = 44100;

bool HasOnlyRate(const Zanthe::IAudioReader& reader) {
    return dynamic_cast<const Zanthe::BRECLibAudioMediaReader*>(&reader) != nullptr ||
           dynamic_cast<const Zanthe::DirectShowAudioMediaReader*>(&reader) != nullptr;
}

boost::shared_ptr<Zanthe::IAudioReader> Open(const std::string& path, const AudioChoice& choice) {
    try {
        return Zanthe::AudioMediaReaderFactory(path, std::max(choice.track, 0), choice.rate)
            .Create_AudioMediaReader(choice.recontainer);
    } catch (const Zanthe::TextException& error) {
        // The backend that takes this kind of file, not the file, is what the text speaks of.
        throw CommandError(path, std::string("no reader for its sound: ") + error.what());
    } catch (const std::exception& error) {
        throw CommandError(path, error.what());
    }
}

} // namespace

boost::shared_ptr<Zanthe::IAudioReader> OpenAudio(const std::string& path,
                                                  const AudioChoice& choice) {
    RequireReadableFile(path);
    auto reader = Open(path, choice);
    if (choice.rate != OnlyRate && HasOnlyRate(*reader)) {
        throw CommandError(path, "comes at 44100 Hz alone");
    }
    return reader;
}

} // namespace Program
