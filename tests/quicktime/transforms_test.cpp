// Drawing through matrices, against ImageMagick where it draws the same, and against geometry.
#include "platform/quicktime/graphics_importer.h"
#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/transform_bands.h"
#include "platform/quicktime/transform_plan.h"
#include "tests/quicktime/components.h"
#include "tests/quicktime/pixels.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <random>
#include <stdexcept>

namespace {

using namespace corvane::test;

constexpr std::uint32_t kWhite = qt::Pixel(255, 255, 255);
/// A picture with edges, fine lines and soft parts.
constexpr const char* kPicture =
    "-seed 7 -size 150x112 plasma:fractal -resize 600x450! -fill none -stroke black -strokewidth 2 "
    "-draw 'circle 300,225 450,300 line 25,425 575,10' -stroke yellow -strokewidth 5 "
    "-draw 'rectangle 50,50 550,400' -type TrueColor";

qt::PixelImage Decoded(const qt::ImageCodec& codec, const Bytes& bytes) {
    qt::PixelImage image;
    EXPECT_EQ(codec.decode(*qt::MemorySource(bytes), 1, image), noErr);
    return image;
}

/// In decibels, over the colours of all pixels; 100 for equal ones.
double PeakSignalToNoise(const qt::PixelImage& image, const qt::PixelImage& other) {
    if (image.width() != other.width() || image.height() != other.height()) return 0.0;
    double sum = 0.0;
    ForEachPixel(image, [&](int x, int y, std::uint32_t pixel) {
        for (int shift = 0; shift < 24; shift += 8) {
            const auto level = [=](std::uint32_t of) { return static_cast<double>(of >> shift & 0xFF); };
            sum += std::pow(level(pixel) - level(other.Row(y)[x]), 2);
        }
    });
    const double count = 3.0 * image.width() * image.height();
    return sum == 0.0 ? 100.0 : 10.0 * std::log10(255.0 * 255.0 * count / sum);
}

class Transforms : public ::testing::Test {
protected:
    /// Opens an importer on what convert makes.
    void Open(const std::string& arguments, const std::string& name, OSType type = qt::Code("PNGf")) {
        path_ = images_.Make(arguments, name);
        data_ = HandleOf(FileBytes(path_));
        importer_ = OpenComponentOf(qt::kGraphicsImporter, type);
        ASSERT_EQ(GraphicsImportSetDataHandle(importer_.get(), data_.get()), noErr);
        matrix_ = kIdentityMatrix;
    }

    ComponentResult Draw(qt::PixelImage& image) {
        EXPECT_EQ(GraphicsImportSetMatrix(importer_.get(), &matrix_), noErr);
        return qt::DrawImporter(importer_.get(), image);
    }

    qt::PixelImage Drawn() {
        qt::PixelImage image;
        EXPECT_EQ(Draw(image), noErr);
        return image;
    }

    /// Draws into a port that is larger than the drawing.
    qt::PixelImage DrawnIntoPort(const Rect& bounds) {
        GWorldPtr made = nullptr;
        EXPECT_EQ(NewGWorld(&made, 32, bounds), noErr);
        const qt::OwnedGWorld port(made);
        made->pixels.Fill(0);
        EXPECT_EQ(GraphicsImportSetMatrix(importer_.get(), &matrix_), noErr);
        EXPECT_EQ(GraphicsImportSetGWorld(importer_.get(), made), noErr);
        EXPECT_EQ(GraphicsImportDraw(importer_.get()), noErr);
        return std::move(made->pixels);
    }

    /// What convert makes of the opened file.
    qt::PixelImage Converted(const std::string& arguments) {
        return Decoded(qt::kPngCodec, images_.MakeBytes("'" + path_ + "' " + arguments, "png24:peer.png"));
    }

    /// A turn, then a stretch.
    void Map(double degrees, double scale_x = 1.0, double scale_y = 1.0) {
        matrix_ = kIdentityMatrix;
        RotateMatrix(&matrix_, X2Fix(degrees), 0, 0);
        ScaleMatrix(&matrix_, X2Fix(scale_x), X2Fix(scale_y), 0, 0);
    }

    void MapQuad(std::int32_t width, std::int32_t height, const double (&corners)[4][2]) {
        const FixedPoint source[4] = {
            {0, 0}, {X2Fix(width), 0}, {X2Fix(width), X2Fix(height)}, {0, X2Fix(height)}};
        FixedPoint destination[4];
        for (int i = 0; i < 4; ++i) destination[i] = {X2Fix(corners[i][0]), X2Fix(corners[i][1])};
        ASSERT_EQ(QuadToQuadMatrix(source, destination, &matrix_), noErr);
    }

    MadeImages images_;
    std::string path_;
    qt::MemoryHandle data_;
    qt::OpenComponent importer_;
    MatrixRecord matrix_ = kIdentityMatrix;
};

TEST_F(Transforms, QuarterTurnsAndMirrorsOnlyMovePixels) {
    Open("-seed 3 -size 37x23 xc:gray +noise Random", "png32:a.png");
    for (const int degrees : {0, 90, 180, 270, 360}) {
        for (const bool mirrored : {false, true}) {
            Map(degrees, mirrored ? -1 : 1);
            const std::string peer = "-rotate " + std::to_string(degrees) + (mirrored ? " -flop" : "");
            EXPECT_GT(PeakSignalToNoise(Drawn(), Converted(peer)), 99.0) << peer;
        }
    }
}

TEST_F(Transforms, StretchesAsOthersDo) {
    Open(kPicture, "png24:a.png");
    Map(0, 0.32, 0.32);
    const qt::PixelImage small = Drawn();
    EXPECT_GT(PeakSignalToNoise(small, Converted("-filter Catrom -resize 192x144!")), 48.0);
    EXPECT_GT(PeakSignalToNoise(small, Converted("-resize 192x144!")), 36.0);
    Map(0, 1.5, 0.75);
    EXPECT_GT(PeakSignalToNoise(Drawn(), Converted("-filter Catrom -resize 900x338!")), 48.0);
}

TEST_F(Transforms, TurnsAsOthersDo) {
    Open(kPicture, "png24:a.png");
    Map(30);
    // From (-225, 0) to (519.6, 689.7).
    const qt::PixelImage turned = Drawn();
    const std::string peer = "-virtual-pixel white -define distort:viewport=745x690-225+0 ";
    EXPECT_GT(PeakSignalToNoise(
                  turned, Converted(peer + "-filter point -interpolate catrom -distort SRT '0,0 1 30'")),
              39.0);
    EXPECT_GT(PeakSignalToNoise(turned, Converted(peer + "-distort SRT '0,0 1 30'")), 46.0);
}

TEST_F(Transforms, BendsAsOthersDo) {
    Open(kPicture, "png24:a.png");
    MapQuad(600, 450, {{0, 0}, {595, 65}, {475, 450}, {30, 350}});
    const std::string peer = "-virtual-pixel white -define distort:viewport=595x450+0+0 ";
    const std::string quad = "-distort Perspective '0,0 0,0 600,0 595,65 600,450 475,450 0,450 30,350'";
    const qt::PixelImage bent = Drawn();
    EXPECT_GT(PeakSignalToNoise(bent, Converted(peer + quad)), 44.0);
    EXPECT_GT(PeakSignalToNoise(bent, Converted(peer + "-filter point -interpolate catrom " + quad)), 39.0);
}

TEST_F(Transforms, WhatShrinksIsTheMeanOfWhatItCovers) {
    Open("-size 600x600 pattern:gray50", "png24:a.png"); // every other pixel black
    const auto expect_grey = [&](const Rect& part) {
        ForEachPixel(Drawn(), [&](int x, int y, std::uint32_t pixel) {
            const bool within = x >= part.left && x < part.right && y >= part.top && y < part.bottom;
            EXPECT_NEAR(within ? qt::Green(pixel) : 128, 128, 24) << x << ',' << y;
        });
    };
    Map(0, 0.37, 0.37);
    expect_grey({2, 2, 220, 220});
    Map(45, 0.37, 0.37);
    expect_grey({107, 107, 207, 207});
    // A floor that goes away: its far part has a tenth of the size of its near part.
    MapQuad(600, 600, {{270, 0}, {330, 0}, {600, 300}, {0, 300}});
    expect_grey({2, 274, 40, 326});
}

TEST_F(Transforms, EdgesAreAsOpaqueAsTheyAreCovered) {
    Open("-size 101x57 xc:black", "png24:a.png");
    for (const double degrees : {0.0, 5.0, 30.0, 45.0, 71.0, 90.0}) {
        for (const double scale : {0.3, 1.0, 2.7}) {
            Map(degrees, scale, scale);
            const qt::PixelImage image = DrawnIntoPort({-170, -170, 330, 330});
            double area = 0.0;
            std::uint32_t colours = 0;
            ForEachPixel(image, [&](int, int, std::uint32_t pixel) {
                area += qt::Alpha(pixel) / 255.0;
                if (qt::Alpha(pixel) > 0) colours |= pixel;
            });
            const double expected = 101 * 57 * scale * scale;
            EXPECT_NEAR(area / expected, 1.0, degrees == 0.0 || degrees == 90.0 ? 0.03 : 0.006)
                << degrees << ' ' << scale;
            EXPECT_EQ(colours & 0xFF'FFFF, 0U) << "edges are thinner, not lighter";
        }
    }
    Map(45);
    const qt::PixelImage exported = Drawn();
    EXPECT_FALSE(exported.has_alpha);
    EXPECT_EQ(exported.Row(0)[0], kWhite);
}

TEST_F(Transforms, TransparentPixelsLendNoColour) {
    Open("-size 60x60 xc:'rgba(255,0,0,0)' -fill blue -draw 'rectangle 30,0 59,59'", "png32:a.png");
    for (const int degrees : {0, 20}) {
        Map(degrees, 0.4, 0.4);
        const qt::PixelImage image = Drawn();
        EXPECT_TRUE(image.has_alpha);
        int partly = 0;
        ForEachPixel(image, [&](int x, int y, std::uint32_t pixel) {
            EXPECT_TRUE(qt::Alpha(pixel) == 0 || qt::Red(pixel) == 0) << x << ',' << y;
            partly += qt::Alpha(pixel) > 0 && qt::Alpha(pixel) < 255 ? 1 : 0;
        });
        EXPECT_GT(partly, 10);
    }
}

TEST_F(Transforms, DrawsThePartOfTheSourceWithItsSurroundings) {
    Open("-size 40x30 xc:black", "png24:a.png");
    const Rect part = {-10, -20, 40, 60};
    ASSERT_EQ(GraphicsImportSetSourceRect(importer_.get(), &part), noErr);
    Map(0, -2, 0.5);
    const qt::PixelImage image = Drawn();
    ASSERT_EQ(image.width(), 160);
    ASSERT_EQ(image.height(), 25);
    ForEachPixel(image, [](int x, int y, std::uint32_t pixel) {
        const bool within = x >= 40 && x < 120 && y >= 5 && y < 20;
        EXPECT_EQ(pixel, within ? qt::Pixel(0, 0, 0) : kWhite) << x << ',' << y;
    });
}

TEST_F(Transforms, ReducedDecodingShowsTheSame) {
    const auto draw_all = [&] {
        std::vector<qt::PixelImage> drawn;
        const Rect part = {151, 103, 387, 501};
        for (const Rect* crop : {static_cast<const Rect*>(nullptr), &part}) {
            EXPECT_EQ(GraphicsImportSetSourceRect(importer_.get(), crop), noErr);
            for (const double scale : {0.5, 0.4, 0.12, 0.06}) {
                for (const int turn : {0, 90, 33}) {
                    Map(turn, scale, scale);
                    drawn.push_back(Drawn());
                }
            }
        }
        return drawn;
    };
    Open(std::string(kPicture) + " -quality 95", "a.jpg", qt::Code("JPEG"));
    const std::vector<qt::PixelImage> reduced = draw_all();
    Open("'" + path_ + "'", "png24:whole.png");
    const std::vector<qt::PixelImage> whole = draw_all();
    for (std::size_t i = 0; i < whole.size(); ++i)
        EXPECT_GT(PeakSignalToNoise(reduced[i], whole[i]), 41.0) << i;
}

TEST_F(Transforms, ReducedDecodingKeepsEdges) {
    const auto last = [](const qt::PixelImage& image) {
        return qt::Red(image.Row(image.height() - 1)[image.width() / 2]);
    };
    // Black, with white bars within and in the last row, of which the image has half a pair.
    Open("-size 160x801 xc:black -fill white -draw 'rectangle 0,57 159,97 rectangle 0,800 159,800' -quality "
         "100 "
         "-sampling-factor 1x1",
         "edges.jpg", qt::Code("JPEG"));
    Map(0, 0.5, 0.5);
    EXPECT_NEAR(last(Drawn()), 0x77, 24) << "the last row counts";
    for (const double scale : {0.5, 0.05}) {
        const Rect dark = {55, 0, 57, 160};
        const Rect light = {57, 0, 98, 160};
        Map(0, scale, scale);
        EXPECT_EQ(GraphicsImportSetSourceRect(importer_.get(), &dark), noErr);
        EXPECT_LT(last(Drawn()), 8) << "white is beyond the edge: " << scale;
        EXPECT_EQ(GraphicsImportSetSourceRect(importer_.get(), &light), noErr);
        EXPECT_GT(last(Drawn()), 247) << "black is beyond the edge: " << scale;
    }
}

TEST_F(Transforms, RefusesWhatHasNoDrawing) {
    Open("-size 40x30 xc:red", "png24:a.png");
    qt::PixelImage image;
    matrix_.matrix[0][2] = -(1 << 30) / 39; // infinity lies within the image
    EXPECT_EQ(Draw(image), paramErr);
    matrix_ = kIdentityMatrix;
    matrix_.matrix[2][2] = 0;
    EXPECT_EQ(Draw(image), paramErr);
    matrix_.matrix[2][2] = -(1 << 30); // all of it behind: a mapping like others
    EXPECT_EQ(Draw(image), noErr);
    Map(0, 700, 700);
    EXPECT_EQ(Draw(image), codecSizeErr) << "more than 1 GiB";
    Map(45, 700, 700);
    EXPECT_EQ(Draw(image), codecSizeErr) << "as a warp";
    matrix_ = {{{{1 << 16, 1 << 16, 0}, {1 << 16, 1 << 16, 0}, {0, 0, 1 << 30}}}};
    EXPECT_EQ(Draw(image), noErr) << "a line has a frame, and nothing in it";
    EXPECT_EQ(image.Row(35)[35], kWhite);
    Map(0, 1 / 65'536.0, 1 / 65'536.0);
    EXPECT_EQ(Draw(image), noErr) << "less than a pixel is one";
    EXPECT_EQ(image.width(), 1);
}

// For the sanitizers: mappings of all kinds, most of them of no use to anybody.
TEST_F(Transforms, AnyMatrixEndsInADrawingOrACode) {
    Open("-seed 5 -size 40x30 xc:gray +noise Random", "png32:a.png");
    std::mt19937 random(1); // the same numbers each time
    int drawn = 0;
    for (int i = 0; i < 1500; ++i) {
        for (auto& row : matrix_.matrix) {
            for (Fixed& element : row) element = static_cast<Fixed>(random()) >> random() % 32;
        }
        if (random() % 2 == 0) matrix_.matrix[2][2] = 1 << 30;
        qt::TransformPlan plan;
        const Rect all = {0, 0, 30, 40};
        const bool planned = qt::PlanTransform(matrix_, all, all, plan) == noErr;
        if (planned && std::int64_t{plan.width} * plan.height > 50'000) continue; // takes long
        qt::PixelImage image;
        ASSERT_EQ(Draw(image) == noErr, planned) << i;
        if (!planned) continue;
        EXPECT_EQ(image.width(), plan.width);
        EXPECT_EQ(image.height(), plan.height);
        ++drawn;
    }
    EXPECT_GT(drawn, 50);
}

TEST(TransformBands, CoverEachRowOnceAndPassFailuresOn) {
    for (const std::int32_t rows : {1, 7, 1000}) {
        std::vector<std::atomic<int>> drawn(static_cast<std::size_t>(rows));
        qt::DrawInBands(rows, 10'000'000, [&](std::int32_t first, std::int32_t end) {
            for (std::int32_t y = first; y < end; ++y) ++drawn[static_cast<std::size_t>(y)];
        });
        for (const auto& count : drawn) ASSERT_EQ(count, 1);
    }
    const auto fail = [](std::int32_t first, std::int32_t) {
        if (first > 100) throw std::runtime_error("no room");
    };
    EXPECT_THROW(qt::DrawInBands(1000, 10'000'000, fail), std::runtime_error);
}

} // namespace
