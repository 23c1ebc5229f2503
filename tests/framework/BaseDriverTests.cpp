// What every driver answers by default, and where what it asks for goes.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "host/VxBaseDriver.h"
#include "tests/support/FakeHost.h"
#include "tests/support/TestMessages.h"

namespace {

using Lines = std::vector<std::string>;

class PlainDriver : public VxBaseDriver {
 public:
  explicit PlainDriver(IInstanceManager& manager)
      : VxBaseDriver(manager, VxDriverType::kDevice, VxMultiplicity::kMany) {}
  void OnVariableChanged(unsigned long deviceId, unsigned long variableId,
                         const std::string& value) override {
    heard.push_back(std::to_string(deviceId) + "." + std::to_string(variableId) + "=" + value);
  }
  Lines heard;
};

class BaseDriver : public testing::Test {
 protected:
  FakeHost host;
  PlainDriver driver{host};
};

TEST_F(BaseDriver, KnowsNoInterface) {
  int something = 0;
  void* out = &something;
  EXPECT_EQ(driver.QueryInterface("anything", &out), 1);
  EXPECT_EQ(out, nullptr);
}

TEST_F(BaseDriver, TellsWhatItDeclaredItselfToBe) {
  EXPECT_EQ(driver.GetDriverType(), VxDriverType::kDevice);
  EXPECT_EQ(driver.GetMultiplicity(), VxMultiplicity::kMany);
}

TEST_F(BaseDriver, KeepsTheDeviceIdAndReadsNoConfiguration) {
  EXPECT_EQ(driver.GetDeviceId(), 0U) << "before it is initialised";
  const auto config = VxXML::CreateXmlNode("config", "");
  EXPECT_EQ(driver.Initialize(4711, *config, nullptr), 0);
  EXPECT_EQ(driver.GetDeviceId(), 4711U);
  EXPECT_EQ(driver.Initialize(4712, *config, config.get()), 0);
  EXPECT_EQ(driver.GetDeviceId(), 4712U);
}

TEST_F(BaseDriver, AnswersNothingByDefault) {
  EXPECT_FALSE(driver.GetPersistState(0));
  EXPECT_EQ(driver.ExecuteCommand(TestCommand("ANY"), nullptr, 3), 0);
  unsigned long reserved = 7;
  EXPECT_FALSE(driver.TestCondition(TestConditionMessage("IF_ANY"), &reserved));
  EXPECT_EQ(reserved, 7U);
  EXPECT_FALSE(driver.UIRequest(TestCommand("ANY")));
  EXPECT_EQ(driver.VmAdd(1, "name", "value"), 0);
  EXPECT_EQ(driver.VmRemove(1), 0);
  EXPECT_FALSE(driver.GetEvents());
  EXPECT_EQ(driver.GetEventLabel(1), "");
  EXPECT_FALSE(driver.GetCapabilities());
  EXPECT_TRUE(host.calls.empty()) << "nothing of this reaches the host";
}

TEST_F(BaseDriver, HearsEverythingAndDoesNothing) {
  driver.OnTimerExpired(1, 0);
  driver.OnBindingAdded(1, 2);
  driver.OnBindingRemoved(1, 2);
  driver.OnRoomNameChanged(1, "room");
  driver.OnDeviceNameChanged(1, "device");
  driver.OnAudioSelected(1, 2);
  driver.OnVideoSelected(1, 2);
  driver.OnDataReceived(1, "data");
  driver.OnConnectionChanged(1, true);
  const auto message = driver.CreateBindMessage();
  driver.OnBoundCall(1, *message);
  EXPECT_EQ(host.TakeCalls(), Lines{"CreateBindMessage"});
}

TEST_F(BaseDriver, CountsReferencesWithoutDeletingItself) {
  EXPECT_EQ(driver.AddRef(), 2U);
  EXPECT_EQ(driver.Release(), 1U);
  EXPECT_EQ(driver.Release(), 0U);
  EXPECT_EQ(driver.AddRef(), 1U) << "it still lives: whoever created it deletes it";
}

TEST_F(BaseDriver, PassesEveryServiceToItsHost) {
  unsigned long timer = driver.AddTimer(1000, 17);
  EXPECT_EQ(timer, 1U);
  driver.KillTimer(timer);
  EXPECT_EQ(timer, 0U) << "a killed timer's id is cleared";
  host.registerBindingResult = -2;
  EXPECT_EQ(driver.RegisterBinding(5, BindingType::kButton, "Porch", false, 0, ""), -2);
  driver.RegisterBindingClass(5, "BUTTON_LINK", 0, false, "");
  driver.UnregisterBinding(5);
  driver.FireEvent(6);
  const auto message = driver.CreateBindMessage();
  message->SetCommand("DO_PUSH", 1);
  driver.SendBoundCall(5, *message, nullptr);
  driver.ConSendDataToUI(*VxXML::CreateXmlNode("shown", "a & b"));
  driver.DmInvalidateState();
  driver.EmRemoveByOwner(9, CI_OWNER_ID_TYPE::kEvent);
  driver.LogMessage(7, "a line");
  EXPECT_EQ(host.TakeCalls(),
            (Lines{"AddTimer 1000 17", "KillTimer 1", "RegisterBinding 5 1 Porch",
                   "RegisterBindingClass 5 BUTTON_LINK", "UnregisterBinding 5", "FireEvent 6",
                   "CreateBindMessage", "SendBoundCall 5 DO_PUSH 1",
                   "ConSendDataToUI <shown>a &amp; b</shown>", "DmInvalidateState",
                   "EmRemoveByOwner 9 3", "LogMessage 7 a line"}));
}

TEST_F(BaseDriver, HearsAVariablesValueInsideTheRegistration) {
  host.variables[{1, 1001}] = "51.5";
  driver.VmRegisterListener(1, 1001, driver);
  EXPECT_EQ(driver.heard, Lines{"1.1001=51.5"});
  driver.VmRegisterListener(1, 1002, driver);
  EXPECT_EQ(driver.heard.size(), 1U) << "a value that is not known is not delivered";
  driver.VmUnregisterListener(1, 1001, driver);
  EXPECT_EQ(host.TakeCalls(), (Lines{"VmRegisterListener 1 1001", "VmRegisterListener 1 1002",
                                     "VmUnregisterListener 1 1001"}));
}

}  // namespace
