#include "images/streams.h"

#include "platform/fmwrapper/fault.h"
#include "plugin/results.h"
#include "tests/support/calls.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane;
using corvane::test::FakeHost;
using corvane::test::NumberValue;
using corvane::test::TextValue;

struct Stream {
    const char (&type)[5];
    std::string bytes;
};

BinaryData ContainerOf(const std::vector<Stream>& streams) {
    BinaryData container(Host(FM_BinaryData_Constructor1));
    for (const Stream& stream : streams) {
        AddStream(container.get(), FourCC(stream.type), std::as_bytes(std::span(stream.bytes)));
    }
    return container;
}

Data ValueOf(const std::vector<Stream>& streams) {
    Data value(Host(FM_Data_Constructor1));
    Host(FM_Data_SetBinaryData, value.get(), ContainerOf(streams).get(), true);
    return value;
}

std::string TextOf(const qt::MemoryHandle& data) {
    const auto bytes = qt::HandleBytes(data.get());
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

class Streams : public ::testing::Test {
protected:
    void TearDown() override { DiscardResultBuffer(); }

    /// The text that the call would deliver now.
    static std::string Reported() {
        FM_Data result;
        FinishResult(result);
        return utf::ToUtf8(result.AsText().units);
    }

    FakeHost host_;
};

TEST_F(Streams, MainImageType) {
    struct Case {
        std::vector<Stream> streams;
        const char (&type)[5];
    };
    const Case cases[] = {
        {{}, "ref "},
        {{{"PNGf", ""}, {"JPEG", ""}, {"BMPf", ""}}, "BMPf"},
        {{{"SIZE", ""}, {"JPEG", ""}}, "JPEG"},
        {{{"PNGf", ""}, {"GIFf", ""}}, "GIFf"},
        {{{"JPEG", ""}, {"TIFF", ""}, {"CVIM", ""}}, "TIFF"},
        {{{"CVIM", ""}, {"TIFF", ""}}, "CVIM"},
        {{{"FNAM", ""}, {"PICT", ""}, {"JFIF", ""}}, "PICT"},
        {{{"JFIF", ""}, {"PICT", ""}}, "JFIF"},
        {{{"FORK", ""}, {"FNAM", ""}, {"jpeg", ""}, {"SIZE", ""}, {"JPEG", ""}}, "jpeg"},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(GetMainImageType(ValueOf(row.streams).get()), FourCC(row.type)) << row.type;
        EXPECT_EQ(ResultBufferSize(), 0) << row.type;
    }
    const FM_Data text = TextValue("");
    EXPECT_EQ(GetMainImageType(&text), kReferenceType);
}

TEST_F(Streams, WhatHasNoMainImageIsReported) {
    const FM_Data number = NumberValue("12");
    EXPECT_EQ(GetMainImageType(&number), 0U);
    EXPECT_EQ(Reported(), "$20400:Parameter must be image or path");
}

TEST_F(Streams, StreamData) {
    const BinaryData container = ContainerOf({{"JPEG", "abc"}, {"PNGf", ""}, {"JPEG", "second"}});
    EXPECT_EQ(TextOf(GetStreamData(container.get(), FourCC("JPEG"))), "abc");
    EXPECT_TRUE(GetStreamData(container.get(), FourCC("PNGf")));
    EXPECT_EQ(ResultBufferSize(), 0);
    EXPECT_FALSE(GetStreamData(container.get(), FourCC("GIFf")));
    EXPECT_EQ(Reported(), "$20400:The specified media type is not in the container");
}

TEST_F(Streams, MainImageDataIsNormalised) {
    struct Case {
        std::vector<Stream> streams;
        const char (&type)[5];
        std::string data;
    };
    const std::string header(512, '\0');
    const Case cases[] = {
        {{{"JPEG", "preview"}, {"PNGf", "image"}}, "PNGf", "image"},
        {{{"PICT", "picture"}}, "PICT", header + "picture"},
        {{{"PICT", ""}}, "PICT", header},
        {{{"CVIM", "PICTpicture"}}, "PICT", header + "picture"},
        {{{"CVIM", "PNGfimage"}}, "PNGf", "image"},
        {{{"CVIM", "JPEG"}}, "JPEG", ""},
    };
    for (const Case& row : cases) {
        const MainImage image = GetMainImageData(ValueOf(row.streams).get());
        EXPECT_TRUE(image.data);
        EXPECT_EQ(image.type, FourCC(row.type));
        EXPECT_EQ(TextOf(image.data), row.data);
    }
    EXPECT_FALSE(GetMainImageData(ValueOf({}).get()).data);
    EXPECT_EQ(ResultBufferSize(), 0);
    EXPECT_FALSE(GetMainImageData(ValueOf({{"CVIM", "PIC"}}).get()).data);
    EXPECT_EQ(Reported(), "$-50:Could not access stream data");
}

TEST_F(Streams, TypeCodesAndTheirExtensions) {
    const auto parse = [](std::string_view text) {
        const FM_Data value = TextValue(text);
        return ParseImageTypeCode(&value);
    };
    EXPECT_EQ(parse(""), 0U);
    EXPECT_EQ(parse(".sgi|"), FourCC(".sgi"));
    EXPECT_EQ(parse("JPEG|quality"), FourCC("JPEG"));
    EXPECT_EQ(parse("éé"), 0xC3A9C3A9U); // four bytes, not four characters
    for (const char* text : {"JPG", "JPEG ", "JPEGs|x", "|", "éééé"})
        EXPECT_EQ(parse(text), std::nullopt) << text;
    EXPECT_EQ(ImageTypeExtension(FourCC("TEXT")), "txt");
    EXPECT_EQ(ImageTypeExtension(FourCC("jpeg")), "");
}

} // namespace
