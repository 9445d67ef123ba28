#include "tools/zanthe/OpenAudio.h"

#include <algorithm>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/core/TextException.h"

namespace Program {

boost::shared_ptr<Zanthe::IAudioReader> OpenAudio(const std::string& path, int track, int rate) {
    RequireReadableFile(path);
    try {
        return Zanthe::AudioMediaReaderFactory(path, std::max(track, 0), rate)
            .Create_AudioMediaReader(false);
    } catch (const Zanthe::TextException& error) {
        // The backend that takes this kind of file, not the file, is what the text speaks of.
        throw CommandError(path, std::string("no reader for its sound: ") + error.what());
    } catch (const std::exception& error) {
        throw CommandError(path, error.what());
    }
}

} // namespace Program
