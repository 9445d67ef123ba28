// Which backend a file's pictures are read with. The factory goes by it, and so does whoever only
// wants to know.
#pragma once

#include <functional>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/analysis/WindowsVersionProvider.h"

namespace Zanthe {

enum class VideoRoute { OwnDecoder, MediaFoundation, DirectShow };

// The library's own decoders; None where a path is theirs and yet none of them takes it.
enum class OwnVideoDecoder { None, LegacyRecording, Recording, PngMov, Gif };

// Whether the file opens as a QuickTime recording with PNG pictures. It is asked at most once a
// call, and only of a path that ends in ".mov". What it throws passes through.
using OpensAsPngMov = std::function<bool()>;

// Paths are UTF-8. The rules are those that DecoderFactory::CreateVideoSampleReader lists. An empty
// versionProvider keeps files away from Media Foundation.
//
// Thread-safety: all safe from any thread, as far as the arguments are.
VideoRoute ChooseVideoRoute(const std::string& path, bool useMediaFoundation,
                            const OpensAsPngMov& opensAsPngMov,
                            const boost::shared_ptr<IWindowsVersionProvider>& versionProvider);

// Whether one of the library's own decoders is tried.
bool GoesToOwnDecoder(const std::string& path, const OpensAsPngMov& opensAsPngMov);

// The decoder that is made for a path with a "." in it. A member of a ".brec" recording is tried
// and has none.
OwnVideoDecoder ChooseOwnDecoder(const std::string& path, const OpensAsPngMov& opensAsPngMov);

// The text behind the last "." of the whole path, be it a folder's: separators play no part.
std::string TextBehindLastDot(const std::string& path);

} // namespace Zanthe
