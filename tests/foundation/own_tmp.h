// Runs code in a process of its own whose /tmp is its own, and tells what that code left there.
//
// The set-up file of the log lies at a fixed place in /tmp, and a log looks for it once: a case therefore gets a fresh
// process with a private /tmp (a mount namespace). Where namespaces are refused the cases share the real /tmp, one at a
// time behind a lock file, and what lay at the log's places before is put back. Nothing of the core is used.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace foundation_test {

inline constexpr char kSetupFile[] = "/tmp/QvSetupLog.txt";
inline constexpr char kLogFolder[] = "/tmp/QvOutLog";
inline constexpr char kElsewhere[] = "/tmp/qs-log-elsewhere";  // for what a case wants to lie outside the folder
inline constexpr char kApiLog[] = "/tmp/QvOutLog/ScanApiLog.kmy";

struct Left {
  // Every file under the log's places, by its path; a link is "-> target", a folder ends in "/".
  std::map<std::string, std::string> files;
  bool ended = false;  // the code ran to its end, and no expectation in it failed

  bool has(const std::string& path) const { return files.count(path) != 0; }
  // The messages of a log file, without date and line end, in order.
  std::vector<std::string> messages(const std::string& path = kApiLog) const;
};

// No setup: no set-up file. Expectations of code count for the running test.
Left runWithOwnTmp(const std::optional<std::string>& setup, const std::function<void()>& code);

// For code that runs inside.
void writeFile(const std::string& path, const std::string& content);
std::string readFile(const std::string& path);

}  // namespace foundation_test
