// An open picture file that knows its size.
#pragma once

#include "platform/com/ComPtr.h"
#include "platform/wic/WinCodec.h"
#include "platform/win32/CString.h"

namespace Zanthe {

// Virtual operations in their order; the destructor comes last.
//
// Thread-safety: none.
class WICImageReader {
public:
    explicit WICImageReader(CStringW path);
    WICImageReader(const WICImageReader&) = delete;
    WICImageReader& operator=(const WICImageReader&) = delete;

    // Does nothing when it is open. Throws DSMediaDetException "Unable to create decoder", with the
    // reader reset, when no decoder takes the file.
    virtual void Open();
    virtual bool IsOpen() const;

    // Gives the file back; the reader is as it was before Open.
    virtual void Reset();

    // The frame shown `seconds` after the start: a still picture has one.
    virtual int frameAtTime(double seconds) const;

    // Pixels, of the picture the right way up; 0 where they could not be read.
    virtual void GetSize(int& width, int& height) const;
    virtual unsigned int GetBitsPerPixel() const;

protected:
    // Called by Open, which ignores their results: a file without these facts is open all the same.
    virtual HRESULT ReadMetadata();
    virtual HRESULT ReadFrames();

public:
    virtual ~WICImageReader();

    const CStringW& Path() const { return m_path; }

    // Null when it is not open.
    IWICImagingFactory* Factory() const { return m_factory.Get(); }

    IWICBitmapDecoder* Decoder() const { return m_decoder.Get(); }

protected:
    // The bits of a pixel of `source`, by its format.
    HRESULT ReadBitsPerPixel(IWICBitmapSource& source, UINT& bits) const;

    void SetSize(UINT width, UINT height);

private:
    CStringW m_path;
    bool m_isOpen = false;
    com::ComPtr<IWICImagingFactory> m_factory;
    com::ComPtr<IWICBitmapDecoder> m_decoder;
    UINT m_width = 0;
    UINT m_height = 0;
    UINT m_bitsPerPixel = 0;
};

} // namespace Zanthe
