// PDF documents made by hand.
#pragma once

#include <string>

// A document of one page, 200 by 100 points, painted by `operators`. Its graphics state /Half
// paints with half the alpha.
std::string PdfOfOnePage(const std::string& operators);
