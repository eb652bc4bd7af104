#include "platform/fmwrapper/objects.h"
#include "tests/fmwrapper/host_values.h"

TEST(HostContainer, KeepsItsStreamsInOrderAndFindsTheFirstOfAType) {
    const BinaryPointer binary(Done(FM_BinaryData_Constructor1));
    AddStream(binary.get(), "SIZE", "12345678");
    AddStream(binary.get(), "JPEG", "one");
    AddStream(binary.get(), "JPEG", "two");
    EXPECT_EQ(Done(FM_BinaryData_GetCount, binary.get()), 3);
    EXPECT_EQ(Done(FM_BinaryData_GetIndex, binary.get(), NewQuad("JPEG").get()), 1);
    EXPECT_EQ(Done(FM_BinaryData_GetIndex, binary.get(), NewQuad("jpeg").get()), kFM_NotFound);
    const QuadPointer type(Done(FM_QuadChar_Constructor1));
    Done(FM_BinaryData_GetType, binary.get(), 0, type.get());
    EXPECT_EQ(Done(FM_QuadChar_GetMacType, type.get()), 0x53495A45U);

    EXPECT_TRUE(Done(FM_BinaryData_Remove, binary.get(), NewQuad("JPEG").get()));
    EXPECT_EQ(StreamBytes(binary.get(), 1), "two");
    EXPECT_FALSE(Done(FM_BinaryData_Remove, binary.get(), NewQuad("GIFf").get()));
}

TEST(HostContainer, ReadsOnlyInsideAStream) {
    const BinaryPointer binary(Done(FM_BinaryData_Constructor1));
    AddStream(binary.get(), "DATA", "abcdef");
    const auto read = [&](std::uint32_t offset, std::uint32_t amount) {
        std::string buffer(8, '#');
        const FM_Error error =
            Done(FM_BinaryData_GetData, binary.get(), 0, offset, amount, static_cast<void*>(buffer.data()));
        return error == kFM_ErrorNone ? buffer.substr(0, amount) : "error " + std::to_string(error);
    };
    EXPECT_EQ(read(2, 3), "cde");
    EXPECT_EQ(read(6, 0), "");
    EXPECT_EQ(read(0, 7), "error -50");
    EXPECT_EQ(read(7, 0), "error -50");
    EXPECT_EQ(read(0xFFFFFFFF, 2), "error -50");
    EXPECT_EQ(Failure(FM_BinaryData_GetSize, binary.get(), 1), kFM_StatusFailed);
}

TEST(HostContainer, SharesBytesBetweenCopies) {
    const BinaryPointer original(Done(FM_BinaryData_Constructor1));
    AddStream(original.get(), "DATA", std::string(1000, 'x'));
    const BinaryPointer copy(Done(FM_BinaryData_Constructor2, original.get()));
    const DataPointer data(Done(FM_Data_Constructor1));
    Done(FM_Data_SetBinaryData, data.get(), copy.get(), true);
    EXPECT_EQ(original->streams[0].bytes.get(), copy->streams[0].bytes.get());
    EXPECT_EQ(original->streams[0].bytes.get(), data->AsContainer().streams[0].bytes.get());

    Done(FM_BinaryData_RemoveAll, original.get());
    AddStream(copy.get(), "MORE", "y");
    EXPECT_EQ(Done(FM_BinaryData_GetCount, original.get()), 0);
    EXPECT_EQ(StreamBytes(copy.get(), 0), std::string(1000, 'x'));
    EXPECT_EQ(data->AsContainer().streams.size(), 1U);
}

TEST(HostContainer, NamesItsFilesByStreamOrByReference) {
    const BinaryPointer binary(Done(FM_BinaryData_Constructor1));
    const TextPointer path = NewText(u"");
    binary->reference = u"image:photo.jpg";
    EXPECT_EQ(Done(FM_BinaryData_GetFNAMData, binary.get(), path.get()), kFM_ErrorNone);
    EXPECT_EQ(Units(path.get()), u"image:photo.jpg");

    EXPECT_EQ(Done(FM_BinaryData_AddFNAMData, binary.get(), NewText(u"file:/C:/Größe.wav").get()),
              kFM_ErrorNone);
    EXPECT_EQ(Done(FM_BinaryData_GetFNAMData, binary.get(), path.get()), kFM_ErrorNone);
    EXPECT_EQ(Units(path.get()), u"file:/C:/Größe.wav");
    const DataPointer data(Done(FM_Data_Constructor1));
    Done(FM_Data_SetBinaryData, data.get(), binary.get(), true);
    EXPECT_EQ(Units(Done(FM_Data_GetAsText, data.get())), u"file:/C:/Größe.wav");
}
