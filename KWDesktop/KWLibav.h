#pragma once

#include <KWDesktop/KWMovieDecoder.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

/// What the libraries hold for one decoder.
struct KWMovieDecoder::Libav {
    struct FormatDeleter {
        void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
    };
    struct CodecDeleter {
        void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    };
    struct PacketDeleter {
        void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    };
    struct InputDeleter {
        void operator()(AVIOContext* input) const;
    };

    /// For a place from which other packets follow than those read before.
    void forgetPackets();

    std::shared_ptr<const KWMovieFile> file;
    std::int64_t position = 0; ///< of the next byte that the input reads
    std::unique_ptr<AVIOContext, InputDeleter> input;
    std::unique_ptr<AVFormatContext, FormatDeleter> format;
    std::unique_ptr<AVCodecContext, CodecDeleter> codec;
    std::unique_ptr<AVPacket, PacketDeleter> packet;
    AVStream* stream = nullptr; ///< the format's
    bool hasPacket = false;     ///< whether one is read and not yet decoded
    bool isReadToEnd = false;
    bool isDrained = false; ///< whether the decoder knows of the end
    int packetsLeft = -1;   ///< how many may still be read; negative for all
    bool isIntraOnly = false;
    std::int64_t lastTicks = AV_NOPTS_VALUE;
    std::int64_t usualTicks = 1; ///< from one frame to the next
};

/// The libraries' words for an error.
QString KWLibavText(int code);
