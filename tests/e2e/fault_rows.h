// Everything that can go wrong at a scanner, where it goes wrong, and what a person then finds.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace e2e {

// A scan of three sheets by one of the two generations.
struct FaultRow {
  int generation = 2;
  std::vector<std::string> faults{};   // as the scanner takes them
  std::optional<int> exit = 0;         // nothing: how the damage shows depends on the bytes
  std::string sentence{};              // part of what qsscan says; a scan that goes well says nothing
  int pages = 0;                       // kept, counted from the first
  std::vector<std::string> options{};  // of qsscan
  bool isSlow = false;                 // it ends by a time-out of more than ten seconds
  bool isDamaged = false;              // what the faulty page shows is not told
};

// Every fault by itself, before the first page, within a page, between pages, and at the answers to commands; and
// damage to records at many places, of which only an end and whole files are promised.
std::vector<FaultRow> faultRows();

}  // namespace e2e
