// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace starbloom {

struct MovieFormat {
    int width = 0;           ///< pixels of each frame, 1..16384
    int height = 0;          ///< pixels of each frame, 1..16384
    int framesPerSecond = 0; ///< 1..1000
    int threads = 0;         ///< how many threads encode; 0: as many as the encoder likes on this machine
};

} // namespace starbloom
