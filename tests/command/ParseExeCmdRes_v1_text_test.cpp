// The image stream of the first generation against a second reading of its layout that is written here: all headers,
// both sizes of added information, random bytes, every prefix and every split.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "command/ParseExeCmdRes_v1.h"

using namespace orvalle_scan_api;

namespace {

using Bytes = std::vector<unsigned char>;

// Data type and compression of the headers 0x40 to 0x7F, eight in a row: two digits each.
constexpr const char* kLineCodes[8] = {
    "12 12 13 12 22 22 23 22",  // 40..47
    "32 32 33 32 42 42 43 42",  // 48..4F
    "52 52 53 52 62 62 63 62",  // 50..57
    "12 12 13 12 72 72 73 72",  // 58..5F
    "55 55 55 55 55 55 55 55",  // 60..67
    "55 55 55 55 55 55 55 55",  // 68..6F
    "55 55 55 55 55 55 55 55",  // 70..77
    "55 55 55 55 55 55 55 55",  // 78..7F
};
std::uint32_t codeOf(int header, int digit) {
  const int at = header - 0x40;
  return static_cast<std::uint32_t>(kLineCodes[at / 8][at % 8 * 3 + digit] - '0');
}

// What one parse tells; places are offsets from its first byte, -1 for none.
struct Told {
  bool incomplete = false;
  unsigned kind = 0, status = 0;
  bool white = false, marker = false;
  unsigned type = 0, compress = 0;
  int page = 0;
  unsigned height = 0, size = 0;
  std::ptrdiff_t data = -1, next = -1;

  bool operator==(const Told&) const = default;
};
std::string print(const Told& t) {
  std::string text;
  const auto add = [&text](const char* name, long long value) {
    if (value != 0) text += std::string(name) + "=" + std::to_string(value) + " ";
  };
  add("incomplete", t.incomplete), add("kind", t.kind), add("status", t.status), add("white", t.white);
  add("marker", t.marker), add("type", t.type), add("compress", t.compress), add("page", t.page);
  add("height", t.height), add("size", t.size), add("data", t.data + 1), add("next", t.next + 1);
  return text;
}
void PrintTo(const Told& t, std::ostream* out) { *out << print(t); }

// The second reading.
Told model(const Bytes& bytes) {
  Told t;
  const auto size = static_cast<long>(bytes.size());
  const auto u16 = [&bytes](long at) {
    return bytes[static_cast<std::size_t>(at)] + 256 * bytes[static_cast<std::size_t>(at + 1)];
  };
  const auto incomplete = [&t] {
    t.incomplete = true;
    return t;
  };
  if (size < 1) return incomplete();
  const int header = bytes[0];
  const bool isLine = header >= 0x40 && header <= 0x7F;
  if (header >= 0x80) {
    t.status = static_cast<unsigned>(header);
    if (header != 0x82 && header != 0x87) {
      if (size > 1) t.next = 1;
      return t;
    }
  } else if (isLine) {
    t.kind = 1;
    t.type = codeOf(header, 0);
    t.compress = codeOf(header, 1);
  } else {
    t.white = true;
  }
  if (size < 6) return incomplete();
  const int n = static_cast<std::int16_t>(u16(1));
  t.page = static_cast<std::int16_t>(u16(3));
  t.marker = bytes[5] == 0x85;
  long end = 3 + n;  // behind the added information
  if (n == 3) {
    t.height = 0;
  } else if (n < 7 || size < end) {
    return incomplete();
  } else {
    t.height = static_cast<unsigned>(u16(6)) + 65536u * static_cast<unsigned>(u16(8));
  }
  if (isLine) {
    if (size - end < 3) return incomplete();
    t.size = static_cast<unsigned>(u16(end));
    t.data = end + 2;
    end += 2 + static_cast<long>(t.size);
    if (size < end) return incomplete();
  }
  if (size > end) t.next = end;
  return t;
}

// Parses an exact copy, so that a read behind the bytes is found out; what the record held before must not matter.
struct Parse {
  explicit Parse(const Bytes& source) : bytes(new unsigned char[source.size()]) {
    std::copy(source.begin(), source.end(), bytes.get());
    std::memset(static_cast<void*>(&info), 1, sizeof info);
    result = CParseExeCmdRes_v1().ParseXcmdImageDataInfo(bytes.get(), source.size(), &info);
    untouched = std::equal(source.begin(), source.end(), bytes.get());
  }
  Told told() const {
    const LINEDATA& l = info.lineData;
    EXPECT_FALSE(l.reserved);
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(untouched) << "the stream is only read";
    return {info.isIncomplete, info.recordKind, info.statusCode, l.isWhiteLine, l.markerIs85,       l.dataType,
            l.compressType,    l.pageNo,        l.heightPixel,   l.lineSize,    place(l.lineBytes), place(info.next)};
  }
  std::ptrdiff_t place(const unsigned char* at) const { return at == nullptr ? -1 : at - bytes.get(); }

  std::unique_ptr<unsigned char[]> bytes;
  SCANIMAGEINFO info;
  int result;
  bool untouched;
};

void append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }
Bytes little(unsigned value, int width) {
  Bytes bytes;
  for (int i = 0; i < width; ++i, value /= 256) bytes.push_back(static_cast<unsigned char>(value % 256));
  return bytes;
}
// One whole record: n bytes of added information where the header calls for them, lineSize bytes of data.
Bytes record(int header, int n, int page, unsigned height, std::size_t lineSize, std::mt19937& random) {
  Bytes bytes{static_cast<unsigned char>(header)};
  if (header >= 0x80 && header != 0x82 && header != 0x87) return bytes;
  append(bytes, little(static_cast<unsigned>(n), 2));
  append(bytes, little(static_cast<unsigned>(page), 2));
  bytes.push_back(random() % 2 == 0 ? 0x85 : 0x84);
  if (n >= 7) append(bytes, little(height, 4));
  while (bytes.size() < static_cast<std::size_t>(3 + n)) bytes.push_back(static_cast<unsigned char>(random()));
  if (header >= 0x40 && header < 0x80) {
    append(bytes, little(static_cast<unsigned>(lineSize), 2));
    for (std::size_t i = 0; i < lineSize; ++i) bytes.push_back(static_cast<unsigned char>(random()));
  }
  return bytes;
}

}  // namespace

TEST(ParseExeCmdRes_v1_text, EveryHeaderWithBothSizesAtEveryLength) {
  std::mt19937 random(25);
  for (int header = 0; header < 256; ++header) {
    for (const int n : {3, 7, 8, 40}) {
      Bytes bytes = record(header, n, 0x0102, 0x04030201, 9, random);
      const std::size_t whole = bytes.size();
      append(bytes, {0x80, 0x00});
      for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        const Told told = Parse(cut).told();
        ASSERT_EQ(told, model(cut)) << header << " " << n << " " << size;
        ASSERT_EQ(told.incomplete, size < whole) << header << " " << n << " " << size;
      }
    }
  }
}

TEST(ParseExeCmdRes_v1_text, TheHelpersReadTheSameTable) {
  for (int header = 0x40; header < 0x80; ++header) {
    EXPECT_EQ(CParseExeCmdRes_v1::GetLineDataType(static_cast<unsigned char>(header)), codeOf(header, 0)) << header;
    EXPECT_EQ(CParseExeCmdRes_v1::GetLineCompType(static_cast<unsigned char>(header)), codeOf(header, 1)) << header;
  }
}

TEST(ParseExeCmdRes_v1_text, EverySizeOfAddedInformationAsItsBytesSay) {
  std::mt19937 random(26);
  for (const int header : {0x00, 0x3F, 0x41, 0x62, 0x82, 0x87}) {
    for (int n = 0; n < 0x10000; n += n < 600 || n > 0xFE00 ? 1 : 251) {
      Bytes bytes = record(header, 7, -2, 77, 5, random);
      bytes[1] = static_cast<unsigned char>(n);
      bytes[2] = static_cast<unsigned char>(n >> 8);
      for (const std::size_t size : {bytes.size(), std::size_t{300}}) {
        bytes.resize(size, 0x01);
        ASSERT_EQ(Parse(bytes).told(), model(bytes)) << header << " " << n << " " << size;
      }
    }
  }
}

// As an unsigned number such a size would be a good one with this many bytes.
TEST(ParseExeCmdRes_v1_text, ASizeBelowZeroIsIncompleteForEver) {
  for (const int header : {0x00, 0x41, 0x82}) {
    for (const int n : {0x8000, 0x8001, 0xFFF9, 0xFFFF}) {
      Bytes bytes(70000, 0x01);
      bytes[0] = static_cast<unsigned char>(header);
      bytes[1] = static_cast<unsigned char>(n);
      bytes[2] = static_cast<unsigned char>(n >> 8);
      EXPECT_TRUE(Parse(bytes).told().incomplete) << header << " " << n;
      EXPECT_EQ(Parse(bytes).told(), model(bytes)) << header << " " << n;
    }
  }
}

TEST(ParseExeCmdRes_v1_text, AnyBytesAreReadTheSameWayTwice) {
  std::mt19937 random(27);
  for (int round = 0; round < 60000; ++round) {
    Bytes bytes(random() % 64);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random() % 3 == 0 ? random() : random() % 12);
    if (!bytes.empty() && round % 2 == 0) bytes[0] = static_cast<unsigned char>(random());
    if (bytes.size() > 2 && round % 3 != 0) bytes[2] = 0;
    ASSERT_EQ(Parse(bytes).told(), model(bytes)) << round;
  }
}

TEST(ParseExeCmdRes_v1_text, TheLargestLineAndTheLargestAddedInformation) {
  std::mt19937 random(28);
  for (const auto& [n, size] : {std::pair(3, 65535u), {7, 65535u}, {32767, 0u}, {32767, 65535u}}) {
    Bytes bytes = record(0x42, n, 1, 0xFFFFFFFF, size, random);
    for (const int more : {-1, 0, 1}) {
      Bytes changed = bytes;
      changed.resize(static_cast<std::size_t>(static_cast<std::ptrdiff_t>(bytes.size()) + more), 0x80);
      const Told told = Parse(changed).told();
      EXPECT_EQ(told, model(changed)) << n << " " << size << " " << more;
      EXPECT_EQ(told.incomplete, more < 0 || (more == 0 && size == 0)) << n << " " << size << " " << more;
    }
  }
}

namespace {

// The records that a stream was built of, and the stream.
struct Stream {
  Bytes bytes;
  std::vector<Bytes> records;

  void add(const Bytes& record) {
    records.push_back(record);
    append(bytes, record);
  }
};

// A page or two of every kind of record there is.
Stream manyRecords(unsigned seed, int count, bool everyHeader) {
  std::mt19937 random(seed);
  Stream stream;
  for (int i = 0; i < count; ++i) {
    const int header = everyHeader ? i % 256 : static_cast<int>(random() % 256);
    const int n = random() % 2 == 0 ? 3 : 7 + static_cast<int>(random() % 4);
    stream.add(record(header, n, 1 + i % 3, static_cast<unsigned>(random()), random() % 12, random));
  }
  stream.add({0x80});
  return stream;
}

// A reader as the stream's caller is one: it gets pieces, and keeps the bytes from the start of what is incomplete.
class Reader {
 public:
  void give(Bytes::const_iterator from, Bytes::const_iterator to) {
    kept_.insert(kept_.end(), from, to);
    while (!kept_.empty()) {
      const Parse parse(kept_);
      if (parse.info.isIncomplete) return;
      const std::ptrdiff_t next = parse.place(parse.info.next);
      const auto end = next < 0 ? kept_.end() : kept_.begin() + next;
      records.emplace_back(kept_.begin(), end);
      kept_.erase(kept_.begin(), end);
    }
  }
  const Bytes& kept() const { return kept_; }

  std::vector<Bytes> records;

 private:
  Bytes kept_;
};

std::vector<Bytes> readInPieces(const Bytes& stream, const std::vector<std::size_t>& cuts) {
  Reader reader;
  std::size_t at = 0;
  for (const std::size_t cut : cuts) {
    reader.give(stream.begin() + static_cast<std::ptrdiff_t>(at), stream.begin() + static_cast<std::ptrdiff_t>(cut));
    at = cut;
  }
  reader.give(stream.begin() + static_cast<std::ptrdiff_t>(at), stream.end());
  EXPECT_TRUE(reader.kept().empty());
  return reader.records;
}

}  // namespace

TEST(ParseExeCmdRes_v1_text, EveryPrefixOfAStreamGivesItsWholeRecords) {
  const Stream stream = manyRecords(1, 256, true);
  std::size_t whole = 0, wholeBytes = 0;
  for (std::size_t size = 0; size <= stream.bytes.size(); ++size) {
    Reader reader;
    reader.give(stream.bytes.begin(), stream.bytes.begin() + static_cast<std::ptrdiff_t>(size));
    while (whole < stream.records.size() && wholeBytes + stream.records[whole].size() <= size) {
      wholeBytes += stream.records[whole++].size();
    }
    // A line of no bytes waits for the byte behind it.
    const bool waits = reader.records.size() + 1 == whole && size == wholeBytes;
    ASSERT_EQ(reader.records.size(), whole - (waits ? 1 : 0)) << size;
    ASSERT_TRUE(std::equal(reader.records.begin(), reader.records.end(), stream.records.begin())) << size;
    if (waits) {
      const Bytes& line = stream.records[whole - 1];
      ASSERT_TRUE(line[0] >= 0x40 && line[0] < 0x80 && line[line.size() - 1] == 0 && line[line.size() - 2] == 0);
    } else {
      ASSERT_EQ(reader.kept().size(), size - wholeBytes) << size;
    }
  }
}

TEST(ParseExeCmdRes_v1_text, EverySplitOfAStreamGivesTheSameRecords) {
  const Stream stream = manyRecords(2, 256, true);
  ASSERT_EQ(readInPieces(stream.bytes, {}), stream.records);
  for (std::size_t cut = 1; cut < stream.bytes.size(); ++cut) {
    ASSERT_EQ(readInPieces(stream.bytes, {cut}), stream.records) << cut;
  }
  std::vector<std::size_t> everywhere;
  for (std::size_t cut = 1; cut < stream.bytes.size(); ++cut) everywhere.push_back(cut);
  EXPECT_EQ(readInPieces(stream.bytes, everywhere), stream.records);
}

TEST(ParseExeCmdRes_v1_text, EveryPairOfSplitsOfAShortStream) {
  const Stream stream = manyRecords(3, 12, false);
  for (std::size_t first = 1; first < stream.bytes.size(); ++first) {
    for (std::size_t second = first; second < stream.bytes.size(); ++second) {
      ASSERT_EQ(readInPieces(stream.bytes, {first, second}), stream.records) << first << " " << second;
    }
  }
}

TEST(ParseExeCmdRes_v1_text, ARecordWithoutSenseHoldsTheRestBack) {
  Stream stream = manyRecords(4, 5, false);
  stream.bytes.pop_back();
  stream.records.pop_back();
  Bytes bytes = stream.bytes;
  append(bytes, {0x41, 0x04, 0x00, 0x01, 0x00, 0x85, 0x00});  // N of 4, total 6
  bytes.resize(bytes.size() + 1000, 0x80);
  Reader reader;
  reader.give(bytes.begin(), bytes.end());
  EXPECT_EQ(reader.records, stream.records);
  EXPECT_EQ(reader.kept().size(), 1007u);
}
