// The size of a picture that has to fit into bounds and keeps its aspect.
#pragma once

// Shrinks width and height, in pixels, to fit into maxWidth and maxHeight; a bound of 0 sets no
// limit on its axis. Never enlarges. A size that already fits, two bounds of 0 and a negative bound
// leave both untouched.
//
// With two bounds the free axis is rounded to nearest, ties away from zero; with one it is
// truncated, in single precision. Callers rely on both. No axis comes out below 1.
//
//     int width = 1920, height = 1080;
//     FitSizeToBounds(width, height, 0, 720);   // 1280 by 720
void FitSizeToBounds(int& width, int& height, int maxWidth, int maxHeight);
