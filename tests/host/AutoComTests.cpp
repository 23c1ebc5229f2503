// Who adds a reference, and who hands one on.

#include <gtest/gtest.h>
#include <type_traits>
#include <utility>

#include "host/AutoCom.h"

namespace {

// Counts like every object of the host, and tells when it is gone.
class Thing {
 public:
  explicit Thing(bool* gone = nullptr) : gone_(gone) {}
  void AddRef() { ++references; }
  void Release() {
    if (--references != 0) return;
    if (gone_ != nullptr) *gone_ = true;
    delete this;
  }
  int references = 1;

 private:
  ~Thing() = default;
  bool* gone_;
};

using ThingPtr = vx::auto_com<Thing>;

TEST(AutoCom, TakesOverTheCallersReference) {
  bool gone = false;
  {
    const ThingPtr owner(new Thing(&gone));
    EXPECT_EQ(owner->references, 1) << "nothing is added";
    EXPECT_FALSE(gone);
  }
  EXPECT_TRUE(gone);
}

TEST(AutoCom, CopyingAddsAReference) {
  bool gone = false;
  {
    const ThingPtr first(new Thing(&gone));
    {
      const ThingPtr second = first;
      EXPECT_EQ(first->references, 2);
      EXPECT_EQ(second.get(), first.get());
    }
    EXPECT_EQ(first->references, 1);
  }
  EXPECT_TRUE(gone);
}

TEST(AutoCom, MovingHandsTheReferenceOn) {
  bool gone = false;
  ThingPtr first(new Thing(&gone));
  const ThingPtr second = std::move(first);
  EXPECT_EQ(first.get(), nullptr);
  EXPECT_EQ(second->references, 1);
  EXPECT_FALSE(gone);
}

TEST(AutoCom, SharingAddsAReferenceToSomebodyElsesObject) {
  const ThingPtr owner(new Thing);
  {
    const ThingPtr shared = ThingPtr::share(owner.get());
    EXPECT_EQ(owner->references, 2);
  }
  EXPECT_EQ(owner->references, 1);
}

TEST(AutoCom, AssignmentGivesBackWhatWasHeld) {
  bool firstGone = false;
  bool secondGone = false;
  ThingPtr pointer(new Thing(&firstGone));
  pointer = ThingPtr(new Thing(&secondGone));
  EXPECT_TRUE(firstGone);
  EXPECT_FALSE(secondGone);
  pointer = nullptr;
  EXPECT_TRUE(secondGone);
}

TEST(AutoCom, AssignmentToItselfChangesNothing) {
  bool gone = false;
  ThingPtr pointer(new Thing(&gone));
  const ThingPtr& same = pointer;
  pointer = same;
  EXPECT_FALSE(gone);
  EXPECT_EQ(pointer->references, 1);
}

TEST(AutoCom, CopyAssignmentAddsAReference) {
  const ThingPtr first(new Thing);
  ThingPtr second;
  second = first;
  EXPECT_EQ(first->references, 2);
}

TEST(AutoCom, AttachTakesOverAndGivesBackWhatWasHeld) {
  bool gone = false;
  ThingPtr pointer(new Thing(&gone));
  pointer.attach(new Thing);
  EXPECT_TRUE(gone);
  EXPECT_EQ(pointer->references, 1);
}

TEST(AutoCom, DetachHandsTheReferenceToTheCaller) {
  bool gone = false;
  ThingPtr pointer(new Thing(&gone));
  Thing* const raw = pointer.detach();
  EXPECT_FALSE(pointer);
  EXPECT_FALSE(gone);
  EXPECT_EQ(raw->references, 1);
  raw->Release();
  EXPECT_TRUE(gone);
}

TEST(AutoCom, ResetGivesTheReferenceBackOnce) {
  bool gone = false;
  ThingPtr pointer(new Thing(&gone));
  pointer.reset();
  EXPECT_TRUE(gone);
  EXPECT_FALSE(pointer);
  pointer.reset();
}

TEST(AutoCom, NullIsAllowedEverywhere) {
  ThingPtr null;
  ThingPtr copy = null;
  const ThingPtr moved = std::move(copy);
  EXPECT_FALSE(null);
  EXPECT_FALSE(moved);
  EXPECT_FALSE(ThingPtr(nullptr));
  EXPECT_FALSE(ThingPtr::share(nullptr));
  null.attach(nullptr);
  EXPECT_EQ(null.detach(), nullptr);
  null = nullptr;
}

TEST(AutoCom, AReturnedPointerHandsItsReferenceToTheCaller) {
  const auto make = [] {
    ThingPtr made(new Thing);
    return made;
  };
  EXPECT_EQ(make()->references, 1);
}

TEST(AutoCom, ARawPointerIsNeverTakenByAccident) {
  static_assert(!std::is_convertible_v<Thing*, ThingPtr>);
  static_assert(!std::is_convertible_v<ThingPtr, bool>);
  static_assert(std::is_nothrow_move_constructible_v<ThingPtr>);
}

}  // namespace
