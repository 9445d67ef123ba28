// A callback of an asynchronous source reader that keeps what it is told.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

#include "platform/com/Object.h"
#include "platform/mf/SourceReader.h"

struct Answer {
    HRESULT result = S_OK;
    DWORD index = 0;
    DWORD flags = 0;
    LONGLONG time = 0;
    com::ComPtr<IMFSample> sample;
    bool isFlush = false;
};

// Thread-safety: safe from any thread.
class RecordingCallback final : public com::Object<IMFSourceReaderCallback> {
public:
    // What is done within each answer, before it is kept.
    explicit RecordingCallback(std::function<void()> within = {})
        : m_within(std::move(within)) {}

    HRESULT OnReadSample(HRESULT result, DWORD index, DWORD flags, LONGLONG time,
                         IMFSample* sample) override {
        Answer answer{result, index, flags, time, {}, false};
        if (sample != nullptr) {
            answer.sample = com::ComPtr<IMFSample>(sample);
        }
        return Keep(std::move(answer));
    }

    HRESULT OnFlush(DWORD index) override { return Keep({S_OK, index, 0, 0, {}, true}); }

    HRESULT OnEvent(DWORD /*index*/, IMFMediaEvent* /*event*/) override { return S_OK; }

    // The answer number `number`, waited for: a minute at most, an empty one then.
    Answer Wait(std::size_t number) {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, std::chrono::minutes(1),
                           [&] { return m_answers.size() > number; });
        return m_answers.size() > number ? m_answers[number] : Answer{E_FAIL, 0, 0, 0, {}, false};
    }

    std::size_t Count() {
        const std::lock_guard lock(m_mutex);
        return m_answers.size();
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSourceReaderCallback,
                          static_cast<IMFSourceReaderCallback*>(this));
    }

    HRESULT Keep(Answer answer) {
        if (m_within) {
            m_within();
        }
        const std::lock_guard lock(m_mutex);
        m_answers.push_back(std::move(answer));
        m_changed.notify_all();
        return S_OK;
    }

    const std::function<void()> m_within;
    std::mutex m_mutex; // guards all below
    std::condition_variable m_changed;
    std::vector<Answer> m_answers;
};
