// The thread on which an asynchronous source reader reads, and answers its callback.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/com/ComPtr.h"
#include "platform/mf/SourceReader.h"
#include "platform/mf/SourceReaderCallback.h"

namespace mf {

// Begun with the first request. Its end waits for the answer under way, unless that is where it
// comes from: then the thread ends by itself when the answer is over.
//
// Thread-safety: calls are safe from any thread, callbacks of this one included.
class ReaderThread {
public:
    ReaderThread(IMFSourceReader* reader, IMFSourceReaderCallback* callback);
    ~ReaderThread();
    ReaderThread(const ReaderThread&) = delete;
    ReaderThread& operator=(const ReaderThread&) = delete;

    // Streams are named by their numbers alone.

    // Asks for a sample, to be answered by OnReadSample. MF_E_NOTACCEPTING until a flush is
    // answered and where very many are waiting.
    HRESULT Read(DWORD streamIndex);

    // Drops the stream's requests and asks for OnFlush. MF_E_NOTACCEPTING where very many are
    // waiting.
    HRESULT Flush(DWORD streamIndex);

    // What `call` answers; MF_E_INVALIDREQUEST, with nothing called, while a request is in flight.
    HRESULT WhileIdle(const std::function<HRESULT()>& call);

private:
    struct Request {
        DWORD streamIndex = 0;
        bool isFlush = false;
    };

    // What the thread shares with this, so that either may end first.
    struct State {
        com::ComPtr<IMFSourceReader> reader;
        com::ComPtr<IMFSourceReaderCallback> callback;

        std::mutex mutex; // guards all below
        std::condition_variable changed;
        std::deque<Request> waiting;
        bool reads = false;      // a read is under way, its answer not yet given
        bool drops = false;      // and gets none
        DWORD readsStream = 0;   // of which stream
        std::size_t flushes = 0; // asked for and not yet answered
        bool ended = false;

        bool Drops(const Request& request, DWORD flushed) const;
    };

    static void Run(const std::shared_ptr<State>& state);
    static void Answer(State& state, const Request& request);
    static void AnswerRead(State& state, DWORD streamIndex);
    static void AnswerFlush(State& state, DWORD streamIndex);

    HRESULT Ask(const Request& request); // with the lock held
    static HRESULT Wake(State& state, std::unique_lock<std::mutex> lock, HRESULT asked);

    const std::shared_ptr<State> m_state;
    std::thread m_thread; // guarded by the state's mutex while this lives
};

} // namespace mf
