// Rows of a table that run at once: most of a scan is waiting for the other side.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <thread>
#include <vector>

namespace e2e {

// Calls action(row) for every row, that many at a time, and returns when all are done. An exception is a failure.
template <typename Row, typename Action>
void forEachAtOnce(const std::vector<Row>& rows, std::size_t atOnce, Action action) {
  std::atomic<std::size_t> next{0};
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < std::min(atOnce, rows.size()); ++i) {
    threads.emplace_back([&] {
      for (std::size_t row = next++; row < rows.size(); row = next++) {
        try {
          action(rows[row]);
        } catch (const std::exception& error) {
          ADD_FAILURE() << "row " << row << ": " << error.what();
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

}  // namespace e2e
