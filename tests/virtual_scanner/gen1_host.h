// The host's side of the first generation, spelled by hand.
#pragma once
#include "host.h"

namespace vscan::test {

// I and X of a plain colour scan at 300 dpi with some values replaced.
std::string questionFrame(const std::map<std::string, std::string>& changes = {});
std::string startFrame1(const std::map<std::string, std::string>& changes = {});

struct FirstPage {
  std::vector<int> headers;  // of its line records, in order
  std::vector<Bytes> data;
  int endMarker = -1;
  int heightPx = -1;  // told by its end; -1 without one

  Bytes joined() const;
};

struct FirstScan {
  int endStatus = -1;  // the status that ended the stream, -1 when the connection ended
  std::map<int, FirstPage> pages;
};

// Records until the one that ends the stream.
FirstScan receiveFirstScan(Host& host);

// Result byte, two length bytes, body; the body alone of a good answer.
std::string receiveText(Host& host, int result);

}  // namespace vscan::test
