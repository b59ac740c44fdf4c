#include <array>
#include <gtest/gtest.h>
#include <thread>

#include "math/PublishedRecord.h"

namespace {

using Record = std::array<int, 16>;

Record filled(int value) {
    Record record;
    record.fill(value);
    return record;
}

TEST(PublishedRecordTest, AReadBeforeAnyPublishGivesTheInitialRecord) {
    PublishedRecord<Record> record(filled(7));
    EXPECT_EQ(record.read(), filled(7));
    EXPECT_EQ(record.latest(), filled(7));
}

TEST(PublishedRecordTest, AReadGivesTheNewestOfSeveralChanges) {
    PublishedRecord<Record> record(filled(0));
    for (int i = 1; i <= 5; ++i) {
        record.publish(filled(i));
        EXPECT_EQ(record.latest(), filled(i));
    }
    EXPECT_EQ(record.read(), filled(5));
    EXPECT_EQ(record.read(), filled(5));
    record.publish(filled(6));
    EXPECT_EQ(record.read(), filled(6));
}

TEST(PublishedRecordTest, ARecordInUseStaysAsItIsThroughAnyNumberOfChanges) {
    PublishedRecord<Record> record(filled(0));
    record.publish(filled(1));
    const Record& inUse = record.read();
    for (int i = 2; i <= 9; ++i) {
        record.publish(filled(i));
        EXPECT_EQ(inUse, filled(1));
    }
    EXPECT_EQ(record.read(), filled(9));
}

TEST(PublishedRecordTest, AReaderOnAnotherThreadSeesWholeRecordsInOrder) {
    constexpr int kChanges = 100000;
    PublishedRecord<Record> record(filled(0));
    std::thread writer([&] {
        for (int i = 1; i <= kChanges; ++i)
            record.publish(filled(i));
    });
    int torn = 0;
    int backwards = 0;
    int last = 0;
    for (int i = 0; i < kChanges; ++i) {
        const Record& seen = record.read();
        if (seen != filled(seen[0])) ++torn;
        if (seen[0] < last) ++backwards;
        last = seen[0];
    }
    writer.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(backwards, 0);
    EXPECT_EQ(record.read(), filled(kChanges));
}

}  // namespace
