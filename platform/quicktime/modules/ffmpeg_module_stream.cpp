#include "platform/quicktime/modules/ffmpeg_module_parts.h"

namespace qt {

AvStream::AvStream(Transfer read, Transfer write) {
    constexpr int kBuffer = 1 << 16;
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBuffer));
    if (buffer != nullptr)
        context_ = avio_alloc_context(buffer, kBuffer, write != nullptr ? 1 : 0, this, read, write, Seek);
    if (context_ == nullptr) av_free(buffer);
}

AvStream::~AvStream() {
    if (context_ != nullptr) av_freep(&context_->buffer);
    avio_context_free(&context_);
}

std::int64_t AvStream::Seek(void* stream, std::int64_t offset, int whence) {
    auto& self = *static_cast<AvStream*>(stream);
    const auto size = static_cast<std::int64_t>(self.Size());
    if ((whence & AVSEEK_SIZE) != 0) return size;
    const int from = whence & 3;
    if (from == SEEK_CUR) offset += static_cast<std::int64_t>(self.position_);
    if (from == SEEK_END) offset += size;
    if (offset < 0) return AVERROR(EINVAL);
    self.position_ = static_cast<std::uint64_t>(offset);
    return offset;
}

} // namespace qt
