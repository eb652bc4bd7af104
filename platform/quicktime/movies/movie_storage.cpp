#include "platform/quicktime/movies/movie_storage.h"

#include "platform/quicktime/movies/file_io.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/movie_writer.h"
#include "platform/win32/paths.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <unistd.h>

namespace qt {
namespace {

constexpr std::uint64_t kFileType = 20;            ///< bytes of the file type
constexpr std::uint64_t kSampleDataHeader = 16;    ///< bytes of the header, with room for a 64-bit size
constexpr std::uint64_t kRecordingRoom = 1U << 17; ///< for the chunks of 4 GiB of samples

} // namespace

StorageFile::~StorageFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

OSErr StorageFile::Create(const std::string& path, bool replace) {
    descriptor_ = CreateFile(path, replace);
    if (descriptor_ < 0) return static_cast<OSErr>(descriptor_);
    path_ = path;
    return Begin();
}

OSErr StorageFile::OpenForRecording(const std::string& path) {
    descriptor_ = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (descriptor_ < 0) return WriteError(errno);
    path_ = path;
    room_ = kRecordingRoom;
    return ::flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK ? wrPermErr : noErr;
}

OSErr StorageFile::BeginRecording() {
    return ::ftruncate(descriptor_, 0) == 0 ? Begin() : WriteError(errno);
}

OSErr StorageFile::Begin() {
    AtomWriter start;
    start.Atom(Code("ftyp"), [&] {
        start.Put32(Code("qt  "));
        start.Put32(0x20050300);
        start.Put32(Code("qt  "));
    });
    if (room_ > 0) start.Atom(Code("free"), [&] { start.Zeros(room_ - 8); });
    start.Atom(Code("wide"), [] {});
    start.Put32(0); // to the end of the file, until it is finished
    start.Put32(Code("mdat"));
    end_ = start.Size();
    return WriteAt(descriptor_, 0, start.Take());
}

OSErr StorageFile::OpenForAppending(const std::string& path) {
    descriptor_ = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (descriptor_ < 0) return WriteError(errno);
    const off_t size = ::lseek(descriptor_, 0, SEEK_END);
    if (size < 0) return ioErr;
    path_ = path;
    end_ = static_cast<std::uint64_t>(size);
    return noErr;
}

std::uint64_t StorageFile::SampleDataHeader() const {
    return kFileType + room_;
}

Bytes StorageFile::HeaderOfSamples() const {
    AtomWriter header;
    const std::uint64_t size = end_ - SampleDataHeader() - kSampleDataHeader + 8;
    if (size <= std::numeric_limits<std::uint32_t>::max()) {
        header.Atom(Code("wide"), [] {});
        header.Put32(static_cast<std::uint32_t>(size));
        header.Put32(Code("mdat"));
    } else {
        header.Put32(1);
        header.Put32(Code("mdat"));
        header.Put64(size + 8);
    }
    return header.Take();
}

OSErr StorageFile::Finish(std::span<const std::byte> structure) {
    const bool fits_in_front = structure.size() + 8 <= room_;
    const OSErr code = fits_in_front ? FinishInFront(structure) : FinishBehind(structure);
    return code == noErr ? CheckWrites(descriptor_) : code;
}

OSErr StorageFile::FinishBehind(std::span<const std::byte> structure) const {
    if (const OSErr code = WriteAt(descriptor_, SampleDataHeader(), HeaderOfSamples()); code != noErr)
        return code;
    if (const OSErr code = WriteAt(descriptor_, end_, structure); code != noErr) return code;
    return room_ > 0 ? FinishInFront({}) : noErr; // what stands there is not true any more
}

// In one write, so that there is always a structure. The sample data stays without an end of its own, for the
// file's end is also that of samples which follow.
OSErr StorageFile::FinishInFront(std::span<const std::byte> structure) const {
    AtomWriter front;
    front.Put(structure);
    front.Atom(Code("free"), [&] { front.Zeros(room_ - structure.size() - 8); });
    return WriteAt(descriptor_, kFileType, front.Take());
}

OSErr StorageFile::Append(std::span<const std::byte> bytes) {
    const OSErr code = WriteAt(descriptor_, end_, bytes);
    if (code == noErr) end_ += bytes.size();
    return code;
}

std::size_t StorageFile::Read(std::uint64_t offset, std::span<std::byte> buffer) noexcept {
    if (offset >= end_) return 0;
    return ReadAt(descriptor_, offset, buffer.first(std::min<std::uint64_t>(buffer.size(), end_ - offset)));
}

std::string UnixPathOf(Handle reference, OSType type) {
    if (type != kAliasDataHandler) return {};
    const auto bytes = HandleBytes(reference);
    std::u16string path(bytes.size() / sizeof(char16_t), u'\0');
    if (!path.empty()) std::memcpy(path.data(), bytes.data(), path.size() * sizeof(char16_t));
    const win32::UnixPath target = win32::ToUnixPath(path);
    const bool usable =
        target.error == ERROR_SUCCESS || target.error == ERROR_FILE_NOT_FOUND; // the latter: to create
    return usable ? target.path : std::string();
}

OSErr ReferenceToUnixPath(const std::string& path, DataReference& reference) {
    const auto native = win32::ToNativePath(path);
    if (!native.has_value()) return couldNotResolveDataRef;
    return QTNewDataReferenceFromFullPathCFString(*native, kQTWindowsPathStyle, 0, reference);
}

OSErr OpenMovieStorage(MovieRecord& movie) {
    const std::string path = UnixPathOf(movie.file.handle.get(), movie.file.type);
    if (path.empty()) return noDefaultDataRef;
    auto file = std::make_shared<StorageFile>();
    const OSErr code = file->OpenForAppending(path);
    if (code == noErr) movie.storage = std::move(file);
    return code;
}

namespace {

struct CreatedStorage {
    OSErr code = noErr;
    std::shared_ptr<StorageFile> file;
    DataReference reference;
};

CreatedStorage CreateStorage(Handle data_reference, OSType type, std::uint32_t flags) {
    CreatedStorage created;
    if (type != kAliasDataHandler) return {cantFindHandler, nullptr, {}};
    created.reference = CopyDataReference(data_reference, type);
    if (created.reference.handle.get() == nullptr) return {memFullErr, nullptr, {}};
    const std::string path = UnixPathOf(data_reference, type);
    if (path.empty()) return {fnfErr, nullptr, {}};
    created.file = std::make_shared<StorageFile>();
    created.code = created.file->Create(path, (flags & createMovieFileDeleteCurFile) != 0);
    return created;
}

} // namespace
} // namespace qt

OSErr CreateMovieStorage(Handle data_reference, OSType type, OSType, std::int32_t, std::uint32_t flags,
                         DataHandler* storage, Movie* movie) {
    *storage = nullptr;
    *movie = nullptr;
    qt::CreatedStorage created = qt::CreateStorage(data_reference, type, flags);
    if (created.code != noErr) return qt::MoviesError(created.code);
    qt::OwnedMovie made(NewMovie(0));
    made->storage = created.file;
    made->file = std::move(created.reference);
    *storage = std::make_unique<std::shared_ptr<qt::StorageFile>>(std::move(created.file)).release();
    *movie = made.release();
    return qt::MoviesError(noErr);
}

OSErr AddMovieToStorage(Movie movie, DataHandler storage) {
    if (movie == nullptr || storage == nullptr)
        return qt::MoviesError(movie == nullptr ? invalidMovie : paramErr);
    return qt::MoviesError(qt::WriteMovie(*movie, **storage, qt::ForeignSamples::kReferTo));
}

void CloseMovieStorage(DataHandler storage) {
    const std::unique_ptr<std::shared_ptr<qt::StorageFile>> closed(storage);
}

Movie FlattenMovieDataToDataRef(Movie movie, std::uint32_t, Handle data_reference, OSType type, OSType,
                                std::int32_t, std::uint32_t create_flags) {
    if (movie == nullptr) {
        qt::MoviesError(invalidMovie);
        return nullptr;
    }
    Movie flattened = nullptr;
    {
        const qt::CreatedStorage created = qt::CreateStorage(data_reference, type, create_flags);
        if (qt::MoviesError(created.code) != noErr) return nullptr;
        if (qt::MoviesError(qt::WriteMovie(*movie, *created.file, qt::ForeignSamples::kCopy)) != noErr)
            return nullptr;
    }
    NewMovieFromDataRef(&flattened, data_reference, type);
    return flattened;
}
