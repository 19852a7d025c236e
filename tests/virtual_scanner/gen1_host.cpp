#include "gen1_host.h"

#include <gtest/gtest.h>

namespace vscan::test {
namespace {

std::string changed(const std::string& name, std::vector<std::pair<std::string, std::string>> lines,
                    const std::map<std::string, std::string>& changes) {
  for (auto& [key, value] : lines) {
    if (const auto change = changes.find(key); change != changes.end()) value = change->second;
  }
  return frameOf(name, lines);
}

}  // namespace

std::string questionFrame(const std::map<std::string, std::string>& changes) {
  return changed("I", {{"R", "300,300"}, {"M", "CGRAY"}, {"D", "SIN"}, {"S", "NORMAL_SCAN"}}, changes);
}

std::string startFrame1(const std::map<std::string, std::string>& changes) {
  return changed("X",
                 {{"R", "300,300"},
                  {"M", "CGRAY"},
                  {"C", "JPEG"},
                  {"J", "MID"},
                  {"B", "50"},
                  {"N", "50"},
                  {"A", "0,0,2560,3300"},
                  {"D", "SIN"},
                  {"S", "NORMAL_SCAN"},
                  {"P", "0"},
                  {"E", "0"},
                  {"G", "0"},
                  {"L", "0"}},
                 changes);
}

Bytes FirstPage::joined() const {
  Bytes all;
  for (const Bytes& piece : data) all.insert(all.end(), piece.begin(), piece.end());
  return all;
}

FirstScan receiveFirstScan(Host& host) {
  FirstScan scan;
  for (;;) {
    const Bytes head = host.receive(1);
    if (head.empty()) return scan;
    const int header = head[0];
    if (header >= 0x80 && header != 0x82 && header != 0x87) {
      scan.endStatus = header;
      return scan;
    }
    const Bytes length = host.receive(2);
    if (length.size() < 2) return scan;
    const Bytes added = host.receive(static_cast<std::size_t>(length[0] | length[1] << 8));
    if (added.size() < 3) return scan;
    FirstPage& page = scan.pages[added[0] | added[1] << 8];
    if (header == 0x82) {
      page.endMarker = added[2];
      if (added.size() >= 7) page.heightPx = added[3] | added[4] << 8 | added[5] << 16 | added[6] << 24;
      continue;
    }
    page.headers.push_back(header);
    if (header < 0x40) continue;  // a white line has no data
    const Bytes size = host.receive(2);
    if (size.size() < 2) return scan;
    page.data.push_back(host.receive(static_cast<std::size_t>(size[0] | size[1] << 8)));
  }
}

std::string receiveText(Host& host, int result) {
  const Bytes head = host.receive(3);
  if (head.size() < 3) return "";
  const Bytes body = host.receive(static_cast<std::size_t>(head[1] | head[2] << 8));
  EXPECT_EQ(head[0], result);
  EXPECT_FALSE(body.empty());
  return {body.begin(), body.end()};
}

}  // namespace vscan::test
