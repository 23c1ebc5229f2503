#include "framework/NamePool.h"

#include <array>
#include <memory>
#include <unordered_map>
#include <vector>

namespace vx {

NamePool::Name* const* NamePool::table_ = nullptr;

// Never destroyed: elements may outlive static objects.
class NamePool::Store {
 public:
  static Store& Instance() {
    static Store* const store = new Store;
    return *store;
  }

  Number Take(std::string_view text) {
    // A tree has few names, and one comes again soon: most are found where they were last.
    Number& recent = recent_[Hash(text)];
    if (recent >= names_.size() || names_[recent] == nullptr || names_[recent]->Text() != text) {
      recent = Find(text);
    }
    ++names_[recent]->references;
    return recent;
  }

  void Drop(Number number) {
    numbers_.erase(names_[number]->Text());
    delete names_[number];
    names_[number] = nullptr;
    if (numbers_.empty()) {
      names_.clear();
      names_.shrink_to_fit();
      free_.clear();
      free_.shrink_to_fit();
    } else {
      free_.push_back(number);
    }
    table_ = names_.data();
  }

 private:
  static constexpr std::size_t kRecent = 256;  // a power of two

  static std::size_t Hash(std::string_view text) {
    if (text.empty()) return 0;
    const auto first = static_cast<unsigned char>(text.front());
    const auto last = static_cast<unsigned char>(text.back());
    return (text.size() * 29 + first * 5U + last) % kRecent;
  }

  // The number of a name, which is a new one where there is none.
  Number Find(std::string_view text) {
    const auto found = numbers_.find(text);
    if (found != numbers_.end()) return found->second;
    auto name = std::make_unique<Name>(text);
    if (free_.empty()) {
      free_.push_back(static_cast<Number>(names_.size()));
      names_.push_back(nullptr);
      table_ = names_.data();
    }
    const Number number = free_.back();
    numbers_.emplace(name->Text(), number);
    free_.pop_back();
    names_[number] = name.release();
    return number;
  }

  std::vector<Name*> names_;  // by number; null where that is free
  std::vector<Number> free_;
  std::unordered_map<std::string_view, Number> numbers_;
  std::array<Number, kRecent> recent_{};
};

NamePool::Number NamePool::Take(std::string_view text) { return Store::Instance().Take(text); }

void NamePool::Drop(Number number) { Store::Instance().Drop(number); }

}  // namespace vx
