#include "network_devices.h"

#include <avahi-client/client.h>
#include <avahi-client/lookup.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/simple-watch.h>
#include <avahi-common/strlst.h>
#include <net/if.h>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "printable.h"

namespace qsscan {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kServiceType = "_qsscan._tcp";
constexpr std::chrono::milliseconds kLongest{2500};
constexpr std::chrono::milliseconds kStragglers{1000};  // for addresses, once all names are there
constexpr std::chrono::milliseconds kStep{50};

struct PollFree {
  void operator()(AvahiSimplePoll* poll) const { avahi_simple_poll_free(poll); }
};
struct ClientFree {
  void operator()(AvahiClient* client) const { avahi_client_free(client); }
};

bool isLinkLocal(const AvahiAddress& address) {
  const std::uint8_t* bytes = address.data.ipv6.address;
  return address.proto == AVAHI_PROTO_INET6 && bytes[0] == 0xFE && (bytes[1] & 0xC0) == 0x80;
}

std::string addressText(const AvahiAddress& address, AvahiIfIndex interface, std::uint16_t port) {
  char text[AVAHI_ADDRESS_STR_MAX];
  std::string host = avahi_address_snprint(text, sizeof text, &address);
  char name[IF_NAMESIZE];
  // Such an address means something on one interface only.
  if (isLinkLocal(address) && ::if_indextoname(static_cast<unsigned>(interface), name) != nullptr) {
    host += std::string("%") + name;
  }
  if (address.proto == AVAHI_PROTO_INET6) host = "[" + host + "]";
  return host + ":" + std::to_string(port);
}

std::string recordOf(AvahiStringList* records, const char* key) {
  AvahiStringList* const found = avahi_string_list_find(records, key);
  char* value = nullptr;
  std::size_t size = 0;
  if (found == nullptr || avahi_string_list_get_pair(found, nullptr, &value, &size) != 0 || value == nullptr) return "";
  std::string text = printable({value, size});
  avahi_free(value);
  return text;
}

class Browsing {
 public:
  Browsing() : poll_(avahi_simple_poll_new()) {
    if (!poll_) return;
    int error = 0;
    // The callback may come before the call returns.
    AvahiClient* client =
        avahi_client_new(avahi_simple_poll_get(poll_.get()), AvahiClientFlags{}, onClient, this, &error);
    client_.reset(client);
    // Closed with the client, like the resolvers.
    const bool browses =
        client != nullptr && avahi_service_browser_new(client, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, kServiceType,
                                                       nullptr, AvahiLookupFlags{}, onService, this) != nullptr;
    isOver_ = !browses;
  }

  Search run() {
    const auto end = Clock::now() + kLongest;
    while (!isOver_ && Clock::now() < end && !isComplete()) {
      if (avahi_simple_poll_iterate(poll_.get(), static_cast<int>(kStep.count())) != 0) break;
    }
    Search search;
    for (auto& [service, best] : services_) search.devices.push_back(std::move(best.device));
    return search;
  }

 private:
  struct Best {
    int rank;  // of the address; lower is better
    FoundDevice device;
  };

  static void onClient(AvahiClient*, AvahiClientState state, void* user) {
    if (state == AVAHI_CLIENT_FAILURE) static_cast<Browsing*>(user)->isOver_ = true;
  }

  static void onService(AvahiServiceBrowser*, AvahiIfIndex interface, AvahiProtocol protocol, AvahiBrowserEvent event,
                        const char* name, const char* type, const char* domain, AvahiLookupResultFlags, void* user) {
    auto* self = static_cast<Browsing*>(user);
    switch (event) {
      case AVAHI_BROWSER_NEW:
        if (avahi_service_resolver_new(self->client_.get(), interface, protocol, name, type, domain, protocol,
                                       AvahiLookupFlags{}, onAddress, user) != nullptr) {
          ++self->pending_;
        }
        break;
      case AVAHI_BROWSER_ALL_FOR_NOW:
        self->namesAreThere_ = Clock::now();
        break;
      case AVAHI_BROWSER_FAILURE:
        self->isOver_ = true;
        break;
      default:
        break;
    }
  }

  static void onAddress(AvahiServiceResolver* resolver, AvahiIfIndex interface, AvahiProtocol, AvahiResolverEvent event,
                        const char* name, const char*, const char* domain, const char*, const AvahiAddress* address,
                        std::uint16_t port, AvahiStringList* records, AvahiLookupResultFlags, void* user) {
    auto* self = static_cast<Browsing*>(user);
    --self->pending_;
    if (event == AVAHI_RESOLVER_FOUND) self->take({name, domain}, *address, interface, port, records);
    avahi_service_resolver_free(resolver);
  }

  // A service is found once for each interface and address family; the address that is best understood is shown.
  void take(const std::pair<std::string, std::string>& service, const AvahiAddress& address, AvahiIfIndex interface,
            std::uint16_t port, AvahiStringList* records) {
    const int rank = isLinkLocal(address) ? 2 : address.proto == AVAHI_PROTO_INET6 ? 1 : 0;
    const auto known = services_.find(service);
    if (known != services_.end() && known->second.rank <= rank) return;
    const std::string model = recordOf(records, "ty");
    const std::string place = recordOf(records, "note");
    std::string about = model.empty() ? printable(service.first) : model;
    if (!place.empty()) about += ", " + place;
    services_[service] = {rank, {addressText(address, interface, port), about, ""}};
  }

  bool isComplete() const {
    if (!namesAreThere_) return false;
    return pending_ == 0 || Clock::now() - *namesAreThere_ > kStragglers;
  }

  std::unique_ptr<AvahiSimplePoll, PollFree> poll_;
  std::unique_ptr<AvahiClient, ClientFree> client_;  // before the poll
  std::map<std::pair<std::string, std::string>, Best> services_;
  std::optional<Clock::time_point> namesAreThere_;
  int pending_ = 0;
  bool isOver_ = true;
};

}  // namespace

Search findNetworkDevices() { return Browsing().run(); }

}  // namespace qsscan
