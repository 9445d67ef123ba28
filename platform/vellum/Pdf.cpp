#include "platform/vellum/Pdf.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/wic/CairoSurface.h"
#include "platform/win32/Path.h"

// Behind the headers of this layer: GLib has macros where they have constants.
#include <poppler.h>

namespace Vellum {

namespace {

struct DropObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};

using DocumentPtr = std::unique_ptr<PopplerDocument, DropObject>;
using PagePtr = std::unique_ptr<PopplerPage, DropObject>;

// A descriptor of the regular file at `path`, the caller's; -1 for anything else. Nobody waits on a
// pipe.
int OpenRegularFile(const std::string& path) {
    const int descriptor =
        open(win32::ExistingPath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);

    struct stat status {};

    if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(descriptor);
        return -1;
    }
    return descriptor;
}

DocumentPtr OpenDocument(const std::string& path) {
    const int descriptor = OpenRegularFile(path);
    if (descriptor < 0) {
        return nullptr;
    }
    GError* error = nullptr;
    // The descriptor is poppler's from here on, also when it fails.
    DocumentPtr document(poppler_document_new_from_fd(descriptor, nullptr, &error));
    g_clear_error(&error);
    return document;
}

wic::CairoSurfacePtr SurfaceOver(void* rows, int width, int height, int stride) {
    return wic::CairoSurfacePtr(cairo_image_surface_create_for_data(
        static_cast<unsigned char*>(rows), CAIRO_FORMAT_ARGB32, width, height, stride));
}

bool Draw(PopplerPage& page, cairo_surface_t& surface, int width, int height) {
    double pageWidth = 0;
    double pageHeight = 0;
    poppler_page_get_size(&page, &pageWidth, &pageHeight);
    if (!(pageWidth > 0 && pageHeight > 0)) {
        return false;
    }
    const wic::CairoContextPtr context(cairo_create(&surface));
    cairo_set_operator(context.get(), CAIRO_OPERATOR_CLEAR);
    cairo_paint(context.get());
    cairo_set_operator(context.get(), CAIRO_OPERATOR_OVER);
    cairo_scale(context.get(), width / pageWidth, height / pageHeight);
    poppler_page_render(&page, context.get());
    return cairo_status(context.get()) == CAIRO_STATUS_SUCCESS;
}

} // namespace

class Pdf::Document {
public:
    explicit Document(DocumentPtr document)
        : m_document(std::move(document)) {}

    PagePtr Page(int number) const {
        const bool exists = number >= 1 && number <= poppler_document_get_n_pages(m_document.get());
        return PagePtr(exists ? poppler_document_get_page(m_document.get(), number - 1) : nullptr);
    }

private:
    DocumentPtr m_document;
};

Pdf::Pdf(const std::string& path) {
    if (DocumentPtr document = OpenDocument(path)) {
        m_document = std::make_unique<const Document>(std::move(document));
    }
}

Pdf::~Pdf() = default;

bool Pdf::IsValid() const {
    return m_document != nullptr;
}

bool Pdf::Rasterize(int width, int height, int page, void* destination, int stride) const {
    if (!IsValid() || width < 1 || height < 1 || destination == nullptr) {
        return false;
    }
    const PagePtr drawn = m_document->Page(page);
    const wic::CairoSurfacePtr surface = SurfaceOver(destination, width, height, stride);
    if (!drawn || cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
        return false;
    }
    const bool done = Draw(*drawn, *surface, width, height);
    cairo_surface_finish(surface.get());
    return done;
}

} // namespace Vellum
