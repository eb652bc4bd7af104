#include "platform/quicktime/data_references.h"

#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <unistd.h>

namespace {

std::string ReadText(qt::DataSource& source, std::uint64_t offset, std::size_t count) {
    std::string text(count, '?');
    text.resize(source.Read(offset, std::as_writable_bytes(std::span(text))));
    return text;
}

TEST(DataReferences, AFileIsReadAtAnyOffset) {
    corvane::test::ScratchDrives drives;
    drives.Map("C:", "drive");
    std::string text(20'000, '\0');
    for (std::size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>(i * 7919 >> 3);
    const std::string path = drives.MakeFile("drive/Ünï.bin", text);
    qt::DataReference reference;
    ASSERT_EQ(QTNewDataReferenceFromFullPathCFString(u"C:\\ünï.BIN", kQTWindowsPathStyle, 0, reference),
              noErr);
    EXPECT_EQ(reference.type, qt::Code("alis"));
    const qt::OpenedSource opened = qt::OpenDataReference(reference.handle.get(), reference.type);
    ASSERT_EQ(opened.code, noErr);
    EXPECT_EQ(opened.source->GetSize(), text.size());
    for (const std::size_t count :
         {std::size_t{1}, std::size_t{100}, std::size_t{4095}, std::size_t{4096}, std::size_t{9000}}) {
        for (const std::size_t offset : {std::size_t{0}, std::size_t{1}, std::size_t{4000}, std::size_t{300},
                                         std::size_t{19'990}, std::size_t{20'000}}) {
            EXPECT_EQ(ReadText(*opened.source, offset, count), text.substr(offset, count)) << offset;
        }
    }
    EXPECT_EQ(ReadText(*opened.source, ~std::uint64_t{0}, 10), "");
    ASSERT_EQ(truncate(path.c_str(), 5000), 0);
    EXPECT_EQ(ReadText(*opened.source, 4990, 9000), text.substr(4990, 10));
}

TEST(DataReferences, MemoryIsReadInPlace) {
    const qt::MemoryHandle data(NewHandle(3));
    std::memcpy(*data.get(), "abc", 3);
    qt::DataReference reference;
    ASSERT_EQ(QTNewDataReferenceFromHandle(data.get(), reference), noErr);
    const qt::OpenedSource opened = qt::OpenDataReference(reference.handle.get(), reference.type);
    ASSERT_EQ(opened.code, noErr);
    **data.get() = 'x';
    EXPECT_EQ(ReadText(*opened.source, 0, 10), "xbc");
    EXPECT_EQ(ReadText(*opened.source, 3, 10), "");
}

TEST(DataReferences, WhatIsNoReferenceIsRefused) {
    qt::DataReference reference;
    EXPECT_EQ(QTNewDataReferenceFromFullPathCFString(u"C:\\x", 1, 0, reference), paramErr);
    EXPECT_EQ(QTNewDataReferenceFromHandle(nullptr, reference), paramErr);
    EXPECT_EQ(qt::OpenDataReference(nullptr, qt::Code("alis")).code, invalidDataRef);
    const qt::MemoryHandle empty(NewHandle(0));
    EXPECT_EQ(qt::OpenDataReference(empty.get(), qt::Code("alis")).code, invalidDataRef);
    EXPECT_EQ(qt::OpenDataReference(empty.get(), qt::Code("hndl")).code, invalidDataRef);
    EXPECT_EQ(qt::OpenDataReference(empty.get(), qt::Code("url ")).code, cantFindHandler);
    EXPECT_EQ(qt::OpenDataReference(empty.get(), qt::Code("rsrc")).code, cantFindHandler);
}

TEST(Handles, ResizingKeepsTheBytesThatFit) {
    const qt::MemoryHandle handle(NewHandle(4));
    std::memcpy(*handle.get(), "abcd", 4);
    SetHandleSize(handle.get(), 1'000'000);
    EXPECT_EQ(MemError(), noErr);
    SetHandleSize(handle.get(), 2);
    EXPECT_EQ(GetHandleSize(handle.get()), 2);
    EXPECT_EQ(std::memcmp(*handle.get(), "ab", 2), 0);
    SetHandleSize(handle.get(), -1);
    EXPECT_EQ(MemError(), paramErr);
    EXPECT_EQ(GetHandleSize(handle.get()), 2);
    EXPECT_EQ(NewHandle(Size{1} << 60), nullptr);
    EXPECT_EQ(MemError(), memFullErr);
}

TEST(Handles, TakeBytesOverAndResizeThem) {
    const qt::MemoryHandle handle(NewHandle(5));
    std::vector<std::byte> bytes = {std::byte{1}, std::byte{2}, std::byte{3}};
    const std::byte* const address = bytes.data();
    ASSERT_EQ(qt::MoveToHandle(std::move(bytes), handle.get()), noErr);
    EXPECT_EQ(qt::HandleBytes(handle.get()).data(), address) << "without a copy";
    EXPECT_EQ(GetHandleSize(handle.get()), 3);
    for (const Size size : {100'000, 2}) {
        SetHandleSize(handle.get(), size);
        ASSERT_EQ(MemError(), noErr);
        EXPECT_EQ(qt::HandleBytes(handle.get())[1], std::byte{2});
        EXPECT_EQ(GetHandleSize(handle.get()), size);
    }
    ASSERT_EQ(qt::MoveToHandle({std::byte{4}}, handle.get()), noErr);
    EXPECT_EQ(qt::HandleBytes(handle.get())[0], std::byte{4});
    ASSERT_EQ(qt::MoveToHandle({}, handle.get()), noErr);
    EXPECT_EQ(GetHandleSize(handle.get()), 0);
    EXPECT_EQ(qt::MoveToHandle({}, nullptr), paramErr);
}

} // namespace
