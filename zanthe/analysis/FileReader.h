// The bytes of an MP4 or QuickTime file, for the walker.
//
//     DSMediaDetNS::MP4Parser parser(std::make_unique<FileReader>());
//     parser.Parse(path);
#pragma once

#include <cstdint>
#include <string>

#include "platform/win32/OwnedHandle.h"
#include "platform/win32/ReadAhead.h"
#include "zanthe/analysis/IStreamReader.h"

// How a host that keeps its files in a file system transaction asks for them.
struct TransactionContext {
    HANDLE transaction = nullptr; // null: none is running
    bool openPlainly = false;     // whether a file may then be opened outside of one
};

// A file of nothing but small boxes costs few calls of the system, and a box that is passed over
// costs none.
//
// Thread-safety: none; one reader serves one thread. Several may read one file at once.
class FileReader final : public IStreamReader {
public:
    // `context`, which stays the caller's and must outlive the reader, is null for plain files.
    explicit FileReader(const TransactionContext* context = nullptr)
        : m_context(context) {}

    // IStreamReader

    // Opens for reading and shares that. Throws MP4ParseException when
    // - the file cannot be opened: it is not there, not allowed, or not a regular file,
    // - its first box is not an `ftyp`, even if a valid `moov` stands in its place, or the file is
    //   shorter than 8 bytes,
    // - the context names a transaction, or none and forbids plain files.
    void Open(const std::wstring& path) override;

    void Read(void* buffer, std::uint64_t byteCount) override;
    std::uint64_t GetSize() override;
    void Seek(std::uint64_t position) override;
    std::uint64_t GetPosition() override;

private:
    bool MayOpenPlainly() const;
    void RequireFileType();
    void RequireOpen() const;

    win32::OwnedHandle m_file; // null until Open
    std::uint64_t m_position = 0;
    win32::ReadAhead m_ahead;
    const TransactionContext* m_context;
};
