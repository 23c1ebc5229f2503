#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "host/IInstanceManager.h"
#include "tests/support/FakeHost.h"

namespace {

using Lines = std::vector<std::string>;

TEST(AutoQueryInstanceRegisterer, UnregistersInTheOrderOfRegistration) {
  FakeHost host;
  int object = 0;
  {
    AutoQueryInstanceRegisterer registerer(host);
    EXPECT_EQ(registerer.RegisterQuery("b", &object), 1);
    EXPECT_EQ(registerer.RegisterQuery("a", &object), 1);
    EXPECT_EQ(registerer.RegisterQuery("c", &object), 1);
    EXPECT_EQ(host.TakeCalls(), (Lines{"RegisterQuery b", "RegisterQuery a", "RegisterQuery c"}));
    EXPECT_EQ(host.FindQuery("a"), &object);
  }
  EXPECT_EQ(host.TakeCalls(),
            (Lines{"UnregisterQuery b", "UnregisterQuery a", "UnregisterQuery c"}));
  EXPECT_EQ(host.FindQuery("a"), nullptr);
}

TEST(AutoQueryInstanceRegisterer, ForgetsWhatTheManagerRefused) {
  FakeHost host;
  {
    AutoQueryInstanceRegisterer registerer(host);
    registerer.RegisterQuery("first", nullptr);
    host.registerQueryResult = 0;
    EXPECT_EQ(registerer.RegisterQuery("refused", nullptr), 0);
    host.registerQueryResult = -3;
    EXPECT_EQ(registerer.RegisterQuery("accepted with another number", nullptr), -3);
    host.TakeCalls();
  }
  EXPECT_EQ(host.TakeCalls(),
            (Lines{"UnregisterQuery first", "UnregisterQuery accepted with another number"}));
}

TEST(AutoQueryInstanceRegisterer, KeepsItsOwnCopyOfTheIdentifier) {
  FakeHost host;
  {
    AutoQueryInstanceRegisterer registerer(host);
    std::string iid = "identifier";
    registerer.RegisterQuery(iid.c_str(), nullptr);
    iid = "overwritten";
    host.TakeCalls();
  }
  EXPECT_EQ(host.TakeCalls(), Lines{"UnregisterQuery identifier"});
}

TEST(AutoQueryInstanceRegisterer, AsksNothingWhenNothingWasRegistered) {
  FakeHost host;
  { const AutoQueryInstanceRegisterer registerer(host); }
  EXPECT_TRUE(host.TakeCalls().empty());
}

}  // namespace
