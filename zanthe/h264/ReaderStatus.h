// How the opening of an H.264 reader ended.
#pragma once

namespace Zanthe {

enum ReaderStatus : int {
    ReaderStatusOk = 0,                 // samples can be read
    ReaderStatusNotOpened = 1,          // opening was not tried
    ReaderStatusSourceReaderFailed = 2, // no source reader for the file
    ReaderStatusNativeTypeFailed = 3,   // the file has no video stream
    ReaderStatusUnsupportedType = 4,    // it is not H.264, HEVC or MPEG-4 part 2
    ReaderStatusSetTypeFailed = 5,      // nothing decodes it to the output's form
    ReaderStatusStreamSelectFailed = 6, // the video stream could not be chosen
    ReaderStatusFirstReadFailed = 7,    // the first sample could not be read
};

} // namespace Zanthe
