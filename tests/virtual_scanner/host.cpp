#include "host.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace vscan::test {
namespace {

std::uint32_t u32(const Bytes& bytes, std::size_t place) {
  return static_cast<std::uint32_t>(bytes[place]) | static_cast<std::uint32_t>(bytes[place + 1]) << 8 |
         static_cast<std::uint32_t>(bytes[place + 2]) << 16 | static_cast<std::uint32_t>(bytes[place + 3]) << 24;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> plainSettings() {
  return {{"OS", "MAC"},       {"PSRC", "AUTO"}, {"RESO", "300,300"}, {"CLR", "C24BIT"},   {"AREA", "NORMAL"},
          {"MRGN", "0,0,0,0"}, {"DPLX", "OFF"},  {"BRIT", "50"},      {"CONT", "50"},      {"COMP", "JPEG"},
          {"RATE", "50"},      {"JSF", "420"},   {"IPRC", "NORMAL"},  {"PTYPE", "NORMAL"}, {"PAGE", "0"},
          {"LONG", "OFF"},     {"CARR", "OFF"},  {"RMGC", "OFF"},     {"DTDF", "OFF"},     {"DT4V", "OFF"},
          {"DSKW", "OFF"},     {"LSMD", "OFF"},  {"RMBP", "OFF"},     {"RMMR", "OFF"},     {"GMMA", "OFF"},
          {"TONE", "ON"},      {"QTFD", "OFF"},  {"USER", ""}};
}

std::string frameOf(const std::string& name, const std::vector<std::pair<std::string, std::string>>& lines) {
  std::string frame = "\x1B" + name + "\n";
  for (const auto& [key, value] : lines) frame += key + "=" + value + "\n";
  return frame + "\x80";
}

std::string settingsFrame(const std::map<std::string, std::string>& changes) {
  auto lines = plainSettings();
  for (auto& [key, value] : lines) {
    if (const auto change = changes.find(key); change != changes.end()) value = change->second;
  }
  return frameOf("SSP", lines);
}

std::string startFrame(const std::string& area, const std::string& resolution) {
  return frameOf("XSC", {{"RESO", resolution}, {"AREA", area}, {"MODE", "NORMAL"}});
}

Bytes unpackBits(const Bytes& packed) {
  Bytes out;
  std::size_t i = 0;
  while (i < packed.size()) {
    const unsigned n = packed[i++];
    if (n < 128) {
      for (unsigned k = 0; k <= n && i < packed.size(); ++k) out.push_back(packed[i++]);
    } else if (n > 128 && i < packed.size()) {
      out.insert(out.end(), 257 - n, packed[i++]);
    } else {
      break;
    }
  }
  return out;
}

Bytes ReceivedPage::joined() const {
  Bytes all;
  for (const Bytes& piece : data) all.insert(all.end(), piece.begin(), piece.end());
  return all;
}

Host Host::connectTcp(int port) {
  UniqueFd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return Host(UniqueFd());
  return Host(std::move(fd));
}

void Host::send(const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const auto count = ::send(socket_.get(), bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
    if (count <= 0) return;
    done += static_cast<std::size_t>(count);
  }
}

Bytes Host::receive(std::size_t count) {
  Bytes bytes(count);
  std::size_t done = 0;
  while (done < count) {
    pollfd watched{socket_.get(), POLLIN, 0};
    if (::poll(&watched, 1, 5000) <= 0) break;
    const auto got = ::recv(socket_.get(), bytes.data() + done, count - done, 0);
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  bytes.resize(done);
  return bytes;
}

Bytes Host::receiveFramed() {
  Bytes answer = receive(8);
  if (answer.size() < 8) return answer;
  const Bytes body = receive(u32(answer, 4));
  answer.insert(answer.end(), body.begin(), body.end());
  return answer;
}

ReceivedScan Host::receiveScan() {
  ReceivedScan scan;
  for (;;) {
    const Bytes head = receive(2);
    if (head.size() < 2) return scan;
    if (head[0] != 0 || head[1] == 0x20 || head[1] == 0x40 || head[1] == 0x41) {
      scan.endResult = head[0];
      scan.endStatus = head[1];
      return scan;
    }
    const Bytes number = receive(2);
    if (number.size() < 2) return scan;
    ReceivedPage& page = scan.pages[number[0] | number[1] << 8];
    page.statuses.push_back(head[1]);
    if (head[1] == 0x00) page.data.emplace_back();
    if (head[1] == 0x01 || head[1] == 0x02) {
      const Bytes group = receive(10);
      if (group.size() < 10) return scan;
      page.formatByte = group[0];
      page.heightsSoFar.push_back(u32(group, 6));
      page.data.push_back(receive(u32(group, 2)));
    }
    if (head[1] == 0x12) {
      const Bytes format = receive(2);
      if (format.size() < 2) return scan;
      page.checkedFormat = format[0];
    }
    if (head[1] == 0x11) {
      const Bytes size = receive(8);
      if (size.size() < 8) return scan;
      page.sizeWidth = u32(size, 0);
      page.sizeHeight = u32(size, 4);
    }
  }
}

bool Host::isAtEnd() { return receive(1).empty(); }

}  // namespace vscan::test
