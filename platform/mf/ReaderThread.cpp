#include "platform/mf/ReaderThread.h"

#include <algorithm>
#include <utility>

#include "platform/com/Object.h"
#include "platform/mf/Errors.h"

namespace mf {

namespace {

constexpr std::size_t kMostWaiting = 4096;

} // namespace

ReaderThread::ReaderThread(IMFSourceReader* reader, IMFSourceReaderCallback* callback)
    : m_state(std::make_shared<State>()) {
    m_state->reader = com::ComPtr<IMFSourceReader>(reader);
    m_state->callback = com::ComPtr<IMFSourceReaderCallback>(callback);
}

ReaderThread::~ReaderThread() {
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->ended = true;
        m_state->waiting.clear();
    }
    m_state->changed.notify_all();
    if (!m_thread.joinable()) {
        return;
    }
    if (m_thread.get_id() == std::this_thread::get_id()) {
        m_thread.detach();
    } else {
        m_thread.join();
    }
}

HRESULT ReaderThread::Ask(const Request& request) {
    if (m_state->waiting.size() >= kMostWaiting) {
        return MF_E_NOTACCEPTING;
    }
    if (!m_thread.joinable()) {
        m_thread = std::thread([state = m_state] { Run(state); });
    }
    m_state->waiting.push_back(request);
    m_state->flushes += request.isFlush ? 1 : 0;
    return S_OK;
}

// Woken without the lock, which the thread would only wait for. The answer may end the reader
// before its request has come back: nothing but the shared state is touched behind the lock.
HRESULT ReaderThread::Wake(State& state, std::unique_lock<std::mutex> lock, HRESULT asked) {
    lock.unlock();
    if (SUCCEEDED(asked)) {
        state.changed.notify_one();
    }
    return asked;
}

HRESULT ReaderThread::Read(DWORD streamIndex) {
    return com::Wall([&] {
        const std::shared_ptr<State> state = m_state;
        std::unique_lock lock(state->mutex);
        const HRESULT asked = state->flushes > 0 ? MF_E_NOTACCEPTING : Ask({streamIndex, false});
        return Wake(*state, std::move(lock), asked);
    });
}

HRESULT ReaderThread::Flush(DWORD streamIndex) {
    return com::Wall([&] {
        const std::shared_ptr<State> kept = m_state;
        State& state = *kept;
        std::unique_lock lock(state.mutex);
        state.drops =
            state.drops || (state.reads && state.Drops({state.readsStream, false}, streamIndex));
        std::erase_if(state.waiting,
                      [&](const Request& each) { return state.Drops(each, streamIndex); });
        const HRESULT asked = Ask({streamIndex, true});
        return Wake(state, std::move(lock), asked);
    });
}

HRESULT ReaderThread::WhileIdle(const std::function<HRESULT()>& call) {
    const std::lock_guard lock(m_state->mutex);
    const bool idle = !m_state->reads && m_state->waiting.empty();
    return idle ? call() : MF_E_INVALIDREQUEST;
}

bool ReaderThread::State::Drops(const Request& request, DWORD flushed) const {
    return !request.isFlush &&
           (flushed == MF_SOURCE_READER_ALL_STREAMS || request.streamIndex == flushed);
}

void ReaderThread::Run(const std::shared_ptr<State>& state) {
    while (true) {
        Request request;
        {
            std::unique_lock lock(state->mutex);
            state->changed.wait(lock, [&] { return state->ended || !state->waiting.empty(); });
            if (state->ended) {
                return;
            }
            request = state->waiting.front();
            state->waiting.pop_front();
            state->reads = !request.isFlush;
            state->drops = false;
            state->readsStream = request.streamIndex;
        }
        Answer(*state, request);
    }
}

void ReaderThread::Answer(State& state, const Request& request) {
    if (request.isFlush) {
        AnswerFlush(state, request.streamIndex);
    } else {
        AnswerRead(state, request.streamIndex);
    }
}

void ReaderThread::AnswerRead(State& state, DWORD streamIndex) {
    DWORD index = streamIndex;
    DWORD flags = MF_SOURCE_READERF_ERROR;
    LONGLONG time = 0;
    com::ComPtr<IMFSample> sample;
    const HRESULT result =
        state.reader->ReadSample(streamIndex, 0, &index, &flags, &time, sample.Put());
    {
        const std::lock_guard lock(state.mutex);
        state.reads = false; // a callback may move the reader
        if (state.drops || state.ended) {
            return;
        }
    }
    com::Wall(
        [&] { return state.callback->OnReadSample(result, index, flags, time, sample.Get()); });
}

void ReaderThread::AnswerFlush(State& state, DWORD streamIndex) {
    {
        const std::lock_guard lock(state.mutex);
        --state.flushes; // who waits for the answer may read as soon as it is there
        if (state.ended) {
            return;
        }
    }
    com::Wall([&] { return state.callback->OnFlush(streamIndex); });
}

} // namespace mf
