// One file's pictures or sound through a filter graph that is held paused and stepped.
#pragma once

#include <cstdint>
#include <vector>

struct IMediaSample;

// How a search for a sample ended.
enum class FindSampleResult : std::int32_t {
    Found = 1,
    NotFound = 2,
    Failed = 3, // the chain has no graph, or nothing ever came out of it
    GetterError = 4,
};

// Times are counts of 100 ns units from the start of the file. The order of the operations is
// settled.
//
// Thread-safety: safe from any thread; one search waits for the other.
class IDSChain {
public:
    IDSChain() = default;
    IDSChain(const IDSChain&) = delete;
    IDSChain& operator=(const IDSChain&) = delete;

    // Whether there is a graph.
    virtual bool IsInitialized() = 0;

    // Takes the graph down; the next search builds it again.
    virtual void Uninitialize() = 0;

    // Builds the graph, where there is none.
    virtual void Initialize() = 0;

    // The same, and moves to startTime.
    virtual void InitializeAsync(std::int64_t startTime) = 0;

    // The sample that covers `time`, with one reference for the caller, in *sample; null for every
    // answer but Found. A tolerance below 0.5 may take twice the steps.
    virtual FindSampleResult FindSample(std::int64_t time, IMediaSample** sample,
                                        double tolerance) = 0;

    // Writes frameCount sample frames into two planes, from startFrame frames behind `time` on, as
    // floats at full scale 1.0; 44100 frames are a second, whatever the file has. Answers how many
    // were written: 0 where the planes are not two, and by a chain of pictures. `status` tells how
    // the search for the first went, Found where none was needed.
    virtual unsigned int ReadAudioFloat(std::int64_t time, std::int64_t startFrame,
                                        unsigned int frameCount, std::vector<float*> channels,
                                        FindSampleResult& status) = 0;

    // Pixels; 0 without a graph and for sound.
    virtual int GetWidth() = 0;
    virtual int GetHeight() = 0;

    // How many steps one search may take.
    virtual void SetMaxSteps(int count) = 0;

    virtual ~IDSChain() = default;
};
