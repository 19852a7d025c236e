// What a host and the scanner say to each other: one row for each command of a generation, in gen1_dialogue.cpp and
// gen2_dialogue.cpp.
// Threads: used by the thread that serves the connection; other hosts are served by threads of their own.
#pragma once
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "device/device.h"
#include "net/connection.h"
#include "protocol/answer.h"
#include "protocol/device_errors.h"
#include "protocol/key_table.h"

namespace vscan {

// One connection. The settings of a scan belong to the connection that sent them; the paper belongs to the device.
struct Dialogue {
  Device& device;
  Connection& connection;
  Log& log;
  std::optional<GrantedScan> granted{};         // second generation: by SSP
  PaperSource source = PaperSource::Automatic;  // first generation: by S
};

struct Reply {
  std::uint8_t result = 0;
  Bytes body{};
};

// The command has been dealt with, whether or not something was sent; the connection tells how it stands.
struct NoReply {};

using Outcome = std::variant<Reply, Refusal, NoReply>;

// What a command needs of the device, of which other hosts may want something too.
enum class Need {
  Nothing,  // it is answered whoever has the device
  Turn,     // the device, until it has been carried out
  Keeping,  // the device, and on from there until a scan or the host's leaving ends it
};

struct CommandRow {
  std::string_view mnemonic;
  AnswerShape shape;   // of the answer, and of a refusal
  const char* answer;  // what it is called in the log
  Need need;
  Outcome (*carryOut)(Dialogue& dialogue, const Frame& frame);
  bool startsStream = false;  // what answers is an image stream; the shape is that of a refusal

  bool isAnswered() const { return !startsStream && (shape.isFramed() || shape.bareBytes != 0); }
};

std::span<const CommandRow> commandsOf(Generation generation);

// The shape in which a command that the generation does not have is refused.
AnswerShape unknownCommandShape(Generation generation, const std::string& mnemonic);

// Throws Failure when the fault strikes at a command that the generation does not have, or at a field that its answer
// does not have.
void checkFault(const Fault& fault, Generation generation);

// Whether the source has a document; an automatic source takes any.
bool hasDocument(const Device& device, PaperSource source);

// Scans and streams; NoReply with the connection as the scan left it.
Outcome scan(Dialogue& dialogue, const GrantedScan& granted, const StartSettings& start);

namespace gen1 {
std::span<const CommandRow> commands();
}
namespace gen2 {
std::span<const CommandRow> commands();
}

}  // namespace vscan
