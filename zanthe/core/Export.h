// Marks what libzanthe.so shows to its users; everything else in the library is hidden.
//
//     class ZANTHE_API Bitmap { ... };
#pragma once

#define ZANTHE_API __attribute__((visibility("default")))
