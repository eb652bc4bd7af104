// The movie file that a recording is written into.
#pragma once

#include "platform/quicktime/movies/movie_model.h"
#include "platform/quicktime/movies/movie_storage.h"

#include <chrono>

namespace qt {

class RecordingFile {
public:
    /// Takes a file that is there, and leaves it as it is.
    OSErr Open(Handle data_reference, OSType type, const PcmLayout& layout);
    /// Empties the file and makes it a movie without sound yet.
    OSErr Begin();

    /// Adds samples, and finishes the file when the last time is more than a second ago.
    OSErr Append(std::span<const std::byte> samples);
    OSErr Finish();

    [[nodiscard]] const std::string& Path() const { return storage_->Path(); }

private:
    using Clock = std::chrono::steady_clock;

    PcmLayout layout_;
    MemoryHandle description_;
    std::shared_ptr<StorageFile> storage_;
    OwnedMovie movie_;
    Track track_ = nullptr;
    Clock::time_point finished_;
};

} // namespace qt
