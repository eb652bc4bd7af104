#include "platform/quicktime/graphics_importer.h"

#include "platform/quicktime/data_references.h"
#include "tests/quicktime/components.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace corvane::test;

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
    (void)images_.Make("-size 40x30 plasma:", "png24:drive/wrong.jpg");
    ASSERT_EQ(Open(u"C:\\wrong.jpg"), noErr);
    ImageDescription description;
    ASSERT_EQ(GraphicsImportGetImageDescription(importer_.get(), &description), noErr);
    EXPECT_EQ(description.cType, qt::Code("png "));
}

TEST_F(GraphicsImporters, FilesThatCannotBeOpened) {
    images_.folder.MakeFile("drive/text.png", "no picture");
    images_.folder.MakeFile("drive/empty.png", "");
    images_.folder.MakeFolder("drive/folder.png");
    ASSERT_EQ(mkfifo((folder_ + "/pipe.png").c_str(), 0600), 0);
    ASSERT_EQ(symlink("/dev/zero", (folder_ + "/zero.png").c_str()), 0);
    for (const char16_t* path : {u"C:\\missing.png", u"C:\\no folder\\missing.png", u"D:\\no drive.png"})
        EXPECT_EQ(Open(path), fnfErr);
    for (const char16_t* path : {u"C:\\text.png", u"C:\\empty.png"}) EXPECT_EQ(Open(path), badComponentType);
    for (const char16_t* path : {u"C:\\folder.png", u"C:\\pipe.png", u"C:\\zero.png"})
        EXPECT_EQ(Open(path), notAFileErr);
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
        importer_ = OpenComponentOf(qt::kGraphicsImporter, type);
        EXPECT_EQ(GraphicsImportSetDataHandle(importer_.get(), data), noErr);
        bool valid = false;
        EXPECT_EQ(GraphicsImportValidate(importer_.get(), &valid), noErr);
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
    const qt::OpenComponent exporter = OpenComponentOf(qt::kGraphicsExporter, qt::Code("JPEG"));
    const qt::OpenComponent importer = OpenComponentOf(qt::kGraphicsImporter, qt::kAnySubtype);
    bool valid = false;
    EXPECT_EQ(GraphicsImportValidate(exporter.get(), &valid), kBadComponentInstance);
    EXPECT_EQ(GraphicsImportValidate(nullptr, &valid), kBadComponentInstance);
    EXPECT_EQ(GraphicsImportValidate(importer.get(), &valid), invalidDataRef);
    ComponentInstance instance = importer.get();
    EXPECT_EQ(OpenADefaultComponent(qt::kGraphicsImporter, qt::Code("TEXT"), &instance), badComponentType);
    EXPECT_EQ(instance, nullptr);
    EXPECT_EQ(OpenADefaultComponent(qt::Code("none"), qt::kAnySubtype, &instance), badComponentType);
}

} // namespace
