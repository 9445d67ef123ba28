#include "platform/ole/Storage.h"

#include <algorithm>
#include <cwctype>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/com/ReadingStream.h"
#include "platform/com/StorageResult.h"
#include "platform/com/TaskMemory.h"
#include "platform/ole/CompoundFile.h"
#include "platform/win32/Text.h"

namespace {

using ole::InfilePtr;
using ole::InputPtr;

bool Writes(DWORD mode) {
    return (mode & (STGM_WRITE | STGM_READWRITE)) != 0;
}

bool SameName(const std::wstring& a, const std::wstring& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](wchar_t x, wchar_t y) {
        return std::towupper(static_cast<wint_t>(x)) == std::towupper(static_cast<wint_t>(y));
    });
}

class CompoundStream final : public com::ReadingStream {
public:
    CompoundStream(InputPtr input, std::wstring name)
        : m_input(std::move(input))
        , m_name(std::move(name)) {}

    HRESULT Clone(IStream** copy) override {
        InputPtr input(gsf_input_dup(m_input.get(), nullptr));
        if (input == nullptr) {
            return E_OUTOFMEMORY;
        }
        return com::Make<CompoundStream>(copy, std::move(input), m_name);
    }

private:
    std::uint64_t Size() const override {
        return static_cast<std::uint64_t>(std::max<gsf_off_t>(gsf_input_size(m_input.get()), 0));
    }

    bool ReadAt(std::uint64_t position, void* buffer, ULONG byteCount) override {
        return gsf_input_seek(m_input.get(), static_cast<gsf_off_t>(position), G_SEEK_SET) ==
                   FALSE &&
               gsf_input_read(m_input.get(), byteCount, static_cast<guint8*>(buffer)) != nullptr;
    }

    std::wstring Name() const override { return m_name; }

    InputPtr m_input;
    std::wstring m_name;
};

struct Element {
    std::wstring name;
    STGTY type;
    std::uint64_t size;
};

class ElementList final : public com::Object<IEnumSTATSTG> {
public:
    explicit ElementList(std::vector<Element> elements, std::size_t position = 0)
        : m_elements(std::move(elements))
        , m_position(position) {}

    // IEnumSTATSTG
    HRESULT Next(ULONG count, STATSTG* facts, ULONG* fetched) override {
        if (facts == nullptr || (fetched == nullptr && count != 1)) {
            return STG_E_INVALIDPOINTER;
        }
        ULONG done = 0;
        for (; done < count && m_position < m_elements.size(); ++done, ++m_position) {
            if (!Tell(m_elements[m_position], facts[done])) {
                return GiveBack(facts, done);
            }
        }
        if (fetched != nullptr) {
            *fetched = done;
        }
        return done == count ? S_OK : S_FALSE;
    }

    HRESULT Skip(ULONG count) override {
        const std::size_t left = m_elements.size() - m_position;
        m_position += std::min<std::size_t>(count, left);
        return count <= left ? S_OK : S_FALSE;
    }

    HRESULT Reset() override {
        m_position = 0;
        return S_OK;
    }

    HRESULT Clone(IEnumSTATSTG** copy) override {
        return com::Make<ElementList>(copy, m_elements, m_position);
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IEnumSTATSTG, static_cast<IEnumSTATSTG*>(this));
    }

    static bool Tell(const Element& element, STATSTG& facts) {
        facts = {};
        facts.pwcsName = com::CopyForCaller(element.name);
        facts.type = element.type;
        facts.cbSize.QuadPart = element.size;
        return facts.pwcsName != nullptr;
    }

    // Memory ran out: nothing was fetched.
    HRESULT GiveBack(STATSTG* facts, ULONG count) {
        for (ULONG i = 0; i < count; ++i) {
            CoTaskMemFree(facts[i].pwcsName);
        }
        m_position -= count;
        return E_OUTOFMEMORY;
    }

    std::vector<Element> m_elements;
    std::size_t m_position;
};

class CompoundStorage final : public com::Object<IStorage> {
public:
    CompoundStorage(InfilePtr infile, std::wstring name)
        : m_infile(std::move(infile))
        , m_name(std::move(name)) {
        const int count = std::max(gsf_infile_num_children(m_infile.get()), 0);
        for (int i = 0; i < count; ++i) {
            const char* child = gsf_infile_name_by_index(m_infile.get(), i);
            m_names.push_back(win32::Utf8ToWide(child != nullptr ? child : ""));
        }
    }

    // IStorage
    HRESULT CreateStream(LPCWSTR, DWORD, DWORD, DWORD, IStream**) override {
        return STG_E_ACCESSDENIED;
    }

    HRESULT OpenStream(LPCWSTR name, void*, DWORD mode, DWORD, IStream** stream) override {
        if (stream == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        *stream = nullptr;
        return com::Wall([&]() -> HRESULT {
            Child child;
            const HRESULT found = FindChild(name, mode, STGTY_STREAM, child);
            return FAILED(found)
                       ? found
                       : com::Make<CompoundStream>(stream, std::move(child.input), child.name);
        });
    }

    HRESULT CreateStorage(LPCWSTR, DWORD, DWORD, DWORD, IStorage**) override {
        return STG_E_ACCESSDENIED;
    }

    HRESULT OpenStorage(LPCWSTR name, IStorage*, DWORD mode, SNB, DWORD,
                        IStorage** storage) override {
        if (storage == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        *storage = nullptr;
        return com::Wall([&]() -> HRESULT {
            Child child;
            const HRESULT found = FindChild(name, mode, STGTY_STORAGE, child);
            return FAILED(found)
                       ? found
                       : com::Make<CompoundStorage>(
                             storage, InfilePtr(GSF_INFILE(child.input.release())), child.name);
        });
    }

    HRESULT CopyTo(DWORD, const IID*, SNB, IStorage*) override { return E_NOTIMPL; }

    HRESULT MoveElementTo(LPCWSTR, IStorage*, LPCWSTR, DWORD) override {
        return STG_E_ACCESSDENIED;
    }

    HRESULT Commit(DWORD) override { return S_OK; }

    HRESULT Revert() override { return S_OK; }

    HRESULT EnumElements(DWORD, void*, DWORD, IEnumSTATSTG** elements) override {
        if (elements == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        return com::Wall([&] { return com::Make<ElementList>(elements, Elements()); });
    }

    HRESULT DestroyElement(LPCWSTR) override { return STG_E_ACCESSDENIED; }

    HRESULT RenameElement(LPCWSTR, LPCWSTR) override { return STG_E_ACCESSDENIED; }

    HRESULT SetElementTimes(LPCWSTR, const FILETIME*, const FILETIME*, const FILETIME*) override {
        return STG_E_ACCESSDENIED;
    }

    HRESULT SetClass(REFCLSID) override { return STG_E_ACCESSDENIED; }

    HRESULT SetStateBits(DWORD, DWORD) override { return STG_E_ACCESSDENIED; }

    HRESULT Stat(STATSTG* facts, DWORD flags) override {
        if (facts == nullptr) {
            return STG_E_INVALIDPOINTER;
        }
        *facts = {};
        facts->type = STGTY_STORAGE;
        if (flags != STATFLAG_NONAME) {
            facts->pwcsName = com::CopyForCaller(m_name);
            return facts->pwcsName == nullptr ? E_OUTOFMEMORY : S_OK;
        }
        return S_OK;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IStorage, static_cast<IStorage*>(this));
    }

    static STGTY TypeOf(GsfInput* child) {
        return GSF_IS_INFILE(child) && gsf_infile_num_children(GSF_INFILE(child)) >= 0
                   ? STGTY_STORAGE
                   : STGTY_STREAM;
    }

    struct Child {
        InputPtr input;
        std::wstring name; // its own, whatever the case that it was asked for in
    };

    InputPtr InputOf(std::size_t index) const {
        return ole::ChildOf(*m_infile, static_cast<int>(index));
    }

    HRESULT FindChild(LPCWSTR name, DWORD mode, STGTY type, Child& child) const {
        if (name == nullptr) {
            return STG_E_INVALIDNAME;
        }
        if (Writes(mode)) {
            return STG_E_ACCESSDENIED;
        }
        const auto found = std::find_if(m_names.begin(), m_names.end(),
                                        [&](const auto& other) { return SameName(other, name); });
        if (found == m_names.end()) {
            return STG_E_FILENOTFOUND;
        }
        child = {InputOf(static_cast<std::size_t>(found - m_names.begin())), *found};
        if (child.input == nullptr) {
            return STG_E_READFAULT;
        }
        return TypeOf(child.input.get()) == type ? S_OK : STG_E_FILENOTFOUND;
    }

    // An element whose chain of sectors is broken is told without a size.
    std::vector<Element> Elements() const {
        std::vector<Element> elements;
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            const InputPtr child = InputOf(i);
            const STGTY type = child == nullptr ? STGTY_STREAM : TypeOf(child.get());
            const gsf_off_t size =
                child == nullptr || type == STGTY_STORAGE ? 0 : gsf_input_size(child.get());
            elements.push_back(
                {m_names[i], type, static_cast<std::uint64_t>(std::max<gsf_off_t>(size, 0))});
        }
        return elements;
    }

    InfilePtr m_infile;
    std::wstring m_name;
    std::vector<std::wstring> m_names; // of the children, in libgsf's order
};

} // namespace

HRESULT StgIsStorageFile(LPCWSTR path) {
    return com::Wall([&] { return ole::LooksLikeCompoundFile(path); });
}

HRESULT StgOpenStorage(LPCWSTR path, IStorage*, DWORD mode, SNB, DWORD, IStorage** storage) {
    if (storage == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (Writes(mode)) {
        return STG_E_ACCESSDENIED;
    }
    return com::Wall([&]() -> HRESULT {
        InfilePtr root;
        const HRESULT opened = ole::OpenCompoundFile(path, root);
        return FAILED(opened) ? opened : com::Make<CompoundStorage>(storage, std::move(root), path);
    });
}

HRESULT StgOpenStorageEx(LPCWSTR path, DWORD mode, DWORD format, DWORD, void*, void*, REFIID iid,
                         void** storage) {
    if (storage == nullptr) {
        return STG_E_INVALIDPOINTER;
    }
    *storage = nullptr;
    if (iid != IID_IStorage) {
        return E_NOINTERFACE;
    }
    if (format != STGFMT_STORAGE && format != STGFMT_ANY) {
        return E_INVALIDARG;
    }
    return StgOpenStorage(path, nullptr, mode, nullptr, 0, reinterpret_cast<IStorage**>(storage));
}
