#include "tests/support/fake_host.h"

#include "platform/fmwrapper/memory_blocks.h"
#include "platform/fmwrapper/objects.h"
#include "plugin/call_block.h"

#include <filesystem>

namespace corvane::test {

FakeHost::FakeHost() {
    fm::InstallServices(block);
    SetCurrentCallBlock(&block);
    fm::SetHostEngine(this);
}

FakeHost::~FakeHost() {
    fm::SetHostEngine(nullptr);
    SetCurrentCallBlock(nullptr);
}

FM_Error FakeHost::Register(const fm::ExternalFunction& function) {
    if (refused_id == function.id) return kFM_ErrorWrongParameter;
    registered.push_back(function);
    return kFM_ErrorNone;
}

FM_Error FakeHost::Unregister(std::uint32_t plugin_id, std::int16_t function_id) {
    unregistered.emplace_back(plugin_id, function_id);
    return kFM_ErrorNone;
}

FM_Error FakeHost::Evaluate(const std::u16string& expression, FM_Data& result) {
    if (expression != u"Get(FilePath)" || !file_path) return kFM_ErrorWrongParameter;
    result.SetText(*file_path);
    return kFM_ErrorNone;
}

ScratchDrives::ScratchDrives() : session_(fm::CurrentSession()) {
    fm::CurrentSession().drives.clear();
}

ScratchDrives::~ScratchDrives() {
    fm::CurrentSession() = session_;
}

std::string ScratchDrives::Map(const std::string& root, const std::string& subfolder) const {
    std::string folder = MakeFolder(subfolder);
    fm::CurrentSession().drives.push_back(*fm::ParseDrive(root + "=" + folder));
    return folder;
}

std::string ScratchDrives::Path(const std::string& relative) const {
    return relative.empty() ? folder_.Path() : folder_.Path() + "/" + relative;
}

std::string ScratchDrives::MakeFolder(const std::string& relative) const {
    std::filesystem::create_directories(Path(relative));
    return Path(relative);
}

std::string ScratchDrives::MakeFile(const std::string& relative, const std::string& bytes) const {
    WriteBytes(Path(relative), bytes);
    return Path(relative);
}

} // namespace corvane::test
