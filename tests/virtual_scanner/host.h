// The host's side of the protocol as the tests speak it, spelled by hand.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "net/unique_fd.h"
#include "support/little_endian.h"

namespace vscan::test {

// The settings of a plain colour scan at 300 dpi, in wire order; optional keys are absent.
std::vector<std::pair<std::string, std::string>> plainSettings();

// A frame from a command name and lines.
std::string frameOf(const std::string& name, const std::vector<std::pair<std::string, std::string>>& lines);

// SSP with some values of the plain settings replaced.
std::string settingsFrame(const std::map<std::string, std::string>& changes = {});

std::string startFrame(const std::string& area, const std::string& resolution = "300,300");

inline Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

// Undoes PackBits; stops at what is no PackBits.
Bytes unpackBits(const Bytes& packed);

struct ReceivedPage {
  int formatByte = -1;
  std::vector<Bytes> data;  // one for each data record; empty for a white line
  std::vector<std::uint32_t> heightsSoFar;
  std::vector<std::uint8_t> statuses;  // of every record of the page, in order
  std::uint32_t sizeWidth = 0;
  std::uint32_t sizeHeight = 0;
  int checkedFormat = -1;  // told by the result of the colour check

  Bytes joined() const;  // all data, one after the other
};

struct ReceivedScan {
  int endResult = -1;  // the result byte of the record that ended the stream, -1 when the connection ended
  int endStatus = -1;
  std::map<int, ReceivedPage> pages;
};

// A connected stream socket.
class Host {
 public:
  explicit Host(UniqueFd socket) : socket_(std::move(socket)) {}
  static Host connectTcp(int port);

  void send(const std::string& bytes);
  // Exactly that many bytes; fewer when the connection ends or five seconds pass.
  Bytes receive(std::size_t count);
  // A framed answer whole, header included.
  Bytes receiveFramed();
  // Records until the one that ends the stream.
  ReceivedScan receiveScan();
  bool isAtEnd();  // waits for the device to close
  void close() { socket_.reset(); }

 private:
  UniqueFd socket_;
};

}  // namespace vscan::test
