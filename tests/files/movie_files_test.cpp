// Reference movies, and what files can be opened as.
#include "files/can_open_file.h"
#include "files/data_reference.h"
#include "files/movie_file.h"
#include "files/reference_movie.h"
#include "platform/quicktime/movies/media.h"
#include "platform/quicktime/movies/reference_movies.h"
#include "tests/support/drive_test.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"

#include "platform/fmwrapper/session.h"

#include <filesystem>

namespace corvane {
namespace {

struct MovieFiles : test::DriveTest {
    MovieFiles() {
        Run("sox -n -r 44100 -c 2 -b 16 a.b.wav synth 1 sine 440 && convert -size 4x4 xc:red p.png");
    }

    void Run(const std::string& command) const {
        const std::string all = "cd '" + c + "' && " + command;
        if (std::system(all.c_str()) != 0) throw std::runtime_error(all);
    }

    static XFileSpec Spec(const std::string& path) {
        XFileSpec file;
        file.SetFromNativePath(path);
        return file;
    }

    test::FakeHost host;
};

TEST_F(MovieFiles, ReferenceMoviesTakeTheNameOfTheirSource) {
    Run("cp a.b.wav plain");
    test::WriteBytes(c + "/a.b_ref.mov", "an older one");
    for (const std::string name : {"a.b.wav", "plain"}) {
        XFileSpec file = Spec("C:\\" + name);
        const ReferenceMovie made = MakeReferenceMovie(file);
        ASSERT_EQ(made.code, 0);
        EXPECT_EQ(made.replaced, name == "a.b.wav");
        EXPECT_EQ(file.GetName(), name.substr(0, name.rfind(".wav")) + "_ref.mov");
        qt::OwnedMovie movie;
        ASSERT_EQ(OpenMovieFile(file, movie), 0);
        EXPECT_EQ(qt::FirstText(movie.get()), "This file has no preview");
    }
    EXPECT_LT(std::filesystem::file_size(c + "/a.b_ref.mov"), 4096U);
}

TEST_F(MovieFiles, AReferenceMovieThatCantBeMadeLeavesNothing) {
    const auto fails = [&](const std::string& name) {
        XFileSpec file = Spec("C:\\" + name);
        const std::int32_t code = MakeReferenceMovie(file).code;
        EXPECT_EQ(file.GetNativePath(), "C:\\" + name);
        return code;
    };
    const std::ptrdiff_t before = test::CountEntries(c);
    EXPECT_EQ(fails("p.png"), noMovieFound);
    EXPECT_EQ(fails("none.wav"), -43);
    EXPECT_EQ(test::CountEntries(c), before);
    Run("ffmpeg -v error -f lavfi -i color=red:s=16x16:d=1 -c:v mpeg4 silent.mov && mkdir a.b_ref.mov");
    EXPECT_EQ(fails("silent.mov"), invalidTrack);
    EXPECT_NE(fails("a.b.wav"), 0) << "a folder is in the way";
    EXPECT_FALSE(test::IsThere(c + "/silent_ref.mov"));

    std::filesystem::create_directory(c + "/disk");
    const test::SmallDisk disk(c + "/disk", "1m");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting is not permitted";
    Run("cp a.b.wav disk/s.wav");
    ASSERT_TRUE(disk.MakeReadOnly());
    EXPECT_EQ(fails("disk\\s.wav"), -10000);
    EXPECT_EQ(test::CountEntries(c + "/disk"), 1);
}

TEST_F(MovieFiles, LocalFilesAreJudgedByTheirContentAndOthersByTheirName) {
    const auto use = [](const qt::DataReference& reference) {
        const FileUse judged = CanOpenFile(reference);
        return std::to_string(judged.code) + (judged.as_image ? " image" : "") +
               (judged.as_movie ? " movie" : "") + (judged.prefer_image ? " preferred" : "");
    };
    const auto use_of = [&](const std::string& path) {
        qt::DataReference reference;
        EXPECT_EQ(DataReferenceOf(Spec(path), reference), 0);
        return use(reference);
    };
    test::WriteBytes(c + "/text.wav", "no sound");
    Run("cp p.png picture.mov && cp a.b.wav sound.jpg");
    EXPECT_EQ(use_of("C:\\picture.mov"), "0 image preferred");
    EXPECT_EQ(use_of("C:\\sound.jpg"), "0 movie");
    EXPECT_EQ(use_of("C:\\text.wav"), "0");
    EXPECT_EQ(use_of("C:\\none.wav"), "0");

    drives.Map(R"(\\srv\share)", "s");
    for (fm::Drive& drive : fm::CurrentSession().drives) drive.remote = drive.root != "C:";
    const std::pair<const char*, const char*> uses[] = {{"a.MOV", "0 movie"},
                                                        {"a.mpeg", "0 movie"},
                                                        {"a.pdf", "0 image movie"},
                                                        {"a.b.Jpeg", "0 image preferred"},
                                                        {"a.jp2", "0 image preferred"},
                                                        {"a.Snd", "0 movie"},
                                                        {"a.txt", "0"},
                                                        {"a.", "0"},
                                                        {"plain", "-37"}};
    for (const auto& [name, expected] : uses)
        EXPECT_EQ(use_of(std::string("\\\\srv\\share\\") + name), expected) << name;
    for (fm::Drive& drive : fm::CurrentSession().drives) drive.remote = true;
    EXPECT_EQ(use_of("C:\\picture.mov"), "-35") << "a letter does not tell whose share it is";

    qt::DataReference memory;
    QTNewDataReferenceFromHandle(nullptr, memory);
    EXPECT_EQ(use(memory), "-2053");
}

} // namespace
} // namespace corvane
