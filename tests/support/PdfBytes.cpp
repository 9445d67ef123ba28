#include "tests/support/PdfBytes.h"

#include <cstdio>
#include <vector>

std::string PdfOfOnePage(const std::string& operators) {
    std::string file = "%PDF-1.4\n";
    std::vector<std::size_t> offsets;
    const auto add = [&](const std::string& object) {
        offsets.push_back(file.size());
        file += std::to_string(offsets.size()) + " 0 obj\n" + object + "\nendobj\n";
    };
    add("<< /Type /Catalog /Pages 2 0 R >>");
    add("<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] /Contents 4 0 R /Resources << "
        "/ExtGState << /Half << /ca 0.5 >> >> >> >>");
    add("<< /Length " + std::to_string(operators.size()) + " >>\nstream\n" + operators +
        "\nendstream");
    const std::size_t table = file.size();
    file += "xref\n0 5\n0000000000 65535 f \n";
    for (const std::size_t offset : offsets) {
        char line[21];
        std::snprintf(line, sizeof(line), "%010zu 00000 n \n", offset);
        file += line;
    }
    return file + "trailer\n<< /Size 5 /Root 1 0 R >>\nstartxref\n" + std::to_string(table) +
           "\n%%EOF\n";
}
