// A movie file as it is written: samples first, then the movie's structure.
#pragma once

#include "platform/quicktime/movies/movie_model.h"

#include <string>

namespace qt {

/// The file is a QuickTime movie: type, sample data, structure. Reads see what was appended.
class StorageFile final : public GrowingData {
public:
    StorageFile() = default;
    ~StorageFile() override;

    /// Makes the file and begins its sample data.
    OSErr Create(const std::string& path, bool replace);
    /// Takes a file that is there; what is appended goes behind its last byte.
    OSErr OpenForAppending(const std::string& path);
    /// Takes a file that is there, for BeginRecording. Nobody else may write to it from now on, as far as the
    /// file system's advisory locks tell them.
    OSErr OpenForRecording(const std::string& path);
    /// Empties the file and begins its sample data. The structure goes in front of the samples: whatever
    /// happens while more of them are appended, the file has what it had when it was finished last.
    OSErr BeginRecording();
    /// Ends the sample data and writes the structure. Samples may follow; then it has to be finished anew.
    OSErr Finish(std::span<const std::byte> structure);

    OSErr Append(std::span<const std::byte> bytes) override;
    [[nodiscard]] std::uint64_t GetSize() const noexcept override { return end_; }
    std::size_t Read(std::uint64_t offset, std::span<std::byte> buffer) noexcept override;

    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    OSErr Begin();
    [[nodiscard]] std::uint64_t SampleDataHeader() const;
    [[nodiscard]] Bytes HeaderOfSamples() const;
    OSErr FinishInFront(std::span<const std::byte> structure) const;
    OSErr FinishBehind(std::span<const std::byte> structure) const;

    std::string path_;
    int descriptor_ = -1;
    std::uint64_t room_ = 0; ///< bytes in front of the sample data for the structure
    std::uint64_t end_ = 0;  ///< of the sample data
};

} // namespace qt
