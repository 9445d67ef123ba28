// A source reader that lands and fails as the test says, and counts what is asked of it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/mf/SourceReader.h"
#include "tests/zanthe/h264/ScriptedMedia.h"

// What a read comes to.
enum class ReadOutcome {
    Sample,
    Tick, // no sample: a gap in the stream
    Failed,
    EndWithSample, // the last one, which says so
};

// What a reader is asked for on the way to a picture.
enum class ReaderCall { Flush, Position, Read };

struct Picture {
    std::int64_t time = 0; // on the source's timeline, in units of 100 ns
    std::int64_t duration = 0;
    bool isKey = false;
};

// `count` pictures of `duration` each, from `start` on, every `keyInterval`th of them a key frame.
std::vector<Picture> Pictures(int count, std::int64_t duration, std::int64_t start = 0,
                              int keyInterval = 1);

struct SourceScript {
    std::vector<Picture> pictures;

    // Which picture comes next behind a seek; by default the one shown at the position, or the
    // first.
    std::function<std::size_t(std::int64_t position)> landing;
    // What the read of this number comes to, counted from 0 over the reader's life; by default a
    // sample as long as there is one.
    std::function<ReadOutcome(int read)> outcome;

    HRESULT nativeTypeResult = S_OK;
    HRESULT setTypeResult = S_OK;
    HRESULT deselectResult = S_OK; // of all streams
    HRESULT selectResult = S_OK;   // of the video
    HRESULT positionResult = S_OK;
    HRESULT flushResult = S_OK;
    std::int64_t presentationDuration = 0; // 0: none is told
    int streams = 2;                       // of which `videoStream` is the video
    int videoStream = 1;
    bool videoIsSelected = true; // where that is asked for
    bool indexIsTold = true;     // by reads, to those who ask
    Place place = Place::Memory;
    std::size_t bufferBytes = 64;
    com::ComPtr<ScriptedMediaType> nativeType;  // by default H.264 of 64x48, 30 a second
    com::ComPtr<ScriptedMediaType> currentType; // what was set, or what the test puts here

    // What was asked.
    int reads = 0;
    std::vector<ReaderCall> calls;
    std::vector<std::int64_t> positions; // of the seeks
    std::vector<DWORD> streamsRead;
    std::vector<DWORD> streamsFlushed;
    std::vector<std::pair<DWORD, bool>> selections;
    DWORD streamDescribed = 0;         // whose current type was asked for
    DWORD streamTyped = 0;             // whose type was set
    com::ComPtr<IMFMediaType> typeSet; // the caller's own
    GUID subtypeSet{};
    Living living = std::make_shared<std::atomic<int>>(0);
    std::function<void()> onReaderEnd;
    std::function<void()> onSampleEnd;
};

using Script = std::shared_ptr<SourceScript>;

Script MakeScript(std::vector<Picture> pictures);

com::ComPtr<IMFSourceReader> MakeScriptedReader(const Script& script);

// The first sample of the script, as a reader's owner reads it; the caller's reference.
IMFSample* ReadFirst(IMFSourceReader* reader);
