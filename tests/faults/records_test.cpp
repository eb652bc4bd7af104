// Commands on database files while the disk becomes full at any write: they say so, the file stays sound, and
// with room again the same command does the rest.
#include "tests/host/program.h"

#include <cstdlib>
#include <functional>

namespace host {
namespace {

class StarvedRecords : public Program {
protected:
    // Runs the command with the disk full from each write on, up to a run that has all the room that it
    // needs. `is_sound` looks at the file after each failure.
    void Sweep(const std::string& command, const std::function<void()>& is_sound) {
        int failures = 0;
        for (int write = 0;; write = write < 12 ? write + 1 : write + write / 4) {
            SCOPED_TRACE(testing::Message() << command << ", write " << write);
            Shell("rm -f m.corvane*; cp whole m.corvane");
            setenv("CORVANE_FULL_DISK", std::to_string(write).c_str(), 1);
            const Finished run = Corvane(command);
            unsetenv("CORVANE_FULL_DISK");
            EXPECT_EQ(Sql("PRAGMA integrity_check"), "ok");
            if (run.status == 0) break;
            ++failures;
            // The second is SQLite's word when its index of the log can't grow.
            EXPECT_TRUE(Contains(run.errors, "disk is full") || Contains(run.errors, "disk I/O error"))
                << run.errors;
            is_sound();
            EXPECT_EQ(Corvane(command).status, 0);
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GT(failures, 5);
    }
};

TEST_F(StarvedRecords, StaySound) {
    Shell("mkdir in; for i in 1 2 3 4 5 6; do head -c 20000 /dev/urandom >in/$i; done");
    ASSERT_EQ(Corvane("db create m.corvane").status, 0);
    ASSERT_EQ(Corvane("db table m.corvane t name:text n:number data:container").status, 0);
    ASSERT_EQ(Corvane("import m.corvane t data in --name-field name").status, 0);
    Shell("cp m.corvane whole");

    const char* const streams =
        "SELECT count(*) = count(DISTINCT record), sum(length(bytes)) = 20000 * count(*), "
        "count(*) >= 6 FROM corvane_streams WHERE type = 'FILE'";
    Sweep("import m.corvane t data in --name-field name", [&] { EXPECT_EQ(Sql(streams), "1|1|1"); });
    Sweep("update m.corvane t 'n=Length(HostStream(data;\"FILE\"))' data=data", [&] {
        EXPECT_EQ(Sql(streams), "1|1|1");
        EXPECT_EQ(Sql("SELECT count(*) FROM t WHERE n IS NOT NULL AND n <> 40000"), "0");
    });
}

} // namespace
} // namespace host
