// The vendor filters that a graph is offered for a file before it looks for others.
//
// What they are is decided here; making filters and handing them to graphs is the graph layer's,
// which stands behind IPreferredFilterHost.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/com/Guid.h"

struct IUnknown;

struct PreferredFilter {
    const wchar_t* library; // file that makes it, by its own DllGetClassObject; a literal
    GUID classId;
};

// Those for `path`, in the order in which they are made and handed over, by the text behind its
// last dot, case ignored: demultiplexer, AAC and H.264 decoder for "mp4" and "brec", demultiplexer
// and H.264 decoder for "mts" and "m2ts", none for anything else. The file is not opened.
std::vector<PreferredFilter> PreferredFiltersFor(const std::wstring& path);

class IPreferredFilterHost {
public:
    IPreferredFilterHost() = default;
    IPreferredFilterHost(const IPreferredFilterHost&) = delete;
    IPreferredFilterHost& operator=(const IPreferredFilterHost&) = delete;
    virtual ~IPreferredFilterHost() = default;

    // Makes each filter in the order given. Then, where graphObject (borrowed, may be null) answers
    // the interface {03A1EB8E-32BF-4245-8502-114D08A9CB88}, passes each to that interface's third
    // own operation, in the same order. Reports nothing. May be called from several threads at
    // once.
    virtual void AddFilters(const std::vector<PreferredFilter>& filters, IUnknown* graphObject) = 0;
};

// Puts `host` behind AddPreferredFilters, for the whole process, and answers the one that stood
// there; empty is none, as at the start. A call that is under way keeps the host that it began
// with.
std::shared_ptr<IPreferredFilterHost>
SetPreferredFilterHost(std::shared_ptr<IPreferredFilterHost> host);

// Has the host add PreferredFiltersFor(path) to graphObject (borrowed, may be null). Does nothing
// when those are none or when there is no host.
//
// Thread-safety: this and the two above are safe from any thread.
void AddPreferredFilters(const std::wstring& path, IUnknown* graphObject);
