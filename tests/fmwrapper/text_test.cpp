#include "tests/fmwrapper/host_values.h"

namespace {

// At most `room` bytes of the slice, the terminator included in the room.
std::string Bytes(const FM_Text* text, std::int32_t room, std::int32_t position = 0,
                  std::int32_t size = kFM_ToEnd, FM_Encoding encoding = kFM_EncodingUTF8) {
    std::string buffer(static_cast<std::size_t>(room) + 1, '#'); // one more, to see an overrun
    Done(FM_Text_GetBytes, text, buffer.data(), room, position, size, encoding);
    EXPECT_EQ(buffer.back(), '#');
    return buffer.substr(0, buffer.find('\0'));
}

const std::u16string kClef = u"\U0001D11E"; // one character, two units

} // namespace

TEST(HostText, TakesEightBitTextInEachEncoding) {
    const TextPointer text(Done(FM_Text_Constructor1));
    Done(FM_Text_Assign, text.get(),
         "Stra\xC3\x9F"
         "e \xF0\x9D\x84\x9E",
         kFM_EncodingUTF8);
    EXPECT_EQ(Units(text.get()), u"Straße " + kClef);
    Done(FM_Text_Assign, text.get(), "\x80\xD2\xCA", kFM_EncodingMacRoman);
    EXPECT_EQ(Units(text.get()), u"Ä“\u00A0");
    Done(FM_Text_AssignWithLength, text.get(), "a\0b-more", 3, kFM_EncodingNative);
    EXPECT_EQ(Units(text.get()), std::u16string(u"a\0b", 3));
    Done(FM_Text_Assign, text.get(), "a\xFF\xC3z", kFM_EncodingUTF8);
    EXPECT_EQ(Units(text.get()), u"a\uFFFD\uFFFDz");
}

TEST(HostText, CutsBytesAtACharacter) {
    const TextPointer text = NewText(u"aß" + kClef + u"€");
    const std::pair<int, const char*> cases[] = {{1, ""},
                                                 {2, "a"},
                                                 {3, "a"},
                                                 {4, "aß"},
                                                 {7, "aß"},
                                                 {8, "aß\U0001D11E"},
                                                 {10, "aß\U0001D11E"},
                                                 {11, "aß\U0001D11E€"},
                                                 {64, "aß\U0001D11E€"}};
    for (const auto& [room, bytes] : cases) EXPECT_EQ(Bytes(text.get(), room), bytes) << room;
}

TEST(HostText, SlicesInUnitsEvenInsideACharacter) {
    const TextPointer text = NewText(u"a" + kClef + u"b");
    EXPECT_EQ(Bytes(text.get(), 64, 1, 2), "\U0001D11E");
    EXPECT_EQ(Bytes(text.get(), 64, 2, 2), "\uFFFD"
                                           "b");
    EXPECT_EQ(Bytes(text.get(), 64, 9, 2), "");
    EXPECT_EQ(Bytes(text.get(), 64, 3, 100), "b");

    const TextPointer joined = NewText(u"x");
    Done(FM_Text_AppendText, joined.get(), text.get(), 1, 1);
    Done(FM_Text_AppendText, joined.get(), text.get(), 2, 1);
    EXPECT_EQ(Units(joined.get()), u"x" + kClef);
    Done(FM_Text_AppendText, joined.get(), joined.get(), 0, kFM_ToEnd);
    EXPECT_EQ(Units(joined.get()), u"x" + kClef + u"x" + kClef);
}

TEST(HostText, WritesMacRomanWithQuestionMarksForWhatItLacks) {
    const TextPointer text = NewText(u"Ä日" + kClef + u"!");
    EXPECT_EQ(Bytes(text.get(), 64, 0, kFM_ToEnd, kFM_EncodingMacRoman), "\x80?\?!");
    EXPECT_EQ(Bytes(text.get(), 3, 0, kFM_ToEnd, kFM_EncodingMacRoman), "\x80?");
}

TEST(HostText, FindsAndDeletesSlices) {
    const TextPointer text = NewText(u"Media_Get( tag )");
    EXPECT_EQ(Done(FM_Text_Find, text.get(), NewText(u"(").get(), 0), 9);
    EXPECT_EQ(Done(FM_Text_Find, text.get(), NewText(u"(").get(), 10), kFM_NotFound);
    EXPECT_EQ(Done(FM_Text_Find, text.get(), NewText(u"(").get(), 99), kFM_NotFound);
    Done(FM_Text_DeleteText, text.get(), 9, kFM_ToEnd);
    EXPECT_EQ(Units(text.get()), u"Media_Get");
    Done(FM_Text_DeleteText, text.get(), 5, 1);
    Done(FM_Text_DeleteText, text.get(), 50, 1);
    EXPECT_EQ(Units(text.get()), u"MediaGet");
}

TEST(HostText, ComparesUnitByUnit) {
    EXPECT_TRUE(Done(FM_Text_operatorEQ, NewText(u"é").get(), NewText(u"\u00E9").get()));
    EXPECT_FALSE(Done(FM_Text_operatorEQ, NewText(u"e\u0301").get(), NewText(u"\u00E9").get()));
    EXPECT_FALSE(Done(FM_Text_operatorEQ, NewText(u"LONG").get(), NewText(u"long").get()));
}

TEST(HostText, RefusesImpossiblePositionsAndChangesNothing) {
    const TextPointer text = NewText(u"abc");
    EXPECT_EQ(Failure(FM_Text_DeleteText, text.get(), -1, 1), kFM_StatusFailed);
    EXPECT_EQ(Failure(FM_Text_AssignWithLength, text.get(), "x", -1, kFM_EncodingUTF8), kFM_StatusFailed);
    char byte = '#';
    EXPECT_EQ(Failure(FM_Text_GetBytes, text.get(), &byte, 0, 0, kFM_ToEnd, kFM_EncodingUTF8),
              kFM_StatusFailed);
    EXPECT_EQ(byte, '#');
    EXPECT_EQ(Units(text.get()), u"abc");
}
