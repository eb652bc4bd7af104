#include "platform/win32/shell_operations.h"

#include "platform/win32/file_items.h"
#include "tests/support/drive_test.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"
#include "tests/win32/error_of.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using corvane::test::CountEntries;
using corvane::test::IsThere;
using corvane::test::Listing;
using corvane::test::ReadBytes;
using corvane::test::StatusOf;

constexpr FILEOP_FLAGS kYesToAll = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOCONFIRMMKDIR | FOF_NOERRORUI;

DWORD Shell(UINT function, std::u16string from, std::u16string to = {}, FILEOP_FLAGS flags = kYesToAll) {
    from += u'\0';
    to += u'\0';
    SHFILEOPSTRUCTW operation;
    operation.wFunc = function;
    operation.pFrom = from.c_str();
    operation.pTo = to.c_str();
    operation.fFlags = flags;
    return static_cast<DWORD>(SHFileOperationW(&operation));
}

struct ShellOperations : corvane::test::DriveTest {};

TEST_F(ShellOperations, CopyATreeWithAllThatBelongsToIt) {
    drives.MakeFile("c/tree/sub/large", std::string(3'000'000, 'l'));
    drives.MakeFile("c/tree/empty", "");
    drives.MakeFile("c/tree/sub/tool", "#!");
    drives.MakeFile("c/outside");
    fs::create_symlink("../outside", c + "/tree/link");
    fs::create_symlink("nowhere", c + "/tree/dangling");
    fs::create_directory_symlink("sub", c + "/tree/folder link");
    chmod((c + "/tree/sub/tool").c_str(), 04751);
    const bool has_attributes = setxattr((c + "/tree/empty").c_str(), "user.note", "n", 1, 0) == 0;
    chmod((c + "/tree/sub").c_str(), 0555);
    const timespec times[2] = {{1000, 5}, {2000, 700}};
    utimensat(AT_FDCWD, (c + "/tree/sub/tool").c_str(), times, 0);
    utimensat(AT_FDCWD, (c + "/tree/link").c_str(), times, AT_SYMLINK_NOFOLLOW);
    utimensat(AT_FDCWD, (c + "/tree/sub").c_str(), times, 0);

    const std::string before = Listing(c + "/tree");
    ASSERT_EQ(Shell(FO_COPY, u"C:\\tree", u"C:\\copy"), 0U);
    EXPECT_TRUE(Listing(c + "/copy") == before);
    EXPECT_TRUE(Listing(c + "/tree") == before);
    for (const char* name : {"/sub/tool", "/link", "/sub"}) {
        const struct stat copy = StatusOf(c + "/copy" + name);
        EXPECT_EQ(copy.st_mode, StatusOf(c + "/tree" + name).st_mode) << name;
        EXPECT_EQ(copy.st_mtim.tv_sec, 2000) << name;
        EXPECT_EQ(copy.st_mtim.tv_nsec, 700) << name;
    }
    if (has_attributes) {
        char value = 0;
        EXPECT_EQ(getxattr((c + "/copy/empty").c_str(), "user.note", &value, 1), 1);
        EXPECT_EQ(value, 'n');
    }
}

TEST_F(ShellOperations, CopyKeepsHolesAndOwners) {
    const std::string file = drives.MakeFile("c/sparse", "");
    constexpr off_t kLength = 64 << 20;
    ASSERT_EQ(truncate(file.c_str(), kLength), 0);
    const int descriptor = open(file.c_str(), O_WRONLY);
    ASSERT_EQ(pwrite(descriptor, "data", 4, 10'000'000), 4);
    close(descriptor);
    const bool is_root = geteuid() == 0;
    ASSERT_TRUE(!is_root || chown(file.c_str(), 12, 34) == 0);
    ASSERT_EQ(Shell(FO_COPY, u"C:\\sparse", u"C:\\copy"), 0U);
    const struct stat copy = StatusOf(c + "/copy");
    EXPECT_EQ(copy.st_size, kLength);
    EXPECT_LT(copy.st_blocks * 512, kLength / 10);
    EXPECT_EQ(copy.st_uid, StatusOf(file).st_uid);
    EXPECT_EQ(copy.st_gid, StatusOf(file).st_gid);
    EXPECT_EQ(ReadBytes(c + "/copy"), ReadBytes(file));
}

TEST_F(ShellOperations, CopyIntoAnExistingFolderOrUnderANewName) {
    drives.MakeFile("c/Ünï😀.txt", "1");
    drives.MakeFolder("c/target");
    EXPECT_EQ(Shell(FO_COPY, u"C:\\ÜNÏ😀.TXT", u"C:\\TARGET\\"), 0U); // the name keeps its own case
    EXPECT_EQ(Shell(FO_COPY, u"C:\\Ünï😀.txt", u"C:\\target\\Other"), 0U);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\Ünï😀.txt", u"C:\\new\\folders\\x"), 0U);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\Ünï😀.txt", u"C:\\other\\x", FOF_NOCONFIRMATION), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(Listing(c), "new/folders/x=1 target/Other=1 target/Ünï😀.txt=1 Ünï😀.txt=1");
}

TEST_F(ShellOperations, CopyReplacesFilesAndFillsFolders) {
    drives.MakeFile("c/tree/A.txt", "new");
    drives.MakeFile("c/tree/sub/b", "new");
    drives.MakeFile("c/target/tree/a.TXT", "old");
    drives.MakeFile("c/target/tree/SUB/kept", "old");
    ASSERT_EQ(Shell(FO_COPY, u"C:\\tree", u"C:\\target"), 0U);
    EXPECT_EQ(Listing(c + "/target/tree"), "SUB/b=new SUB/kept=old a.TXT=new");

    // Names that differ in case only in the source: none of the copies may replace another.
    drives.MakeFile("c/tree/a.txt", "second");
    drives.MakeFile("c/tree/a.TXT", "third");
    ASSERT_EQ(Shell(FO_COPY, u"C:\\tree", u"C:\\target"), 0U);
    EXPECT_EQ(Listing(c + "/target/tree"), "A.txt=new SUB/b=new SUB/kept=old a.TXT=third a.txt=second");
}

TEST_F(ShellOperations, CopyStopsWhereKindsDiffer) {
    drives.MakeFile("c/file", "1");
    drives.MakeFile("c/folder/x", "1");
    drives.MakeFile("c/target/folder", "kept");
    drives.MakeFile("c/target/file/y", "kept");
    drives.MakeFolder("c/elsewhere");
    fs::create_directory_symlink("../elsewhere", drives.MakeFolder("c/linked") + "/folder");
    const std::string before = Listing(c);
    const auto descriptors = corvane::test::CountOpenDescriptors();
    for (const UINT function : {FO_COPY, FO_MOVE}) {
        EXPECT_EQ(Shell(function, u"C:\\file", u"C:\\target"), DE_FILEDESTISFLD);
        EXPECT_EQ(Shell(function, u"C:\\folder", u"C:\\target"), DE_FLDDESTISFILE);
    }
    EXPECT_EQ(Shell(FO_COPY, u"C:\\folder", u"C:\\linked"), DE_FLDDESTISFILE); // not into elsewhere
    EXPECT_EQ(Shell(FO_COPY, u"C:\\file", u"C:\\target\\folder", FOF_SILENT), DE_FLDDESTISFILE);
    EXPECT_EQ(Listing(c), before);
    EXPECT_EQ(corvane::test::CountOpenDescriptors(), descriptors);
}

TEST_F(ShellOperations, NothingGoesIntoItself) {
    drives.MakeFile("c/folder/sub/file", "1");
    fs::create_directory_symlink("folder/sub", c + "/way in");
    fs::create_hard_link(c + "/folder/sub/file", c + "/second name");
    const std::string before = Listing(c);
    for (const UINT function : {FO_COPY, FO_MOVE}) {
        for (const auto* target : {u"C:\\folder", u"C:\\folder\\sub", u"C:\\folder\\sub\\..\\new",
                                   u"C:\\way in", u"C:\\way in\\new"})
            EXPECT_EQ(Shell(function, u"C:\\folder", target), DE_DESTSUBTREE);
        EXPECT_EQ(Shell(function, u"C:\\folder", u"C:\\"), DE_SAMEFILE);
        EXPECT_EQ(Shell(function, u"C:\\folder\\sub\\file", u"C:\\way in"), DE_SAMEFILE);
    }
    EXPECT_EQ(Shell(FO_COPY, u"C:\\folder\\sub\\file", u"C:\\second name"), DE_SAMEFILE);
    EXPECT_EQ(Listing(c), before);
    // A move onto another name of the same file leaves one name.
    EXPECT_EQ(Shell(FO_MOVE, u"C:\\folder\\sub\\file", u"C:\\second name"), 0U);
    EXPECT_EQ(Listing(c), "folder/sub/ second name=1 way in->folder/sub");
}

TEST_F(ShellOperations, RootsStayWhereTheyAre) {
    drives.Map("D:", "c/mounted");
    drives.MakeFile("c/mounted/file", "1");
    for (const UINT function : {FO_MOVE, FO_DELETE, FO_RENAME}) {
        for (const auto* root : {u"D:", u"C:\\mounted", u"C:\\mounted\\..\\mounted"})
            EXPECT_EQ(Shell(function, root, u"C:\\x"), DE_ROOTDIR);
    }
    EXPECT_EQ(Shell(FO_COPY, u"D:", u"C:\\x"), 0U);
    EXPECT_EQ(Shell(FO_COPY, u"D:", u"C:\\x"), ERROR_INVALID_NAME); // it has no name inside a folder
    drives.Map(R"(\\server\share)", "c/mounted");
    EXPECT_EQ(Shell(FO_COPY, u"\\\\server\\share\\file\\..", u"C:\\x"), 0U);
    EXPECT_EQ(Listing(c), "mounted/file=1 x/file=1 x/share/file=1");
}

TEST_F(ShellOperations, SpecialFilesAreNeverOpened) {
    ASSERT_EQ(mkfifo(drives.Path("c/fifo").c_str(), 0600), 0); // opening it would wait for a writer
    drives.MakeFile("c/tree/sub/file", "1");
    ASSERT_EQ(mkfifo((c + "/tree/sub/fifo").c_str(), 0600), 0);
    chmod((c + "/tree").c_str(), 0751);
    chmod((c + "/tree/sub").c_str(), 0555);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\fifo", u"C:\\copy"), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\tree", u"C:\\copy"), ERROR_NOT_SUPPORTED);
    for (const char* folder : {"", "/sub"}) // a copy that is left incomplete can be used like its source
        EXPECT_EQ(StatusOf(c + "/copy" + folder).st_mode, StatusOf(c + "/tree" + folder).st_mode) << folder;
    EXPECT_EQ(Shell(FO_MOVE, u"C:\\fifo", u"C:\\moved"), 0U);
    EXPECT_TRUE(fs::is_fifo(c + "/moved"));
    EXPECT_EQ(Shell(FO_DELETE, u"C:\\tree"), 0U);
    EXPECT_FALSE(IsThere(c + "/tree"));
}

TEST_F(ShellOperations, MoveKeepsTheItemAndReplaces) {
    drives.MakeFile("c/file", "new");
    drives.MakeFile("c/target/FILE", "old");
    const ino_t inode = StatusOf(c + "/file").st_ino;
    EXPECT_EQ(Shell(FO_MOVE, u"C:\\file", u"C:\\target\\", kYesToAll & ~FOF_NOCONFIRMATION),
              DE_FLDDESTISFILE);
    ASSERT_EQ(Shell(FO_MOVE, u"C:\\file", u"C:\\target\\"), 0U);
    EXPECT_EQ(Listing(c), "target/file=new");
    EXPECT_EQ(StatusOf(c + "/target/file").st_ino, inode);

    drives.MakeFile("c/folder/new", "1");
    drives.MakeFile("c/target/folder/old", "1");
    ASSERT_EQ(Shell(FO_MOVE, u"C:\\folder", u"C:\\target"), 0U);
    EXPECT_EQ(Listing(c), "target/file=new target/folder/new=1 target/folder/old=1");
    EXPECT_EQ(Shell(FO_MOVE, u"C:\\gone", u"C:\\target"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Shell(FO_MOVE, u"C:\\target", u"C:\\gone\\x", FOF_NOCONFIRMATION), ERROR_PATH_NOT_FOUND);
}

TEST_F(ShellOperations, RenameReplacesNothing) {
    drives.MakeFile("c/old.txt", "1");
    drives.MakeFile("c/other", "2");
    const auto rename = [](const char16_t* from, const std::u16string& to) {
        return Shell(FO_RENAME, from, to, 0);
    };
    EXPECT_EQ(rename(u"C:\\old.txt", u"C:\\OTHER"), DE_FLDDESTISFILE);
    EXPECT_EQ(rename(u"C:\\old.txt", u"C:\\.."), DE_DIFFDIR);
    EXPECT_EQ(rename(u"C:\\old.txt", u"C:\\" + std::u16string(256, u'x')), ERROR_FILENAME_EXCED_RANGE);
    EXPECT_EQ(rename(u"C:\\gone", u"C:\\new"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Listing(c), "old.txt=1 other=2");
    // A name that leads through a link to another folder, and back, as it is written.
    fs::create_directory_symlink(drives.MakeFolder("outside/in"), c + "/link");
    EXPECT_EQ(rename(u"C:\\old.txt", u"C:\\link/../new.txt"), 0U);
    fs::remove(c + "/link");
    EXPECT_EQ(Listing(c), "new.txt=1 other=2");
}

TEST_F(ShellOperations, CopyFollowsTheLinkThatIsNamed) {
    drives.MakeFile("c/file", "1");
    drives.MakeFile("c/tree/last", "22");
    fs::create_symlink("file", c + "/link");
    fs::create_symlink("last", c + "/tree/inside");
    fs::create_symlink("tree", c + "/way");
    fs::create_symlink("nowhere", c + "/dangling");
    drives.MakeFolder("c/target");
    for (const auto* link : {u"C:\\link", u"C:\\way", u"C:\\dangling"})
        EXPECT_EQ(Shell(FO_COPY, link, u"C:\\target"), 0U);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\way", u"C:\\tree\\new"), DE_DESTSUBTREE);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\link", u"C:\\"), DE_SAMEFILE);
    EXPECT_EQ(Listing(c + "/target"), "dangling->nowhere link=1 way/inside->last way/last=22");
}

TEST_F(ShellOperations, NoLinkTakesThePlaceOfWhatItLeadsTo) {
    drives.MakeFile("c/file", "1");
    drives.MakeFile("c/tree/last", "22");
    fs::create_symlink("file", c + "/link");
    for (const UINT function : {FO_COPY, FO_MOVE})
        EXPECT_EQ(Shell(function, u"C:\\link", u"C:\\file"), DE_SAMEFILE);
    // A hard link of a listed file is its copy already: the rest follows.
    drives.MakeFolder("c/snapshot/tree");
    fs::create_hard_link(c + "/file", c + "/tree/file");
    fs::create_hard_link(c + "/file", c + "/snapshot/tree/file");
    EXPECT_EQ(Shell(FO_COPY, u"C:\\tree", u"C:\\snapshot"), 0U);
    fs::remove(c + "/link");
    EXPECT_EQ(Listing(c), "file=1 snapshot/tree/file=1 snapshot/tree/last=22 tree/file=1 tree/last=22");
}

TEST_F(ShellOperations, DeleteNeverFollowsLinks) {
    drives.MakeFile("c/outside/kept", "1");
    drives.MakeFile("c/tree/a/b/file", "1");
    fs::create_directory_symlink(c + "/outside", c + "/tree/a/link");
    fs::create_directory_symlink(c + "/outside", c + "/top link");
    EXPECT_EQ(Shell(FO_DELETE, u"C:\\tree"), 0U);
    EXPECT_EQ(Shell(FO_DELETE, u"C:\\TOP LINK"), 0U);
    EXPECT_EQ(Listing(c), "outside/kept=1");
}

// Far deeper than any path can be written, and than descriptors or stack would last.
TEST_F(ShellOperations, DeepTrees) {
    constexpr int kLevels = 10'000;
    // In memory where that is permitted: disks can take a minute to remove that many nested folders.
    const corvane::test::SmallDisk disk(c, "256m");
    const std::string root = drives.MakeFolder("c/deep");
    int folder = open(root.c_str(), O_DIRECTORY);
    for (int i = 0; i < kLevels; ++i) {
        ASSERT_EQ(mkdirat(folder, "d", 0700), 0);
        const int next = openat(folder, "d", O_DIRECTORY);
        close(folder);
        folder = next;
    }
    close(openat(folder, "bottom", O_CREAT | O_WRONLY, 0600));
    close(folder);
    const auto descriptors = corvane::test::CountOpenDescriptors();
    EXPECT_EQ(Shell(FO_COPY, u"C:\\deep", u"C:\\copy"), 0U);
    EXPECT_EQ(Shell(FO_DELETE, u"C:\\deep"), 0U);

    int depth = 0;
    folder = open((c + "/copy").c_str(), O_DIRECTORY);
    for (int next = 0; (next = openat(folder, "d", O_DIRECTORY)) >= 0; ++depth) {
        close(folder);
        folder = next;
    }
    EXPECT_EQ(faccessat(folder, "bottom", F_OK, 0), 0);
    close(folder);
    EXPECT_EQ(depth, kLevels);
    EXPECT_EQ(Shell(FO_DELETE, u"C:\\copy"), 0U);
    EXPECT_EQ(CountEntries(c), 0);
    EXPECT_EQ(corvane::test::CountOpenDescriptors(), descriptors);
}

// Somebody else makes and removes entries all the time.
TEST_F(ShellOperations, TreesThatChangeMeanwhile) {
    for (int i = 0; i < 300; ++i)
        drives.MakeFile("c/tree/" + std::to_string(i % 7) + "/" + std::to_string(i));
    const pid_t other = fork();
    if (other == 0) {
        for (unsigned i = 0;; ++i) {
            const std::string folder = c + "/tree/" + std::to_string(i % 7);
            const std::string file = folder + "/" + std::to_string(i % 100);
            unlink(file.c_str());
            close(open(file.c_str(), O_CREAT | O_WRONLY, 0600));
            rename(folder.c_str(), (c + "/tree/moved").c_str());
            rename((c + "/tree/moved").c_str(), folder.c_str());
        }
    }
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(Shell(FO_COPY, u"C:\\tree", u"C:\\copy"), 0U);
        EXPECT_EQ(Shell(FO_DELETE, u"C:\\copy"), 0U);
    }
    // It stops once the folders are gone: the shell then has nothing against it.
    EXPECT_EQ(Shell(FO_DELETE, u"C:\\tree"), 0U);
    kill(other, SIGKILL);
    waitpid(other, nullptr, 0);
    EXPECT_FALSE(IsThere(c + "/copy"));
}

TEST_F(ShellOperations, BetweenFileSystems) {
    const corvane::test::SmallDisk disk(drives.MakeFolder("c/disk"), "256k");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting a file system is not permitted";
    drives.MakeFile("c/tree/sub/file", "1");
    fs::create_symlink("sub/file", c + "/tree/link");
    ASSERT_EQ(Shell(FO_MOVE, u"C:\\tree", u"C:\\disk"), 0U);
    EXPECT_FALSE(IsThere(c + "/tree"));
    EXPECT_EQ(ReadBytes(c + "/disk/tree/link"), "1");

    // The source goes only when all of it has arrived.
    drives.MakeFile("c/large/1", std::string(100'000, 'x'));
    drives.MakeFile("c/large/2", std::string(1'000'000, 'x'));
    EXPECT_EQ(Shell(FO_MOVE, u"C:\\large", u"C:\\disk"), ERROR_DISK_FULL);
    EXPECT_EQ(fs::file_size(c + "/large/1"), 100'000U);
    EXPECT_EQ(fs::file_size(c + "/large/2"), 1'000'000U);
    EXPECT_FALSE(IsThere(c + "/disk/large/2")); // no half file

    // A replacement that fails leaves what was there.
    drives.MakeFile("c/disk/2", "old");
    EXPECT_EQ(Shell(FO_COPY, u"C:\\large\\2", u"C:\\disk"), ERROR_DISK_FULL);
    EXPECT_EQ(ReadBytes(c + "/disk/2"), "old");
    EXPECT_EQ(CountEntries(c + "/disk"), 3);

    ASSERT_TRUE(disk.MakeReadOnly());
    EXPECT_EQ(ErrorOf(CreateDirectoryW(u"C:\\disk\\folder")), ERROR_WRITE_PROTECT);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\tree2", u"C:\\disk"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\large", u"C:\\disk\\new"), ERROR_WRITE_PROTECT);
    EXPECT_EQ(Shell(FO_COPY, u"C:\\large\\1", u"C:\\disk\\2"), ERROR_WRITE_PROTECT);
    EXPECT_EQ(Shell(FO_RENAME, u"C:\\disk\\2", u"C:\\disk\\3", 0), ERROR_WRITE_PROTECT);
    EXPECT_EQ(Shell(FO_DELETE, u"C:\\disk\\tree"), ERROR_WRITE_PROTECT);
    EXPECT_EQ(Shell(FO_DELETE, u"C:\\disk\\2"), ERROR_WRITE_PROTECT);
    EXPECT_EQ(Shell(FO_MOVE, u"C:\\disk\\2", u"C:\\"), ERROR_WRITE_PROTECT);
}

// Root reads everything, so a child without rights looks.
TEST_F(ShellOperations, WithoutPermission) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give its rights up";
    drives.MakeFile("c/secret", "1");
    drives.MakeFile("c/locked/file", "1");
    drives.MakeFile("c/guarded/file", "1");
    chmod((c + "/secret").c_str(), 0600);
    chmod((c + "/locked").c_str(), 0700);
    chmod((c + "/guarded").c_str(), 0755);
    fs::permissions(c, fs::perms::all);
    fs::permissions(fs::path(c).parent_path(), fs::perms::all);
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (setgid(kNobody) != 0 || setuid(kNobody) != 0) _exit(1);
        if (Shell(FO_COPY, u"C:\\secret", u"C:\\copy") != DE_ACCESSDENIEDSRC) _exit(2);
        if (Shell(FO_COPY, u"C:\\locked", u"C:\\copy") != DE_ACCESSDENIEDSRC) _exit(3);
        if (Shell(FO_COPY, u"C:\\guarded\\file", u"C:\\guarded\\new") != ERROR_ACCESS_DENIED) _exit(4);
        if (Shell(FO_DELETE, u"C:\\guarded") != ERROR_ACCESS_DENIED) _exit(5);
        if (Shell(FO_DELETE, u"C:\\locked") != ERROR_ACCESS_DENIED) _exit(6);
        if (Shell(FO_RENAME, u"C:\\guarded\\file", u"C:\\guarded\\new", 0) != ERROR_ACCESS_DENIED) _exit(7);
        // What may be read may be copied; the copy is the user's own.
        if (Shell(FO_COPY, u"C:\\guarded", u"C:\\own") != 0) _exit(8);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(StatusOf(c + "/own/file").st_uid, 65534U);
    EXPECT_EQ(CountEntries(c), 4);
    EXPECT_EQ(ReadBytes(c + "/guarded/file"), "1");
}

} // namespace
