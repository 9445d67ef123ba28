// The steps by which a source reader is made ready to give decoded video.
#pragma once

#include <string>

#include "platform/com/ComPtr.h"
#include "platform/mf/SourceReader.h"
#include "zanthe/core/DecoderOutputFormat.h"
#include "zanthe/h264/ColorConversionInfo.h"
#include "zanthe/h264/NativeMediaTypeInfo.h"
#include "zanthe/h264/TrackGeometry.h"

struct IMFDXGIDeviceManager;

namespace Zanthe {

// The output that a reader of a file with this geometry can have, `format` at best: the device only
// on a system of 6.2 or later, with a device manager, and while the limit of hardware decoders is
// not reached; and NV12, whatever was asked for, where the picture is to be turned.
DecoderOutputFormat ChooseOutputFormat(DecoderOutputFormat format,
                                       const IMFDXGIDeviceManager* deviceManager,
                                       const TrackGeometry& geometry);

// A source reader on the file at `path` (UTF-8) with the attributes that the output needs; empty
// where there is none.
com::ComPtr<IMFSourceReader> OpenSourceReader(const std::string& path, DecoderOutputFormat format,
                                              IMFDXGIDeviceManager* deviceManager);

// Whether the reader's native type is video in a coding that this way of reading is for: H.264,
// HEVC or MPEG-4 part 2. *subtype is which, also where it is another.
bool IsSupportedVideo(IMFMediaType* native, GUID* subtype);

// Size, rate, pixel aspect ratio and rotation; what the type does not tell keeps its default. The
// pixel aspect ratio is the one that brings the picture to the track's display size, where the
// type's own does not.
//
// Throws boost::bad_rational where that ratio has a term beyond 2147483647 or a zero denominator.
NativeMediaTypeInfo DescribeNativeType(IMFMediaType* native, const GUID& subtype,
                                       const TrackGeometry& geometry);

// The colour that the stream's headers tell. Where they tell nothing the matrix is that of the
// display size: BT.601 up to a height of 720, BT.709 beyond.
ColorConversionInfo ColorOf(IMFMediaType* native, const TrackGeometry& geometry);

// Has the first video stream give progressive pictures in the output's form.
HRESULT SetOutputType(IMFSourceReader* reader, DecoderOutputFormat format,
                      const NativeMediaTypeInfo& native);

// Chooses the first video stream alone.
HRESULT SelectFirstVideoStream(IMFSourceReader* reader);

// The index of the first stream that is selected; -1 where none is.
int FindSelectedStream(IMFSourceReader* reader);

// The duration of the file at `path` in units of 100 ns: by its MP4 headers, and where they tell
// none by a source reader of its own; 0 where that fails too.
std::int64_t FindDuration(const std::string& path);

} // namespace Zanthe
