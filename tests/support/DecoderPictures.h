// Asks a decoder for its pictures, in order and out of it.
#pragma once

#include <optional>
#include <vector>

#include "tests/support/BgraPicture.h"
#include "zanthe/core/VideoDecoder.h"

// The picture at `time`; nothing where the decoder answers that there is none.
std::optional<BgraPicture> PictureAt(Zanthe::VideoDecoder& decoder, Zanthe::MediaTime time);

// Reads the picture at each of `times`, in their order and then thrice at random, and expects the
// same pixels each time. What was read in order.
std::vector<BgraPicture> ExpectAnyOrder(Zanthe::VideoDecoder& decoder,
                                        const std::vector<Zanthe::MediaTime>& times);

// Whether each picture looks like the one expected, and unlike the one before.
void ExpectLikeness(const std::vector<BgraPicture>& pictures,
                    const std::vector<BgraPicture>& expected);

// The middles of `count` pictures, `rate` a second.
std::vector<Zanthe::MediaTime> MiddlesOf(int count, int rate);
