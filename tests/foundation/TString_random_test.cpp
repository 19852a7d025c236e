// Random operation sequences beside std::string, which knows nothing of small storage, blocks or positions by name.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "tests/foundation/string_parts.h"

using foundation_test::expectHolds;
using foundation_test::partsOf;
using qvtcl::CTString;

namespace {

constexpr int kSequences = 20000;
constexpr int kStepsPerSequence = 12;
constexpr std::size_t kMaxLength = 300;

class Pair {
 public:
  explicit Pair(std::mt19937& random) : random_(random) {
    model_ = randomText();
    text_ = model_.c_str();
  }

  // What was done, for a failure.
  std::string step() {
    const unsigned operation = below(24);
    const std::string other = randomText();
    const char c = randomByte();
    const unsigned long position = randomPosition();
    const unsigned long count = below(4) == 0 ? CTString::nolen : below(12);
    const std::size_t index = indexOf(position);  // npos: invalid
    const std::string operand =
        "(" + other + ", '" + c + "', " + std::to_string(position) + ", " + std::to_string(count) + ")";
    switch (operation) {
      case 0:
        text_ = other.c_str();
        model_ = other;
        break;
      case 1:
        text_ += other.c_str();
        model_ += other;
        break;
      case 2:
        text_ += CTString(other.c_str());
        model_ += other;
        break;
      case 3:
        text_ += c;
        model_ += c;
        break;
      case 4:
        text_ += text_;
        model_ += model_;
        break;
      case 5:
        text_.Erase(position, count);
        if (index != std::string::npos) model_.erase(index, count);
        break;
      case 6:
        text_.Insert(position, other.c_str());
        if (mayInsert(position, index)) model_.insert(index, other);
        break;
      case 7:
        text_.Insert(position, c);
        if (mayInsert(position, index)) model_.insert(index, 1, c);
        break;
      case 8:
        text_.Insert(position, text_);
        if (mayInsert(position, index)) model_.insert(index, std::string(model_));
        break;
      case 9: {
        const std::string from = randomPart();
        text_.Replace(from.c_str(), other.c_str(), position);
        replaceAt(from, other, findFrom(from, index));
        break;
      }
      case 10: {
        const std::string from = randomPart();
        text_.RReplace(CTString(from.c_str()), CTString(other.c_str()), position);
        replaceAt(from, other, findBack(from, index));
        break;
      }
      case 11:
        text_.Remove(c, position);
        replaceAt(std::string(1, c), "", findFrom(std::string(1, c), index));
        break;
      case 12:
        text_.RRemove(c, position);
        replaceAt(std::string(1, c), "", findBack(std::string(1, c), index));
        break;
      case 13:
        text_.SetAt(position, c);
        if (index < model_.size()) model_[index] = c;
        break;
      case 14:
        text_.ToUpper();
        std::transform(model_.begin(), model_.end(), model_.begin(),
                       [](char b) { return b == 'a' || b == 'b' ? static_cast<char>(b - 32) : b; });
        break;
      case 15:
        text_.ToLower();
        std::transform(model_.begin(), model_.end(), model_.begin(),
                       [](char b) { return b == 'A' || b == 'B' ? static_cast<char>(b + 32) : b; });
        break;
      case 16:
        text_.Trim();
        trim(" ", true, true);
        break;
      case 17:
        text_.TrimLeft("a ");
        trim("a ", true, false);
        break;
      case 18:
        text_.TrimRight("b,");
        trim("b,", false, true);
        break;
      case 19:
        text_ = text_.Mid(position, count);
        model_ = index == std::string::npos ? "" : model_.substr(index, count);
        break;
      case 20:
        text_ = text_.Right(below(12));
        model_ = model_.substr(model_.size() - text_.Length());
        break;
      case 21:
        text_.Reserve(below(100));
        break;
      case 22:
        text_.Clear();
        model_.clear();
        break;
      default:
        text_.Format("%s%c", other.c_str(), c);
        model_ = other + c;
        break;
    }
    if (model_.size() > kMaxLength) {
      text_.Erase(kMaxLength / 2);
      model_.erase(kMaxLength / 2);
    }
    return std::to_string(operation) + operand;
  }

  void expectSame() {
    expectHolds(text_, model_);
    const std::string what = below(2) == 0 ? randomText() : randomPart();
    const unsigned long position = randomPosition();
    const std::size_t index = indexOf(position);
    ASSERT_EQ(text_.Find(what.c_str(), position), findFrom(what, index)) << what << " from " << position;
    ASSERT_EQ(text_.RFind(what.c_str(), position), findBack(what, index)) << what << " from " << position;
    ASSERT_EQ(text_.FindOneOf(what.c_str(), position),
              what.empty() || index == std::string::npos ? CTString::nposi : model_.find_first_of(what, index));
    ASSERT_EQ(text_.RFindOneOf(what.c_str(), position),
              what.empty() || index == std::string::npos ? CTString::nposi : model_.find_last_of(what, index));
    ASSERT_EQ(text_.GetAt(position), index < model_.size() ? model_[index] : 0);
    if (!model_.empty() && !what.empty()) {
      const int compared = model_.compare(what);
      ASSERT_EQ(text_.Compare(what.c_str()) < 0, compared < 0);
      ASSERT_EQ(text_ == what.c_str(), compared == 0);
    }
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  char randomByte() { return "aAbB, \xE4"[below(7)]; }

  std::string randomText() {
    std::string text(below(3) == 0 ? below(40) : below(10), ' ');
    for (char& c : text) c = randomByte();
    return text;
  }

  std::string randomPart() {
    return model_.empty() ? "" : model_.substr(below(static_cast<unsigned>(model_.size())), 1 + below(3));
  }

  unsigned long randomPosition() {
    const unsigned kind = below(8);
    if (kind == 0) return CTString::nposi;
    if (kind == 1) return CTString::nposi - 1;
    return below(static_cast<unsigned>(model_.size()) + 3);
  }

  std::size_t indexOf(unsigned long position) const {
    if (position == CTString::nposi) return model_.size();
    if (position == CTString::nposi - 1) return model_.empty() ? std::string::npos : model_.size() - 1;
    return position <= model_.size() ? position : std::string::npos;
  }

  bool mayInsert(unsigned long position, std::size_t index) const {
    return index != std::string::npos && (!model_.empty() || position == 0);
  }

  std::size_t findFrom(const std::string& what, std::size_t index) const {
    return what.empty() || index == std::string::npos ? std::string::npos : model_.find(what, index);
  }

  std::size_t findBack(const std::string& what, std::size_t index) const {
    return what.empty() || index == std::string::npos ? std::string::npos : model_.rfind(what, index);
  }

  void replaceAt(const std::string& from, const std::string& to, std::size_t at) {
    if (at != std::string::npos) model_.replace(at, from.size(), to);
  }

  void trim(const char* set, bool left, bool right) {
    if (left) model_.erase(0, std::min(model_.find_first_not_of(set), model_.size()));
    if (right) model_.erase(model_.find_last_not_of(set) + 1);
  }

  std::mt19937& random_;
  std::string model_;
  CTString text_;
};

}  // namespace

TEST(TStringRandom, EverySequenceGivesWhatAStandardStringGives) {
  std::mt19937 random(7202);
  for (int sequence = 0; sequence < kSequences; ++sequence) {
    Pair pair(random);
    std::string history;
    for (int step = 0; step < kStepsPerSequence; ++step) {
      history += "\n  " + pair.step();
      pair.expectSame();
      ASSERT_FALSE(::testing::Test::HasFailure()) << "sequence " << sequence << history;
    }
  }
}

// Beyond the cap nothing is promised but zero bytes and sound memory, which the sanitizers watch.
TEST(TStringRandom, SequencesAroundTheCapStaySound) {
  std::mt19937 random(65520);
  const auto below = [&random](unsigned long limit) { return static_cast<unsigned long>(random()) % limit; };
  for (int sequence = 0; sequence < 300; ++sequence) {
    CTString text(65000 + below(600), 'a');
    for (int step = 0; step < 10; ++step) {
      const unsigned long position = below(5) == 0 ? CTString::nposi - below(2) : 65000 + below(1200);
      const CTString other(below(700), 'b');
      switch (below(9)) {
        case 0:
          text += other;
          break;
        case 1:
          text.Insert(position, other);
          break;
        case 2:
          text.Insert(below(10), text.C_str() + below(2));
          break;
        case 3:
          text.Erase(position, below(300));
          break;
        case 4:
          text.Erase(below(300), below(900));
          break;
        case 5:
          text.Replace("aa", other.C_str(), position);
          break;
        case 6:
          text.RReplace(CTString("b"), other, position);
          break;
        case 7:
          text = text.Mid(below(3));
          break;
        default:
          text.Trim("b").ToUpper().ToLower();
          break;
      }
      ASSERT_LT(std::string(text.C_str()).size(), 65520u);
      for (unsigned long at = 65515; at < 65525; ++at) {
        if (at >= 65519 || at >= text.Length()) {
          ASSERT_EQ(text.GetAt(at), 0) << at << " of " << text.Length();
        }
      }
      ASSERT_EQ(partsOf(text).isSmall, text.Length() < 8);
      text.RFindNoCase("ab");
      text.Compare(other);
      text.Right(below(1000)).LeftFrom(position);
    }
  }
}
