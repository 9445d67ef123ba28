#include "zanthe/images/PdfImageLoader.h"

#include <array>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include <boost/make_shared.hpp>

#include "platform/vellum/Pdf.h"

namespace Zanthe {

namespace {

constexpr int FirstPage = 1;
constexpr int BytesPerPixel = 4;

} // namespace

bool LooksLikePdf(const std::string& path) {
    std::array<char, 1024> start{};
    std::ifstream stream(path, std::ios::binary);
    stream.read(start.data(), start.size());
    const std::string_view text(start.data(), static_cast<std::size_t>(stream.gcount()));
    return text.find("%PDF-") != std::string_view::npos;
}

PdfImageLoader::PdfImageLoader(const std::string& path, int value)
    : m_document(boost::make_shared<Vellum::Pdf>(path))
    , m_value(value) {
    if (!m_document->IsValid()) {
        throw std::runtime_error("PdfImageLoader: Couldn't open filename");
    }
}

PdfImageLoader::~PdfImageLoader() = default;

int PdfImageLoader::GetWidth() const {
    if (!m_bitmap) {
        throw std::runtime_error("PdfImageLoader: Can't GetWidth if _Bitmap is nullptr");
    }
    return m_bitmap->GetWidth();
}

int PdfImageLoader::GetHeight() const {
    if (!m_bitmap) {
        throw std::runtime_error("PdfImageLoader: Can't GetHeight if _Bitmap is nullptr");
    }
    return m_bitmap->GetHeight();
}

void PdfImageLoader::Load(double, int width, int height) {
    Rasterize(width, height);
}

bool PdfImageLoader::IsVectorResizable() const {
    return true;
}

void PdfImageLoader::Resize(int width, int height) {
    Rasterize(width, height);
}

boost::shared_ptr<Bitmap> PdfImageLoader::GetBitmap() {
    return m_bitmap;
}

void PdfImageLoader::Rasterize(int width, int height) {
    if (width < 1 || height < 1) {
        throw std::runtime_error("PdfImageLoader: width and height must be > 0");
    }
    if (m_bitmap && m_bitmap->GetWidth() == width && m_bitmap->GetHeight() == height) {
        return;
    }
    m_bitmap = boost::make_shared<Bitmap>(width, height, true);
    if (!m_document->Rasterize(width, height, FirstPage, m_bitmap->GetBits(),
                               width * BytesPerPixel)) {
        throw std::runtime_error("PdfImageLoader: Couldn't load a bitmap");
    }
}

} // namespace Zanthe
