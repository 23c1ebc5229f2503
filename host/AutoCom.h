#pragma once

#include <cstddef>
#include <utility>

namespace vx {

/// Owns one reference to an object that counts its references (`AddRef()` and `Release()`), and
/// gives it back when it goes out of scope. Null is allowed everywhere.
///
/// Who adds a reference, and who hands one on:
/// - `auto_com(T*)` and `attach()` take over the reference that the caller already owns; nothing is
///   added. A new object starts with one reference, so `auto_com<Thing> p(new Thing)` is right.
/// - `share()` is for a pointer that belongs to somebody else: it adds a reference of its own.
/// - Copying adds a reference; moving hands it on and leaves the source null.
/// - A function that returns an `auto_com` hands its reference to the caller.
/// - A raw pointer or reference parameter borrows for the call; whoever keeps it longer adds one.
/// - `detach()` hands the reference to the caller, who then has to `Release()` it.
///
/// Not thread-safe in itself; as safe as the object's own counting.
template <typename T>
class auto_com {
 public:
  auto_com() noexcept = default;
  auto_com(std::nullptr_t) noexcept {}
  explicit auto_com(T* owned) noexcept : object_(owned) {}
  auto_com(const auto_com& other) noexcept : object_(other.object_) {
    if (object_ != nullptr) object_->AddRef();
  }
  auto_com(auto_com&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ~auto_com() { reset(); }

  auto_com& operator=(auto_com other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  /// A second owner of an object that somebody else owns: adds a reference.
  static auto_com share(T* borrowed) noexcept {
    if (borrowed != nullptr) borrowed->AddRef();
    return auto_com(borrowed);
  }

  /// Gives back what is held and takes over the caller's reference to `owned`.
  void attach(T* owned) noexcept { *this = auto_com(owned); }

  /// Hands the reference to the caller and is null afterwards.
  [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

  /// Gives the reference back; null afterwards.
  void reset() noexcept {
    if (T* held = std::exchange(object_, nullptr)) held->Release();
  }

  /// The object, still owned here; null where there is none.
  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

 private:
  T* object_ = nullptr;
};

}  // namespace vx
