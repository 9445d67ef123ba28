#include "tests/support/PdfBytes.h"

#include <cstdio>
#include <vector>

namespace {

std::string PdfOf(const std::vector<std::string>& objects, const std::string& trailerEntries) {
    std::string file = "%PDF-1.4\n";
    std::vector<std::size_t> offsets;
    for (const std::string& object : objects) {
        offsets.push_back(file.size());
        file += std::to_string(offsets.size()) + " 0 obj\n" + object + "\nendobj\n";
    }
    const std::string count = std::to_string(objects.size() + 1);
    const std::size_t table = file.size();
    file += "xref\n0 " + count + "\n0000000000 65535 f \n";
    for (const std::size_t offset : offsets) {
        char line[21];
        std::snprintf(line, sizeof(line), "%010zu 00000 n \n", offset);
        file += line;
    }
    return file + "trailer\n<< /Size " + count + " /Root 1 0 R " + trailerEntries +
           " >>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
}

const char* const Catalog = "<< /Type /Catalog /Pages 2 0 R >>";

} // namespace

std::string PdfOfOnePage(const std::string& operators, const std::string& pageEntries,
                         const std::string& trailerEntries) {
    return PdfOf({Catalog, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                  "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] " + pageEntries +
                      " /Contents 4 0 R /Resources << /ExtGState << /Half << /ca 0.5 >> >> >> >>",
                  "<< /Length " + std::to_string(operators.size()) + " >>\nstream\n" + operators +
                      "\nendstream"},
                 trailerEntries);
}

std::string PdfOfNoPage() {
    return PdfOf({Catalog, "<< /Type /Pages /Kids [] /Count 0 >>"}, "");
}
