#include "scan_wish.h"

#include <cctype>

namespace qsscan {
namespace {

using namespace orvalle_scan_api;

template <typename Value>
struct Spelling {
  std::string_view text;  // lower case, words joined by hyphens
  Value value;
};

// The first spelling of a value is its name.
constexpr Spelling<COLORTYPE> kModes[] = {
    {"color", COLORTYPE_COLOR24BIT},
    {"colour", COLORTYPE_COLOR24BIT},
    {"gray", COLORTYPE_TRUEGRAY},
    {"grey", COLORTYPE_TRUEGRAY},
    {"true-gray", COLORTYPE_TRUEGRAY},
    {"mono", COLORTYPE_BLACKANDWHITE},
    {"lineart", COLORTYPE_BLACKANDWHITE},
    {"bw", COLORTYPE_BLACKANDWHITE},
    {"binary", COLORTYPE_BLACKANDWHITE},
    {"black-and-white", COLORTYPE_BLACKANDWHITE},
    {"black-&-white", COLORTYPE_BLACKANDWHITE},
    {"dither", COLORTYPE_ERRORDIFFUSION},
    {"halftone", COLORTYPE_ERRORDIFFUSION},
    {"error-diffusion", COLORTYPE_ERRORDIFFUSION},
    {"auto", COLORTYPE_AUTO},
    {"24bit-color", COLORTYPE_COLOR24BIT},
};

constexpr Spelling<Source> kSources[] = {
    {"auto", Source::kAuto},
    {"automatic", Source::kAuto},
    {"flatbed", Source::kFlatbed},
    {"adf", Source::kFeeder},
    {"adf-front", Source::kFeeder},
    {"adf-simplex", Source::kFeeder},
    {"feeder", Source::kFeeder},
    {"automatic-document-feeder", Source::kFeeder},
    {"adf-duplex", Source::kFeederDuplex},
    {"duplex", Source::kFeederDuplex},
};

std::string normalised(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const bool joint = c == ' ' || c == '_';
    out += joint ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return out;
}

template <typename Value, std::size_t N>
std::optional<Value> find(const Spelling<Value> (&table)[N], std::string_view name) {
  const std::string wanted = normalised(name);
  for (const auto& row : table) {
    if (row.text == wanted) return row.value;
  }
  return std::nullopt;
}

}  // namespace

std::optional<COLORTYPE> findMode(std::string_view name) { return find(kModes, name); }

std::optional<Source> findSource(std::string_view name) { return find(kSources, name); }

const char* modeName(COLORTYPE mode) {
  for (const auto& row : kModes) {
    if (row.value == mode) return row.text.data();
  }
  return "unknown";
}

}  // namespace qsscan
