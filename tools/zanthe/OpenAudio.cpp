#include "tools/zanthe/OpenAudio.h"

#include <algorithm>
#include <filesystem>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace Program {

namespace {

// The extension with its dot, A to Z in lower case.
std::string ExtensionOf(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return extension;
}

} // namespace

std::unique_ptr<Zanthe::IAudioReader> OpenAudio(const std::string& path, int track, int rate) {
    RequireReadableFile(path);
    if (ExtensionOf(path) != ".mp3") {
        throw CommandError(path, "no reader for this kind of sound file yet");
    }
    try {
        return Zanthe::FFMPEGAudioReader::Create(path, track, rate);
    } catch (const std::exception& error) {
        throw CommandError(path, error.what());
    }
}

} // namespace Program
