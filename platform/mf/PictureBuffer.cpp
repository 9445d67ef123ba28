#include "platform/mf/PictureBuffer.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/av/PictureConversion.h"
#include "platform/av/PictureScaling.h"
#include "platform/mf/CountedBuffer.h"
#include "platform/mf/DXGIBuffer.h"
#include "platform/mf/PixelPool.h"

namespace mf {

namespace {

// Keeps the picture, and so its surface, for whoever uses it behind the sample's end.
class Surface final : public com::Object<IHardwareSurface> {
public:
    explicit Surface(av::PicturePtr picture)
        : m_picture(std::move(picture)) {}

    HRESULT GetFrame(const void** frame) override {
        if (frame == nullptr) {
            return E_POINTER;
        }
        *frame = &m_picture->Frame();
        return S_OK;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IHardwareSurface, static_cast<IHardwareSurface*>(this));
    }

    const av::PicturePtr m_picture;
};

class PictureBuffer final : public CountedBuffer<IMFDXGIBuffer> {
public:
    PictureBuffer(av::PicturePtr picture, PixelLayout layout, PixelSize inMemory, bool onDevice)
        : CountedBuffer(BytesOf(layout, inMemory), BytesOf(layout, inMemory))
        , m_layout(layout)
        , m_size(inMemory)
        , m_surface(onDevice ? com::MakeOwned<Surface>(picture) : com::ComPtr<Surface>())
        , m_picture(std::move(picture)) {}

    HRESULT GetResource(REFIID iid, void** object) override {
        return m_surface->QueryInterface(iid, object);
    }

    HRESULT GetSubresourceIndex(UINT* subresource) override {
        if (subresource == nullptr) {
            return E_POINTER;
        }
        *subresource = 0;
        return S_OK;
    }

private:
    void* Find(REFIID iid) override {
        if (iid == IID_IMFDXGIBuffer && m_surface) {
            return static_cast<IMFDXGIBuffer*>(this);
        }
        return com::Among(iid, IID_IMFMediaBuffer, static_cast<IMFMediaBuffer*>(this));
    }

    HRESULT Prepare(BYTE** bytes) override {
        if (m_pixels.Bytes() == nullptr) {
            PixelPool::Block pixels = PixelPool::Shared()->Take(BytesOf(m_layout, m_size));
            if (!Convert(pixels.Bytes())) {
                return E_FAIL;
            }
            m_pixels = std::move(pixels);
            // The decoder gets its surface back: nothing asks for it any more.
            m_picture.reset();
        }
        *bytes = m_pixels.Bytes();
        return S_OK;
    }

    bool Convert(BYTE* bytes) const {
        const PixelSize own = SizeIn(m_layout, {m_picture->Width(), m_picture->Height()});
        if (own == m_size) {
            return Write(*m_picture, bytes);
        }
        const auto scaled = av::ScalePicture(*m_picture, m_size.width, m_size.height);
        return scaled != nullptr && Write(*scaled, bytes);
    }

    bool Write(const av::Picture& picture, BYTE* bytes) const {
        const std::ptrdiff_t width = m_size.width;
        if (m_layout == PixelLayout::Bgra) {
            return av::ConvertToBgra(picture, bytes, 4 * width);
        }
        const std::ptrdiff_t luma = width * m_size.height;
        if (picture.Width() != m_size.width || picture.Height() != m_size.height) {
            // The column and the row that make the size even are nobody's pixels.
            std::fill_n(bytes, luma, BYTE{0});
        }
        return av::ConvertToNv12(picture, bytes, width, bytes + luma);
    }

    const PixelLayout m_layout;
    const PixelSize m_size;
    const com::ComPtr<Surface> m_surface; // empty: the picture is in memory
    av::PicturePtr m_picture;             // until it is converted
    PixelPool::Block m_pixels;
};

constexpr int Even(int number) {
    return number + number % 2;
}

bool BelongsOn(IHardwareDevice* device, const av::Picture& picture) {
    return device != nullptr &&
           device->TakeOver(&picture.Frame(), picture.OnDevice() ? TRUE : FALSE) == S_OK;
}

} // namespace

PixelSize SizeIn(PixelLayout layout, PixelSize size) {
    return layout == PixelLayout::Bgra ? size : PixelSize{Even(size.width), Even(size.height)};
}

DWORD BytesOf(PixelLayout layout, PixelSize inMemory) {
    if (inMemory.width <= 0 || inMemory.height <= 0) {
        return 0;
    }
    const std::int64_t pixels = std::int64_t{inMemory.width} * inMemory.height;
    const std::int64_t bytes = layout == PixelLayout::Bgra ? 4 * pixels : pixels + pixels / 2;
    return bytes > std::numeric_limits<std::int32_t>::max() ? 0 : static_cast<DWORD>(bytes);
}

HRESULT CreatePictureBuffer(av::PicturePtr picture, PixelLayout layout, PixelSize inMemory,
                            IHardwareDevice* device, IMFMediaBuffer** buffer) {
    if (BytesOf(layout, inMemory) == 0) {
        *buffer = nullptr;
        return E_OUTOFMEMORY;
    }
    const bool onDevice = BelongsOn(device, *picture);
    return com::Make<PictureBuffer>(buffer, std::move(picture), layout, inMemory, onDevice);
}

} // namespace mf
