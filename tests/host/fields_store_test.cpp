// What goes into a database file and comes out of it again.
#include "host/engine/engine.h"
#include "host/fields/field_value.h"
#include "host/fields/record_values.h"
#include "host/fields/store.h"
#include "platform/text/utf.h"
#include "tests/host/program.h"
#include "tests/support/calls.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace host {
namespace {

using corvane::test::TextValue;

std::shared_ptr<const fm::Bytes> BytesOf(std::string_view text) {
    const auto* first = reinterpret_cast<const std::uint8_t*>(text.data());
    return std::make_shared<fm::Bytes>(first, first + text.size());
}

FM_Data Container(std::vector<fm::Stream> streams, std::u16string reference = {}) {
    FM_BinaryData container;
    container.streams = std::move(streams);
    container.reference = std::move(reference);
    FM_Data value;
    value.SetContainer(container);
    return value;
}

class FieldStore : public Program {
protected:
    void SetUp() override {
        ASSERT_EQ(Store::Create(file_), "");
        ASSERT_EQ(store_.Open(file_), "");
        ASSERT_EQ(AddTable("media", {"name:text", "size:number", "data:container", "small:container"}), "");
        table_ = store_.FindTable("MEDIA");
        ASSERT_NE(table_, nullptr);
        records_ = std::make_unique<Records>(store_.GetConnection(), *table_);
    }

    std::string AddTable(const std::string& name, const std::vector<std::string>& fields) {
        Table table{name, utf::ToLower(name), {}};
        std::string problem;
        for (const std::string& text : fields) {
            const auto field = ParseField(text, problem);
            if (!field) return problem;
            table.fields.push_back(*field);
        }
        return store_.AddTable(table);
    }

    void Insert(const FM_Data& name, const FM_Data& size, const FM_Data& data) {
        const std::vector<FM_Data> values = {
            ValueFor(FieldType::kText, name), ValueFor(FieldType::kNumber, size),
            ValueFor(FieldType::kContainer, data), ValueFor(FieldType::kContainer, FM_Data())};
        Transaction transaction(store_.GetConnection());
        ASSERT_EQ(records_->Insert(values), "");
        ASSERT_TRUE(transaction.Commit());
    }

    FM_Data Read(std::int64_t record, std::size_t field) {
        FM_Data value;
        EXPECT_EQ(records_->Read(record, field, value), "");
        return value;
    }

    std::string file_ = folder_ + "/m.corvane";
    Store store_;
    const Table* table_ = nullptr;
    std::unique_ptr<Records> records_;
};

TEST_F(FieldStore, RefusesNamesThatCalculationsOrTheFileCantHave) {
    for (const char* field : {"1a:text", "a b:text", "a-b:text", "\"a:text", ":text", "id:text", "AND:text",
                              "a::b:text", "a:blob", "a", "\xFF:text"})
        EXPECT_NE(AddTable("other", {field}), "") << field;
    for (const char* name : {"corvane_x", "SQLITE_x", "Media", "x\"y", "", "or"})
        EXPECT_NE(AddTable(name, {"a:text"}), "") << name;
    EXPECT_NE(AddTable("other", {"größe:text", "GRÖSSE:text", "Größe:number"}), "");
    EXPECT_NE(AddTable("other", {}), "");
    EXPECT_EQ(AddTable("Bücher", {"größe:text", "select:number", "a.b_2:container"}), "");

    Store again;
    ASSERT_EQ(again.Open(file_), "");
    ASSERT_EQ(again.Tables().size(), 2U);
    const Table* table = again.FindTable("bÜCHER");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->Find("SELECT")->type, FieldType::kNumber);
}

TEST_F(FieldStore, KeepsTextsAndNumbersExactly) {
    const std::string text = "a\rb\tü 😀 '\"";
    for (const char* number : {"0.1", "-12.50", "12345678901234567890.123456789", "9223372036854775807",
                               "9223372036854775808", "0", "0.30000000000000004"}) {
        Insert(TextValue(text), TextValue(number), FM_Data());
        const auto record = std::stoll(Sql("SELECT max(id) FROM media"));
        EXPECT_EQ(utf::ToUtf8(Read(record, 0).AsText().units), text);
        const FM_Data value = Read(record, 1);
        EXPECT_EQ(value.Type(), kFM_TypeNumber);
        EXPECT_EQ(Compare(value.AsNumber().value, *fm::Decimal::Parse(number)), 0) << number;
    }
    EXPECT_EQ(Sql("SELECT typeof(size) FROM media"), "real\nreal\ntext\ninteger\ntext\ninteger\nreal");
    EXPECT_EQ(Sql("SELECT id FROM media WHERE size < 0 AND typeof(size) <> 'text'"), "2");

    Insert(FM_Data(), TextValue("none"), FM_Data());
    EXPECT_EQ(Sql("SELECT count(*) FROM media WHERE name IS NULL AND size IS NULL AND data IS NULL"), "1");
    EXPECT_TRUE(Read(8, 1).IsEmpty());
    Insert(FM_Data(), TextValue("12 px"), FM_Data());
    EXPECT_EQ(Sql("SELECT size FROM media WHERE id = 9"), "12");
}

TEST_F(FieldStore, KeepsStreamsInOrderWithTheirTypes) {
    const FM_Data value = Container({{0x4A504547, BytesOf("jpeg")},
                                     {0x736E6420, BytesOf("")},
                                     {0xFF00C3A9, BytesOf("x")},
                                     {0x4A504547, BytesOf(std::string("\0two", 4))}});
    Insert(FM_Data(), FM_Data(), value);
    const FM_Data read = Read(1, 2);
    const FM_BinaryData& container = read.AsContainer();
    ASSERT_EQ(container.streams.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(container.streams[i].type, value.AsContainer().streams[i].type);
        EXPECT_EQ(*container.streams[i].bytes, *value.AsContainer().streams[i].bytes);
    }
    EXPECT_TRUE(Read(1, 3).IsEmpty());
    EXPECT_EQ(Read(1, 3).Type(), kFM_TypeContainer);
    EXPECT_EQ(Read(77, 2).Type(), kFM_TypeContainer) << "a record that is not there";
}

TEST_F(FieldStore, ReplacesAContainerAsAWhole) {
    Insert(TextValue("a"), FM_Data(), Container({{1, BytesOf("one")}, {2, BytesOf("two")}}));
    Insert(TextValue("b"), FM_Data(), Container({{1, BytesOf("other")}}));
    const auto change = [&](std::int64_t record, const FM_Data& value) {
        const FieldChange changes[] = {{2, ValueFor(FieldType::kContainer, value)}, {0, TextValue("new")}};
        Transaction transaction(store_.GetConnection());
        EXPECT_EQ(records_->Change(record, changes), "");
        EXPECT_TRUE(transaction.Commit());
    };
    change(1, TextValue("size:1,2\rimage:a.jpg"));
    EXPECT_EQ(Sql("SELECT data FROM media WHERE id = 1"), "size:1,2\rimage:a.jpg");
    EXPECT_EQ(Sql("SELECT record FROM corvane_streams"), "2");
    EXPECT_EQ(Read(1, 2).AsContainer().reference, u"size:1,2\rimage:a.jpg");
    change(1, Container({{3, BytesOf("three")}}));
    EXPECT_EQ(Read(1, 2).AsContainer().reference, u"");
    EXPECT_EQ(Sql("SELECT bytes FROM corvane_streams ORDER BY id"), "other\nthree");
    change(1, FM_Data());
    EXPECT_TRUE(Read(1, 2).IsEmpty());
    change(99, Container({{4, BytesOf("nobody's")}}));
    EXPECT_EQ(Sql("SELECT count(*) FROM corvane_streams"), "1") << "no streams without a record";
    EXPECT_EQ(Sql("SELECT name FROM media"), "new\nb");
    EXPECT_EQ(Sql("DELETE FROM media WHERE id = 2; SELECT count(*) FROM corvane_streams"), "0")
        << "deleted with their record";
}

TEST_F(FieldStore, MovesLargeStreamsInPieces) {
    auto bytes = std::make_shared<fm::Bytes>(std::size_t{70} << 20);
    for (std::size_t i = 0; i < bytes->size(); ++i)
        (*bytes)[i] = static_cast<std::uint8_t>(i * 2654435761U >> 13);
    Insert(FM_Data(), FM_Data(), Container({{1, bytes}}));
    EXPECT_TRUE(*Read(1, 2).AsContainer().streams.at(0).bytes == *bytes);
}

TEST_F(FieldStore, ChangesThatAreNotCommittedAreGone) {
    {
        const Transaction transaction(store_.GetConnection());
        ASSERT_TRUE(transaction.Good());
        const std::vector<FM_Data> values = {TextValue("a"), FM_Data(), Container({{1, BytesOf("x")}}),
                                             Container({})};
        ASSERT_EQ(records_->Insert(values), "");
    }
    EXPECT_EQ(Sql("SELECT count(*) FROM media; SELECT count(*) FROM corvane_streams"), "0\n0");
}

TEST_F(FieldStore, OpensOnlyItsOwnFiles) {
    EXPECT_NE(Store::Create(file_), "") << "a file that is there stays";
    Write("garbage", std::string(5000, 'x'));
    Write("empty", "");
    for (const char* name : {"/garbage", "/empty", "/nothing", ""}) {
        Store other;
        EXPECT_NE(other.Open(folder_ + name), "") << name;
    }
    EXPECT_FALSE(std::filesystem::exists(folder_ + "/nothing"));
    Sql("UPDATE corvane_fields SET name = 'x\\\" y' WHERE id = 1");
    EXPECT_NE(Store().Open(file_), "") << "a name that another program put there";
    Sql("PRAGMA user_version = 2");
    EXPECT_NE(Store().Open(file_).find("layout 2"), std::string::npos);
}

TEST_F(FieldStore, CalculationsReadTheFieldsOfARecord) {
    Insert(TextValue("first"), TextValue("7"), Container({{0x4A504547, BytesOf("abc")}}));
    Insert(TextValue("second"), TextValue("8"), Container({}, u"image:b.jpg"));
    Engine engine;
    RecordValues values(*records_, *table_);
    engine.fields = &values;
    const auto value = [&](std::string_view calculation) {
        const Outcome outcome = engine.Evaluate(calculation);
        return outcome.parse_error ? outcome.parse_error->message : utf::ToUtf8(outcome.value.AsText().units);
    };
    values.MoveTo(1);
    EXPECT_EQ(value("Name & media::SIZE + 1"), "first8");
    EXPECT_EQ(value("HostStream(data; \"JPEG\") & IsEmpty(small)"), "6162631");
    EXPECT_EQ(value("Let(name = 1; name & media::name)"), "1first") << "a name of Let hides a field";
    EXPECT_EQ(value("id & media::id"), "11");
    EXPECT_EQ(value("other::name"), "unknown name \"other::name\"");
    EXPECT_EQ(value("media::nothing"), "unknown name \"media::nothing\"");
    EXPECT_EQ(value("name("), "unknown function \"name\"");
    values.MoveTo(2);
    EXPECT_EQ(value("name & size & data"), "second8image:b.jpg");
    values.Set(0, TextValue("changed"));
    EXPECT_EQ(value("name"), "changed");
    values.MoveTo(1);
    EXPECT_EQ(value("name"), "first");

    Sql("UPDATE corvane_streams SET type = 'toolong'");
    values.MoveTo(1);
    const Outcome outcome = engine.Evaluate("data");
    EXPECT_EQ(outcome.error, kFM_ErrorReading);
    EXPECT_NE(outcome.message.find("record 1"), std::string::npos);
}

} // namespace
} // namespace host
