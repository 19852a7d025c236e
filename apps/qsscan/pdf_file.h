// A PDF in the making: numbered objects one after the other, and the tables at its end.
//
// Objects go out as they come, so that neither memory nor a second copy of the document is needed, and so that a
// document that finds no more room can still be ended behind its last whole page. Writing goes on without looking until
// flush(), as with a stream.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "spool_file.h"

namespace qsscan {

class PdfFile {
 public:
  // A place between two objects.
  struct Mark {
    std::uint64_t bytes;
    std::size_t objects;
  };

  // An empty stream, which is not owned.
  explicit PdfFile(std::FILE* stream);

  // The number of an object that is written later.
  int reserve();

  // Each gives the number of the object, or takes a reserved one. body is what stands between "obj" and "endobj",
  // entries what stands in the dictionary of a stream beside its length.
  int add(std::string_view body);
  void add(int number, std::string_view body);
  int addStream(std::string_view entries, std::string_view data);
  int addStream(std::string_view entries, SpoolFile& spool);  // all of it

  // The tables and the trailer. Every reserved number must have been used.
  void addEnd(int catalog, int information);

  // True when all that was added is on its way to the file; else error() tells the reason as errno does.
  bool flush();
  int error() const { return error_; }

  Mark mark() const { return {bytes_, offsets_.size()}; }

  // Takes away the objects behind the mark and forgets the failure. False where the stream cannot be cut.
  bool cutBackTo(const Mark& mark);

 private:
  void write(std::string_view text);
  void beginObject(int number);
  int beginStream(std::string_view entries, std::uint64_t bytes);

  std::FILE* stream_;  // Not owned.
  std::uint64_t bytes_ = 0;
  std::vector<std::uint64_t> offsets_;  // of the objects from number 1
  int error_ = 0;
};

// "12 0 R"
std::string reference(int number);

}  // namespace qsscan
