// The bulk endpoints of a USB device as Transport.
//
// A ring of transfers is always in flight, so that the device can send while the caller is busy elsewhere:
//
//      oldest                                  the bytes are handed out in the order in which the transfers were
//     [ended: 512 of 900 bytes taken]          submitted, whatever the order in which they end; an emptied transfer
//     [ended: 262144 bytes]                    is submitted again at once and becomes the newest. One that failed
//     [in flight]                              stays where it is: its bytes are handed out, then its failure is told
//     [in flight]                              and nothing behind it counts.
//
// A time-out ends no transfer, so no byte is lost by it. A transfer ends by itself when it is full or when a packet is
// short; a device that sends whole packets only and nothing to mark their end leaves its bytes in a transfer that goes
// on waiting. Hence, when nothing has come for kFlushPause and before silence is told, the oldest transfer is cancelled
// and what it holds is handed out; the device goes on with the next one meanwhile.
//
// There is no thread: transfers are noticed and submitted again in the caller's own calls.
// Threads: one caller at a time.
#pragma once

#include <memory>
#include <vector>

#include "transport.h"
#include "usb_transfer.h"

namespace device_access {

// 2 MiB, an eighth of what the system grants to all USB transfers together unless it is told otherwise.
inline constexpr std::size_t kTransferBytes = 0x40000;
inline constexpr std::size_t kTransfersInFlight = 8;

inline constexpr Milliseconds kFlushPause{100};
inline constexpr Milliseconds kDrainPause{50};   // silence after which nothing is left of an earlier connection
inline constexpr Milliseconds kDrainWait{3000};  // a device that still sends then is at work for somebody
inline constexpr Milliseconds kReapWait{2000};   // for cancelled transfers

class UsbTransport final : public Transport {
 public:
  // link: opened, its interface claimed, its endpoints known.
  explicit UsbTransport(std::unique_ptr<UsbLink> link) : link_(std::move(link)) {}
  // Cancels every transfer and waits for its end, at most kReapWait. A transfer that the system keeps even then is
  // never freed: it might end later.
  ~UsbTransport() override;

  // Called once, before anything else: begins to receive and throws away what is left of an earlier connection.
  // kDeviceBusy with EAGAIN when the device does not stop sending. Throws std::bad_alloc.
  Outcome start();

  Outcome receive(std::span<std::byte> buffer, Milliseconds wait, std::size_t& received) override;
  Outcome send(std::span<const std::byte> data, Milliseconds wait) override;
  bool peerGone() override;

 private:
  Outcome submitAll();
  Outcome drain();
  // Hands out what ended transfers hold. Fails only when received is left at 0.
  Outcome take(std::span<std::byte> buffer, std::size_t& received);
  // Handles events once. 0 or an error number.
  int handleEvents(Clock::time_point deadline);
  // Handles events until transfer has ended or the time is up, at least once.
  int waitFor(const UsbTransfer& transfer, Clock::time_point deadline);
  void cancelAll();
  void clearStalls();

  const std::unique_ptr<UsbLink> link_;
  std::vector<std::unique_ptr<UsbTransfer>> ring_;  // from the device
  std::size_t oldest_ = 0;
  std::unique_ptr<UsbTransfer> out_;  // to the device
};

}  // namespace device_access
