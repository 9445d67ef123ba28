// PDF documents made by hand.
#pragma once

#include <string>

// A document of one page, 200 by 100 points, painted by `operators`. Its graphics state /Half
// paints with half the alpha. The entries are put into the page and the trailer.
std::string PdfOfOnePage(const std::string& operators, const std::string& pageEntries = "",
                         const std::string& trailerEntries = "");

// A document without any.
std::string PdfOfNoPage();
