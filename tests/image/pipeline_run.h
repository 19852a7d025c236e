// A whole pipeline under a test's control: pages go in, and are stepped until they are settled.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "image/DecodeManage.h"
#include "tests/image/stage_run.h"

namespace fakes {

struct PipelineRun {
  Settings settings;
  orvalle_scan_api::QS_SCANNER_CAPABILITY capability{};
  orvalle_scan_api::CScanError scanError;
  std::vector<std::unique_ptr<orvalle_scan_api::CImageData>> pages;  // outlive the pipeline
  orvalle_scan_api::CDecodeManage manage;

  // True when the modules are there.
  bool initialize() {
    manage.SetScanProcStatus(&scanError);
    return manage.Initialize() == 0;
  }
  // The next page, numbered from 1 on; its current store is still to be filled.
  orvalle_scan_api::CImageData& newPage() {
    pages.push_back(std::make_unique<orvalle_scan_api::CImageData>());
    pages.back()->SetPageNo(static_cast<unsigned>(pages.size()));
    return *pages.back();
  }
  orvalle_scan_api::QSRSLT step() { return manage.DecodeProcess(settings.user, settings.device, capability); }

  // Steps until every page is settled; pages must settle in their order.
  void runAll() {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (std::size_t settled = 0; settled < pages.size();) {
      ASSERT_LT(std::chrono::steady_clock::now(), limit) << "page " << settled + 1 << " did not come";
      ASSERT_EQ(step(), 0u);
      std::this_thread::yield();
      while (settled < pages.size() && pages[settled]->IsSettled()) ++settled;
      for (std::size_t later = settled; later < pages.size(); ++later) {
        // Only a page that was dropped on the way may leave before those in front of it.
        const bool finished = pages[later]->IsSettled() && pages[later]->m_finalData.IsWriteDataFinished();
        ASSERT_FALSE(finished) << "page " << later + 1 << " overtook";
      }
    }
  }
};

}  // namespace fakes
