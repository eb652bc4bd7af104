// A database host in a few lines, for tests of what runs inside the plug-in.
#pragma once

#include "platform/fmwrapper/call_block.h"
#include "platform/fmwrapper/host_engine.h"
#include "platform/fmwrapper/session.h"
#include "tests/support/files.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvane::test {

/// While it lives, it is the host's engine and its call block is the current one.
class FakeHost : public fm::HostEngine {
public:
    FakeHost();
    ~FakeHost() override;
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    FM_Error Register(const fm::ExternalFunction& function) override;
    FM_Error Unregister(std::uint32_t plugin_id, std::int16_t function_id) override;
    FM_Error Evaluate(const std::u16string& expression, FM_Data& result) override;

    FM_CallBlock block{};

    /// What Get(FilePath) gives; none: every evaluation fails.
    std::optional<std::u16string> file_path;
    /// This function id is refused with kFM_ErrorWrongParameter.
    std::optional<std::int16_t> refused_id;

    std::vector<fm::ExternalFunction> registered;
    std::vector<std::pair<std::uint32_t, std::int16_t>> unregistered;
};

/// An empty folder that is deleted with this object. While it lives, the session has no other drive than
/// those that it maps; the session is then put back as it was.
class ScratchDrives {
public:
    ScratchDrives();
    ~ScratchDrives();
    ScratchDrives(const ScratchDrives&) = delete;
    ScratchDrives& operator=(const ScratchDrives&) = delete;

    /// Makes the folder's subfolder the drive ("C:") or share ("\\srv\share"); returns its Unix path.
    std::string Map(const std::string& root, const std::string& subfolder) const;

    /// Unix path of an entry of the folder.
    [[nodiscard]] std::string Path(const std::string& relative) const;
    /// Makes a folder with its parents, or a file with its parents; returns its Unix path.
    std::string MakeFolder(const std::string& relative) const;
    std::string MakeFile(const std::string& relative, const std::string& bytes = "x") const;

private:
    ScratchFolder folder_;
    fm::Session session_;
};

} // namespace corvane::test
