// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace starbloom {

// What all users of FFmpeg's libraries in this folder share. Not for headers that others include.

template <auto free>
struct FreeByAddress {
    template <typename T>
    void operator()(T* object) const {
        free(&object);
    }
};

/// Closes the file too, in case of a movie that was given up.
struct FreeContainer {
    void operator()(AVFormatContext* container) const {
        avio_closep(&container->pb);
        avformat_free_context(container);
    }
};

template <typename T, auto free>
using PointerTo = std::unique_ptr<T, FreeByAddress<free>>;

using EncoderPointer = PointerTo<AVCodecContext, avcodec_free_context>;
using FramePointer = PointerTo<AVFrame, av_frame_free>;
using PacketPointer = PointerTo<AVPacket, av_packet_free>;
using InputPointer = PointerTo<AVFormatContext, avformat_close_input>;
using ContainerPointer = std::unique_ptr<AVFormatContext, FreeContainer>;

/// The libraries' own words for an error. Behind them, in brackets, what they said last about an error in this thread,
/// which often tells more; it is told once.
std::string reasonOf(int averror);

/// Sends what the libraries have to say to the log under "export", as information: what matters of it comes up again in
/// the reason of a failure. They have one log for the whole process, and its default is standard error. Any thread may
/// call it, any number of times; what they said in this thread before is no reason any more.
void forwardLibavLog();

/// How many threads to ask an encoder for; 0: it chooses. With more than it can use well, the libraries complain.
int encoderThreads(int threads);

/// Hands a frame to an encoder, or none for the end, and each packet that is ready then to `take`, which answers
/// whether to go on. The packet is working memory. Gives the libraries' error, or 0.
int encodeFrame(AVCodecContext& encoder, const AVFrame* frame, AVPacket& packet,
                const std::function<bool(AVPacket& packet)>& take);

} // namespace starbloom
