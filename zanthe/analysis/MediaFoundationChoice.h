// Whether a file goes to a Media Foundation reader or to DirectShow.
#pragma once

#include <functional>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/analysis/WindowsVersionProvider.h"

// What the file is wanted for.
enum class MediaFoundationPurpose : int {
    Audio = 0,        // sound, through an IAudioReader
    VideoSamples = 1, // pictures, through a VideoSampleReader
    Detection = 2,    // facts about it
};

// True: a Media Foundation reader; false: DirectShow. A matter of the path, except that Detection
// of a ".mov" looks into the file. An empty versionProvider makes it false, save for the Detection
// of a ".mov" with PNG pictures, which no version decides.
//
// From version 6.2 on; R is the extension of the recording that the path names, the others go by
// LowerExtension(path):
//
//                                Audio   VideoSamples   Detection
//     R = brec, orirec           no      no             no
//     mov with PNG pictures      yes     yes            yes, on every version
//     wmv                        yes     no             yes
//     mp4, mov                   yes     yes            yes
//     mts, m2ts                  yes     no             yes
//     wma, mp3, wav, m4a         yes     yes            yes
//     anything else              no      no             no
//
// Below 6.2 mov and mp4 become no for VideoSamples and Detection, and mts and m2ts for everything.
// The unevenness is meant: Windows Media pictures are never read through a Media Foundation sample
// reader, transport streams never through one either, and m4a is safe with the older system too.
//
// Thread-safety: safe from any thread.
bool ShouldUseMediaFoundation(
    const std::wstring& path, MediaFoundationPurpose purpose,
    const boost::shared_ptr<Zanthe::IWindowsVersionProvider>& versionProvider);

// The same for who knows already, or can tell at less cost, whether IsMovWithPngVideo(path). It is
// asked at most once, and only for the Detection of a ".mov".
bool ShouldUseMediaFoundation(
    const std::wstring& path, MediaFoundationPurpose purpose,
    const boost::shared_ptr<Zanthe::IWindowsVersionProvider>& versionProvider,
    const std::function<bool()>& isMovWithPngVideo);
