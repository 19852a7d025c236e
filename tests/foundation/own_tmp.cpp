#include "tests/foundation/own_tmp.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace foundation_test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPlaces[] = {kSetupFile, kLogFolder, kElsewhere};
constexpr unsigned kLimitSeconds = 120;  // a case that hangs is killed

bool mountOwnTmp() {
  return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("tmpfs", "/tmp", "tmpfs", 0, nullptr) == 0;
}

// True with a /tmp that nobody else sees.
bool enterPrivateTmp() {
  const auto uid = std::to_string(geteuid());
  const auto gid = std::to_string(getegid());
  if (unshare(CLONE_NEWNS) == 0) return mountOwnTmp();
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
  writeFile("/proc/self/setgroups", "deny");
  writeFile("/proc/self/uid_map", uid + " " + uid + " 1");
  writeFile("/proc/self/gid_map", gid + " " + gid + " 1");
  return mountOwnTmp();
}

// The real /tmp, for one case at a time.
class SharedTmp {
 public:
  SharedTmp() : lock_(open("/tmp/.qs-log-test.lock", O_CREAT | O_RDWR | O_CLOEXEC, 0666)) {
    flock(lock_, LOCK_EX);
    std::error_code ignored;
    for (const char* path : kPlaces) fs::rename(path, path + std::string(".kept"), ignored);
  }
  ~SharedTmp() {
    std::error_code ignored;
    for (const char* path : kPlaces) {
      fs::remove_all(path, ignored);
      fs::rename(path + std::string(".kept"), path, ignored);
    }
    close(lock_);
  }
  SharedTmp(const SharedTmp&) = delete;
  SharedTmp& operator=(const SharedTmp&) = delete;

 private:
  int lock_;
};

void tell(std::FILE* out, const std::string& path, const std::string& content) {
  std::fprintf(out, "%zu %zu\n", path.size(), content.size());
  std::fwrite(path.data(), 1, path.size(), out);
  std::fwrite(content.data(), 1, content.size(), out);
}

void tellTree(std::FILE* out, const fs::path& path) {
  std::error_code ignored;
  const fs::file_status status = fs::symlink_status(path, ignored);
  if (fs::is_symlink(status)) {
    tell(out, path, "-> " + fs::read_symlink(path).string());
  } else if (fs::is_directory(status)) {
    tell(out, path.string() + "/", "");
    for (const auto& entry : fs::directory_iterator(path, ignored)) tellTree(out, entry.path());
  } else if (fs::is_regular_file(status)) {
    tell(out, path, readFile(path));
  }
}

[[noreturn]] void runInside(int pipe, const std::optional<std::string>& setup, const std::function<void()>& code) {
  alarm(kLimitSeconds);
  const bool hadFailed = testing::Test::HasFailure();
  {
    std::optional<SharedTmp> shared;
    if (!enterPrivateTmp()) shared.emplace();
    if (setup) writeFile(kSetupFile, *setup);
    code();
    std::FILE* out = fdopen(pipe, "wb");
    for (const char* path : kPlaces) tellTree(out, path);
    for (const auto& entry : fs::directory_iterator("/")) {
      if (entry.path().filename().string().rfind("Dump", 0) == 0) tellTree(out, entry.path());
    }
    std::fclose(out);
  }
  std::fflush(nullptr);
  _exit(testing::Test::HasFailure() && !hadFailed ? 1 : 0);
}

}  // namespace

void writeFile(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> Left::messages(const std::string& path) const {
  std::vector<std::string> found;
  const auto file = files.find(path);
  if (file == files.end()) return found;
  std::string text = file->second;
  // A message may hold line ends of its own: a line begins with a date.
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = text.find(") ", at);
    std::size_t end = text.find("\r\n(", at);
    const bool isLast = end == std::string::npos;
    if (isLast) end = text.size() - 2;
    if (start == std::string::npos || start + 2 > end) break;
    found.push_back(text.substr(start + 2, end - start - 2));
    at = isLast ? text.size() : end + 2;
  }
  return found;
}

Left runWithOwnTmp(const std::optional<std::string>& setup, const std::function<void()>& code) {
  int ends[2];
  EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    runInside(ends[1], setup, code);
  }
  close(ends[1]);
  Left left;
  std::FILE* in = fdopen(ends[0], "rb");
  std::size_t pathBytes = 0;
  std::size_t contentBytes = 0;
  while (std::fscanf(in, "%zu %zu", &pathBytes, &contentBytes) == 2 && std::fgetc(in) == '\n') {
    std::string path(pathBytes, 0);
    std::string content(contentBytes, 0);
    if (std::fread(path.data(), 1, pathBytes, in) != pathBytes) break;
    if (std::fread(content.data(), 1, contentBytes, in) != contentBytes) break;
    left.files[path] = content;
  }
  std::fclose(in);
  int status = 0;
  waitpid(child, &status, 0);
  left.ended = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  EXPECT_TRUE(left.ended) << "the case's own process ended with status " << status;
  return left;
}

}  // namespace foundation_test
