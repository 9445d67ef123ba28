// File extensions, in the three ways in which this library reads them. Letters are compared without
// regard to the case of ASCII letters, whatever the locale says.
#pragma once

#include <string>
#include <string_view>

// The extension without its dot and in lower case: the text behind the last "." of what stands
// behind the last backslash. Empty when there is no dot. A forward slash is no separator here, so
// that "d:/x.y/z" has the extension "y/z".
std::wstring LowerExtension(const std::wstring& path);

// The text behind the last "." of the whole path, in lower case; the whole path when there is no
// dot in it, so that a file that is called just "avi" counts as one.
std::wstring LowerTextBehindLastDot(const std::wstring& path);

// The extension with its dot and in lower case: from the last "." on of the file name, which stands
// behind the last slash of either kind. Empty when the file name has no dot.
std::wstring LowerFileExtension(const std::wstring& path);

// `text` with A to Z as a to z.
std::wstring LowerCase(std::wstring text);

bool EqualIgnoringCase(std::wstring_view one, std::wstring_view other);
