// A resampler that hands on what it is given, frame by frame, and notes what it is told.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "platform/com/ClassRegistry.h"
#include "platform/com/ComPtr.h"
#include "platform/mf/Transform.h"

struct ResamplerScript {
    HRESULT createResult = S_OK;
    HRESULT inputTypeResult = S_OK;
    HRESULT outputTypeResult = S_OK;
    HRESULT inputResult = S_OK;
    HRESULT outputResult = S_OK; // a failure is answered whatever is held
    // Frames that are kept back until there is more, or until it is drained.
    std::size_t delay = 0;
    std::size_t mostAtOnce = SIZE_MAX; // frames that one pull gives

    // What was told: "begin", "end", "flush", "drain", "input".
    std::vector<std::string> messages;
    com::ComPtr<IMFMediaType> inputType;
    com::ComPtr<IMFMediaType> outputType;
    std::deque<std::pair<float, float>> held;
    bool isDraining = false;
    int outputs = 0;                     // pulls
    int infos = 0;                       // questions for the output stream
    std::vector<std::size_t> inputBytes; // of each input
};

// As long as it lives, the system's resampler is a scripted one.
class ScriptedResampling {
public:
    explicit ScriptedResampling(const std::shared_ptr<ResamplerScript>& script);
    ScriptedResampling(const ScriptedResampling&) = delete;
    ScriptedResampling& operator=(const ScriptedResampling&) = delete;
    ~ScriptedResampling();

private:
    com::ClassFactory m_before;
};
