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
  Publication(const std::vector<Announcement>& announcements, Log& log, AvahiSimplePoll* poll, std::string& lastFailure)
      : log_(log), lastFailure_(lastFailure) {
    services_.reserve(announcements.size());  // the daemon's library keeps pointers to them
    for (const Announcement& one : announcements) services_.push_back({*this, one, one.name});
    int error = 0;
    // Calls back before it returns; without a daemon on the bus it waits for one.
    client_ = avahi_client_new(avahi_simple_poll_get(poll), AVAHI_CLIENT_NO_FAIL, onClient, this, &error);
    if (client_ == nullptr) giveUp(error);
  }
  ~Publication() {
    if (client_ != nullptr) avahi_client_free(client_);  // and the groups with it
  }
  Publication(const Publication&) = delete;
  Publication& operator=(const Publication&) = delete;

  bool hasFailed() const { return hasFailed_; }

 private:
  struct Service {
    Publication& publication;
    const Announcement& announcement;
    std::string name;
    AvahiEntryGroup* group = nullptr;
  };

  void giveUp(int error) {
    hasFailed_ = true;
    if (lastFailure_ == avahi_strerror(error)) return;
    lastFailure_ = avahi_strerror(error);
    log_.detail("not announced over mDNS: " + lastFailure_);
  }

  static void onClient(AvahiClient* client, AvahiClientState state, void* user) {
    auto* self = static_cast<Publication*>(user);
    self->client_ = client;
    for (Service& service : self->services_) {
      if (state == AVAHI_CLIENT_S_RUNNING) self->publish(service);
      // The names of this machine are being settled; what was published has to go until they are.
      const bool isUnsettled = state == AVAHI_CLIENT_S_COLLISION || state == AVAHI_CLIENT_S_REGISTERING;
      if (isUnsettled && service.group != nullptr) avahi_entry_group_reset(service.group);
    }
    if (state == AVAHI_CLIENT_FAILURE) self->giveUp(avahi_client_errno(client));
  }

  static void onGroup(AvahiEntryGroup* group, AvahiEntryGroupState state, void* user) {
    auto& service = *static_cast<Service*>(user);
    Publication& self = service.publication;
    service.group = group;
    if (state == AVAHI_ENTRY_GROUP_ESTABLISHED) {
      self.lastFailure_.clear();
      self.log_.detail("announced over mDNS as " + service.name);
    }
    if (state == AVAHI_ENTRY_GROUP_COLLISION) {
      takeAnotherName(service);
      self.publish(service);
    }
    if (state == AVAHI_ENTRY_GROUP_FAILURE) self.giveUp(avahi_client_errno(self.client_));
  }

  static void takeAnotherName(Service& service) {
    char* const other = avahi_alternative_service_name(service.name.c_str());
    service.name = other;
    avahi_free(other);
  }

  void publish(Service& service) {
    if (service.group == nullptr) service.group = avahi_entry_group_new(client_, onGroup, &service);
    if (service.group == nullptr) return giveUp(avahi_client_errno(client_));
    AvahiStringList* list = nullptr;
    const std::vector<std::string> records = textRecords(service.announcement);
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
      list = avahi_string_list_add(list, record->c_str());  // puts it in front
    }
    const std::unique_ptr<AvahiStringList, TextFree> text(list);
    const AvahiIfIndex interface =
        service.announcement.onlyLoopback ? static_cast<AvahiIfIndex>(::if_nametoindex("lo")) : AVAHI_IF_UNSPEC;
    int error = AVAHI_ERR_COLLISION;
    while (error == AVAHI_ERR_COLLISION) {
      avahi_entry_group_reset(service.group);
      error = avahi_entry_group_add_service_strlst(service.group, interface, AVAHI_PROTO_UNSPEC, AvahiPublishFlags{},
                                                   service.name.c_str(), kServiceType, nullptr, nullptr,
                                                   service.announcement.port, text.get());
      if (error == AVAHI_ERR_COLLISION) takeAnotherName(service);
    }
    if (error == 0) error = avahi_entry_group_commit(service.group);
    if (error != 0) giveUp(error);
  }

  Log& log_;
  std::string& lastFailure_;
  std::vector<Service> services_;
  AvahiClient* client_ = nullptr;
  bool hasFailed_ = false;
};

}  // namespace

std::vector<std::string> textRecords(const Announcement& announcement) {
  std::vector<std::string> records = {"txtvers=1", "ty=" + announcement.model, "id=" + announcement.id};
  if (!announcement.place.empty()) records.push_back("note=" + announcement.place);
  return records;
}

Announcer::Announcer(std::vector<Announcement> announcements, Log& log)
    : announcements_(std::move(announcements)), log_(log), thread_([this] { run(); }) {}

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
      Publication publication(announcements_, log_, poll.get(), lastFailure);
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
