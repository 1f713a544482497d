#include <KWDesktop/KWFrameConverter.h>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <cstdlib>
#include <mutex>
#include <new>
#include <vector>

/// Memory of pictures that are gone, all of one size. A picture that lives on keeps it alive.
struct KWFrameConverter::Pool {
    ~Pool() {
        for (void* const one : free)
            std::free(one);
    }

    void* take(std::size_t bytes) {
        const std::lock_guard lock(mutex);
        if (bytes != size) {
            for (void* const one : free)
                std::free(one);
            free.clear();
            size = bytes;
        }
        if (free.empty())
            return std::aligned_alloc(alignment, bytes);
        void* const one = free.back();
        free.pop_back();
        return one;
    }

    void give(void* memory, std::size_t bytes) {
        const std::lock_guard lock(mutex);
        if (bytes == size && free.size() < keptFree)
            free.push_back(memory);
        else
            std::free(memory);
    }

    static constexpr std::size_t alignment = 64;
    static constexpr std::size_t keptFree = 4;

    std::mutex mutex;
    std::size_t size = 0;
    std::vector<void*> free;
};

struct KWFrameConverter::Scaler {
    ~Scaler() { sws_freeContext(context); }

    SwsContext* context = nullptr;
};

namespace {

bool hasAlpha(AVPixelFormat format) {
    const AVPixFmtDescriptor* const description = av_pix_fmt_desc_get(format);
    return description && (description->flags & AV_PIX_FMT_FLAG_ALPHA);
}

/// Frames with all 256 levels, under the names that do not say so.
AVPixelFormat plainFormat(AVPixelFormat format, bool& isFullRange) {
    const auto full = [&](AVPixelFormat plain) {
        isFullRange = true;
        return plain;
    };
    switch (format) {
    case AV_PIX_FMT_YUVJ411P:
        return full(AV_PIX_FMT_YUV411P);
    case AV_PIX_FMT_YUVJ420P:
        return full(AV_PIX_FMT_YUV420P);
    case AV_PIX_FMT_YUVJ422P:
        return full(AV_PIX_FMT_YUV422P);
    case AV_PIX_FMT_YUVJ440P:
        return full(AV_PIX_FMT_YUV440P);
    case AV_PIX_FMT_YUVJ444P:
        return full(AV_PIX_FMT_YUV444P);
    default:
        return format;
    }
}

/// A frame that does not say how its colours are coded is taken for what its size suggests.
int colorsOf(const AVFrame& frame) {
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED && frame.colorspace != AVCOL_SPC_RESERVED)
        return frame.colorspace;
    return frame.height >= 720 ? SWS_CS_ITU709 : SWS_CS_ITU601;
}

} // namespace

KWFrameConverter::KWFrameConverter(const QTransform& orientation)
    : _orientation(orientation), _pool(std::make_shared<Pool>()),
      _scaler(std::make_unique<Scaler>()) {}

KWFrameConverter::~KWFrameConverter() = default;

QImage KWFrameConverter::imageOfFrame(const AVFrame& frame) {
    if (frame.width <= 0 || frame.height <= 0)
        return {};
    bool isFullRange = frame.color_range == AVCOL_RANGE_JPEG;
    const AVPixelFormat source = plainFormat(static_cast<AVPixelFormat>(frame.format), isFullRange);
    _scaler->context = sws_getCachedContext(_scaler->context, frame.width, frame.height, source,
                                            frame.width, frame.height, AV_PIX_FMT_BGRA,
                                            SWS_BILINEAR, nullptr, nullptr, nullptr);
    if (!_scaler->context)
        return {};
    const int unity = 1 << 16;
    sws_setColorspaceDetails(_scaler->context, sws_getCoefficients(colorsOf(frame)), isFullRange,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, unity, unity);

    // The converter writes whole vectors, also past the end of the last line.
    const auto line = (static_cast<std::size_t>(frame.width) * 4 + 63) / 64 * 64;
    const std::size_t bytes = line * static_cast<std::size_t>(frame.height) + Pool::alignment;
    void* const memory = _pool->take(bytes);
    if (!memory)
        return {};
    struct Loan {
        std::shared_ptr<Pool> pool;
        void* memory;
        std::size_t bytes;
    };
    auto* const loan = new Loan{_pool, memory, bytes};
    const auto end = [](void* ended) {
        const std::unique_ptr<Loan> one(static_cast<Loan*>(ended));
        one->pool->give(one->memory, one->bytes);
    };
    const bool isTranslucent = hasAlpha(source);
    QImage image(static_cast<uchar*>(memory), frame.width, frame.height,
                 static_cast<qsizetype>(line),
                 isTranslucent ? QImage::Format_ARGB32 : QImage::Format_RGB32, end, loan);
    if (image.isNull()) {
        end(loan);
        return {};
    }
    auto* target = static_cast<std::uint8_t*>(memory);
    const int stride = static_cast<int>(line);
    if (sws_scale(_scaler->context, frame.data, frame.linesize, 0, frame.height, &target,
                  &stride) <= 0)
        return {};
    if (isTranslucent)
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
    return turned(std::move(image));
}

QImage KWFrameConverter::turned(QImage image) const {
    if (_orientation.isIdentity())
        return image;
    QTransform turn = _orientation;
    if (turn.determinant() < 0) {
        image.mirror(true, false);
        turn = QTransform(-turn.m11(), -turn.m12(), turn.m21(), turn.m22(), 0, 0);
    }
    return turn.isIdentity() ? image : image.transformed(turn);
}
