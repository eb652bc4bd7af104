// Long work on records: several processes, interruptions, crashes, full disks, and memory.
#include "tests/host/program.h"
#include "tests/support/small_disk.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <random>
#include <sys/resource.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class FieldRuns : public Program {
protected:
    // `count` records named 1, 2, 3…, each with a container of one stream of `bytes` bytes.
    void MakeTable(int count, int bytes = 100) const {
        ASSERT_EQ(Corvane("db create m.corvane").status, 0);
        ASSERT_EQ(Corvane("db table m.corvane t name:text n:number data:container").status, 0);
        Sql("INSERT INTO t (id, name) SELECT value, value FROM generate_series(1, " + std::to_string(count) +
            "); INSERT INTO corvane_streams (field, record, position, type, bytes) "
            "SELECT 3, id, 0, 'FILE', randomblob(" +
            std::to_string(bytes) + ") FROM t");
    }

    // The program in the background; its errors go to a file.
    [[nodiscard]] pid_t Start(const std::string& arguments) const {
        const std::string command = "cd '" + folder_ + "'; exec '" CORVANE_PROGRAM "' --ui none --plugin '" +
                                    CORVANE_TEST_PLUGIN "' " + arguments + " 2>errors";
        const pid_t process = ::fork();
        if (process != 0) return process;
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        ::_exit(127);
    }

    // The exit status, negative for a signal; peak memory of the process in KiB in `peak`.
    static int Wait(pid_t process, long* peak = nullptr) {
        int status = 0;
        rusage usage = {};
        ::wait4(process, &status, 0, &usage);
        if (peak != nullptr) *peak = usage.ru_maxrss;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    static int Kill(pid_t process, int signal = SIGKILL) {
        ::kill(process, signal);
        return Wait(process);
    }

    bool WaitFor(const std::string& query, const std::string& answer) const {
        const auto end = Clock::now() + std::chrono::seconds(30);
        while (Clock::now() < end) {
            if (Sql(query) == answer) return true;
            std::this_thread::sleep_for(milliseconds(20));
        }
        return false;
    }
};

TEST_F(FieldRuns, SeveralWorkersDoWhatOneDoes) {
    MakeTable(200, 300'000);
    const Finished run =
        Corvane("update m.corvane t 'n=Length(HostStream(data; \"FILE\")) + id' 'data=data' "
                "'name=If(Mod(id; 50) = 0; \"$-7:no\"; name & \"!\")' --where 'id > 10' --jobs 3");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.errors.starts_with("record 50: name: -7: no\n")) << run.errors;
    EXPECT_EQ(
        Sql("SELECT count(*), sum(n = 600000 + id AND name = id || '!') FROM t WHERE id > 10 AND id % 50"),
        "186|186");
    EXPECT_EQ(Sql("SELECT count(*) FROM t WHERE n IS NULL AND name = id"), "14");
    EXPECT_EQ(
        Sql("SELECT count(DISTINCT record), min(length(bytes)), count(DISTINCT bytes) FROM corvane_streams"),
        "200|300000|200");
    EXPECT_EQ(Sql("SELECT count(*) FROM corvane_runs; SELECT count(*) FROM corvane_done"), "0\n0");
}

TEST_F(FieldRuns, WorkersHaveTheDrivesAndTheHostOfTheirParent) {
    MakeTable(4);
    Write("d/x.bin", "hello");
    ::setxattr((folder_ + "/d/x.bin").c_str(), "user.DOSATTRIB", "0x2", 3, 0); // does not count with --hidden
    const std::string update =
        "update m.corvane t 'name=Get(ApplicationVersion) & Media_ListDisks & "
        "Media_ExtractInfo(Media_GetItemInfo(\"/D:/x.bin\"); \"Data size (b)\") & "
        "Media_ExtractInfo(Media_GetItemInfo(\"//srv/s/x.bin\"); \"Data size (b)\") & "
        "Media_ExtractInfo(Media_GetItemInfo(\"/D:/x.bin\"); \"Invisible\")' --hidden named "
        "--drive C:=/ --drive D:=d --drive '\\\\srv\\s='$DIR/d --host-version 10.0v3 --jobs ";
    for (const char* jobs : {"1", "2"}) {
        const Finished run = Corvane(update + jobs);
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(Sql("SELECT DISTINCT name FROM t; UPDATE t SET name = ''"), "Pro 10.0v3C:\\|D:\\550")
            << jobs;
    }
}

TEST_F(FieldRuns, AWorkerThatDiesCostsOneRecord) {
    MakeTable(30);
    const Finished run = Corvane("update m.corvane t 'n=If(id = 7 or id = 30; Test_Abort; id)' --jobs 2 "
                                 "--plugin '" CORVANE_SAMPLE_PLUGIN "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Contains(run.errors, "record 7: worker: -1: the process ended with signal 6\n"));
    EXPECT_TRUE(Contains(run.errors, "records that failed: 2"));
    EXPECT_EQ(Sql("SELECT sum(n = id), sum(n IS NULL AND id IN (7, 30)) FROM t"), "28|2");
}

TEST_F(FieldRuns, InterruptionsEndAfterTheCurrentRecordAndRunsGoOn) {
    MakeTable(40);
    for (const char* jobs : {"1", "2"}) {
        Sql("UPDATE t SET n = 0");
        const std::string update =
            std::string("update m.corvane t 'n=n + 1 + Length(HostPump(0.02))' --jobs ") + jobs;
        pid_t process = Start(update);
        ASSERT_TRUE(WaitFor("SELECT sum(n) > 5 FROM t", "1"));
        EXPECT_EQ(Kill(process, SIGINT), 130);
        const int done = std::stoi(Sql("SELECT count(*) FROM corvane_done"));
        EXPECT_LT(done, 40);
        EXPECT_EQ(std::stoi(Sql("SELECT sum(n) FROM t")), done);

        process = Start(update + " --resume");
        ASSERT_TRUE(WaitFor("SELECT sum(n) > " + std::to_string(done + 2) + " FROM t", "1"));
        EXPECT_EQ(Kill(process), -SIGKILL);
        EXPECT_EQ(Wait(Start(update + " --resume")), 0) << Read("errors");
        EXPECT_EQ(Sql("SELECT min(n), max(n), count(*) FROM t"), "1|1|40") << "each record once";
        EXPECT_EQ(Sql("SELECT count(*) FROM corvane_done"), "0");
    }
}

TEST_F(FieldRuns, ResumedRunsRememberWhatFailed) {
    MakeTable(4);
    const std::string update =
        "update m.corvane t 'n=If(id = 1; \"$-3:no\"; id + Length(HostPump(If(id = 3; 30; 0))))'";
    const pid_t process = Start(update);
    ASSERT_TRUE(WaitFor("SELECT count(*) FROM corvane_done", "2"));
    Kill(process);
    Sql("DELETE FROM t WHERE id = 3");
    const Finished run = Corvane(update + " --resume");
    EXPECT_EQ(run.status, 1) << "a record failed before the run was stopped";
    EXPECT_EQ(run.errors, "corvane: records that failed: 1\n");
    EXPECT_EQ(Sql("SELECT id, n FROM t"), "1|\n2|2\n4|4");
}

TEST_F(FieldRuns, RunsOfTheSameWorkThatOverlapCostLaterOnesNoRecord) {
    MakeTable(40);
    const std::string update = "update m.corvane t 'n=id + Length(HostPump(0.02))'";
    const pid_t first = Start(update);
    ASSERT_TRUE(WaitFor("SELECT count(*) > 10 FROM corvane_done", "1"));
    const pid_t second = Start(update);
    EXPECT_EQ(Wait(first), 0) << Read("errors");
    std::this_thread::sleep_for(milliseconds(100)); // the second one notes what it does
    Kill(second, SIGTERM);

    const std::string other = "update m.corvane t 'name=\"x\" & HostPump(0.02)'";
    const pid_t third = Start(other);
    ASSERT_TRUE(WaitFor("SELECT count(*) > 2 FROM t WHERE name = 'x'", "1"));
    Kill(third);
    EXPECT_EQ(Corvane(other + " --resume").status, 0);
    EXPECT_EQ(Sql("SELECT count(*) FROM t WHERE name = 'x'"), "40");
}

TEST_F(FieldRuns, KillsAtAnyMomentLeaveAWholeFile) {
    MakeTable(0);
    for (std::size_t i = 0; i < 20; ++i)
        Write("in/" + std::to_string(i) + ".bin", std::string(i * 1500, 'x'));
    ASSERT_EQ(Corvane("import m.corvane t data in").status, 0);
    std::mt19937 random(20);
    const std::string update = "update m.corvane t 'n=n + 1' data=data";
    for (int round = 0; round < 100; ++round) {
        const pid_t process = Start(round % 2 == 0 ? update + " --resume" : "import m.corvane t data in");
        std::this_thread::sleep_for(milliseconds(std::uniform_int_distribution(5, 60)(random)));
        Kill(process);
        ASSERT_EQ(Sql("PRAGMA integrity_check"), "ok") << round;
        ASSERT_EQ(Sql("SELECT count(*) FROM t WHERE "
                      "(SELECT count(*) FROM corvane_streams WHERE record = t.id) <> 2"),
                  "0")
            << "records come with all their streams";
        ASSERT_EQ(Sql("SELECT count(*) FROM corvane_streams WHERE record NOT IN (SELECT id FROM t)"), "0");
        if (round % 10 == 9) Sql("DELETE FROM t WHERE id > 20");
    }
    Sql("UPDATE t SET n = NULL; DELETE FROM corvane_done; DELETE FROM corvane_runs");
    EXPECT_EQ(Corvane(update).status, 0);
    EXPECT_EQ(Sql("SELECT count(*) FROM t WHERE n IS NOT 1"), "0");
}

TEST_F(FieldRuns, TwoProcessesWaitForEachOther) {
    MakeTable(150, 20'000);
    const pid_t one = Start("update m.corvane t n=id data=data");
    const pid_t two = Start("update m.corvane t 'name=name & \"!\"'");
    EXPECT_EQ(Wait(one), 0) << Read("errors");
    EXPECT_EQ(Wait(two), 0) << Read("errors");
    EXPECT_EQ(Sql("SELECT count(*) FROM t WHERE n = id AND name = id || '!'"), "150");
    EXPECT_EQ(Sql("SELECT count(*) FROM corvane_streams"), "150");
}

TEST_F(FieldRuns, AFullDiskLosesNothingThatWasCommitted) {
    for (int i = 0; i < 30; ++i)
        Write("in/" + std::to_string(10 + i), std::string(1'000'000, static_cast<char>('a' + i % 26)));
    std::filesystem::create_directories(folder_ + "/disk");
    const corvane::test::SmallDisk disk(folder_ + "/disk", "24m");
    if (!disk.IsMounted()) GTEST_SKIP() << "mounting is not permitted";
    ASSERT_EQ(Corvane("db create disk/m.corvane").status, 0);
    ASSERT_EQ(Corvane("db table disk/m.corvane t name:text data:container").status, 0);
    Finished run = Corvane("import disk/m.corvane t data in/10 in/11 in/12 --name-field name");
    ASSERT_EQ(run.status, 0) << run.errors;
    run = Corvane("import disk/m.corvane t data in");
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Contains(run.errors, "full"));
    run = Corvane("show disk/m.corvane t --where 'name <> \"\" and Left(HostStream(data; \"FILE\"); 6) = "
                  "Choose(id; \"\"; \"616161\"; \"626262\"; \"636363\")'");
    EXPECT_EQ(std::ranges::count(run.output, '\n'), 4) << run.output;
    EXPECT_EQ(Corvane("update disk/m.corvane t 'name=\"still\" & \" good\"'").status, 0)
        << "small changes fit";
}

TEST_F(FieldRuns, MemoryStaysFlatOverManyRecords) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer keeps what is freed";
#endif
    MakeTable(10'000, 10'000);
    long few = 0;
    long many = 0;
    const std::string update = "update m.corvane t 'n=Length(HostStream(data; \"FILE\"))' data=data";
    EXPECT_EQ(Wait(Start(update + " --where 'id <= 200'"), &few), 0);
    EXPECT_EQ(Wait(Start(update), &many), 0);
    EXPECT_EQ(Sql("SELECT count(*) FROM t WHERE n = 20000"), "10000");
    EXPECT_LT(many, few + 8192) << "KiB";
}

} // namespace
} // namespace host
