#include "platform/fmwrapper/fault.h"
#include "platform/fmwrapper/host_engine.h"
#include "platform/fmwrapper/memory_blocks.h"
#include "tests/fmwrapper/host_values.h"

#include <cstring>

namespace {

class Fault : public testing::Test {
protected:
    ~Fault() override {
        fm::FailNothing();
        EXPECT_EQ(fm::LiveObjects(), before_);
    }

    const std::int64_t before_ = fm::LiveObjects();
};

class MemoryBlocks : public Fault {
protected:
    MemoryBlocks() { fm::InstallServices(block); }

    FM_CallBlock block{};
};

} // namespace

TEST_F(Fault, HitsTheChosenOperationOnceAndChangesNothing) {
    const TextPointer text = NewText(u"abc");
    fm::FailOperation(1, kFM_StatusNoMemory);
    EXPECT_EQ(Done(FM_Text_GetSize, text.get()), 3);
    EXPECT_EQ(Failure(FM_Text_DeleteText, text.get(), 0, kFM_ToEnd), kFM_StatusNoMemory);
    EXPECT_EQ(Done(FM_Text_GetSize, text.get()), 3);
}

TEST_F(Fault, CountsOnlyTheNamedOperation) {
    const TextPointer text = NewText(u"abc");
    fm::FailOperation(1, kFM_StatusFailed, "FM_Text_GetSize");
    EXPECT_FALSE(Done(FM_Text_operatorEQ, text.get(), NewText(u"").get()));
    EXPECT_EQ(Done(FM_Text_GetSize, text.get()), 3);
    EXPECT_EQ(Failure(FM_Text_GetSize, text.get()), kFM_StatusFailed);
}

TEST_F(Fault, ARefusedDeletionStillReleasesAndARefusedConstructionMakesNothing) {
    FM_Text* text = Done(FM_Text_Constructor1);
    EXPECT_EQ(fm::LiveObjects(), before_ + 1);
    fm::FailOperation(0, kFM_StatusFailed);
    EXPECT_EQ(Failure(FM_Text_Delete, text), kFM_StatusFailed);
    fm::FailOperation(0, kFM_StatusNoMemory, "FM_BinaryData_Constructor1");
    EXPECT_EQ(Failure(FM_BinaryData_Constructor1), kFM_StatusNoMemory);
}

TEST_F(MemoryBlocks, GrowAndKeepTheirBytes) {
    FM_MemoryHandle handle = block.new_memory_block(0);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(block.memory_block_size(handle), 0);
    std::string expected;
    for (int i = 0; i < 100; ++i) {
        const std::int32_t size = block.memory_block_size(handle);
        block.resize_memory_block(handle, size + 3);
        ASSERT_EQ(block.last_memory_error(), 0);
        block.lock_memory_block(handle);
        std::memcpy(*handle + size, "abc", 3);
        expected += "abc";
    }
    block.lock_memory_block(handle);
    EXPECT_EQ(std::string(*handle, 300), expected);
    EXPECT_EQ(fm::LiveObjects(), before_ + 1);
    block.dispose_memory_block(handle);
}

TEST_F(MemoryBlocks, SayThatMemoryIsFullAndStayAsTheyWere) {
    FM_MemoryHandle handle = block.new_memory_block(5);
    fm::FailOperation(0, kFM_StatusNoMemory);
    block.resize_memory_block(handle, 10);
    EXPECT_EQ(block.last_memory_error(), kFM_ErrorOutOfMemory);
    EXPECT_EQ(block.memory_block_size(handle), 5);
    fm::FailOperation(0, kFM_StatusNoMemory, "NewMemoryBlock");
    EXPECT_EQ(block.new_memory_block(1), nullptr);
    EXPECT_EQ(block.last_memory_error(), kFM_ErrorOutOfMemory);
    block.resize_memory_block(handle, -1);
    EXPECT_EQ(block.last_memory_error(), 0);
    EXPECT_EQ(block.memory_block_size(handle), 0);
    block.dispose_memory_block(handle);
}
