#include "session_fixture.h"

#include <sys/eventfd.h>

namespace vscan::test {

SessionTest::SessionTest()
    : office_(loadProfile(QS_PROFILES "/office.json")),
      classic_(loadProfile(QS_PROFILES "/classic.json")),
      log_(true,
           [this](const std::string& line) {
             const std::lock_guard lock(mutex_);
             logged_ += line + "\n";
           }),
      stopFd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

SessionTest::~SessionTest() { stop(); }

std::vector<Face> SessionTest::sheets(const std::vector<Raster>& pictures) {
  std::vector<Face> faces;
  for (const Raster& picture : pictures) {
    const std::string path = folder_.file("sheet" + std::to_string(files_++) + ".png");
    writePng(path, picture, 300);
    faces.push_back({openSheetFile(path), 0});
  }
  return faces;
}

void SessionTest::serve(Device device) {
  device_ = std::make_unique<Device>(std::move(device));
  std::vector<Listener> listeners;
  listeners.push_back(Listener::onTcp("127.0.0.1:0"));
  address_ = listeners.back().address();
  listeners.push_back(Listener::onUnix(folder_.file("socket")));
  server_ = std::make_unique<Server>(*device_, std::move(listeners), log_, stopFd_.get());
  thread_ = std::thread([this] { server_->run(); });
}

void SessionTest::stop() {
  if (!thread_.joinable()) return;
  ::eventfd_write(stopFd_.get(), 1);
  thread_.join();
  eventfd_t taken = 0;
  ::eventfd_read(stopFd_.get(), &taken);
  server_.reset();
}

Host SessionTest::connect() { return Host::connectTcp(std::stoi(address_.substr(address_.rfind(':') + 1))); }

ReceivedScan SessionTest::scan(Host& host, const std::map<std::string, std::string>& settings,
                               const std::string& area) {
  host.send(settingsFrame(settings));
  const Bytes granted = host.receiveFramed();
  EXPECT_EQ(granted.at(0), 0);
  host.send(startFrame(area));
  return host.receiveScan();
}

std::string SessionTest::logged() {
  const std::lock_guard lock(mutex_);
  return logged_;
}

Bytes unpacked(const ReceivedPage& page) {
  Bytes all;
  for (const Bytes& line : page.data) {
    const Bytes plain = unpackBits(line);
    all.insert(all.end(), plain.begin(), plain.end());
  }
  return all;
}

}  // namespace vscan::test
