#include "net/announcer.h"

#include <avahi-client/client.h>
#include <avahi-client/publish.h>
#include <avahi-common/alternative.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/simple-watch.h>
#include <avahi-common/strlst.h>
#include <net/if.h>

#include <chrono>
#include <memory>

namespace vscan {
namespace {

constexpr const char* kServiceType = "_qsscan._tcp";
constexpr int kStepMs = 100;  // how late the end of the program is noticed
constexpr auto kRetryDelay = std::chrono::seconds(2);

struct PollFree {
  void operator()(AvahiSimplePoll* poll) const { avahi_simple_poll_free(poll); }
};
struct TextFree {
  void operator()(AvahiStringList* list) const { avahi_string_list_free(list); }
};

// One connection to the daemon. All of it happens on the announcer's thread.
class Publication {
 public:
  // lastFailure: borrowed; what was logged by the publication before, so that it is said once and not at each try.
  Publication(const Announcement& announcement, Log& log, AvahiSimplePoll* poll, std::string& lastFailure)
      : announcement_(announcement), log_(log), lastFailure_(lastFailure), name_(announcement.name) {
    int error = 0;
    // Calls back before it returns; without a daemon on the bus it waits for one.
    client_ = avahi_client_new(avahi_simple_poll_get(poll), AVAHI_CLIENT_NO_FAIL, onClient, this, &error);
    if (client_ == nullptr) giveUp(error);
  }
  ~Publication() {
    if (client_ != nullptr) avahi_client_free(client_);  // and the group with it
  }
  Publication(const Publication&) = delete;
  Publication& operator=(const Publication&) = delete;

  bool hasFailed() const { return hasFailed_; }

 private:
  void giveUp(int error) {
    hasFailed_ = true;
    if (lastFailure_ == avahi_strerror(error)) return;
    lastFailure_ = avahi_strerror(error);
    log_.detail("not announced over mDNS: " + lastFailure_);
  }

  static void onClient(AvahiClient* client, AvahiClientState state, void* user) {
    auto* self = static_cast<Publication*>(user);
    self->client_ = client;
    if (state == AVAHI_CLIENT_S_RUNNING) self->publish();
    // The names of this machine are being settled; what was published has to go until they are.
    if ((state == AVAHI_CLIENT_S_COLLISION || state == AVAHI_CLIENT_S_REGISTERING) && self->group_ != nullptr) {
      avahi_entry_group_reset(self->group_);
    }
    if (state == AVAHI_CLIENT_FAILURE) self->giveUp(avahi_client_errno(client));
  }

  static void onGroup(AvahiEntryGroup* group, AvahiEntryGroupState state, void* user) {
    auto* self = static_cast<Publication*>(user);
    self->group_ = group;
    if (state == AVAHI_ENTRY_GROUP_ESTABLISHED) {
      self->lastFailure_.clear();
      self->log_.detail("announced over mDNS as " + self->name_);
    }
    if (state == AVAHI_ENTRY_GROUP_COLLISION) {
      self->takeAnotherName();
      self->publish();
    }
    if (state == AVAHI_ENTRY_GROUP_FAILURE) self->giveUp(avahi_client_errno(self->client_));
  }

  void takeAnotherName() {
    char* const other = avahi_alternative_service_name(name_.c_str());
    name_ = other;
    avahi_free(other);
  }

  void publish() {
    if (group_ == nullptr) group_ = avahi_entry_group_new(client_, onGroup, this);
    if (group_ == nullptr) return giveUp(avahi_client_errno(client_));
    AvahiStringList* list = nullptr;
    const std::vector<std::string> records = textRecords(announcement_);
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
      list = avahi_string_list_add(list, record->c_str());  // puts it in front
    }
    const std::unique_ptr<AvahiStringList, TextFree> text(list);
    const auto loopback = static_cast<AvahiIfIndex>(::if_nametoindex("lo"));
    int error = AVAHI_ERR_COLLISION;
    while (error == AVAHI_ERR_COLLISION) {
      avahi_entry_group_reset(group_);
      error = avahi_entry_group_add_service_strlst(group_, announcement_.onlyLoopback ? loopback : AVAHI_IF_UNSPEC,
                                                   AVAHI_PROTO_UNSPEC, AvahiPublishFlags{}, name_.c_str(), kServiceType,
                                                   nullptr, nullptr, announcement_.port, text.get());
      if (error == AVAHI_ERR_COLLISION) takeAnotherName();
    }
    if (error == 0) error = avahi_entry_group_commit(group_);
    if (error != 0) giveUp(error);
  }

  const Announcement& announcement_;
  Log& log_;
  std::string& lastFailure_;
  std::string name_;
  AvahiClient* client_ = nullptr;
  AvahiEntryGroup* group_ = nullptr;
  bool hasFailed_ = false;
};

}  // namespace

std::vector<std::string> textRecords(const Announcement& announcement) {
  std::vector<std::string> records = {"txtvers=1", "ty=" + announcement.model, "id=" + announcement.id};
  if (!announcement.place.empty()) records.push_back("note=" + announcement.place);
  return records;
}

Announcer::Announcer(Announcement announcement, Log& log)
    : announcement_(std::move(announcement)), log_(log), thread_([this] { run(); }) {}

Announcer::~Announcer() {
  stops_ = true;
  thread_.join();
}

void Announcer::run() {
  std::string lastFailure;
  while (!stops_) {
    {
      const std::unique_ptr<AvahiSimplePoll, PollFree> poll(avahi_simple_poll_new());
      if (!poll) return;
      Publication publication(announcement_, log_, poll.get(), lastFailure);
      while (!stops_ && !publication.hasFailed() && avahi_simple_poll_iterate(poll.get(), kStepMs) == 0) {
      }
    }
    // The bus or the daemon went, or was never there.
    for (auto waited = std::chrono::milliseconds(0); !stops_ && waited < kRetryDelay;
         waited += std::chrono::milliseconds(kStepMs)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(kStepMs));
    }
  }
}

}  // namespace vscan
