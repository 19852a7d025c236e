#include "apps/qsscan/page_queue.h"

#include <gtest/gtest.h>

#include <thread>

#include "made_page.h"

namespace {

using namespace std::chrono_literals;
using namespace qsscan_test;
using qsscan::Page;
using qsscan::PageQueue;

Page numbered(int number) { return makePage(10, 10, 8, 300, number); }  // 100 bytes of pixels

TEST(PageQueue, GivesPagesInOrderAndSaysClosedOnlyWhenEmpty) {
  PageQueue queue(4, 1000);
  for (int i = 1; i <= 3; ++i) {
    Page page = numbered(i);
    ASSERT_TRUE(queue.push(page, 0ms));
  }
  queue.close();
  Page page;
  for (int i = 1; i <= 3; ++i) {
    ASSERT_EQ(queue.pop(page, 0ms), PageQueue::Pop::kPage);
    EXPECT_EQ(page.number, i);
  }
  EXPECT_EQ(queue.pop(page, 0ms), PageQueue::Pop::kClosed);
}

TEST(PageQueue, IsBoundByPages) {
  PageQueue queue(2, 1000);
  Page page = numbered(1);
  ASSERT_TRUE(queue.push(page, 0ms));
  page = numbered(2);
  ASSERT_TRUE(queue.push(page, 0ms));
  page = numbered(3);
  EXPECT_FALSE(queue.push(page, 1ms));
  EXPECT_EQ(page.pixels.size(), 100u) << "a page that was not taken stays whole";
}

TEST(PageQueue, IsBoundByBytesButAnEmptyOneTakesAnyPage) {
  PageQueue queue(4, 150);
  Page page = makePage(20, 10, 8);
  EXPECT_TRUE(queue.push(page, 0ms)) << "200 bytes into an empty queue";
  page = numbered(2);
  EXPECT_FALSE(queue.push(page, 1ms));
  Page taken;
  queue.pop(taken, 0ms);
  EXPECT_TRUE(queue.push(page, 0ms));
}

TEST(PageQueue, NothingYetIsNotTheEnd) {
  PageQueue queue(4, 150);
  Page page;
  EXPECT_EQ(queue.pop(page, 1ms), PageQueue::Pop::kNothingYet);
}

TEST(PageQueue, TheMemoryOfAPageThatIsDoneWithIsThereForAnother) {
  PageQueue queue(4, 1000);
  Page page = numbered(1);
  const std::uint8_t* const memory = page.pixels.data();
  EXPECT_TRUE(queue.takeSpare().empty());
  ASSERT_TRUE(queue.push(page, 0ms));
  ASSERT_EQ(queue.pop(page, 0ms), PageQueue::Pop::kPage);
  EXPECT_TRUE(queue.takeSpare().empty()) << "the page is still in use";
  Page next = numbered(2);
  ASSERT_TRUE(queue.push(next, 0ms));
  ASSERT_EQ(queue.pop(page, 0ms), PageQueue::Pop::kPage);
  EXPECT_EQ(page.number, 2);
  EXPECT_EQ(queue.takeSpare().data(), memory);
  EXPECT_TRUE(queue.takeSpare().empty()) << "it is there once";
}

TEST(PageQueue, WakesBothSides) {
  PageQueue queue(1, 1000);
  std::thread pusher([&] {
    for (int i = 1; i <= 50; ++i) {
      Page page = numbered(i);
      while (!queue.push(page, 10s)) {
      }
    }
    queue.close();
  });
  int count = 0;
  Page page;
  while (queue.pop(page, 10s) == PageQueue::Pop::kPage) EXPECT_EQ(page.number, ++count);
  pusher.join();
  EXPECT_EQ(count, 50);
}

}  // namespace
