#include "tests/quicktime/codecs/made_picture.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane::test;

constexpr int kFrame = 0, kPaint = 1, kErase = 2, kInvert = 3, kFill = 4;
constexpr int kRect = 0x30, kRoundRect = 0x40, kOval = 0x50, kArc = 0x60, kPolygon = 0x70, kRegion = 0x80;
constexpr int kSame = 8;
constexpr int kHalfGrey[] = {0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55};

MadePicture& Pattern(MadePicture& picture, int operation) {
    picture.Operation(operation);
    for (const int row : kHalfGrey) picture.Byte(row);
    return picture;
}

TEST(PictDrawing, VerbsOfRectangles) {
    MadePicture picture(8, 6);
    picture.Operation(kRect + kPaint).Frame(0, 0, 4, 4);
    picture.Operation(kRect + kErase).Frame(1, 1, 2, 2);
    picture.Operation(kRect + kInvert).Frame(3, 3, 5, 5);
    picture.Operation(kRect + kFrame).Frame(0, 5, 3, 8);
    Pattern(picture, 0x0A).Operation(kRect + kFill).Frame(4, 0, 6, 3);
    picture.Operation(kRect + kSame + kInvert);
    EXPECT_EQ(Drawn(picture.End()), "####.###\n"
                                    "#.##.#.#\n"
                                    "####.###\n"
                                    "###.#...\n"
                                    ".#.##...\n"
                                    "#.#.....\n");
}

TEST(PictDrawing, OldPicturesHaveOperationsOfOneByte) {
    MadePicture picture(4, 3, false);
    picture.Operation(0x0E).Long(205); // red, as screens showed it
    picture.Operation(kRect + kPaint).Frame(0, 0, 1, 4);
    picture.Operation(0x0E).Long(33);
    picture.Operation(kRect + kPaint).Frame(1, 1, 3, 2);
    EXPECT_EQ(Drawn(picture.End()), "????\n"
                                    ".#..\n"
                                    ".#..\n");
}

TEST(PictDrawing, RoundShapes) {
    MadePicture oval(8, 8);
    oval.Operation(kOval + kPaint).Frame(0, 0, 8, 8);
    EXPECT_EQ(Drawn(oval.End()), "..####..\n"
                                 ".######.\n"
                                 "########\n"
                                 "########\n"
                                 "########\n"
                                 "########\n"
                                 ".######.\n"
                                 "..####..\n");
    MadePicture corners(8, 5);
    corners.Operation(0x0B).Words({4, 4}).Operation(kRoundRect + kFrame).Frame(0, 0, 5, 8);
    EXPECT_EQ(Drawn(corners.End()), ".######.\n"
                                    "#......#\n"
                                    "#......#\n"
                                    "#......#\n"
                                    ".######.\n");
    MadePicture arc(8, 8); // from 3 o'clock to 6 o'clock
    arc.Operation(kArc + kPaint).Frame(0, 0, 8, 8).Words({90, 90});
    EXPECT_EQ(Drawn(arc.End()), "........\n"
                                "........\n"
                                "........\n"
                                "........\n"
                                "....####\n"
                                "....####\n"
                                "....###.\n"
                                "....##..\n");
}

TEST(PictDrawing, PolygonsAndRegions) {
    MadePicture polygon(6, 4);
    polygon.Operation(kPolygon + kPaint).Words({22, 0, 0, 4, 6, 0, 0, 0, 4, 4, 4});
    EXPECT_EQ(Drawn(polygon.End()), "####..\n"
                                    ".###..\n"
                                    "..##..\n"
                                    "...#..\n");

    MadePicture region(6, 4); // a ring
    region.Operation(kRegion + kPaint).Words({44, 0, 0, 4, 5});
    region.Words({0, 0, 5, 0x7FFF, 1, 1, 4, 0x7FFF, 3, 1, 4, 0x7FFF, 4, 0, 5, 0x7FFF, 0x7FFF});
    EXPECT_EQ(Drawn(region.End()), "#####.\n"
                                   "#...#.\n"
                                   "#...#.\n"
                                   "#####.\n");
}

TEST(PictDrawing, Lines) {
    MadePicture lines(7, 7);
    lines.Operation(0x20).Words({0, 0, 4, 4});                               // diagonal
    lines.Operation(0x21).Words({4, 6});                                     // on to the right
    lines.Operation(0x22).Words({0, 6}).ByteRun({0, 2});                     // two down
    lines.Operation(0x23).ByteRun({-2 & 255, 0});                            // two to the left
    lines.Operation(0x07).Words({2, 3}).Operation(0x20).Words({5, 0, 5, 1}); // a thick pen
    lines.Operation(0x07).Words({1, 1}).Operation(0x20).Words({1, 5, 0, 2}); // flat, upwards
    EXPECT_EQ(Drawn(lines.End()), "#.##..#\n"
                                  ".#..###\n"
                                  "..#.###\n"
                                  "...#...\n"
                                  "....###\n"
                                  "####...\n"
                                  "####...\n");
}

TEST(PictDrawing, ClipOriginColoursAndModes) {
    MadePicture picture(6, 4);
    picture.Operation(0x1A).Words({0xFFFF, 0, 0}).Operation(0x1B).Words({0, 0, 0xFFFF});
    picture.Operation(0x01).Word(10).Frame(0, 1, 4, 5);
    picture.Operation(kRect + kPaint).Frame(0, 0, 2, 6);
    picture.Operation(0x08).Word(11).Operation(kRect + kPaint).Frame(1, 0, 2, 3); // bic: the back colour
    picture.Operation(0x08).Word(10).Operation(kRect + kPaint).Frame(2, 2, 3, 3); // xor: white to black
    picture.Operation(0x0C).Words({1, 2}).Operation(0x01).Word(10).Frame(0, 0, 9, 9);
    picture.Operation(0x08).Word(8).Operation(kRect + kPaint).Frame(5, 1, 6, 2);
    EXPECT_EQ(Drawn(picture.End()), ".rrrr.\n"
                                    ".bbrr.\n"
                                    "..#...\n"
                                    "r.....\n");
}

TEST(PictDrawing, PixelPatterns) {
    MadePicture picture(4, 2);
    picture.Operation(0x14).Word(1).Long(0).Long(0).Words({0x8000 | 2}).Map(2, 2, 0, 8, 1);
    picture.Words({0, 0, 0, 1, 0, 0, 0xFFFF, 0, 1, 0xFFFF, 0, 0}); // green, red
    picture.ByteRun({0, 1, 1, 0});
    picture.Operation(kRect + kFill).Frame(0, 0, 2, 3);
    picture.Operation(0x13).Word(2).Long(0).Long(0).Words({0, 0, 0xFFFF}); // a plain blue pen
    picture.Operation(kRect + kPaint).Frame(0, 3, 2, 4);
    EXPECT_EQ(Drawn(picture.End()), "grgb\n"
                                    "rgrb\n");
}

TEST(PictDrawing, Text) {
    MadePicture picture(20, 10);
    picture.Operation(0x0D).Word(9).Operation(0x28).Words({8, 1}).ByteRun({2, 'T', 0xA5});
    EXPECT_EQ(Drawn(picture.End()), "....................\n"
                                    ".#####.#####........\n"
                                    "...#...#...#........\n"
                                    "...#...#...#........\n"
                                    "...#...#...#........\n"
                                    "...#...#...#........\n"
                                    "...#...#...#........\n"
                                    "...#...#####........\n"
                                    "....................\n"
                                    "....................\n");
}

TEST(PictDrawing, WhatIsNotDrawnIsSteppedOver) {
    MadePicture picture(2, 1);
    picture.Operation(0x03).Word(4).Operation(0x04).Byte(1).Operation(0x10).Long(1).Long(1);
    picture.Operation(0x24).Words({3, 0}).Byte(0).Operation(0x2C).Words({5, 20}).ByteRun({2, 'A', 'B'});
    picture.Operation(0x35).Frame(0, 0, 9, 9).Operation(0x3D).Operation(0x92).Words({2, 1});
    picture.Operation(0xA0).Word(150).Operation(0xA1).Words({100, 3}).ByteRun({1, 2, 3});
    picture.Operation(0xD0).Long(3).ByteRun({1, 2, 3}).Operation(0x0234).Long(0);
    picture.Operation(0x8001).Operation(0x8100).Long(1).Byte(0xFF).Operation(0x1E);
    picture.Operation(kRect + kPaint).Frame(0, 0, 1, 1);
    EXPECT_EQ(Drawn(picture.End()), "#.\n");
}

TEST(PictDrawing, WorkHasABound) {
    MadePicture picture(2000, 2000);
    picture.Operation(kRect + kPaint).Frame(0, 0, 2000, 2000);
    for (int i = 0; i < 1'000'000; ++i) picture.Operation(kRect + kSame + kInvert);
    DecodeWhole(qt::kPictCodec, picture.End()); // hours, if all were drawn

    MadePicture text(10, 10);
    for (int i = 0; i < 20'000; ++i) {
        text.Operation(0x28).Words({8, 1}).Byte(255);
        for (int j = 0; j < 255; ++j) text.Byte('#');
    }
    DecodeWhole(qt::kPictCodec, text.End());

    ExpectNoRoomIsTaken(qt::kPictCodec, MadePicture(16'000, 16'000).End(), codecBadDataErr);
}

} // namespace
