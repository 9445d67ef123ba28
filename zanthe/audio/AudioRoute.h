// Which backend a file's sound is read with.
#pragma once

#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/analysis/WindowsVersionProvider.h"

namespace Zanthe {

enum class AudioRoute { Ffmpeg, Recording, MediaFoundation, DirectShow };

// A matter of the path (UTF-8) and of the system's version. The first that fits decides:
//
//     the file name ends in ".mp3"          Ffmpeg: never the platform's decoders
//     the file name ends in ".brec"         Recording
//     ShouldUseMediaFoundation, for Audio   MediaFoundation
//     anything else                         DirectShow
//
// Extensions are compared with no regard to case.
//
// Thread-safety: safe from any thread.
AudioRoute ChooseAudioRoute(const std::string& path,
                            const boost::shared_ptr<IWindowsVersionProvider>& versionProvider);

} // namespace Zanthe
