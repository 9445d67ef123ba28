#pragma once

#include <limits>
#include <utility>
#include <vector>

#include "platform/mf/SourceReaderFactory.h"
#include "tests/zanthe/h264/ScriptedSourceReader.h"

// As long as it lives, every source reader that is opened is a scripted one.
class ScriptedOpening {
public:
    // What a reader was opened with, as far as the tests look at it.
    struct Request {
        bool processesVideo = false;
        bool usesHardware = false;
        bool hasDevice = false;
    };

    explicit ScriptedOpening(Script script)
        : m_script(std::move(script))
        , m_before(mf::SetSourceReaderFactory(
              [this](LPCWSTR, IMFAttributes* attributes, IMFSourceReader** reader) {
                  requests.push_back(Describe(attributes));
                  if (FAILED(result) || requests.size() > mostReaders) {
                      return FAILED(result) ? result : E_FAIL;
                  }
                  // The device is granted to whoever asks for it.
                  m_script->place = requests.back().hasDevice ? Place::Device : Place::Memory;
                  MakeScriptedReader(m_script).CopyTo(reader);
                  return S_OK;
              })) {}

    ScriptedOpening(const ScriptedOpening&) = delete;
    ScriptedOpening& operator=(const ScriptedOpening&) = delete;

    ~ScriptedOpening() { mf::SetSourceReaderFactory(std::move(m_before)); }

    HRESULT result = S_OK;
    std::size_t mostReaders = std::numeric_limits<std::size_t>::max();
    std::vector<Request> requests;

private:
    static Request Describe(IMFAttributes* attributes) {
        if (attributes == nullptr) {
            return {};
        }
        com::ComPtr<IUnknown> manager;
        return {MFGetAttributeUINT32(attributes, MF_SOURCE_READER_ENABLE_ADVANCED_VIDEO_PROCESSING,
                                     0) != 0,
                MFGetAttributeUINT32(attributes, MF_READWRITE_ENABLE_HARDWARE_TRANSFORMS, 0) != 0,
                SUCCEEDED(attributes->GetUnknown(MF_SOURCE_READER_D3D_MANAGER, IID_IUnknown,
                                                 manager.PutVoid()))};
    }

    Script m_script;
    mf::SourceReaderFactory m_before;
};
