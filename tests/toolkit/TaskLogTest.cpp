#include <gtest/gtest.h>

#include "host/memory/MemoryTaskLog.h"
#include "toolkit/tasks/LoggerHandle.h"

namespace test {
namespace {

class TaskLog : public testing::Test {
protected:
    [[nodiscard]] double progress() const { return log_->calcAggregateProgress(); }

    Ox::Ptr<MemoryTaskLog> const log_ = Ox::makePtr<MemoryTaskLog>();
    LoggerHandle handle_{log_};
};

TEST_F(TaskLog, KeepsLinesWithTheirTypes) {
    handle_.write(L"begun", LoggerBase::stageLine);
    handle_.write(L"broken", LoggerBase::errorLine);
    ASSERT_EQ(log_->lines().size(), 2U);
    EXPECT_EQ(log_->lines()[0].text, L"begun");
    EXPECT_EQ(log_->lines()[0].type, 5U);
    EXPECT_EQ(log_->lines()[1].type, 4U);
}

TEST_F(TaskLog, FormatsAPlainLine) {
    handle_.Out("%d file(s) to process", 3);
    EXPECT_EQ(log_->lines()[0].text, L"3 file(s) to process");
    EXPECT_EQ(log_->lines()[0].type, 0U);
}

TEST_F(TaskLog, SaysTheWholeProgress) {
    handle_.reportProgress(L"copying", 0.25);
    EXPECT_DOUBLE_EQ(progress(), 0.25);
    EXPECT_EQ(log_->activity(), L"copying");
}

TEST_F(TaskLog, AnEmptyTextLeavesWhatWasSaid) {
    handle_.reportProgress(L"copying", 0.25);
    handle_.reportProgress({}, 0.5);
    EXPECT_EQ(log_->activity(), L"copying");
}

TEST_F(TaskLog, CountsSubTasksAlike) {
    handle_.startSubTasks(4);
    handle_.nextSubTask();
    handle_.reportProgress({}, 0.5);
    EXPECT_DOUBLE_EQ(progress(), 0.375);
}

TEST_F(TaskLog, WeighsSubTasksByTheirBytes) {
    handle_.startSubTasks({300, 100});
    handle_.nextSubTask();
    EXPECT_DOUBLE_EQ(progress(), 0.75);
    handle_.reportProgress({}, 0.5);
    EXPECT_DOUBLE_EQ(progress(), 0.875);
}

TEST_F(TaskLog, CountsSubTasksWithoutBytesAlike) {
    handle_.startSubTasks({0, 0});
    handle_.nextSubTask();
    EXPECT_DOUBLE_EQ(progress(), 0.5);
}

TEST_F(TaskLog, IsDoneBehindTheLastSubTask) {
    handle_.startSubTasks(2);
    handle_.nextSubTask();
    handle_.nextSubTask();
    handle_.nextSubTask();
    EXPECT_DOUBLE_EQ(progress(), 1.0);
    handle_.endSubTasks();
    EXPECT_DOUBLE_EQ(progress(), 1.0);
}

TEST_F(TaskLog, ACopysWorkIsTheSubTaskThatIsUnderWay) {
    handle_.startSubTasks(2);
    handle_.nextSubTask();
    LoggerHandle copy(handle_);
    copy.startSubTasks(2);
    copy.reportProgress({}, 1.0);
    EXPECT_DOUBLE_EQ(progress(), 0.75);
}

TEST_F(TaskLog, ACopysSubTasksAreItsOwn) {
    handle_.startSubTasks(2);
    LoggerHandle copy(handle_);
    copy.startSubTasks(4);
    copy.endSubTasks();
    handle_.nextSubTask();
    EXPECT_DOUBLE_EQ(progress(), 0.5);
}

TEST_F(TaskLog, SubTasksMayBeCutAgain) {
    log_->startSubTasks(2);
    log_->nextSubTask();
    log_->startSubTasks(5);
    log_->nextSubTask();
    EXPECT_DOUBLE_EQ(progress(), 0.6);
    log_->endSubTasks();
    EXPECT_DOUBLE_EQ(progress(), 1.0);
    log_->endSubTasks();
    log_->reportProgress({}, 0.5);
    EXPECT_DOUBLE_EQ(progress(), 0.5);
}

TEST_F(TaskLog, WithoutSubTasksTheirCallsDoNothing) {
    handle_.nextSubTask();
    handle_.endSubTasks();
    EXPECT_DOUBLE_EQ(progress(), 0.0);
}

/// Those who are handed plain memory know no more than the first virtual operation.
TEST_F(TaskLog, IsReachedThroughPlainMemory) {
    void* const context = &handle_;
    static_cast<ProgressReportClient*>(context)->reportProgress({}, 0.5);
    EXPECT_DOUBLE_EQ(progress(), 0.5);
}

TEST(LoggerHandle, WithoutALogWritesNothing) {
    LoggerHandle handle;
    handle.write(L"lost", LoggerBase::plainLine);
    handle.reportProgress({}, 0.5);
    EXPECT_DOUBLE_EQ(handle.calcAggregateProgress(), 0.5);
}

TEST(HyperLink, NamesItsTargetsBehindItsLabel) {
    EXPECT_EQ(LoggerBase::HyperLink(L"Done", {L"/a/b.mov", L"/a/c.mov"}).asString(),
              L"[Done](/a/b.mov)(/a/c.mov)");
}

TEST(HyperLink, DisarmsWhatWouldEndIt) {
    EXPECT_EQ(LoggerBase::HyperLink(L"a]b", {L"/(1)\\"}).asString(), L"[a\\]b](/\\(1\\)\\\\)");
}

}  // namespace
}  // namespace test
