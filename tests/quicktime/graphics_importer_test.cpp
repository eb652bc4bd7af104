#include "platform/quicktime/graphics_importer.h"

#include "platform/quicktime/data_references.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using corvane::test::Bytes;
using corvane::test::MadeImages;
using namespace std::string_literals;

qt::MemoryHandle HandleOf(const Bytes& bytes) {
    Handle handle = nullptr;
    EXPECT_EQ(PtrToHand(bytes.data(), &handle, static_cast<Size>(bytes.size())), noErr);
    return qt::MemoryHandle(handle);
}

class GraphicsImporters : public ::testing::Test {
protected:
    void SetUp() override { folder_ = images_.folder.Map("C:", "drive"); }

    /// Opens an importer on a file of the drive by its content.
    OSErr Open(const std::u16string& path) {
        qt::DataReference reference;
        EXPECT_EQ(QTNewDataReferenceFromFullPathCFString(path, kQTWindowsPathStyle, 0, reference), noErr);
        GraphicsImportComponent importer = nullptr;
        const OSErr code = GetGraphicsImporterForDataRef(reference.handle.get(), reference.type, &importer);
        importer_.reset(importer);
        EXPECT_EQ(importer != nullptr, code == noErr);
        return code;
    }

    MadeImages images_;
    std::string folder_;
    qt::OpenComponent importer_;
};

TEST_F(GraphicsImporters, ContentDecidesNotTheName) {
    const std::string png = images_.Make("-size 40x30 plasma:", "png24:drive/wrong.jpg");
    ASSERT_EQ(Open(u"C:\\wrong.jpg"), noErr);
    ImageDescription description;
    ASSERT_EQ(GraphicsImportGetImageDescription(importer_.get(), &description), noErr);
    EXPECT_EQ(description.cType, qt::Code("png "));
    Rect bounds;
    ASSERT_EQ(GraphicsImportGetNaturalBounds(importer_.get(), &bounds), noErr);
    EXPECT_EQ(bounds.right, 40);
    EXPECT_EQ(bounds.bottom, 30);
    std::uint32_t count = 0;
    EXPECT_EQ(GraphicsImportGetImageCount(importer_.get(), &count), noErr);
    EXPECT_EQ(count, 1U);
    std::uint64_t offset = 9;
    std::uint64_t size = 0;
    EXPECT_EQ(GraphicsImportGetDataOffsetAndSize(importer_.get(), &offset, &size), noErr);
    EXPECT_EQ(offset, 0U);
    EXPECT_EQ(size, corvane::test::FileBytes(png).size());
}

TEST_F(GraphicsImporters, FilesThatCannotBeOpened) {
    images_.folder.MakeFile("drive/text.png", "no picture");
    images_.folder.MakeFile("drive/empty.png", "");
    images_.folder.MakeFolder("drive/folder.png");
    ASSERT_EQ(mkfifo((folder_ + "/pipe.png").c_str(), 0600), 0);
    ASSERT_EQ(symlink("/dev/zero", (folder_ + "/zero.png").c_str()), 0);
    EXPECT_EQ(Open(u"C:\\missing.png"), fnfErr);
    EXPECT_EQ(Open(u"C:\\no folder\\missing.png"), fnfErr);
    EXPECT_EQ(Open(u"D:\\no drive.png"), fnfErr);
    EXPECT_EQ(Open(u"C:\\text.png"), badComponentType);
    EXPECT_EQ(Open(u"C:\\empty.png"), badComponentType);
    EXPECT_EQ(Open(u"C:\\folder.png"), notAFileErr);
    EXPECT_EQ(Open(u"C:\\pipe.png"), notAFileErr);
    EXPECT_EQ(Open(u"C:\\zero.png"), notAFileErr);
}

TEST_F(GraphicsImporters, AFileCutWhileOpenIsBadData) {
    // The comment moves the frame header out of what was read for recognising the content.
    const std::string path =
        images_.Make("-size 40x30 plasma: -set comment $(printf %09000d 0)", "drive/cut.jpg");
    ASSERT_EQ(Open(u"C:\\cut.jpg"), noErr);
    ASSERT_EQ(truncate(path.c_str(), 5000), 0);
    ImageDescription description;
    EXPECT_EQ(GraphicsImportGetImageDescription(importer_.get(), &description), codecBadDataErr);
    bool valid = true;
    EXPECT_EQ(GraphicsImportValidate(importer_.get(), &valid), noErr);
    EXPECT_FALSE(valid);
}

TEST_F(GraphicsImporters, EmbeddedDataIsTakenByItsType) {
    const qt::MemoryHandle jpeg = HandleOf(images_.MakeBytes("-size 40x30 plasma:", "a.jpg"));
    const auto validate = [&](OSType type, Handle data) {
        ComponentInstance instance = nullptr;
        EXPECT_EQ(OpenADefaultComponent(qt::kGraphicsImporter, type, &instance), noErr);
        importer_.reset(instance);
        EXPECT_EQ(GraphicsImportSetDataHandle(instance, data), noErr);
        bool valid = false;
        EXPECT_EQ(GraphicsImportValidate(instance, &valid), noErr);
        return valid;
    };
    EXPECT_TRUE(validate(qt::Code("JPEG"), jpeg.get()));
    EXPECT_TRUE(validate(qt::Code("JFIF"), jpeg.get()));
    EXPECT_FALSE(validate(qt::Code("PNGf"), jpeg.get()));
    ImageDescription description;
    EXPECT_EQ(GraphicsImportGetImageDescription(importer_.get(), &description), codecBadDataErr);

    // New data replaces what was known of the old.
    const qt::MemoryHandle png = HandleOf(images_.MakeBytes("-size 50x60 plasma:", "png24:b.png"));
    EXPECT_EQ(GraphicsImportSetDataHandle(importer_.get(), png.get()), noErr);
    ASSERT_EQ(GraphicsImportGetImageDescription(importer_.get(), &description), noErr);
    EXPECT_EQ(description.width, 50);
}

TEST(Components, OnlyWhatIsThereOpens) {
    ComponentInstance instance = nullptr;
    EXPECT_EQ(OpenADefaultComponent(qt::kGraphicsExporter, qt::Code("JPEG"), &instance), noErr);
    const qt::OpenComponent exporter(instance);
    bool valid = false;
    EXPECT_EQ(GraphicsImportValidate(exporter.get(), &valid), kBadComponentInstance);
    EXPECT_EQ(GraphicsImportValidate(nullptr, &valid), kBadComponentInstance);
    EXPECT_EQ(OpenADefaultComponent(qt::kGraphicsImporter, qt::Code("TEXT"), &instance), badComponentType);
    EXPECT_EQ(instance, nullptr);
    EXPECT_EQ(OpenADefaultComponent(qt::Code("none"), qt::kAnySubtype, &instance), badComponentType);
    ASSERT_EQ(OpenADefaultComponent(qt::kGraphicsImporter, qt::kAnySubtype, &instance), noErr);
    const qt::OpenComponent importer(instance);
    EXPECT_EQ(GraphicsImportValidate(importer.get(), &valid), invalidDataRef);
}

} // namespace
